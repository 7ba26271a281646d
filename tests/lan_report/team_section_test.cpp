#include <cctype>

#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

class TeamSection : public WriterTest {
protected:
    /// The section as it stands in the document.
    std::string section() {
        writer->SetTeamInfo();
        return nodesOf(report(), "Team").back();
    }
};

class TeamParameters : public WriterTest {
protected:
    std::string parameters(const std::string& ifname = "bond0") {
        CKvlXmlNode node("node");
        writer->SetXmlTeamParameters(ifname, node);
        return xmlText(node);
    }
};

std::string member(const std::string& slave, const std::string& businfo, const std::string& more = "") {
    std::string hardwareAddress = slave;
    std::transform(slave.begin(), slave.end(), hardwareAddress.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return element("member", value("interface_name", slave) + value("PCI Bus/Dev/Func", businfo) +
                                 value("mac_address", hardwareAddress) + more);
}

std::string mii(const std::string& miimon, const std::string& downdelay, const std::string& updelay) {
    return element("mii", value("miimon", miimon) + value("downdelay", downdelay) + value("updelay", updelay));
}

std::string failure(const std::string& ifname) {
    return detail(kTeamSection, "** (" + ifname + ") Network configuration failure! **");
}

/// A bond whose one slave is eth0 of vendor 8086, the target.
Lines targetBond(const std::string& ifname) {
    return Lines{enter(kIsTargetTeam, " " + ifname)} + targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086") +
           Lines{leave(kIsTargetTeam, ", rc=1")};
}

// ---- SetTeamInfo ----

TEST_F(TeamSection, ReportsABondWithATargetSlaveWhole) {
    layTwoPorts();
    layBondPort("bond0", {"eth0", "eth1"});
    layBondPort("bond1", {"eth1"});
    machine.file("/etc/sysconfig/network-scripts/ifcfg-bond0", "ONBOOT=yes\n");
    collect({"8086"});
    const std::string teamParameter =
        element("team_parameter", value("team_name", "bond0") + value("team_type", "load balancing (round-robin)") +
                                      value("monitor_mode", "mii") + mii("100 ms", "-1 ms", "-1 ms") +
                                      member("eth0", "3/0/0") + member("eth1", "4/0/0"));
    EXPECT_EQ(section(), element("Team", element(named("team_port", "bond0"),
                                                 value("port_state", "Enabled") + value("onboot", "yes") +
                                                     value("mac_address", "00:00:00:00:00:01") + teamParameter +
                                                     plainTcpIpNode())));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kTeamSection)} + bondingIfList({"bond0", "bond1"}) + Lines{enter(kIsTargetTeam, " bond0")} +
               targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086") + Lines{leave(kIsTargetTeam, ", rc=1")} +
               vlansWithoutACommand() + plainTcpIpBlock("bond0", {"bond0", "bond1", "eth0", "eth1"}) +
               vlansWithoutACommand() + Lines{enter(kIsTargetTeam, " bond1")} +
               targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "8086") +
               Lines{leave(kIsTargetTeam, ", rc=0"), detail(kTeamSection, "** bond1 is not target vendor **"),
                     leave(kTeamSection)}));
}

TEST_F(TeamSection, IsEmptyWithoutABondingDirectory) {
    layTwoPorts();
    collect();
    EXPECT_EQ(section(), element("Team"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kTeamSection)} + noBonds() +
                                  Lines{detail(kTeamSection, "** nothing to output bonding info **")}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(TeamSection, IsEmptyIfTheBondsCannotBeListed) {
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    collect();
    machine.command(kListBonds, "bond0\n", {1});
    EXPECT_EQ(section(), element("Team"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kTeamSection), enter(kGetBondingIfList)} + failed(kListBonds) +
                                  Lines{detail(kTeamSection, "** nothing to output bonding info **")}));
}

TEST_F(TeamSection, IsEmptyWithItsLastLineIfNoBondIsATarget) {
    layTwoPorts();
    layBondPort("bond0", {"eth1"});
    layBondPort("bond1", {});
    collect({"8086"});
    EXPECT_EQ(section(), element("Team"));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kTeamSection)} + bondingIfList({"bond0", "bond1"}) + Lines{enter(kIsTargetTeam, " bond0")} +
               targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "8086") +
               Lines{leave(kIsTargetTeam, ", rc=0"), detail(kTeamSection, "** bond0 is not target vendor **"),
                     enter(kIsTargetTeam, " bond1"), leave(kIsTargetTeam, ", rc=0"),
                     detail(kTeamSection, "** bond1 is not target vendor **"), leave(kTeamSection)}));
}

TEST_F(TeamSection, TakesABondThatWasNotCollectedForNoTarget) {
    layTwoPorts();
    collect();
    layBond("bond0", {"eth0"});
    EXPECT_EQ(section(), element("Team"));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kTeamSection)} + bondingIfList({"bond0"}) +
               Lines{enter(kIsTargetTeam, " bond0"), noBondingData("bond0"), leave(kIsTargetTeam, ", rc=0"),
                     detail(kTeamSection, "** bond0 is not target vendor **"), leave(kTeamSection)}));
}

TEST_F(TeamSection, LeavesOutABondWithoutIfconfigOrEthtoolDataAndGoesOn) {
    layTwoPorts();
    layBond("bond0", {"eth0"});  // an interface to the kernel's file alone
    layBondPort("bond1", {"eth0"});
    collect({"8086"});
    EXPECT_THAT(section(), testing::StartsWith("<Team>\n" + indented("<" + named("team_port", "bond1") + ">\n")));
    const Lines begin =
        Lines{enter(kTeamSection)} + bondingIfList({"bond0", "bond1"}) + targetBond("bond0") +
        Lines{noEthtoolData("bond0"), noIfconfigData("bond0"), failure("bond0"), enter(kIsTargetTeam, " bond1")};
    EXPECT_EQ(firstOf(TestHost::trace(), begin.size()), begin);
}

TEST_F(TeamSection, LeavesOutABondWithoutEthtoolData) {
    layTwoPorts();
    layBond("bond0", {"eth0"});
    collect({"8086"});
    layInterface("bond0");
    collector->GetNetworkConfigurations();
    forget();
    EXPECT_EQ(section(), element("Team"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kTeamSection)} + bondingIfList({"bond0"}) + targetBond("bond0") +
                                  Lines{noEthtoolData("bond0"), failure("bond0"), leave(kTeamSection)}));
}

TEST_F(TeamSection, LeavesOutABondWithoutIfconfigData) {
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    collect({"8086"});
    machine.command("/sbin/ifconfig -a", "eth0 Link encap:Ethernet\n\n");
    collector->GetNetworkConfigurations();
    forget();
    EXPECT_EQ(section(), element("Team"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kTeamSection)} + bondingIfList({"bond0"}) + targetBond("bond0") +
                                  Lines{noIfconfigData("bond0"), failure("bond0"), leave(kTeamSection)}));
}

TEST_F(TeamSection, WritesThePortStateFromTheFlagUp) {
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    collect();
    ifconfig("bond0").up = false;
    EXPECT_EQ(valuesOf(section(), "port_state"), (Lines{"Disabled"}));
}

TEST_F(TeamSection, WritesAnUnknownOnbootAsAnEmptyValue) {
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    collect();
    const struct {
        int onboot;
        std::string text;
    } rows[] = {{-1, ""}, {0, "no"}, {1, "yes"}, {2, "yes"}};
    for (const auto& row : rows) {
        ifconfig("bond0").ONBOOT = row.onboot;
        EXPECT_EQ(valuesOf(section(), "onboot"), (Lines{row.text})) << row.onboot;
    }
}

TEST_F(TeamSection, LeavesTheAddressesOfABondUnderAVlanToTheVlan) {
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    layVlan("bond0.9", "9", "bond0");
    layVlan("bond0.10", "10", "bond0");
    layVlan("eth0.5", "5", "eth0");
    collect();
    EXPECT_THAT(section(),
                testing::EndsWith(indented(indented(element("tcp_ip_parameter") +
                                                    element("vlan_parameter", value("interface_name", "bond0.10")) +
                                                    element("vlan_parameter", value("interface_name", "bond0.9"))) +
                                           "</team_port>\n") +
                                  "</Team>\n"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kTeamSection)} + bondingIfList({"bond0"}) + targetBond("bond0") +
                                  vlansWithoutACommand() + vlansWithoutACommand() + Lines{leave(kTeamSection)}));
}

TEST_F(TeamSection, WritesTheAddressesOfABondThatIsASlaveItself) {
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    layBond("bond1", {"bond0"});
    collect({"8086"});
    EXPECT_EQ(nodesOf(section(), "tcp_ip_parameter"), (Lines{plainTcpIpNode()}));
}

TEST_F(TeamSection, WritesTheBondsInTheOrderOfTheDirectory) {
    layTwoPorts();
    layBondPort("bond2", {"eth0"});
    layBondPort("bond10", {"eth0"});
    collect();
    EXPECT_EQ(valuesOf(section(), "team_name"), (Lines{"bond10", "bond2"}));
    machine.command(kListBonds, "bond2\nbond10\n");
    EXPECT_EQ(valuesOf(section(), "team_name"), (Lines{"bond2", "bond10"}));
}

// ---- SetXmlTeamParameters ----

TEST_F(TeamParameters, WriteMiiMonitoringWithDownBeforeUp) {
    layBond("bond0", {});
    collect();
    bond("bond0").Mode = "fault-tolerance (active-backup)";
    bond("bond0").pi = 100;
    bond("bond0").ud = 200;
    bond("bond0").dd = 300;
    EXPECT_EQ(
        parameters(),
        document(element("node", value("team_name", "bond0") + value("team_type", "fault-tolerance (active-backup)") +
                                     value("monitor_mode", "mii") + mii("100 ms", "300 ms", "200 ms"))));
}

TEST_F(TeamParameters, WriteArpMonitoringWithItsTargetsInTheirOrder) {
    layTwoPorts();
    layBond("bond0", {"eth1"});
    collect();
    bond("bond0").arp_pi = 1000;
    bond("bond0").arp_ip = {"10.0.0.2", "10.0.0.1", ""};
    EXPECT_EQ(parameters(),
              document(element(
                  "node", value("team_name", "bond0") + value("team_type", "load balancing (round-robin)") +
                              value("monitor_mode", "arp") +
                              element("arp", value("arp_interval", "1000 ms") + value("arp_ip_target", "10.0.0.2") +
                                                 value("arp_ip_target", "10.0.0.1") + value("arp_ip_target", "")) +
                              member("eth1", "4/0/0"))));
}

TEST_F(TeamParameters, AreArpForAnIntervalOfZeroAndMiiForANegativeOne) {
    layBond("bond0", {});
    collect();
    bond("bond0").arp_pi = 0;
    EXPECT_EQ(valuesOf(parameters(), "monitor_mode"), (Lines{"arp"}));
    EXPECT_EQ(nodesOf(parameters(), "arp"), (Lines{element("arp", value("arp_interval", "0 ms"))}));
    EXPECT_EQ(nodesOf(parameters(), "mii"), Lines());
    for (const int negative : {-1, -2}) {
        bond("bond0").arp_pi = negative;
        EXPECT_EQ(valuesOf(parameters(), "monitor_mode"), (Lines{"mii"}));
        EXPECT_EQ(nodesOf(parameters(), "mii"), (Lines{mii("100 ms", "-1 ms", "-1 ms")}));
        EXPECT_EQ(nodesOf(parameters(), "arp"), Lines());
    }
}

TEST_F(TeamParameters, WriteTheMembersInTheOrderOfTheBond) {
    layTwoPorts();
    layBond("bond0", {"eth1", "eth0"});
    collect();
    EXPECT_EQ(nodesOf(parameters(), "member"), (Lines{member("eth1", "4/0/0"), member("eth0", "3/0/0")}));
}

TEST_F(TeamParameters, WriteTheAddressOfAMemberFromTheBondsEntry) {
    layTwoPorts();
    layBond("bond0", {"eth0"});
    collect();
    ifconfig("eth0").HWaddr = "of the interface";
    bond("bond0").slaves[0].HWaddr = "of the slave";
    EXPECT_EQ(valuesOf(parameters(), "mac_address"), (Lines{"of the slave"}));
}

TEST_F(TeamParameters, WriteAPriorityForTheExactPrimaryAlone) {
    for (const char* name : {"eth1", "eth10", "eth100"}) {
        layInterface(name);
    }
    layBond("bond0", {"eth1", "eth10", "eth100"});
    collect();
    bond("bond0").PrimarySlave = "eth10";
    EXPECT_EQ(nodesOf(parameters(), "member"),
              (Lines{member("eth1", ""), member("eth10", "", value("priority", "Primary")), member("eth100", "")}));
    bond("bond0").PrimarySlave = "None";
    EXPECT_EQ(valuesOf(parameters(), "priority"), Lines());
}

TEST_F(TeamParameters, WriteAnEmptyPciTextForASlaveWithoutEthtoolData) {
    layTwoPorts();
    layBond("bond0", {"eth7", "eth0"});
    collect();
    EXPECT_EQ(nodesOf(parameters(), "member"), (Lines{member("eth7", ""), member("eth0", "3/0/0")}));
    EXPECT_EQ(TestHost::trace(), (Lines{noEthtoolData("eth7")}));
}

TEST_F(TeamParameters, TraceNothingAndRunNothing) {
    layTwoPorts();
    layBond("bond0", {"eth0"});
    collect();
    parameters();
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(TeamParameters, AppendToWhatTheNodeHolds) {
    layBond("bond0", {});
    collect();
    CKvlXmlNode node("node");
    node.addChildNode(CKvlXmlNode("earlier"));
    writer->SetXmlTeamParameters("bond0", node);
    EXPECT_THAT(xmlText(node), testing::HasSubstr(indented(element("earlier") + value("team_name", "bond0"))));
}

TEST_F(TeamParameters, WriteTheNameAndEmptyValuesForAnUnknownBond) {
    layTwoPorts();
    collect();
    EXPECT_EQ(parameters("bond7"), document(element("node", value("team_name", "bond7") + value("team_type", "") +
                                                                value("monitor_mode", ""))));
    EXPECT_EQ(TestHost::trace(), (Lines{noBondingData("bond7")}));
}

}  // namespace
}  // namespace kvl::test
