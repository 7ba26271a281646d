#include "foundation/operation_trace.h"
#include "lan_report/CLanXmlWriter.h"
#include "lan_report/values.h"

void CLanXmlWriter::SetVirtualInfo() {
    const kvl::OperationTrace trace(m_moduleName, "void CLanXmlWriter::SetVirtualInfo()");
    trace.enter();
    CKvlXmlNode section("VLAN");
    vlanconfmap_t vlans;
    if (!m_pNetworkParameter->GetVLANData(vlans)) {
        trace.detail("** nothing to output vlan info **");
        m_pRootNode->addChildNode(section);
        return;
    }
    for (const auto& [name, vlan] : vlans) {
        const IfconfigResult* ifconfig = m_pNetworkParameter->GetIfconfigData(name);
        if (ifconfig == nullptr) {
            trace.detail(kvl::kPortFailure, name.c_str());
            continue;
        }
        if (isTargetVendorVlan(name)) {
            section.addChildNode(vlanPort(name, vlan, *ifconfig));
        }
    }
    m_pRootNode->addChildNode(section);
    trace.leave();
}

CKvlXmlNode CLanXmlWriter::vlanPort(const std::string& name, const VlanConfig& vlan, const IfconfigResult& ifconfig) {
    CKvlXmlNode port("vlan_port");
    port.addAttribute("interface_name", name);
    AddXmlElement(port, "vlan_name", name);
    AddXmlElement(port, "vlan_id", vlan.id);
    AddXmlElement(port, "port_state", kvl::portState(ifconfig.up));
    AddXmlElement(port, "onboot", kvl::onboot(ifconfig.ONBOOT, kvl::kBlank));
    AddXmlElement(port, "mac_address", ifconfig.HWaddr);
    CKvlXmlNode tcpIp("tcp_ip_parameter");
    SetXmlTcpIpParameters(name, tcpIp);
    port.addChildNode(tcpIp);
    return port;
}
