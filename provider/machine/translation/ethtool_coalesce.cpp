#include "provider/machine/translation/ethtool_coalesce.h"

#include <algorithm>
#include <array>

#include "provider/machine/translation/setting_line.h"
#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kAdaptive = "Adaptive RX";
constexpr const char* kAdaptiveRx = "Adaptive RX:";

constexpr std::array<const char*, 20> kNumbers = {
    "stats-block-usecs", "sample-interval", "pkt-rate-low",  "pkt-rate-high", "rx-usecs",
    "rx-frames",         "rx-usecs-irq",    "rx-frames-irq", "tx-usecs",      "tx-frames",
    "tx-usecs-irq",      "tx-frames-irq",   "rx-usecs-low",  "rx-frame-low",  "tx-usecs-low",
    "tx-frame-low",      "rx-usecs-high",   "rx-frame-high", "tx-usecs-high", "tx-frame-high",
};

struct OtherName {
    const char* printed;
    const char* read;
};

constexpr std::array<OtherName, 4> kOtherNames = {{
    {"rx-frames-low", "rx-frame-low"},
    {"tx-frames-low", "tx-frame-low"},
    {"rx-frames-high", "rx-frame-high"},
    {"tx-frames-high", "tx-frame-high"},
}};

std::optional<bool> readSwitch(const std::string& value) {
    if (!isSwitch(value)) {
        return std::nullopt;
    }
    return wordsOf(value).front() == "on";
}

/// @return nothing if the line does not hold two values where the library looks for them
std::optional<AdaptiveCoalescing> readAdaptiveLine(const std::string& line) {
    const std::string key = kAdaptiveRx;
    const auto secondColon = startsWith(line, key) ? line.find(':', key.size() + 1) : std::string::npos;
    if (secondColon == std::string::npos) {
        return std::nullopt;
    }
    const std::string rx = line.substr(key.size(), secondColon - key.size());
    return AdaptiveCoalescing{readSwitch(rx), readSwitch(line.substr(secondColon + 1))};
}

std::string withBlanksForTabs(std::string line) {
    std::replace(line.begin(), line.end(), '\t', ' ');
    return line;
}

std::optional<std::string> translateNumber(const std::string& line, const SettingLine& setting) {
    for (const OtherName& other : kOtherNames) {
        if (setting.name == other.printed) {
            const std::string renamed = other.read + line.substr(setting.name.size());
            return translateNumber(renamed, {other.read, setting.value});
        }
    }
    const bool isRead = std::find(kNumbers.begin(), kNumbers.end(), setting.name) != kNumbers.end();
    if (isRead && !isNumber(setting.value)) {
        return std::nullopt;
    }
    return line;
}

std::optional<std::string> translateLine(const std::string& line) {
    if (startsWith(line, kAdaptive)) {
        const auto adaptive = readAdaptiveLine(line);
        if (!adaptive || (!adaptive->rx && !adaptive->tx)) {
            return std::nullopt;
        }
        return withBlanksForTabs(line);
    }
    const auto setting = readSetting(line);
    return setting ? translateNumber(line, *setting) : line;
}

}  // namespace

std::string translateCoalesce(const std::string& output) {
    return translateLines(output, translateLine);
}

AdaptiveCoalescing readAdaptive(const std::string& output) {
    AdaptiveCoalescing last;
    for (const TextLine& line : linesOf(output)) {
        if (const auto adaptive = readAdaptiveLine(line.text)) {
            last = *adaptive;
        }
    }
    return last;
}

}  // namespace kvl::provider
