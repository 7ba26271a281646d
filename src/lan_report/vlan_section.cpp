#include "foundation/operation_trace.h"
#include "lan_report/CLanXmlWriter.h"
#include "lan_report/values.h"

namespace {

CKvlXmlNode vlanPort(CLanXmlWriter& writer, const std::string& name, const VlanConfig& vlan,
                     const IfconfigResult& ifconfig) {
    CKvlXmlNode port("vlan_port");
    port.addAttribute("interface_name", name);
    writer.AddXmlElement(port, "vlan_name", name);
    writer.AddXmlElement(port, "vlan_id", vlan.id);
    writer.AddXmlElement(port, "port_state", kvl::portState(ifconfig.up));
    writer.AddXmlElement(port, "onboot", kvl::onboot(ifconfig.ONBOOT, kvl::kBlank));
    writer.AddXmlElement(port, "mac_address", ifconfig.HWaddr);
    CKvlXmlNode tcpIp("tcp_ip_parameter");
    writer.SetXmlTcpIpParameters(name, tcpIp);
    port.addChildNode(tcpIp);
    return port;
}

}  // namespace

void CLanXmlWriter::SetVirtualInfo() {
    const kvl::OperationTrace trace(m_moduleName, "void CLanXmlWriter::SetVirtualInfo()");
    trace.enter();
    CKvlXmlNode section("VLAN");
    vlanconfmap_t vlans;
    if (!m_pNetworkParameter->GetVLANData(vlans)) {
        trace.detail("** nothing to output vlan info **");  // kept: and no line on leaving
        m_pRootNode->addChildNode(section);
        return;
    }
    for (const auto& [name, vlan] : vlans) {
        const IfconfigResult* ifconfig = m_pNetworkParameter->GetIfconfigData(name);
        if (ifconfig == nullptr) {  // kept: traced before the vendor is asked for
            trace.detail(kvl::kPortFailure, name.c_str());
            continue;
        }
        if (isTargetVendorVlan(name)) {
            section.addChildNode(vlanPort(*this, name, vlan, *ifconfig));
        }
    }
    m_pRootNode->addChildNode(section);
    trace.leave();
}
