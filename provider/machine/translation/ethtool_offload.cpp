#include "provider/machine/translation/ethtool_offload.h"

#include <algorithm>
#include <array>
#include <optional>

#include "provider/machine/translation/setting_line.h"
#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr std::array<const char*, 12> kSwitches = {
    "rx-checksumming",
    "tx-checksumming",
    "scatter-gather",
    "tcp-segmentation-offload",
    "udp-fragmentation-offload",
    "generic-segmentation-offload",
    "generic-receive-offload",
    "large-receive-offload",
    "rx-vlan-offload",
    "tx-vlan-offload",
    "ntuple-filters",
    "receive-hashing",
};

/// @return the switch that the library takes the line for, by what the line begins with; null if for none
const char* switchOf(const std::string& line) {
    const auto* const found =
        std::find_if(kSwitches.begin(), kSwitches.end(), [&line](const char* name) { return startsWith(line, name); });
    return found != kSwitches.end() ? *found : nullptr;
}

/// @return the line with hyphens for the blanks in its name
std::string withHyphens(const std::string& line) {
    std::string translated = line;
    const auto nameEnd = translated.begin() + static_cast<std::string::difference_type>(line.find(':'));
    std::replace(translated.begin(), nameEnd, ' ', '-');
    return translated;
}

std::optional<std::string> translateLine(const std::string& line) {
    const auto setting = readSetting(line);
    const std::string hyphened = setting ? withHyphens(line) : line;
    const char* const name = switchOf(hyphened);
    if (name == nullptr) {
        return line;
    }
    if (!setting || readSetting(hyphened)->name != name || !isSwitch(setting->value)) {
        return std::nullopt;
    }
    return withBlanksBeforeValue(hyphened);
}

}  // namespace

std::string translateOffload(const std::string& output) {
    return translateLines(output, translateLine);
}

}  // namespace kvl::provider
