#include "provider/output/report_text.h"

#include <vector>

#include "provider/output/driver_text.h"
#include "provider/output/report_document.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

using Texts = std::vector<std::string>;

/// The values with a separator between them, "-" for each that is missing.
std::string pair(const std::string& first, const std::string& separator, const std::string& second) {
    return shownValue(first) + separator + shownValue(second);
}

/// The texts of all child nodes of one tag, which hold an address and something more.
Texts addresses(const pugi::xml_node& tcpIp, const char* tag, const char* separator, const char* secondName) {
    Texts texts;
    for (const pugi::xml_node& node : tcpIp.children(tag)) {
        texts.push_back(pair(parameter(node, "address"), separator, parameter(node, secondName)));
    }
    return texts;
}

/// Some of the report's IPv6 addresses already end with the "/" that goes before the prefix.
Texts ipv6Addresses(const pugi::xml_node& tcpIp) {
    Texts texts;
    for (const pugi::xml_node& node : tcpIp.children("ipv6_address")) {
        const std::string address = parameter(node, "address");
        const bool bringsSlash = !address.empty() && address.back() == '/';
        texts.push_back(pair(address, bringsSlash ? "" : "/", parameter(node, "prefix")));
    }
    return texts;
}

Texts vlansOn(const pugi::xml_node& port) {
    Texts names;
    for (const pugi::xml_node& vlan : port.children("vlan_parameter")) {
        names.push_back(parameter(vlan, "interface_name"));
    }
    return names;
}

/// The teams that a port is a member of.
Texts teamsOf(const pugi::xml_node& root, const std::string& port) {
    Texts names;
    for (const pugi::xml_node& team : root.child("Team").children("team_port")) {
        for (const pugi::xml_node& member : team.child("team_parameter").children("member")) {
            if (parameter(member, "interface_name") == port) {
                names.push_back(interfaceName(team));
            }
        }
    }
    return names;
}

void addOptionalRow(TextBlock& block, const char* name, const Texts& values) {
    if (!values.empty()) {
        block.addRows(name, values);
    }
}

/// A row with all values on one line.
void addOptionalLine(TextBlock& block, const char* name, const Texts& values) {
    if (!values.empty()) {
        block.addRow(name, joined(values));
    }
}

void addAddressRows(TextBlock& block, const pugi::xml_node& tcpIp) {
    if (!tcpIp.first_child()) {
        return;  // the addresses stand at a team or a VLAN, which has a row
    }
    block.addRows("IPv4 address", addresses(tcpIp, "ipv4_address", " / ", "netmask"));
    block.addRow("IPv4 DHCP", parameter(tcpIp, "ipv4_dhcp"));
    addOptionalRow(block, "IPv4 gateway", addresses(tcpIp, "ipv4_default_gateway", ", metric ", "metric"));
    block.addRow("IPv4 metric", parameter(tcpIp, "ipv4_interface_metric"));
    addOptionalLine(block, "IPv4 DNS server", parameters(tcpIp, "ipv4_dns_server_address"));
    addOptionalRow(block, "IPv6 address", ipv6Addresses(tcpIp));
    addOptionalRow(block, "IPv6 gateway", addresses(tcpIp, "ipv6_default_gateway", ", metric ", "metric"));
    addOptionalLine(block, "IPv6 DNS server", parameters(tcpIp, "ipv6_dns_server_address"));
}

void addStateRows(TextBlock& block, const pugi::xml_node& node) {
    block.addRow("State", pair(parameter(node, "port_state"), ", on boot: ", parameter(node, "onboot")));
    block.addRow("MAC address", parameter(node, "mac_address"));
}

std::string pciIds(const pugi::xml_node& general) {
    return pair(parameter(general, "Vendor ID"), ":", parameter(general, "Device ID")) + ", subsystem " +
           pair(parameter(general, "Subsystem Vendor ID"), ":", parameter(general, "Subsystem ID"));
}

std::string portBlock(const pugi::xml_node& root, const pugi::xml_node& port) {
    const std::string name = interfaceName(port);
    const pugi::xml_node general = port.child("general-inf");
    const pugi::xml_node version = port.child("version-inf");
    TextBlock block("Port " + name + "   " + shownValue(parameter(general, "description")));
    addStateRows(block, general);
    if (!parameter(general, "physical_mac_address").empty()) {
        block.addRow("Physical MAC", parameter(general, "physical_mac_address"));
    }
    block.addRow("PCI bus/dev/func", parameter(general, "PCI Bus/Dev/Func"));
    block.addRow("PCI IDs", pciIds(general));
    block.addRow("Versions", "driver " + shownValue(parameter(version, "Driver Version")) + ", firmware " +
                                 shownValue(parameter(version, "Firmware Version")) + ", OS " +
                                 shownValue(parameter(version, "OS Build Version")));
    for (const pugi::xml_node& utility : version.children("Utility")) {
        block.addRow("Utility", pair(parameter(utility, "Utility Name"), " ", parameter(utility, "Utility Version")));
    }
    addOptionalLine(block, "In team", teamsOf(root, name));
    addOptionalLine(block, "With VLAN", vlansOn(port));
    addAddressRows(block, port.child("tcp_ip_parameter"));
    addDriverRows(block, port.child("driver_parameter_lin"));
    return block.text();
}

std::string monitoring(const pugi::xml_node& team) {
    if (const pugi::xml_node arp = team.child("arp")) {
        return "ARP every " + shownValue(parameter(arp, "arp_interval")) + ", targets " +
               shownValue(joined(parameters(arp, "arp_ip_target")));
    }
    const pugi::xml_node mii = team.child("mii");
    if (!mii) {
        return "";
    }
    return "MII every " + shownValue(parameter(mii, "miimon")) + ", down delay " +
           shownValue(parameter(mii, "downdelay")) + ", up delay " + shownValue(parameter(mii, "updelay"));
}

Texts members(const pugi::xml_node& team) {
    Texts texts;
    for (const pugi::xml_node& member : team.children("member")) {
        const std::string priority = parameter(member, "priority");
        texts.push_back(joined({shownValue(parameter(member, "interface_name")),
                                "MAC address " + shownValue(parameter(member, "mac_address")),
                                "PCI " + shownValue(parameter(member, "PCI Bus/Dev/Func"))}) +
                        (priority.empty() ? "" : ", " + priority));
    }
    return texts;
}

std::string teamBlock(const pugi::xml_node&, const pugi::xml_node& team) {
    const pugi::xml_node settings = team.child("team_parameter");
    TextBlock block("Team " + interfaceName(team) + "   " + shownValue(parameter(settings, "team_type")));
    addStateRows(block, team);
    block.addRow("Monitoring", monitoring(settings));
    block.addRows("Members", members(settings));
    addOptionalLine(block, "With VLAN", vlansOn(team));
    addAddressRows(block, team.child("tcp_ip_parameter"));
    return block.text();
}

std::string vlanBlock(const pugi::xml_node&, const pugi::xml_node& vlan) {
    TextBlock block("VLAN " + interfaceName(vlan) + "   ID " + shownValue(parameter(vlan, "vlan_id")));
    addStateRows(block, vlan);
    addAddressRows(block, vlan.child("tcp_ip_parameter"));
    return block.text();
}

std::string commonBlock(const pugi::xml_node& common) {
    return "DNS suffixes: " + shownValue(joined(parameters(common, "dns_suffix"))) + "\n";
}

struct SectionOfBlocks {
    const char* tag;
    const char* item;
    std::string (*block)(const pugi::xml_node& root, const pugi::xml_node& item);
    const char* none;
};

constexpr SectionOfBlocks kSections[] = {
    {"Physical", "physical_port", portBlock, "Ports: none\n"},
    {"Team", "team_port", teamBlock, "Teams: none\n"},
    {"VLAN", "vlan_port", vlanBlock, "VLANs: none\n"},
};

Texts blocksOf(const pugi::xml_node& root, const SectionOfBlocks& section) {
    Texts blocks;
    for (const pugi::xml_node& node : root.children(section.tag)) {
        for (const pugi::xml_node& item : node.children(section.item)) {
            blocks.push_back(section.block(root, item));
        }
        if (blocks.empty()) {
            blocks.emplace_back(section.none);
        }
    }
    return blocks;
}

}  // namespace

std::string reportText(const pugi::xml_document& report) {
    const pugi::xml_node root = report.document_element();
    Texts blocks;
    if (const pugi::xml_node common = root.child("Common")) {
        blocks.push_back(commonBlock(common));
    }
    for (const SectionOfBlocks& section : kSections) {
        const Texts more = blocksOf(root, section);
        blocks.insert(blocks.end(), more.begin(), more.end());
    }
    std::string text;
    for (const std::string& block : blocks) {
        text += (text.empty() ? "" : "\n") + block;
    }
    return text;
}

}  // namespace kvl::provider
