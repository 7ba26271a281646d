#include "provider/update/tool_check_watch.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kvl::provider {
namespace {

struct Setting {
    std::string_view key;
    const char* line;
};

constexpr std::array<Setting, 9> kSettings = {{
    {"ClientRemoteOperation", "ClientRemoteOperation:disabled"},
    {"ClientOperationMode", "ClientOperationMode:enabled"},
    {"ClientReadOnlyOperation", "ClientReadOnlyOperation:disabled"},
    {"TcpSocketPortNumber", "TcpSocketPortNumber:23333"},
    {"ServerRemoteOperation", "ServerRemoteOperation:enabled"},
    {"ManagementHost", "ManagementHost:false"},
    {"SecureManagement", "SecureManagement:disabled"},
    {"MngmtHostIpAddress", "MngmtHostIpAddress:0"},
    {"ExclusiveHostMgmnt", "ExclusiveHostMgmnt:false"},
}};

/// A settings file of the tool, and how it shows in the trace.
struct SettingsFile {
    const char* path;
    std::string_view lineBegins;
    std::string_view failureBegins;
    std::size_t first;  // of its settings
    std::size_t count;
};

constexpr std::array<SettingsFile, 2> kFiles = {{
    {"/etc/emulexDiscConfig", "emulexDiscConfig:[", "0 < iDiskKeyWordCount ", 0, 4},
    {"/etc/emulexRMConfig", "emulexRMConfig:[", "( 0 < iRmKeyWordCount ", 4, 5},
}};

constexpr std::string_view kLineEnds = "]";
constexpr std::string_view kFindBegins = "find[";
constexpr std::string_view kRightBegins = "silent [";
constexpr std::string_view kWrongBegins = "not silent ";
constexpr std::string_view kPackageBegins = "I found ";
constexpr std::string_view kUnopenedBegins = "Failed to open file(";
constexpr std::string_view kUnopenedEnds = ").";
constexpr std::string_view kRpmBegins = "_tsystem error (rpm grep).";

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

std::string between(const std::string& text, std::string_view beginning, std::string_view end) {
    return text.substr(beginning.size(), text.size() - beginning.size() - end.size());
}

std::vector<std::string> linesWithout(const SettingsFile& file, const std::vector<std::string>& keys) {
    std::vector<std::string> lines;
    for (std::size_t index = file.first; index < file.first + file.count; ++index) {
        if (std::find(keys.begin(), keys.end(), kSettings[index].key) == keys.end()) {
            lines.emplace_back(kSettings[index].line);
        }
    }
    return lines;
}

std::string lineOf(const std::string& key) {
    for (const Setting& setting : kSettings) {
        if (setting.key == key) {
            return setting.line;
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
    for (const SettingsFile& file : kFiles) {
        if (beginsWith(text, file.lineBegins)) {
            line_ = between(text, file.lineBegins, kLineEnds);
            return;
        }
        if (beginsWith(text, file.failureBegins)) {
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
