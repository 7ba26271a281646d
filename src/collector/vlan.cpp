#include <fstream>
#include <limits>

#include "collector/CNetworkParameter.h"
#include "collector/parsing.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"

namespace {

constexpr const char* kVlanFile = "/proc/net/vlan/config";
constexpr int kHeaderLines = 2;

void skipHeader(std::istream& table) {
    for (int line = 0; line < kHeaderLines; ++line) {
        table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
}

/// Reads the words of a table's row: name, bar, identifier, bar, interface. A word that isn't there leaves its text
/// as it was.
void readRow(std::istream& table, std::string& name, VlanConfig& vlan, std::string& word) {
    table >> name >> word >> word;
    vlan.id = kvl::toNumber(word);
    table >> word >> word;
    vlan.interface = word;
}

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
    skipHeader(table);
    std::string name;
    std::string word;
    do {
        // kept: the end of the file shows only behind the last row, so one pass more is made on the texts of the row
        // before. It changes nothing, but a table without rows gets an entry without a name.
        VlanConfig vlan;
        readRow(table, name, vlan, word);
        trace.detail("ifname=%s, id=%d, interface=%s", name.c_str(), vlan.id, vlan.interface.c_str());
        vlan_map.emplace(name, vlan);
    } while (table.good());
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
