#include <array>

#include "collector/parsing.h"
#include "foundation/CTextFileParser.h"
#include "foundation/operation_trace.h"
#include "lan_report/CLanXmlWriter.h"
#include "lan_report/values.h"

namespace {

struct IdColumn {
    const char* name;
    int column;
};

constexpr std::array<IdColumn, 4> kIdColumns = {{
    {"Vendor ID", 1},
    {"Device ID", 2},
    {"Subsystem Vendor ID", 3},
    {"Subsystem ID", 4},
}};

CKvlXmlNode generalInf(CLanXmlWriter& writer, CNetworkParameter& collector, const EthtoolResult& ethtool,
                       const IfconfigResult& ifconfig) {
    CKvlXmlNode node("general-inf");
    writer.AddXmlElement(node, "PCI Bus/Dev/Func", ethtool.driver_info.businfo);
    const std::string slot = kvl::pciLocation(ethtool.driver_info.bus_info);
    std::string ids;
    collector.GetFourIds(slot, ids);
    for (const IdColumn& row : kIdColumns) {
        std::string id;
        CTextFileParser::GetStrInFixedPosition(ids, row.column, id);
        writer.AddXmlElementHex(node, row.name, id);
    }
    std::string description;
    collector.GetDeviceDescription(slot, description);
    writer.AddXmlElement(node, "description", description);
    writer.AddXmlElement(node, "port_state", kvl::portState(ifconfig.up));
    writer.AddXmlElement(node, "onboot", kvl::onboot(ifconfig.ONBOOT, kvl::kBlank));
    writer.AddXmlElement(node, "mac_address", ifconfig.HWaddr);
    writer.AddXmlElement(node, "physical_mac_address", ethtool.PhysicalMacAddr);
    return node;
}

CKvlXmlNode versionInf(CLanXmlWriter& writer, const EthtoolResult& ethtool, const IfconfigResult& ifconfig) {
    CKvlXmlNode node("version-inf");
    writer.AddXmlElement(node, "OS Build Version", ifconfig.kernel_release);
    writer.AddXmlElement(node, "Firmware Version", ethtool.driver_info.firmver);
    writer.AddXmlElement(node, "Driver Version", ethtool.driver_info.version);
    if (!ethtool.driver_info.utility.empty()) {
        // kept: of several utilities only the first is reported.
        const UtilityInfo& first = ethtool.driver_info.utility.front();
        CKvlXmlNode utility("Utility");
        writer.AddXmlElement(utility, "Utility Name", first.name);
        writer.AddXmlElement(utility, "Utility Version", first.version);
        node.addChildNode(utility);
    }
    return node;
}

CKvlXmlNode physicalPort(CLanXmlWriter& writer, CNetworkParameter& collector, const std::string& name,
                         const EthtoolResult& ethtool, const IfconfigResult& ifconfig) {
    CKvlXmlNode port("physical_port");
    port.addAttribute("interface_name", name);
    port.addChildNode(generalInf(writer, collector, ethtool, ifconfig));
    port.addChildNode(versionInf(writer, ethtool, ifconfig));
    CKvlXmlNode tcpIp("tcp_ip_parameter");
    if (!writer.CheckExistVlan(name) && !writer.CheckTeamMember(name)) {
        writer.SetXmlTcpIpParameters(name, tcpIp);
    }
    port.addChildNode(tcpIp);
    writer.SetVlanParameters(name, port);
    CKvlXmlNode driver("driver_parameter_lin");
    writer.SetXmlDriverParameters(name, driver);
    port.addChildNode(driver);
    return port;
}

}  // namespace

void CLanXmlWriter::SetPhysicalInfo() {
    const kvl::OperationTrace trace(m_moduleName, "void CLanXmlWriter::SetPhysicalInfo()");
    trace.enter();
    CKvlXmlNode physical("Physical");
    std::string name;
    for (int index = 1; m_pNetworkParameter->GetPhysicalDev(index, name); ++index) {
        if (!isTargetVendor(name)) {
            continue;
        }
        const EthtoolResult* ethtool = m_pNetworkParameter->GetEthtoolData(name);
        const IfconfigResult* ifconfig = m_pNetworkParameter->GetIfconfigData(name);
        if (ethtool == nullptr || ifconfig == nullptr) {
            trace.detail(kvl::kPortFailure, name.c_str());
            continue;
        }
        physical.addChildNode(physicalPort(*this, *m_pNetworkParameter, name, *ethtool, *ifconfig));
    }
    m_pRootNode->addChildNode(physical);
    trace.leave();
}
