#include <array>
#include <fstream>

#include "collector/CNetworkParameter.h"
#include "collector/ethtool_parser.h"
#include "collector/vendor_item_parser.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

using kvl::beginsWith;

namespace {

constexpr const char* kEthtool = "/usr/sbin/ethtool";

enum OptionGroup { kOffload = 0, kPause = 1, kRing = 2, kCoalesce = 3, kVendorItems = 4 };

enum VendorItem { kFirmwareItem = 0, kVersionItem = 1, kPhysicalMacItem = 2 };
constexpr std::array<int, 3> kUtilityItems = {3, 5, 7};

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
    std::ifstream output(result_file);
    kvl::parseDriverInfo(output, info);
    RemoveResultFile();
    kvl::applyVendorItem(GetVendorDependInfo(ifname, kVersionItem), info.version);
    kvl::applyVendorItem(GetVendorDependInfo(ifname, kFirmwareItem), info.firmver);
    trace.leave(info.businfo);
    return true;
}

bool CNetworkParameter::ExecEthtool_K(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -k %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    std::ifstream output(result_file);
    kvl::parseOffload(output, result);
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_A(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -a %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    std::ifstream output(result_file);
    kvl::parsePause(output, result);
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_G(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -g %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    std::ifstream output(result_file);
    kvl::parseRings(output, result);
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_C(std::string ifname, EthtoolResult& result) {
    if (ExecCommand("%s -c %s", kEthtool, ifname.c_str()) < 0) {
        return false;
    }
    std::ifstream output(result_file);
    kvl::parseCoalesce(output, result);
    RemoveResultFile();
    return true;
}

bool CNetworkParameter::ExecEthtool_E(std::string ifname, EthtoolResult& result) {
    kvl::applyVendorItem(GetVendorDependInfo(ifname, kPhysicalMacItem), result.PhysicalMacAddr);
    for (const int item : kUtilityItems) {
        const std::string name = GetVendorDependInfo(ifname, item);
        if (!name.empty()) {
            result.driver_info.utility.push_back({name, GetVendorDependInfo(ifname, item + 1)});
        }
    }
    return true;
}
