#include "provider/machine/translation/ethtool_ring.h"

#include <algorithm>
#include <array>
#include <optional>

#include "provider/machine/translation/setting_line.h"
#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

/// What a line begins with that the library reads.
constexpr std::array<const char*, 4> kKeys = {"RX:", "RX Mini", "RX Jumbo", "TX:"};

std::optional<std::string> translateLine(const std::string& line) {
    const bool isRead =
        std::any_of(kKeys.begin(), kKeys.end(), [&line](const char* key) { return startsWith(line, key); });
    const auto setting = readSetting(line);
    if (isRead && (!setting || !isNumber(setting->value))) {
        return std::nullopt;
    }
    return line;
}

}  // namespace

std::string translateRing(const std::string& output) {
    return translateLines(output, translateLine);
}

}  // namespace kvl::provider
