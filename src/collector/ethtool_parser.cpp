#include "collector/ethtool_parser.h"

#include <array>
#include <stdexcept>

#include "collector/cutters.h"
#include "collector/parsing.h"
#include "foundation/line_reader.h"
#include "foundation/text.h"

namespace kvl {

namespace {

/// A field of the record and what a line of the command's output begins with.
struct Setting {
    const char* key;
    int EthtoolResult::*field;
};

constexpr std::array<Setting, 12> kOffloadSettings = {{
    {"rx-checksumming", &EthtoolResult::rcs},
    {"tx-checksumming", &EthtoolResult::tcs},
    {"scatter-gather", &EthtoolResult::sg},
    {"tcp-segmentation-offload", &EthtoolResult::tso},
    {"udp-fragmentation-offload", &EthtoolResult::ufo},
    {"generic-segmentation-offload", &EthtoolResult::gso},
    {"generic-receive-offload", &EthtoolResult::gro},
    {"large-receive-offload", &EthtoolResult::lro},
    {"rx-vlan-offload", &EthtoolResult::rvo},
    {"tx-vlan-offload", &EthtoolResult::tvo},
    {"ntuple-filters", &EthtoolResult::nf},
    {"receive-hashing", &EthtoolResult::rh},
}};

constexpr Setting kPauseTx = {"TX:", &EthtoolResult::pause_tx};
constexpr std::array<Setting, 3> kPauseSettings = {{
    {"Autonegotiate", &EthtoolResult::autonego},
    {"RX:", &EthtoolResult::pause_rx},
    kPauseTx,
}};

using RingSettings = std::array<Setting, 4>;
constexpr RingSettings kPresetRings = {{
    {"RX:", &EthtoolResult::pre_rx},
    {"RX Mini", &EthtoolResult::pre_mini},
    {"RX Jumbo", &EthtoolResult::pre_jumbo},
    {"TX:", &EthtoolResult::pre_tx},
}};
constexpr RingSettings kCurrentRings = {{
    {"RX:", &EthtoolResult::cur_rx},
    {"RX Mini", &EthtoolResult::cur_mini},
    {"RX Jumbo", &EthtoolResult::cur_jumbo},
    {"TX:", &EthtoolResult::cur_tx},
}};

struct RingSection {
    const char* heading;
    const RingSettings* settings;
};
constexpr std::array<RingSection, 2> kRingSections = {{
    {"Pre-set maximums", &kPresetRings},
    {"Current hardware settings", &kCurrentRings},
}};

constexpr const char* kAdaptive = "Adaptive RX";
constexpr std::array<Setting, 20> kCoalesceSettings = {{
    {"stats-block-usecs:", &EthtoolResult::sbu}, {"sample-interval:", &EthtoolResult::si},
    {"pkt-rate-low:", &EthtoolResult::prl},      {"pkt-rate-high:", &EthtoolResult::prh},
    {"rx-usecs:", &EthtoolResult::ru},           {"rx-frames:", &EthtoolResult::rf},
    {"rx-usecs-irq:", &EthtoolResult::rui},      {"rx-frames-irq:", &EthtoolResult::rfi},
    {"tx-usecs:", &EthtoolResult::tu},           {"tx-frames:", &EthtoolResult::tf},
    {"tx-usecs-irq:", &EthtoolResult::tui},      {"tx-frames-irq:", &EthtoolResult::tfi},
    {"rx-usecs-low:", &EthtoolResult::rul},      {"rx-frame-low:", &EthtoolResult::rfl},
    {"tx-usecs-low:", &EthtoolResult::tul},      {"tx-frame-low:", &EthtoolResult::tfl},
    {"rx-usecs-high:", &EthtoolResult::ruh},     {"rx-frame-high:", &EthtoolResult::rfh},
    {"tx-usecs-high:", &EthtoolResult::tuh},     {"tx-frame-high:", &EthtoolResult::tfh},
}};

struct IdentityLine {
    const char* key;
    std::string EthtoolDriverInfo::*field;
};

constexpr IdentityLine kBusInfo = {"bus-info", &EthtoolDriverInfo::bus_info};
constexpr std::array<IdentityLine, 4> kIdentityLines = {{
    {"driver", &EthtoolDriverInfo::driver},
    {"version", &EthtoolDriverInfo::version},
    {"firmware-version", &EthtoolDriverInfo::firmver},
    kBusInfo,
}};

/// @return the row whose key stands at the beginning of the line; null if there is none
template <typename Table>
const typename Table::value_type* findRow(const Table& table, const std::string& line) {
    for (const auto& row : table) {
        if (beginsWith(line, row.key)) {
            return &row;
        }
    }
    return nullptr;
}

template <typename Table>
void markNotFound(const Table& table, EthtoolResult& result) {
    for (const Setting& setting : table) {
        result.*setting.field = -1;
    }
}

constexpr std::string::size_type kBusInfoLength = 12;

long hexPart(const std::string& busInfo, std::string::size_type position, std::string::size_type length) {
    return std::strtol(cut(busInfo, position, length).c_str(), nullptr, 16);
}

/// Derives bus, device and function from a text such as 0000:03:00.0. A shorter one changes nothing.
void deriveBusinfo(EthtoolDriverInfo& info) {
    try {
        if (info.bus_info.size() >= kBusInfoLength) {
            const long function = hexPart(info.bus_info, 11, 1);
            const long device = hexPart(info.bus_info, 8, 2);
            const long bus = hexPart(info.bus_info, 5, 2);
            info.businfo = formatText("%lx/%lx/%lx", bus, device, function);
        }
    } catch (const std::out_of_range&) {  // kept: the length in front of it leaves nothing to catch
        info.businfo = "0/0/0";
    }
}

}  // namespace

void parseDriverInfo(std::istream& text, EthtoolDriverInfo& info) {
    LineReader lines(text);
    std::string line;
    while (lines.read(line)) {
        if (const IdentityLine* row = findRow(kIdentityLines, line)) {
            info.*row->field = colonSeparatedValue(line);
            if (row->field == kBusInfo.field) {
                deriveBusinfo(info);
            }
        }
    }
}

void parseOffload(std::istream& text, EthtoolResult& result) {
    markNotFound(kOffloadSettings, result);
    LineReader lines(text);
    std::string line;
    while (lines.read(line)) {
        if (const Setting* setting = findRow(kOffloadSettings, line)) {
            result.*setting->field = toSwitch(colonSeparatedValue(line));
        }
    }
}

void parsePause(std::istream& text, EthtoolResult& result) {
    markNotFound(kPauseSettings, result);
    LineReader lines(text);
    std::string line;
    while (lines.read(line)) {
        if (const Setting* setting = findRow(kPauseSettings, line)) {
            const std::string value = colonSeparatedValue(line);
            // kept: one of the three switches wants the whole value to be "on".
            const bool wholeValue = setting->field == kPauseTx.field;
            result.*setting->field = wholeValue ? static_cast<int>(value == "on") : toSwitch(value);
        }
    }
}

void parseRings(std::istream& text, EthtoolResult& result) {
    for (const RingSection& section : kRingSections) {
        markNotFound(*section.settings, result);
    }
    const RingSettings* current = nullptr;
    LineReader lines(text);
    std::string line;
    while (lines.read(line)) {
        for (const RingSection& section : kRingSections) {
            if (beginsWith(line, section.heading)) {
                current = section.settings;
            }
        }
        const Setting* setting = current != nullptr ? findRow(*current, line) : nullptr;
        if (setting != nullptr) {
            result.*setting->field = toNumber(colonSeparatedValue(line));
        }
    }
}

void parseCoalesce(std::istream& text, EthtoolResult& result) {
    result.adaptive_rx = -1;
    result.adaptive_tx = -1;
    markNotFound(kCoalesceSettings, result);
    LineReader lines(text);
    std::string line;
    while (lines.read(line)) {
        if (beginsWith(line, kAdaptive)) {
            result.adaptive_rx = toSwitch(colonSeparatedValue(line));
            // kept: without "RX:" the position wraps around to 3.
            result.adaptive_tx = toSwitch(colonSeparatedValue(line, line.find("RX:") + 4));
        } else if (const Setting* setting = findRow(kCoalesceSettings, line)) {
            result.*setting->field = toNumber(colonSeparatedValue(line));
        }
    }
}

}  // namespace kvl
