#include "foundation/operation_trace.h"
#include "lan_report/CLanXmlWriter.h"
#include "lan_report/values.h"

void CLanXmlWriter::SetTeamInfo() {
    const kvl::OperationTrace trace(m_moduleName, "void CLanXmlWriter::SetTeamInfo()");
    trace.enter();
    CKvlXmlNode team("Team");
    strarray_t names;
    if (!m_pNetworkParameter->GetBondingIfList(names)) {
        trace.detail("** nothing to output bonding info **");
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
        team.addChildNode(teamPort(name, *ifconfig));
    }
    m_pRootNode->addChildNode(team);
    trace.leave();
}

CKvlXmlNode CLanXmlWriter::teamPort(const std::string& name, const IfconfigResult& ifconfig) {
    CKvlXmlNode port("team_port");
    port.addAttribute("interface_name", name);
    AddXmlElement(port, "port_state", kvl::portState(ifconfig.up));
    // kept: an unknown setting is empty here, where the other sections write one blank.
    AddXmlElement(port, "onboot", kvl::onboot(ifconfig.ONBOOT, ""));
    AddXmlElement(port, "mac_address", ifconfig.HWaddr);
    CKvlXmlNode parameters("team_parameter");
    SetXmlTeamParameters(name, parameters);
    port.addChildNode(parameters);
    CKvlXmlNode tcpIp("tcp_ip_parameter");
    if (!CheckExistVlan(name)) {
        SetXmlTcpIpParameters(name, tcpIp);
    }
    port.addChildNode(tcpIp);
    SetVlanParameters(name, port);
    return port;
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
    node.addChildNode(monitoring(*bond));
    for (const SlaveInterface& slave : bond->slaves) {
        node.addChildNode(member(slave, *bond));
    }
}

CKvlXmlNode CLanXmlWriter::monitoring(const BondingConfig& bond) {
    const auto milliseconds = [this](int value) { return m_pNetworkParameter->toStr(value) + " ms"; };
    if (bond.arp_pi >= 0) {
        CKvlXmlNode arp("arp");
        AddXmlElement(arp, "arp_interval", milliseconds(bond.arp_pi));
        for (const std::string& target : bond.arp_ip) {
            AddXmlElement(arp, "arp_ip_target", target);
        }
        return arp;
    }
    CKvlXmlNode mii("mii");
    AddXmlElement(mii, "miimon", milliseconds(bond.pi));
    AddXmlElement(mii, "downdelay", milliseconds(bond.dd));
    AddXmlElement(mii, "updelay", milliseconds(bond.ud));
    return mii;
}

CKvlXmlNode CLanXmlWriter::member(const SlaveInterface& slave, const BondingConfig& bond) {
    CKvlXmlNode node("member");
    AddXmlElement(node, "interface_name", slave.name);
    const EthtoolResult* ethtool = m_pNetworkParameter->GetEthtoolData(slave.name);
    AddXmlElement(node, "PCI Bus/Dev/Func", ethtool != nullptr ? ethtool->driver_info.businfo : "");
    AddXmlElement(node, "mac_address", slave.HWaddr);
    if (slave.name == bond.PrimarySlave) {
        AddXmlElement(node, "priority", "Primary");
    }
    return node;
}
