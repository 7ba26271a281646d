#include "foundation/operation_trace.h"
#include "foundation/text.h"
#include "lan_report/CLanXmlWriter.h"
#include "lan_report/values.h"

namespace {

const char* dhcp(int bootproto) {
    switch (bootproto) {
        case 1:
            return "Enabled";
        case 0:
            return "Disabled";
        default:
            return kvl::kBlank;
    }
}

/// Fills a tcp_ip_parameter node.
class TcpIpBlock {
public:
    TcpIpBlock(CLanXmlWriter& writer, CKvlXmlNode& node) : writer_(writer), node_(node) {}

    void addElement(const char* name, const std::string& value) { writer_.AddXmlElement(node_, name, value); }

    /// Appends a child node of two elements, of which the first is "address".
    void addAddress(const char* tag, const std::string& address, const char* secondName, const std::string& second) {
        CKvlXmlNode child(tag);
        writer_.AddXmlElement(child, "address", address);
        writer_.AddXmlElement(child, secondName, second);
        node_.addChildNode(child);
    }

    void addIpv4Address(const IfconfigResult* ifconfig) {
        if (ifconfig != nullptr && !ifconfig->inet_addr.empty()) {
            addAddress("ipv4_address", ifconfig->inet_addr, "netmask", ifconfig->Mask);
        }
    }

    void addGateways(const char* tag, const std::list<RouteConfig>& routes) {
        for (const RouteConfig& route : routes) {
            addAddress(tag, route.Gateway, "metric", route.Metric);
        }
    }

    /// Appends those DNS servers whose address holds the mark of an address family. kept: one with both marks is
    /// written in both families, one with neither nowhere.
    void addDnsServers(const char* name, const strarray_t& nameservers, const char* mark) {
        for (const std::string& nameserver : nameservers) {
            if (kvl::holds(nameserver, mark)) {
                addElement(name, nameserver);
            }
        }
    }

private:
    CLanXmlWriter& writer_;
    CKvlXmlNode& node_;
};

}  // namespace

void CLanXmlWriter::SetXmlTcpIpParameters(std::string ifname, CKvlXmlNode& node) {
    const kvl::OperationTrace trace(m_moduleName,
                                    "void CLanXmlWriter::SetXmlTcpIpParameters(std::string, CKvlXmlNode&)");
    trace.enter(ifname);
    TcpIpBlock block(*this, node);
    const IfconfigResult* ifconfig = m_pNetworkParameter->GetIfconfigData(ifname);
    block.addElement("ipv4_dhcp", ifconfig != nullptr ? dhcp(ifconfig->BOOTPROTO) : "");
    block.addIpv4Address(ifconfig);
    strarray_t names;
    m_pNetworkParameter->GetInterfaceNameList(names);
    for (const std::string& name : names) {
        if (kvl::holds(name, ifname + ":")) {  // kept: anywhere in the name, so also an alias of a longer one
            block.addIpv4Address(m_pNetworkParameter->GetIfconfigData(name));
        }
    }
    block.addGateways("ipv4_default_gateway", m_pNetworkParameter->GetRouteData(ifname));
    block.addElement("ipv4_interface_metric", ifconfig != nullptr ? ifconfig->Metric : "");
    ResolvConf conf;
    m_pNetworkParameter->GetResolvConf(conf);
    block.addDnsServers("ipv4_dns_server_address", conf.nameserver, ".");
    if (ifconfig != nullptr) {
        for (const auto& [address, prefix] : ifconfig->inet6_addr) {
            block.addAddress("ipv6_address", address, "prefix", prefix);
        }
    }
    block.addGateways("ipv6_default_gateway", m_pNetworkParameter->GetRouteDataV6(ifname));
    block.addDnsServers("ipv6_dns_server_address", conf.nameserver, ":");
    trace.leave();
}
