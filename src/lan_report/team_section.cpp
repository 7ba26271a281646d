#include "foundation/operation_trace.h"
#include "lan_report/CLanXmlWriter.h"
#include "lan_report/values.h"

namespace {

CKvlXmlNode teamPort(CLanXmlWriter& writer, const std::string& name, const IfconfigResult& ifconfig) {
    CKvlXmlNode port("team_port");
    port.addAttribute("interface_name", name);
    writer.AddXmlElement(port, "port_state", kvl::portState(ifconfig.up));
    // kept: an unknown setting is empty here, where the other sections write one blank.
    writer.AddXmlElement(port, "onboot", kvl::onboot(ifconfig.ONBOOT, ""));
    writer.AddXmlElement(port, "mac_address", ifconfig.HWaddr);
    CKvlXmlNode parameters("team_parameter");
    writer.SetXmlTeamParameters(name, parameters);
    port.addChildNode(parameters);
    CKvlXmlNode tcpIp("tcp_ip_parameter");
    if (!writer.CheckExistVlan(name)) {
        writer.SetXmlTcpIpParameters(name, tcpIp);
    }
    port.addChildNode(tcpIp);
    writer.SetVlanParameters(name, port);
    return port;
}

CKvlXmlNode monitoring(CLanXmlWriter& writer, CNetworkParameter& collector, const BondingConfig& bond) {
    const auto milliseconds = [&collector](int value) { return collector.toStr(value) + " ms"; };
    if (bond.arp_pi >= 0) {
        CKvlXmlNode arp("arp");
        writer.AddXmlElement(arp, "arp_interval", milliseconds(bond.arp_pi));
        for (const std::string& target : bond.arp_ip) {
            writer.AddXmlElement(arp, "arp_ip_target", target);
        }
        return arp;
    }
    CKvlXmlNode mii("mii");
    writer.AddXmlElement(mii, "miimon", milliseconds(bond.pi));
    // kept: down before up, the reverse of the record's order.
    writer.AddXmlElement(mii, "downdelay", milliseconds(bond.dd));
    writer.AddXmlElement(mii, "updelay", milliseconds(bond.ud));
    return mii;
}

CKvlXmlNode member(CLanXmlWriter& writer, CNetworkParameter& collector, const SlaveInterface& slave,
                   const BondingConfig& bond) {
    CKvlXmlNode node("member");
    writer.AddXmlElement(node, "interface_name", slave.name);
    const EthtoolResult* ethtool = collector.GetEthtoolData(slave.name);
    writer.AddXmlElement(node, "PCI Bus/Dev/Func", ethtool != nullptr ? ethtool->driver_info.businfo : "");
    writer.AddXmlElement(node, "mac_address", slave.HWaddr);
    if (slave.name == bond.PrimarySlave) {
        writer.AddXmlElement(node, "priority", "Primary");
    }
    return node;
}

}  // namespace

void CLanXmlWriter::SetTeamInfo() {
    const kvl::OperationTrace trace(m_moduleName, "void CLanXmlWriter::SetTeamInfo()");
    trace.enter();
    CKvlXmlNode team("Team");
    strarray_t names;
    if (!m_pNetworkParameter->GetBondingIfList(names)) {
        trace.detail("** nothing to output bonding info **");  // kept: and no line on leaving
        m_pRootNode->addChildNode(team);
        return;
    }
    for (const std::string& name : names) {
        if (!isTargetVendorTeam(name)) {
            trace.detail("** %s is not target vendor **", name.c_str());
            continue;
        }
        const EthtoolResult* ethtool = m_pNetworkParameter->GetEthtoolData(name);
        const IfconfigResult* ifconfig = m_pNetworkParameter->GetIfconfigData(name);
        if (ethtool == nullptr || ifconfig == nullptr) {
            trace.detail(kvl::kPortFailure, name.c_str());
            continue;
        }
        team.addChildNode(teamPort(*this, name, *ifconfig));
    }
    m_pRootNode->addChildNode(team);
    trace.leave();
}

void CLanXmlWriter::SetXmlTeamParameters(std::string ifname, CKvlXmlNode& node) {
    AddXmlElement(node, "team_name", ifname);
    const BondingConfig* bond = m_pNetworkParameter->GetBondingData(ifname);
    if (bond == nullptr) {
        AddXmlElement(node, "team_type", "");
        AddXmlElement(node, "monitor_mode", "");
        return;
    }
    AddXmlElement(node, "team_type", bond->Mode);
    AddXmlElement(node, "monitor_mode", bond->arp_pi >= 0 ? "arp" : "mii");
    node.addChildNode(monitoring(*this, *m_pNetworkParameter, *bond));
    for (const SlaveInterface& slave : bond->slaves) {
        node.addChildNode(member(*this, *m_pNetworkParameter, slave, *bond));
    }
}
