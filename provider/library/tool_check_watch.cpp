#include "provider/library/tool_check_watch.h"

#include <algorithm>
#include <string_view>

#include "adapter/silent_settings.h"
#include "provider/library/trace_text.h"

namespace kvl::provider {
namespace {

constexpr const char* kLineBegins = ":[";  // behind the file's name
constexpr std::string_view kLineEnds = "]";
constexpr std::string_view kFindBegins = "find[";
constexpr std::string_view kRightBegins = "silent [";
constexpr std::string_view kWrongBegins = "not silent ";
constexpr std::string_view kPackageBegins = "I found ";
constexpr std::string_view kUnopenedBegins = "Failed to open file(";
constexpr std::string_view kUnopenedEnds = ").";
constexpr std::string_view kRpmBegins = "_tsystem error (rpm grep).";

std::string between(const std::string& text, std::string_view beginning, std::string_view end) {
    return text.substr(beginning.size(), text.size() - beginning.size() - end.size());
}

std::vector<std::string> linesWithout(const SettingsFile& file, const std::vector<std::string>& keys) {
    std::vector<std::string> lines;
    for (const Setting& setting : file) {
        if (std::find(keys.begin(), keys.end(), setting.key) == keys.end()) {
            lines.emplace_back(setting.line);
        }
    }
    return lines;
}

std::string lineOf(const std::string& key) {
    for (const SettingsFile& file : kSettingsFiles) {
        for (const Setting& setting : file) {
            if (setting.key == key) {
                return setting.line;
            }
        }
    }
    return "";
}

}  // namespace

void ToolCheckWatch::takeTrace(TRACE_DBG_LEVEL level, const std::string& text) {
    if (level == TRACE_DBG_FLOW) {
        takeFlow(text);
    } else if (level == TRACE_DBG_ERROR) {
        takeError(text);
    }
}

void ToolCheckWatch::takeFlow(const std::string& text) {
    for (const SettingsFile& file : kSettingsFiles) {
        const std::string lineBegins = std::string(file.name) + kLineBegins;
        if (beginsWith(text, lineBegins)) {
            line_ = between(text, lineBegins, kLineEnds);
            return;
        }
        if (text == file.failure) {
            finding_.file = file.path;
            if (finding_.reason == ToolCheckReason::kNone) {
                finding_.reason = ToolCheckReason::kMissingLines;
                finding_.expected = linesWithout(file, right_);
            }
        }
    }
    if (beginsWith(text, kFindBegins)) {
        key_ = text.substr(kFindBegins.size(), text.find(']') - kFindBegins.size());
    } else if (beginsWith(text, kRightBegins)) {
        right_.push_back(key_);
    } else if (beginsWith(text, kWrongBegins)) {
        finding_.reason = ToolCheckReason::kWrongLine;
        finding_.line = line_;
        finding_.expected = {lineOf(key_)};
    } else if (beginsWith(text, kPackageBegins)) {
        finding_.reason = ToolCheckReason::kPackage;
    }
}

void ToolCheckWatch::takeError(const std::string& text) {
    if (beginsWith(text, kUnopenedBegins)) {
        finding_.reason = ToolCheckReason::kFileNotOpened;
        finding_.file = between(text, kUnopenedBegins, kUnopenedEnds);
    } else if (beginsWith(text, kRpmBegins)) {
        finding_.reason = ToolCheckReason::kRpmFailed;
    }
}

}  // namespace kvl::provider
