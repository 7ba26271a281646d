#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

const std::string kReadVlans = "/bin/cat /proc/net/vlan/config";
const std::string kParseVlans = "bool CNetworkParameter::ParseVlanConfigResult(vlanconfmap_t&)";

class VlanSection : public WriterTest {
protected:
    /// The section as it stands in the document.
    std::string section() {
        writer->SetVirtualInfo();
        return nodesOf(report(), "VLAN").back();
    }
};

std::string failure(const std::string& ifname) {
    return detail(kVlanSection, "** (" + ifname + ") Network configuration failure! **");
}

/// What the question for a VLAN on a port traces.
Lines targetVlan(const std::string& ifname, const std::string& base, const Lines& answer, bool isTarget) {
    return Lines{enter(kIsTargetVlan, " " + ifname), enter(kRemoveVlanId, " " + ifname),
                 leave(kRemoveVlanId, " " + base), noBondingData(base)} +
           answer + Lines{leave(kIsTargetVlan, isTarget ? ", rc=1" : ", rc=0")};
}

/// What the question for a VLAN on a bond traces.
Lines targetVlanOnBond(const std::string& ifname, const std::string& base, const Lines& answer, bool isTarget) {
    const std::string result = isTarget ? ", rc=1" : ", rc=0";
    return Lines{enter(kIsTargetVlan, " " + ifname), enter(kRemoveVlanId, " " + ifname),
                 leave(kRemoveVlanId, " " + base), enter(kIsTargetTeam, " " + base)} +
           answer + Lines{leave(kIsTargetTeam, result), leave(kIsTargetVlan, result)};
}

/// The answers of the two ports where 8086 is the target.
Lines eth0IsTarget() {
    return targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086");
}
Lines eth1IsNoTarget() {
    return targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "8086");
}

std::string vlanPort(const std::string& ifname, const std::string& id) {
    return element(named("vlan_port", ifname), value("vlan_name", ifname) + value("vlan_id", id) +
                                                   value("port_state", "Enabled") + value("onboot", " ") +
                                                   value("mac_address", "00:00:00:00:00:01") + plainTcpIpNode());
}

TEST_F(VlanSection, ReportsTheVlansOnTargetsInTheOrderOfTheirNames) {
    layTwoPorts();
    layVlanPort("vlan0020", "20", "eth0");
    layVlanPort("eth1.5", "5", "eth1");
    layVlanPort("eth0.10", "10", "eth0");
    collect({"8086"});
    EXPECT_EQ(section(), element("VLAN", vlanPort("eth0.10", "10") + vlanPort("vlan0020", "20")));
    const Lines names = {"eth0", "eth0.10", "eth1", "eth1.5", "vlan0020"};
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{enter(kVlanSection)} + vlansWithoutACommand() + targetVlan("eth0.10", "eth0", eth0IsTarget(), true) +
         plainTcpIpBlock("eth0.10", names) + targetVlan("eth1.5", "eth1", eth1IsNoTarget(), false) +
         targetVlan("vlan0020", "eth0", eth0IsTarget(), true) + plainTcpIpBlock("vlan0020", names) +
         Lines{leave(kVlanSection)}));
}

TEST_F(VlanSection, ReportsAVlanOnABondWithATarget) {
    layTwoPorts();
    layBondPort("bond0", {"eth1", "eth0"});
    layBondPort("bond1", {"eth1"});
    layVlanPort("bond0.200", "200", "bond0");
    layVlanPort("bond1.300", "300", "bond1");
    collect({"8086"});
    EXPECT_EQ(section(), element("VLAN", vlanPort("bond0.200", "200")));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kVlanSection)} + vlansWithoutACommand() +
               targetVlanOnBond("bond0.200", "bond0", eth1IsNoTarget() + eth0IsTarget(), true) +
               plainTcpIpBlock("bond0.200", {"bond0", "bond0.200", "bond1", "bond1.300", "eth0", "eth1"}) +
               targetVlanOnBond("bond1.300", "bond1", eth1IsNoTarget(), false) + Lines{leave(kVlanSection)}));
}

TEST_F(VlanSection, IsEmptyWithoutAVlanFile) {
    layTwoPorts();
    collect();
    EXPECT_EQ(section(), element("VLAN"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kVlanSection)} + vlansWithoutACommand() +
                                  Lines{detail(kVlanSection, "** nothing to output vlan info **")}));
}

TEST_F(VlanSection, IsEmptyIfTheVlanFileCannotBeRead) {
    layTwoPorts();
    collect();
    layVlan("eth0.100", "100", "eth0");
    machine.command(kReadVlans, "", {1});
    EXPECT_EQ(section(), element("VLAN"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kVlanSection), enter(kGetVlanData)} + failed(kReadVlans) +
                                  Lines{detail(kVlanSection, "** nothing to output vlan info **")}));
}

TEST_F(VlanSection, IsEmptyWithItsLastLineIfNoVlanIsOnATarget) {
    layTwoPorts();
    layVlanPort("eth1.5", "5", "eth1");
    collect({"8086"});
    EXPECT_EQ(section(), element("VLAN"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kVlanSection)} + vlansWithoutACommand() +
                                  targetVlan("eth1.5", "eth1", eth1IsNoTarget(), false) + Lines{leave(kVlanSection)}));
}

TEST_F(VlanSection, TakesTheNamelessEntryOfATableWithoutRowsForAFailure) {
    layTwoPorts();
    machine.file("/proc/net/vlan/config", "header\nheader\n");
    collect();
    EXPECT_EQ(section(), element("VLAN"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kVlanSection)} + vlansWithoutACommand() +
                                  Lines{noIfconfigData(""), failure(""), leave(kVlanSection)}));
}

TEST_F(VlanSection, LeavesOutAVlanWithoutIfconfigDataBeforeItAsksForTheVendor) {
    layTwoPorts();
    layVlan("eth1.5", "5", "eth1");  // of no target vendor
    layVlanPort("eth1.6", "6", "eth0");
    collect({"8086"});
    EXPECT_EQ(section(), element("VLAN", vlanPort("eth1.6", "6")));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kVlanSection)} + vlansWithoutACommand() +
               Lines{noIfconfigData("eth1.5"), failure("eth1.5")} + targetVlan("eth1.6", "eth0", eth0IsTarget(), true) +
               plainTcpIpBlock("eth1.6", {"eth0", "eth1", "eth1.6"}) + Lines{leave(kVlanSection)}));
}

TEST_F(VlanSection, NeedsNoEthtoolDataOfTheVlan) {
    layTwoPorts();
    collect();
    layVlanPort("vlan0020", "20", "eth0");
    collector->GetNetworkConfigurations();  // the driver data don't know the VLAN
    forget();
    EXPECT_EQ(section(), element("VLAN", vlanPort("vlan0020", "20")));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kVlanSection), enter(kGetVlanData)} + ran(kReadVlans) +
               Lines{detail(kParseVlans, "ifname=vlan0020, id=20, interface=eth0"),
                     detail(kParseVlans, "ifname=vlan0020, id=0, interface=eth0"), leave(kGetVlanData)} +
               targetVlan("vlan0020", "eth0", eth0IsTarget(), true) +
               plainTcpIpBlock("vlan0020", {"eth0", "eth1", "vlan0020"}) + Lines{leave(kVlanSection)}));
}

TEST_F(VlanSection, WritesAnIdentifierOfMinusOneAsAnEmptyValue) {
    layTwoPorts();
    layVlanPort("eth0.1", "-1", "eth0");
    layVlanPort("eth0.2", "0", "eth0");
    collect();
    EXPECT_EQ(valuesOf(section(), "vlan_id"), (Lines{"", "0"}));
}

TEST_F(VlanSection, WritesThePortStateFromTheFlagUp) {
    layTwoPorts();
    layVlanPort("eth0.100", "100", "eth0");
    collect();
    ifconfig("eth0.100").up = false;
    EXPECT_EQ(valuesOf(section(), "port_state"), (Lines{"Disabled"}));
}

TEST_F(VlanSection, WritesAnUnknownOnbootAsOneBlank) {
    layTwoPorts();
    layVlanPort("eth0.100", "100", "eth0");
    collect();
    const struct {
        int onboot;
        std::string text;
    } rows[] = {{-1, " "}, {0, "no"}, {1, "yes"}, {2, "yes"}};
    for (const auto& row : rows) {
        ifconfig("eth0.100").ONBOOT = row.onboot;
        EXPECT_EQ(valuesOf(section(), "onboot"), (Lines{row.text})) << row.onboot;
    }
}

TEST_F(VlanSection, WritesTheAddressesAlsoOfAVlanUnderAVlan) {
    layTwoPorts();
    layVlanPort("eth0.100", "100", "eth0");
    layVlanPort("eth0.100.7", "7", "eth0.100");
    collect();
    EXPECT_EQ(section(), element("VLAN", vlanPort("eth0.100", "100") + vlanPort("eth0.100.7", "7")));
}

TEST_F(VlanSection, WritesTheAddressesAlsoOfAVlanInATeam) {
    layTwoPorts();
    layVlanPort("eth0.100", "100", "eth0");
    layBond("bond0", {"eth0.100"});
    collect();
    EXPECT_EQ(section(), element("VLAN", vlanPort("eth0.100", "100")));
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{enter(kVlanSection)} + vlansWithoutACommand() + targetVlan("eth0.100", "eth0", eth0IsTarget(), true) +
         plainTcpIpBlock("eth0.100", {"eth0", "eth0.100", "eth1"}) + Lines{leave(kVlanSection)}));
}

TEST_F(VlanSection, WritesTheOwnAddressOfTheVlan) {
    layTwoPorts();
    layInterface("eth0.100", "0A:00:00:00:00:01", "inet addr:10.0.0.5 Mask:255.0.0.0 Metric:4");
    layVlan("eth0.100", "100", "eth0");
    collect();
    const std::string text = section();
    EXPECT_EQ(valuesOf(text, "mac_address"), (Lines{"0A:00:00:00:00:01"}));
    EXPECT_EQ(nodesOf(text, "tcp_ip_parameter"),
              (Lines{element("tcp_ip_parameter",
                             value("ipv4_dhcp", " ") +
                                 element("ipv4_address", value("address", "10.0.0.5") + value("netmask", "255.0.0.0")) +
                                 value("ipv4_interface_metric", "4"))}));
}

TEST_F(VlanSection, ReadsTheVlansIfNothingDidSoBefore) {
    layTwoPorts();
    collect();
    layVlanPort("eth0.100", "100", "eth0");
    collector->GetNetworkConfigurations();
    forget();
    EXPECT_EQ(section(), element("VLAN", vlanPort("eth0.100", "100")));
    EXPECT_EQ(commandsTraced().front(), kReadVlans);
}

}  // namespace
}  // namespace kvl::test
