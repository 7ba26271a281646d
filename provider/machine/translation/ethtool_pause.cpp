#include "provider/machine/translation/ethtool_pause.h"

#include <algorithm>
#include <array>
#include <optional>

#include "provider/machine/translation/setting_line.h"
#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

/// What a line begins with that the library reads.
constexpr std::array<const char*, 3> kKeys = {"Autonegotiate", "RX:", "TX:"};

std::optional<std::string> translateLine(const std::string& line) {
    const bool isRead =
        std::any_of(kKeys.begin(), kKeys.end(), [&line](const char* key) { return startsWith(line, key); });
    if (!isRead) {
        return line;
    }
    const auto setting = readSetting(line);
    if (!setting || !isSwitch(setting->value)) {
        return std::nullopt;
    }
    return withBlanksBeforeValue(line);
}

}  // namespace

std::string translatePause(const std::string& output) {
    return translateLines(output, translateLine);
}

}  // namespace kvl::provider
