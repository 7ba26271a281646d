#include <fstream>

#include "collector/CNetworkParameter.h"
#include "collector/vlan_parser.h"
#include "foundation/operation_trace.h"

namespace {

constexpr const char* kVlanFile = "/proc/net/vlan/config";

}  // namespace

bool CNetworkParameter::GetVLANData(vlanconfmap_t& vlans) {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetVLANData(vlanconfmap_t&)");
    trace.enter();
    if (!vlan_map.empty()) {
        vlans.insert(vlan_map.begin(), vlan_map.end());
        return true;
    }
    if (!isFileExist(kVlanFile) || ExecCommand("/bin/cat %s", kVlanFile) < 0) {
        return false;
    }
    ParseVlanConfigResult(vlans);
    RemoveResultFile();
    trace.leave();
    return true;
}

bool CNetworkParameter::ParseVlanConfigResult(vlanconfmap_t& vlans) {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::ParseVlanConfigResult(vlanconfmap_t&)");
    std::ifstream table(result_file);
    if (!table.is_open()) {
        return false;
    }
    for (const auto& [name, vlan] : kvl::parseVlans(table)) {
        trace.detail("ifname=%s, id=%d, interface=%s", name.c_str(), vlan.id, vlan.interface.c_str());
        vlan_map.emplace(name, vlan);
    }
    vlans.insert(vlan_map.begin(), vlan_map.end());
    return true;
}

bool CNetworkParameter::RemoveVlanId(std::string ifname, std::string& base) {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::RemoveVlanId(std::string, std::string&)");
    trace.enter(ifname);
    if (vlan_map.empty()) {
        vlanconfmap_t unused;
        GetVLANData(unused);
    }
    const auto found = vlan_map.find(ifname);
    if (found != vlan_map.end()) {
        base = found->second.interface;
    }
    trace.leave(base);
    return true;
}
