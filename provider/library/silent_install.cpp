#include "provider/library/silent_install.h"

#include <algorithm>

#include "adapter/silent_settings.h"
#include "provider/library/trace_table.h"

namespace kvl::provider {
namespace {

/// The line of each setting of a file, but for those with these keys.
std::vector<std::string> linesWithout(const std::string& path, const std::vector<std::string>& keys) {
    std::vector<std::string> lines;
    for (const SettingsFile& file : kSettingsFiles) {
        for (const Setting& setting : file) {
            if (file.path == path && std::find(keys.begin(), keys.end(), setting.key) == keys.end()) {
                lines.emplace_back(setting.line);
            }
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

void SilentInstallFollower::follow(TRACE_DBG_LEVEL level, const std::string& text) {
    const TracedEvent traced = readTraceLine(level, text);
    switch (traced.event) {
        case TraceEvent::kSettingsLine:
            line_ = traced.value;
            break;
        case TraceEvent::kSettingFound:
            key_ = traced.value.substr(0, traced.value.find(']'));
            break;
        case TraceEvent::kSettingRight:
            right_.push_back(key_);
            break;
        case TraceEvent::kSettingWrong:
            finding_.fault = SilentInstallFault::kWrongLine;
            finding_.line = line_;
            finding_.expected = {lineOf(key_)};
            break;
        case TraceEvent::kSettingsFailure:
            noteMissingLines(std::string(traced.detail));
            break;
        case TraceEvent::kPackageFound:
            finding_.fault = SilentInstallFault::kPackage;
            break;
        case TraceEvent::kFileNotOpened:
            finding_.fault = SilentInstallFault::kFileNotOpened;
            finding_.file = traced.value;
            break;
        case TraceEvent::kPackagesUnknown:
            finding_.fault = SilentInstallFault::kPackagesUnknown;
            break;
        default:
            break;
    }
}

/// Lines are missing where a file isn't right and no line of it was wrong.
void SilentInstallFollower::noteMissingLines(const std::string& path) {
    finding_.file = path;
    if (finding_.fault == SilentInstallFault::kNone) {
        finding_.fault = SilentInstallFault::kMissingLines;
        finding_.expected = linesWithout(path, right_);
    }
}

}  // namespace kvl::provider
