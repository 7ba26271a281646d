#ifndef KVL_TESTS_SUPPORT_WRITER_TEST_H
#define KVL_TESTS_SUPPORT_WRITER_TEST_H

#include <algorithm>
#include <list>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "lan_report/CLanXmlWriter.h"
#include "tests/support/collector_test.h"

namespace kvl::test {

// ---- Documents ----

/// A text with every line two blanks further in.
inline std::string indented(const std::string& text) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        result += "  " + line + "\n";
    }
    return result;
}

/// A node with its content, not indented. `tag` may carry attributes as they are written.
inline std::string element(const std::string& tag, const std::string& content = "") {
    if (content.empty()) {
        return "<" + tag + " />\n";
    }
    return "<" + tag + ">\n" + indented(content) + "</" + tag.substr(0, tag.find(' ')) + ">\n";
}

/// A parameter element, not indented.
inline std::string value(const std::string& name, const std::string& text) {
    return attr(0, name, text);
}

/// The tag of a node with the attribute "interface_name".
inline std::string named(const std::string& tag, const std::string& ifname) {
    return tag + " interface_name=\"" + ifname + "\"";
}

/// A document with this root.
inline std::string document(const std::string& root) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + root;
}

/// The nodes of a tag in a document, in its order, not indented.
inline Lines nodesOf(const std::string& text, const std::string& tag) {
    Lines nodes;
    std::istringstream lines(text);
    std::string::size_type indentation = std::string::npos;  // of the node under way
    for (std::string line; std::getline(lines, line);) {
        if (indentation == std::string::npos) {
            const auto begin = line.find_first_not_of(' ');
            const std::string head = line.substr(begin, tag.size() + 2);
            if (head != "<" + tag + " " && head != "<" + tag + ">") {
                continue;
            }
            indentation = begin;
            nodes.emplace_back();
        }
        line.erase(0, indentation);
        nodes.back() += line + "\n";
        if (line == "</" + tag + ">" || (line[0] == '<' && line.substr(line.size() - 2) == "/>")) {
            indentation = std::string::npos;
        }
    }
    return nodes;
}

/// The values of the parameter elements of a name, in the document's order.
inline Lines valuesOf(const std::string& text, const std::string& name) {
    const std::string head = "<attr name=\"" + name + "\" value=\"";
    Lines values;
    for (auto found = text.find(head); found != std::string::npos; found = text.find(head, found + 1)) {
        const auto begin = found + head.size();
        values.push_back(text.substr(begin, text.find('"', begin) - begin));
    }
    return values;
}

// ---- What the collector's questions trace ----

/// The first lines of a trace, as many as there are or `count`.
inline Lines firstOf(Lines lines, std::size_t count) {
    lines.resize(std::min(count, lines.size()));
    return lines;
}

inline const std::string kGetPhysicalDev = "bool CNetworkParameter::GetPhysicalDev(int, std::string&)";
inline const std::string kGetVendorId = "void CNetworkParameter::GetVendorID(std::string, std::string&)";
inline const std::string kGetFourIds = "void CNetworkParameter::GetFourIds(std::string, std::string&)";
inline const std::string kGetDescription = "void CNetworkParameter::GetDeviceDescription(std::string, std::string&)";
inline const std::string kGetVlanData = "bool CNetworkParameter::GetVLANData(vlanconfmap_t&)";
inline const std::string kRemoveVlanId = "bool CNetworkParameter::RemoveVlanId(std::string, std::string&)";
inline const std::string kGetBondingIfList = "bool CNetworkParameter::GetBondingIfList(strarray_t&)";
inline const std::string kGetNames = "void CNetworkParameter::GetInterfaceNameList(strarray_t&)";
inline const std::string kGetResolvConf = "bool CNetworkParameter::GetResolvConf(ResolvConf&)";
inline const std::string kGetRouteDataV6 =
    "std::list<RouteConfig, std::allocator<RouteConfig> > CNetworkParameter::GetRouteDataV6(std::string)";

inline const std::string kListBonds = "/bin/ls /proc/net/bonding";
inline const std::string kReadResolvConf = "/bin/cat /etc/resolv.conf";
inline const std::string kReadIpv6Routes = "/bin/netstat -A inet6 -nr";

inline std::string noIfconfigData(const std::string& ifname) {
    return detail("IfconfigResult* CNetworkParameter::GetIfconfigData(std::string)",
                  "-- " + ifname + " has no ifconfig data");
}

inline std::string noEthtoolData(const std::string& ifname) {
    return detail("EthtoolResult* CNetworkParameter::GetEthtoolData(std::string)",
                  "-- " + ifname + " has no ethtool data");
}

inline std::string noBondingData(const std::string& ifname) {
    return detail("BondingConfig* CNetworkParameter::GetBondingData(std::string)",
                  "-- " + ifname + " has no bonding data");
}

inline std::string noRouteData(const std::string& ifname) {
    return detail("std::list<RouteConfig, std::allocator<RouteConfig> > CNetworkParameter::GetRouteData(std::string)",
                  "-- " + ifname + " has no route data");
}

/// One step of the walk over the physical interfaces; "-" for its end.
inline Lines physicalDev(const std::string& ifname) {
    return {enter(kGetPhysicalDev), leave(kGetPhysicalDev, " " + ifname)};
}

inline Lines fourIds(const std::string& location, const std::string& ids) {
    return Lines{enter(kGetFourIds, " " + location)} + ran("/sbin/lspci -mns " + location) +
           Lines{leave(kGetFourIds, " " + ids)};
}

/// A vendor that is asked for.
/// @param ifname  a physical interface
/// @param walk    the physical interfaces up to that one
inline Lines vendorId(const std::string& ifname, const Lines& walk, const std::string& location,
                      const std::string& vendor) {
    Lines lines = {enter(kGetVendorId, " " + ifname)};
    for (const std::string& physical : walk) {
        lines = lines + physicalDev(physical);
    }
    return lines + fourIds(location, vendor + " 10c9 " + vendor + " a03c") + Lines{leave(kGetVendorId, " " + vendor)};
}

/// VLAN data that is already there, or that there is no file of.
inline Lines vlansWithoutACommand() {
    return {enter(kGetVlanData)};
}

inline Lines bondingIfList(const Lines& bonds) {
    Lines lines = Lines{enter(kGetBondingIfList)} + ran(kListBonds);
    for (const std::string& bond : bonds) {
        lines.push_back(detail(kGetBondingIfList, "bonding_list.push_back(" + bond + ")"));
    }
    return lines + Lines{leave(kGetBondingIfList)};
}

/// The list of bonds on a machine without a bonding directory.
inline Lines noBonds() {
    return {enter(kGetBondingIfList)};
}

inline Lines interfaceNames(const Lines& ifnames) {
    Lines lines = {enter(kGetNames)};
    for (const std::string& ifname : ifnames) {
        lines.push_back("32 ifname_list.push_back(" + ifname + ")");
    }
    return lines + Lines{leave(kGetNames)};
}

/// Name servers that are read from a file that holds nothing else.
inline Lines nameservers(const Lines& addresses) {
    Lines lines = Lines{enter(kGetResolvConf)} + ran(kReadResolvConf);
    for (const std::string& address : addresses) {
        lines.push_back(detail(kGetResolvConf, "nameserver.push_back(" + address + ")"));
    }
    return lines + Lines{leave(kGetResolvConf)};
}

/// The commands that the collector was asked to run, from its trace.
inline Lines commandsTraced() {
    const std::string head = "1 int CNetworkParameter::ExecCommand(const char*, ...) [";
    Lines commands;
    for (const std::string& line : TestHost::trace()) {
        if (line.compare(0, head.size(), head) == 0) {
            commands.push_back(line.substr(head.size(), line.rfind(" > ") - head.size()));
        }
    }
    return commands;
}

// ---- What the writer traces ----

inline const std::string kIsTarget = "bool CLanXmlWriter::isTargetVendor(std::string)";
inline const std::string kIsTargetTeam = "bool CLanXmlWriter::isTargetVendorTeam(std::string)";
inline const std::string kIsTargetVlan = "bool CLanXmlWriter::isTargetVendorVlan(std::string)";
inline const std::string kCheckTeamMember = "bool CLanXmlWriter::CheckTeamMember(std::string)";
inline const std::string kDriverBlock = "void CLanXmlWriter::SetXmlDriverParameters(std::string, CKvlXmlNode&)";
inline const std::string kTcpIpBlock = "void CLanXmlWriter::SetXmlTcpIpParameters(std::string, CKvlXmlNode&)";
inline const std::string kPhysicalSection = "void CLanXmlWriter::SetPhysicalInfo()";
inline const std::string kTeamSection = "void CLanXmlWriter::SetTeamInfo()";
inline const std::string kVlanSection = "void CLanXmlWriter::SetVirtualInfo()";

/// A question for a target that a physical interface answers.
/// @param compared  the entry of the vendor list that was compared last
inline Lines targetVendor(const std::string& ifname, const Lines& walk, const std::string& location,
                          const std::string& vendor, const std::string& compared) {
    return Lines{enter(kIsTarget, " " + ifname)} + vendorId(ifname, walk, location, vendor) +
           Lines{leave(kIsTarget, " " + vendor + " " + compared)};
}

/// The addresses of an interface without routes, on a machine without a resolv.conf and without IPv6.
inline Lines plainTcpIpBlock(const std::string& ifname, const Lines& ifnames) {
    return Lines{enter(kTcpIpBlock, " " + ifname)} + interfaceNames(ifnames) +
           Lines{noRouteData(ifname), enter(kGetResolvConf)} + failed(kReadResolvConf) + Lines{enter(kGetRouteDataV6)} +
           failed(kReadIpv6Routes) + Lines{"32 ** Not IPv6 Protocol **", leave(kTcpIpBlock)};
}

/// What that block writes for an interface without an address.
inline std::string plainTcpIpNode() {
    return element("tcp_ip_parameter", value("ipv4_dhcp", " ") + value("ipv4_interface_metric", "1"));
}

// ---- The fixture ----

/// A test with a collector and a writer on a small machine that the test lays down piece by piece and then collects.
class WriterTest : public CollectorTest {
protected:
    void SetUp() override {
        CollectorTest::SetUp();
        machine.anyCommand("/sbin/lspci", "", {1});
    }

    /// Adds a block to what `ifconfig -a` prints.
    /// @param words  what follows the hardware address
    void layInterface(const std::string& ifname, const std::string& hardwareAddress = "00:00:00:00:00:01",
                      const std::string& words = "UP MTU:1500 Metric:1") {
        ifconfigOutput_ += ifname + " Link encap:Ethernet  HWaddr " + hardwareAddress + "\n          " + words + "\n\n";
        machine.command("/sbin/ifconfig -a", ifconfigOutput_);
    }

    /// Has `ethtool -i` report where an interface's card is.
    void layBusInfo(const std::string& ifname, const std::string& busInfo) {
        machine.command("/usr/sbin/ethtool -i " + ifname,
                        "driver: igb\nversion: 4.0\nfirmware-version: 1.7\nbus-info: " + busInfo + "\n");
    }

    /// Adds an interface with a card of a vendor.
    /// @param location  as in 03:00.0
    void layPort(const std::string& ifname, const std::string& location, const std::string& vendor) {
        layInterface(ifname);
        layBusInfo(ifname, "0000:" + location);
        machine.command("/sbin/lspci -mns " + location,
                        location + " \"0200\" \"" + vendor + "\" \"10c9\" -r01 \"" + vendor + "\" \"a03c\"\n");
        cards_ += location + " \"Ethernet controller\" \"Maker of " + vendor + "\" \"Network card\" -r01 \"\" \"\"\n";
        machine.command("/sbin/lspci -m", cards_);
    }

    /// eth0 of vendor 8086 and eth1 of vendor 14e4.
    void layTwoPorts() {
        layPort("eth0", "03:00.0", "8086");
        layPort("eth1", "04:00.0", "14e4");
    }

    /// Lays down the kernel's file of a bond, with slaves whose permanent addresses are their names in upper case.
    void layBond(const std::string& bond, const Lines& slaves) {
        std::string text = "Bonding Mode: load balancing (round-robin)\nMII Polling Interval (ms): 100\n";
        for (const std::string& slave : slaves) {
            text += "\nSlave Interface: " + slave + "\nPermanent HW addr: " + slave + "\n";
        }
        machine.file("/proc/net/bonding/" + bond, text);
    }

    /// A bond with its interface.
    void layBondPort(const std::string& bond, const Lines& slaves) {
        layInterface(bond);
        layBond(bond, slaves);
    }

    /// Adds a row to the kernel's table of VLANs.
    void layVlan(const std::string& ifname, const std::string& id, const std::string& base) {
        vlanTable_ += ifname + " | " + id + " | " + base + "\n";
        machine.file("/proc/net/vlan/config", vlanTable_);
    }

    /// A VLAN with its interface.
    void layVlanPort(const std::string& ifname, const std::string& id, const std::string& base) {
        layInterface(ifname);
        layVlan(ifname, id, base);
    }

    /// Has the collector collect everything, its list of names and its VLANs included, and makes the writer. Traces
    /// and commands are forgotten.
    void collect(const std::list<std::string>& targetVendors = {"8086"}) {
        collector->GetNetworkConfigurations();
        collector->GetEtherConfigurations();
        collector->GetBondingConfifurations();
        collector->GetRoutingConfigurations();
        strarray_t names;
        collector->GetInterfaceNameList(names);
        vlanconfmap_t vlans;
        collector->GetVLANData(vlans);
        writer = std::make_unique<CLanXmlWriter>(targetVendors, collector.get(), kModule);
        forget();
    }

    // The collector's records, for a test to change.
    IfconfigResult& ifconfig(const std::string& ifname) { return recordAt(collector->GetIfconfigData(ifname)); }
    EthtoolResult& ethtool(const std::string& ifname) { return recordAt(collector->GetEthtoolData(ifname)); }
    BondingConfig& bond(const std::string& ifname) { return recordAt(collector->GetBondingData(ifname)); }

    /// The document as the writer writes it.
    std::string report() {
        EXPECT_TRUE(writer->Write("/tmp/report.xml"));
        return contentOf("/tmp/report.xml");
    }

    /// The trace lines of the writer itself.
    static Lines writerTrace() {
        Lines lines;
        for (const std::string& line : TestHost::trace()) {
            if (line.find("CLanXmlWriter::") != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    std::unique_ptr<CLanXmlWriter> writer;

private:
    template <typename Record>
    static Record& recordAt(Record* record) {
        if (record == nullptr) {
            throw std::logic_error("no such record");
        }
        return *record;
    }

    std::string ifconfigOutput_;
    std::string cards_;
    std::string vlanTable_ = "VLAN Dev name    | VLAN ID\nName-Type: VLAN_NAME_TYPE_RAW_PLUS_VID_NO_PAD\n";
};

}  // namespace kvl::test

#endif
