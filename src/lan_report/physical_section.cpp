#include <array>

#include "foundation/CTextFileParser.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"
#include "lan_report/CLanXmlWriter.h"
#include "lan_report/values.h"

namespace {

// A slot stands in a text such as 0000:03:00.0.
constexpr std::string::size_type kSlotStart = 5;
constexpr std::string::size_type kSlotLength = 7;

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
        physical.addChildNode(physicalPort(name, *ethtool, *ifconfig));
    }
    m_pRootNode->addChildNode(physical);
    trace.leave();
}

CKvlXmlNode CLanXmlWriter::physicalPort(const std::string& name, const EthtoolResult& ethtool,
                                        const IfconfigResult& ifconfig) {
    CKvlXmlNode port("physical_port");
    port.addAttribute("interface_name", name);
    port.addChildNode(generalInf(ethtool, ifconfig));
    port.addChildNode(versionInf(ethtool, ifconfig));
    CKvlXmlNode tcpIp("tcp_ip_parameter");
    if (!CheckExistVlan(name) && !CheckTeamMember(name)) {
        SetXmlTcpIpParameters(name, tcpIp);
    }
    port.addChildNode(tcpIp);
    SetVlanParameters(name, port);
    CKvlXmlNode driver("driver_parameter_lin");
    SetXmlDriverParameters(name, driver);
    port.addChildNode(driver);
    return port;
}

CKvlXmlNode CLanXmlWriter::generalInf(const EthtoolResult& ethtool, const IfconfigResult& ifconfig) {
    CKvlXmlNode node("general-inf");
    AddXmlElement(node, "PCI Bus/Dev/Func", ethtool.driver_info.businfo);
    const std::string slot = kvl::cut(ethtool.driver_info.bus_info, kSlotStart, kSlotLength);
    std::string ids;
    m_pNetworkParameter->GetFourIds(slot, ids);
    for (const IdColumn& row : kIdColumns) {
        std::string id;
        CTextFileParser::GetStrInFixedPosition(ids, row.column, id);
        AddXmlElementHex(node, row.name, id);
    }
    std::string description;
    m_pNetworkParameter->GetDeviceDescription(slot, description);
    AddXmlElement(node, "description", description);
    AddXmlElement(node, "port_state", kvl::portState(ifconfig.up));
    AddXmlElement(node, "onboot", kvl::onboot(ifconfig.ONBOOT, kvl::kBlank));
    AddXmlElement(node, "mac_address", ifconfig.HWaddr);
    AddXmlElement(node, "physical_mac_address", ethtool.PhysicalMacAddr);
    return node;
}

CKvlXmlNode CLanXmlWriter::versionInf(const EthtoolResult& ethtool, const IfconfigResult& ifconfig) {
    CKvlXmlNode node("version-inf");
    AddXmlElement(node, "OS Build Version", ifconfig.kernel_release);
    AddXmlElement(node, "Firmware Version", ethtool.driver_info.firmver);
    AddXmlElement(node, "Driver Version", ethtool.driver_info.version);
    if (!ethtool.driver_info.utility.empty()) {
        // kept: of several utilities only the first is reported.
        const UtilityInfo& first = ethtool.driver_info.utility.front();
        CKvlXmlNode utility("Utility");
        AddXmlElement(utility, "Utility Name", first.name);
        AddXmlElement(utility, "Utility Version", first.version);
        node.addChildNode(utility);
    }
    return node;
}
