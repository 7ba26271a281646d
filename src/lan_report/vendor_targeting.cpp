#include <algorithm>

#include "foundation/operation_trace.h"
#include "host/CStringUtil.h"
#include "lan_report/CLanXmlWriter.h"

namespace {

bool hasSlave(const BondingConfig& bond, const std::string& ifname) {
    return std::any_of(bond.slaves.begin(), bond.slaves.end(),
                       [&](const SlaveInterface& slave) { return slave.name == ifname; });
}

}  // namespace

bool CLanXmlWriter::isTargetVendor(std::string ifname) {
    const kvl::OperationTrace trace(m_moduleName, "bool CLanXmlWriter::isTargetVendor(std::string)");
    trace.enter(ifname);
    std::string vendor;
    m_pNetworkParameter->GetVendorID(ifname, vendor);
    std::string compared;
    bool found = false;
    for (const std::string& target : m_targetVendorList) {
        compared = target;
        if (CStringUtil::StringToUpperCase(target) == CStringUtil::StringToUpperCase(vendor)) {
            found = true;
            break;
        }
    }
    trace.leave(vendor + " " + compared);
    return found;
}

bool CLanXmlWriter::isTargetVendorTeam(std::string ifname) {
    const kvl::OperationTrace trace(m_moduleName, "bool CLanXmlWriter::isTargetVendorTeam(std::string)");
    trace.enter(ifname);
    const BondingConfig* bond = m_pNetworkParameter->GetBondingData(ifname);
    const bool found =
        bond != nullptr && std::any_of(bond->slaves.begin(), bond->slaves.end(),
                                       [this](const SlaveInterface& slave) { return isTargetVendor(slave.name); });
    trace.leaveResult(found ? 1 : 0);
    return found;
}

bool CLanXmlWriter::isTargetVendorVlan(std::string ifname) {
    const kvl::OperationTrace trace(m_moduleName, "bool CLanXmlWriter::isTargetVendorVlan(std::string)");
    trace.enter(ifname);
    std::string base;
    m_pNetworkParameter->RemoveVlanId(ifname, base);
    const bool isBond = m_pNetworkParameter->GetBondingData(base) != nullptr;
    const bool found = isBond ? isTargetVendorTeam(base) : isTargetVendor(base);
    trace.leaveResult(found ? 1 : 0);
    return found;
}

bool CLanXmlWriter::CheckTeamMember(std::string ifname) {
    const kvl::OperationTrace trace(m_moduleName, "bool CLanXmlWriter::CheckTeamMember(std::string)");
    trace.enter(ifname);
    strarray_t bonds;
    bool found = false;
    if (m_pNetworkParameter->GetBondingIfList(bonds)) {
        found = std::any_of(bonds.begin(), bonds.end(), [&](const std::string& name) {
            const BondingConfig* bond = m_pNetworkParameter->GetBondingData(name);
            return bond != nullptr && hasSlave(*bond, ifname);
        });
    }
    trace.leave(found ? "Team member" : "Not team member");
    return found;
}

bool CLanXmlWriter::CheckExistVlan(std::string ifname) {
    vlanconfmap_t vlans;
    m_pNetworkParameter->GetVLANData(vlans);
    return std::any_of(vlans.begin(), vlans.end(),
                       [&](const vlanconfmap_t::value_type& vlan) { return vlan.second.interface == ifname; });
}

void CLanXmlWriter::SetVlanParameters(std::string ifname, CKvlXmlNode& node) {
    vlanconfmap_t vlans;
    m_pNetworkParameter->GetVLANData(vlans);
    for (const auto& [name, vlan] : vlans) {
        if (vlan.interface == ifname) {
            CKvlXmlNode parameter("vlan_parameter");
            AddXmlElement(parameter, "interface_name", name);
            node.addChildNode(parameter);
        }
    }
}
