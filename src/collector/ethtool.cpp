#include <array>
#include <stdexcept>

#include "collector/CNetworkParameter.h"
#include "collector/parsing.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

using kvl::beginsWith;

namespace {

constexpr const char* kEthtool = "/usr/sbin/ethtool";
constexpr const char* kEmptyOnPurpose = "#EMP";

enum OptionGroup { kOffload = 0, kPause = 1, kRing = 2, kCoalesce = 3, kVendorItems = 4 };

enum VendorItem { kFirmwareItem = 0, kVersionItem = 1, kPhysicalMacItem = 2 };
constexpr std::array<int, 3> kUtilityItems = {3, 5, 7};

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
    return std::strtol(kvl::cut(busInfo, position, length).c_str(), nullptr, 16);
}

/// Derives bus, device and function from a text such as 0000:03:00.0. A shorter one changes nothing.
void deriveBusinfo(EthtoolDriverInfo& info) {
    try {
        if (info.bus_info.size() >= kBusInfoLength) {
            const long function = hexPart(info.bus_info, 11, 1);
            const long device = hexPart(info.bus_info, 8, 2);
            const long bus = hexPart(info.bus_info, 5, 2);
            info.businfo = kvl::formatText("%lx/%lx/%lx", bus, device, function);
        }
    } catch (const std::out_of_range&) {  // kept: the length in front of it leaves nothing to catch
        info.businfo = "0/0/0";
    }
}

/// A vendor's item wins over what the command printed; an empty one says nothing.
void applyItem(const std::string& item, std::string& field) {
    if (!item.empty()) {
        field = item == kEmptyOnPurpose ? "" : item;
    }
}

}  // namespace

bool CNetworkParameter::GetEtherConfigurations() {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetEtherConfigurations()");
    trace.enter();
    if (ifconfig_map.empty()) {
        GetNetworkConfigurations();
    }
    struct Group {
        OptionGroup option;
        bool (CNetworkParameter::*collect)(std::string, EthtoolResult&);
    };
    static constexpr std::array<Group, 5> kGroups = {{
        {kOffload, &CNetworkParameter::ExecEthtool_K},
        {kPause, &CNetworkParameter::ExecEthtool_A},
        {kRing, &CNetworkParameter::ExecEthtool_G},
        {kCoalesce, &CNetworkParameter::ExecEthtool_C},
        {kVendorItems, &CNetworkParameter::ExecEthtool_E},
    }};
    for (const auto& entry : ifconfig_map) {
        const std::string& ifname = entry.first;
        EthtoolResult result;
        ExecEthtool_I(ifname, result);
        for (const Group& group : kGroups) {
            if (beginsWith(ifname, "eth") && GetEthtoolOptionConf(group.option) != 0) {
                (this->*group.collect)(ifname, result);
            }
        }
        LogEthtool(ifname, result);
        ethtool_map.emplace(ifname, result);
    }
    trace.leave();
    return true;
}

EthtoolResult* CNetworkParameter::GetEthtoolData(std::string ifname) {
    const kvl::OperationTrace trace(module_name, "EthtoolResult* CNetworkParameter::GetEthtoolData(std::string)");
    if (ethtool_map.empty()) {
        // kept: it goes by the list of names, which is usually empty, so the interfaces are usually collected again.
        if (ifname_list.empty()) {
            GetNetworkConfigurations();
        }
        GetEtherConfigurations();
    }
    const auto found = ethtool_map.find(ifname);
    if (found == ethtool_map.end()) {
        trace.detail("-- %s has no ethtool data", ifname.c_str());
        return nullptr;
    }
    return &found->second;
}

unsigned char CNetworkParameter::GetEthtoolOptionConf(int option) {
    const auto index = static_cast<std::size_t>(option);
    return index < ethtool_option.size() && ethtool_option[index] ? 1 : 0;
}

void CNetworkParameter::DisableEthtoolOption(int option) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::DisableEthtoolOption(int)");
    trace.enter();
    trace.detail("option=%d", option);
    const auto index = static_cast<std::size_t>(option);
    if (index < ethtool_option.size()) {
        ethtool_option[index] = false;
    }
    trace.leave();
}

bool CNetworkParameter::ExecEthtool_I(std::string ifname, EthtoolResult& result) {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::ExecEthtool_I(std::string, EthtoolResult&)");
    trace.enter(ifname);
    if (ExecCommand("%s -i %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    EthtoolDriverInfo& info = result.driver_info;
    info.ifname = ifname;
    info.utility.clear();
    kvl::LineReader lines(result_file);
    std::string line;
    while (lines.read(line)) {
        if (const IdentityLine* row = findRow(kIdentityLines, line)) {
            info.*row->field = GetColonSeparatedValue(line);
            if (row->field == kBusInfo.field) {
                deriveBusinfo(info);
            }
        }
    }
    RemoveResultFile();
    applyItem(GetVendorDependInfo(ifname, kVersionItem), info.version);
    applyItem(GetVendorDependInfo(ifname, kFirmwareItem), info.firmver);
    trace.leave(info.businfo);
    return true;
}

bool CNetworkParameter::ExecEthtool_K(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -k %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    markNotFound(kOffloadSettings, result);
    kvl::LineReader lines(result_file);
    std::string line;
    while (lines.read(line)) {
        if (const Setting* setting = findRow(kOffloadSettings, line)) {
            result.*setting->field = kvl::toSwitch(GetColonSeparatedValue(line));
        }
    }
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_A(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -a %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    markNotFound(kPauseSettings, result);
    kvl::LineReader lines(result_file);
    std::string line;
    while (lines.read(line)) {
        if (const Setting* setting = findRow(kPauseSettings, line)) {
            const std::string value = GetColonSeparatedValue(line);
            // kept: one of the three switches wants the whole value to be "on".
            const bool wholeValue = setting->field == kPauseTx.field;
            result.*setting->field = wholeValue ? static_cast<int>(value == "on") : kvl::toSwitch(value);
        }
    }
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_G(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -g %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    for (const RingSection& section : kRingSections) {
        markNotFound(*section.settings, result);
    }
    const RingSettings* current = nullptr;
    kvl::LineReader lines(result_file);
    std::string line;
    while (lines.read(line)) {
        for (const RingSection& section : kRingSections) {
            if (beginsWith(line, section.heading)) {
                current = section.settings;
            }
        }
        const Setting* setting = current != nullptr ? findRow(*current, line) : nullptr;
        if (setting != nullptr) {
            result.*setting->field = kvl::toNumber(GetColonSeparatedValue(line));
        }
    }
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_C(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -c %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    result.adaptive_rx = -1;
    result.adaptive_tx = -1;
    markNotFound(kCoalesceSettings, result);
    kvl::LineReader lines(result_file);
    std::string line;
    while (lines.read(line)) {
        if (beginsWith(line, kAdaptive)) {
            result.adaptive_rx = kvl::toSwitch(GetColonSeparatedValue(line));
            const auto behindFirstColon = static_cast<unsigned int>(line.find("RX:") + 4);
            result.adaptive_tx = kvl::toSwitch(GetColonSeparatedValue(line, behindFirstColon));
        } else if (const Setting* setting = findRow(kCoalesceSettings, line)) {
            result.*setting->field = kvl::toNumber(GetColonSeparatedValue(line));
        }
    }
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_E(std::string ifname, EthtoolResult& result) {
    applyItem(GetVendorDependInfo(ifname, kPhysicalMacItem), result.PhysicalMacAddr);
    for (const int item : kUtilityItems) {
        const std::string name = GetVendorDependInfo(ifname, item);
        if (!name.empty()) {
            result.driver_info.utility.push_back({name, GetVendorDependInfo(ifname, item + 1)});
        }
    }
    return true;
}
