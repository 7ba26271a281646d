#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

using IsTargetVendor = WriterTest;
using IsTargetVendorTeam = WriterTest;
using IsTargetVendorVlan = WriterTest;
using CheckTeamMember = WriterTest;
using CheckExistVlan = WriterTest;
using SetVlanParameters = WriterTest;

/// An interface whose card no command reports, and whose vendor therefore is an empty text.
Lines unknownVendor(const std::string& ifname, const std::string& compared) {
    return Lines{enter(kIsTarget, " " + ifname), enter(kGetVendorId, " " + ifname)} + physicalDev(ifname) +
           Lines{leave(kGetVendorId, " "), leave(kIsTarget, "  " + compared)};
}

// ---- isTargetVendor ----

TEST_F(IsTargetVendor, IsTrueForAVendorInTheList) {
    layTwoPorts();
    collect({"8086"});
    EXPECT_TRUE(writer->isTargetVendor("eth0"));
    EXPECT_EQ(TestHost::trace(), targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086"));
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/lspci -mns 03:00.0"}));
}

TEST_F(IsTargetVendor, IsFalseForAnotherVendorAndTracesTheLastEntry) {
    layTwoPorts();
    collect({"1111", "2222"});
    EXPECT_FALSE(writer->isTargetVendor("eth1"));
    EXPECT_EQ(TestHost::trace(), targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "2222"));
}

TEST_F(IsTargetVendor, EndsTheSearchAtTheFirstEqualEntry) {
    layTwoPorts();
    collect({"1111", "8086", "2222"});
    EXPECT_TRUE(writer->isTargetVendor("eth0"));
    EXPECT_EQ(TestHost::trace(), targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086"));
}

TEST_F(IsTargetVendor, IsFalseForAnEmptyListAndTracesNoEntry) {
    layTwoPorts();
    collect({});
    EXPECT_FALSE(writer->isTargetVendor("eth0"));
    EXPECT_EQ(TestHost::trace(), targetVendor("eth0", {"eth0"}, "03:00.0", "8086", ""));
}

TEST_F(IsTargetVendor, ComparesWithoutRegardToCaseAndTracesBothTextsAsTheyStand) {
    layPort("eth0", "03:00.0", "ABCD");
    layPort("eth1", "04:00.0", "14e4");
    collect({"abcd", "14E4"});
    EXPECT_TRUE(writer->isTargetVendor("eth0"));
    EXPECT_TRUE(writer->isTargetVendor("eth1"));
    EXPECT_EQ(TestHost::trace(), targetVendor("eth0", {"eth0"}, "03:00.0", "ABCD", "abcd") +
                                     targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "14E4"));
}

TEST_F(IsTargetVendor, ComparesTheWholeText) {
    layTwoPorts();
    collect({"808", "80860", "0x8086", " 8086", "8086 ", ""});
    EXPECT_FALSE(writer->isTargetVendor("eth0"));
    EXPECT_EQ(TestHost::trace(), targetVendor("eth0", {"eth0"}, "03:00.0", "8086", ""));
}

TEST_F(IsTargetVendor, MatchesAnInterfaceOfUnknownVendorWithAnEmptyEntryAlone) {
    layInterface("eth0");
    collect({"8086"});
    EXPECT_FALSE(writer->isTargetVendor("eth0"));
    EXPECT_EQ(TestHost::trace(), unknownVendor("eth0", "8086"));
    collect({"8086", "", "2222"});
    EXPECT_TRUE(writer->isTargetVendor("eth0"));
    EXPECT_EQ(TestHost::trace(), unknownVendor("eth0", ""));
}

TEST_F(IsTargetVendor, HasNoVendorIfTheCardCannotBeLookedUp) {
    layInterface("eth0");
    layBusInfo("eth0", "0000:03:00.0");
    collect({""});
    EXPECT_TRUE(writer->isTargetVendor("eth0"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIsTarget, " eth0"), enter(kGetVendorId, " eth0")} + physicalDev("eth0") +
                                  Lines{enter(kGetFourIds, " 03:00.0")} + failed("/sbin/lspci -mns 03:00.0") +
                                  Lines{leave(kGetVendorId, " "), leave(kIsTarget, "  ")}));
}

TEST_F(IsTargetVendor, TakesAnUnknownNameForTheLastPhysicalInterface) {
    layTwoPorts();
    collect({"14e4"});
    EXPECT_TRUE(writer->isTargetVendor("bond7"));
    EXPECT_FALSE(writer->isTargetVendor("eth0"));
}

// ---- isTargetVendorTeam ----

TEST_F(IsTargetVendorTeam, AsksTheSlavesInTheirOrderUpToTheFirstTarget) {
    layTwoPorts();
    layPort("eth2", "05:00.0", "8086");
    layBond("bond0", {"eth1", "eth0", "eth2"});
    collect({"8086"});
    EXPECT_TRUE(writer->isTargetVendorTeam("bond0"));
    EXPECT_EQ(TestHost::trace(), Lines{enter(kIsTargetTeam, " bond0")} +
                                     targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "8086") +
                                     targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086") +
                                     Lines{leave(kIsTargetTeam, ", rc=1")});
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/lspci -mns 04:00.0", "/sbin/lspci -mns 03:00.0"}));
}

TEST_F(IsTargetVendorTeam, IsFalseWithoutATargetAmongTheSlaves) {
    layTwoPorts();
    layBond("bond0", {"eth0", "eth1"});
    collect({"1111"});
    EXPECT_FALSE(writer->isTargetVendorTeam("bond0"));
    EXPECT_EQ(TestHost::trace(), Lines{enter(kIsTargetTeam, " bond0")} +
                                     targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "1111") +
                                     targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "1111") +
                                     Lines{leave(kIsTargetTeam, ", rc=0")});
}

TEST_F(IsTargetVendorTeam, IsFalseWithoutASlave) {
    layTwoPorts();
    layBond("bond0", {});
    collect({"8086", "14e4"});
    EXPECT_FALSE(writer->isTargetVendorTeam("bond0"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIsTargetTeam, " bond0"), leave(kIsTargetTeam, ", rc=0")}));
}

TEST_F(IsTargetVendorTeam, IsFalseForANameThatIsNoBond) {
    layTwoPorts();
    collect({"8086", "14e4"});
    EXPECT_FALSE(writer->isTargetVendorTeam("eth0"));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kIsTargetTeam, " eth0"), noBondingData("eth0"), leave(kIsTargetTeam, ", rc=0")}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

// ---- isTargetVendorVlan ----

TEST_F(IsTargetVendorVlan, AsksForTheInterfaceUnderTheVlan) {
    layTwoPorts();
    layVlan("eth0.100", "100", "eth0");
    layVlan("eth1.100", "100", "eth1");
    collect({"8086"});
    EXPECT_TRUE(writer->isTargetVendorVlan("eth0.100"));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kIsTargetVlan, " eth0.100"), enter(kRemoveVlanId, " eth0.100"),
                     leave(kRemoveVlanId, " eth0"), noBondingData("eth0")} +
               targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086") + Lines{leave(kIsTargetVlan, ", rc=1")}));
    forget();
    EXPECT_FALSE(writer->isTargetVendorVlan("eth1.100"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIsTargetVlan, " eth1.100"), enter(kRemoveVlanId, " eth1.100"),
                                        leave(kRemoveVlanId, " eth1"), noBondingData("eth1")} +
                                  targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "8086") +
                                  Lines{leave(kIsTargetVlan, ", rc=0")}));
}

TEST_F(IsTargetVendorVlan, AsksForTheBondUnderTheVlan) {
    layTwoPorts();
    layBond("bond0", {"eth0"});
    layVlan("bond0.200", "200", "bond0");
    collect({"8086"});
    EXPECT_TRUE(writer->isTargetVendorVlan("bond0.200"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIsTargetVlan, " bond0.200"), enter(kRemoveVlanId, " bond0.200"),
                                        leave(kRemoveVlanId, " bond0"), enter(kIsTargetTeam, " bond0")} +
                                  targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086") +
                                  Lines{leave(kIsTargetTeam, ", rc=1"), leave(kIsTargetVlan, ", rc=1")}));
}

TEST_F(IsTargetVendorVlan, LeavesItAtABondWithoutATarget) {
    layTwoPorts();  // eth1 is the answer for a bond that is asked for as a plain interface
    layBond("bond0", {"eth0"});
    layVlan("bond0.200", "200", "bond0");
    collect({"14e4"});
    EXPECT_FALSE(writer->isTargetVendorVlan("bond0.200"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIsTargetVlan, " bond0.200"), enter(kRemoveVlanId, " bond0.200"),
                                        leave(kRemoveVlanId, " bond0"), enter(kIsTargetTeam, " bond0")} +
                                  targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "14e4") +
                                  Lines{leave(kIsTargetTeam, ", rc=0"), leave(kIsTargetVlan, ", rc=0")}));
}

TEST_F(IsTargetVendorVlan, FollowsAVlanOnAVlan) {
    layTwoPorts();
    layVlan("eth0.100", "100", "eth0");
    layVlan("eth0.100.7", "7", "eth0.100");
    collect({"8086"});
    EXPECT_TRUE(writer->isTargetVendorVlan("eth0.100.7"));
}

TEST_F(IsTargetVendorVlan, AsksForAnInterfaceWithoutANameIfTheVlanIsUnknown) {
    layTwoPorts();
    layVlan("eth0.100", "100", "eth0");
    collect({"14e4"});
    EXPECT_TRUE(writer->isTargetVendorVlan("eth0.7"));  // by the vendor of the last physical interface
    EXPECT_EQ(writerTrace(), (Lines{enter(kIsTargetVlan, " eth0.7"), enter(kIsTarget, " "),
                                    leave(kIsTarget, " 14e4 14e4"), leave(kIsTargetVlan, ", rc=1")}));
}

// ---- CheckTeamMember ----

TEST_F(CheckTeamMember, IsTrueForASlaveOfAnyBond) {
    layBond("bond0", {"eth0"});
    layBond("bond1", {"eth1", "eth2"});
    collect();
    EXPECT_TRUE(writer->CheckTeamMember("eth2"));
    EXPECT_EQ(TestHost::trace(), Lines{enter(kCheckTeamMember, " eth2")} + bondingIfList({"bond0", "bond1"}) +
                                     Lines{leave(kCheckTeamMember, " Team member")});
}

TEST_F(CheckTeamMember, IsFalseForAnyOtherInterface) {
    layBond("bond0", {"eth0"});
    layBond("bond1", {});
    collect();
    EXPECT_FALSE(writer->CheckTeamMember("eth2"));
    EXPECT_EQ(TestHost::trace(), Lines{enter(kCheckTeamMember, " eth2")} + bondingIfList({"bond0", "bond1"}) +
                                     Lines{leave(kCheckTeamMember, " Not team member")});
}

TEST_F(CheckTeamMember, ComparesTheNamesExactly) {
    layBond("bond0", {"eth10"});
    collect();
    for (const char* name : {"eth1", "eth100", "ETH10", "bond0", ""}) {
        EXPECT_FALSE(writer->CheckTeamMember(name)) << name;
    }
}

TEST_F(CheckTeamMember, IsFalseWithoutABondingDirectory) {
    collect();
    EXPECT_FALSE(writer->CheckTeamMember("eth0"));
    EXPECT_EQ(TestHost::trace(),
              Lines{enter(kCheckTeamMember, " eth0")} + noBonds() + Lines{leave(kCheckTeamMember, " Not team member")});
}

TEST_F(CheckTeamMember, IsFalseIfTheBondsCannotBeListed) {
    layBond("bond0", {"eth0"});
    collect();
    machine.command(kListBonds, "bond0\n", {1});
    EXPECT_FALSE(writer->CheckTeamMember("eth0"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCheckTeamMember, " eth0"), enter(kGetBondingIfList)} +
                                  failed(kListBonds) + Lines{leave(kCheckTeamMember, " Not team member")}));
}

TEST_F(CheckTeamMember, PassesOverABondThatWasNotCollected) {
    layBond("bond1", {"eth1"});
    collect();
    layBond("bond0", {"eth0"});
    EXPECT_FALSE(writer->CheckTeamMember("eth0"));
    forget();
    EXPECT_TRUE(writer->CheckTeamMember("eth1"));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCheckTeamMember, " eth1")} + bondingIfList({"bond0", "bond1"}) +
                                  Lines{noBondingData("bond0"), leave(kCheckTeamMember, " Team member")}));
}

TEST_F(CheckTeamMember, EndsTheSearchAtTheFirstBondThatHasTheInterface) {
    layBond("bond0", {"eth0"});
    collect();
    layBond("bond1", {"eth0"});  // not collected, so that a question for it would be traced
    EXPECT_TRUE(writer->CheckTeamMember("eth0"));
    EXPECT_EQ(TestHost::trace(), Lines{enter(kCheckTeamMember, " eth0")} + bondingIfList({"bond0", "bond1"}) +
                                     Lines{leave(kCheckTeamMember, " Team member")});
}

TEST_F(CheckTeamMember, LooksAtTheBondsOfTheListAlone) {
    layBond("bond0", {"eth0"});
    collect();
    machine.command(kListBonds, "bond1\n");
    EXPECT_FALSE(writer->CheckTeamMember("eth0"));
}

// ---- CheckExistVlan ----

TEST_F(CheckExistVlan, IsTrueForAnInterfaceUnderAVlan) {
    layVlan("eth0.100", "100", "eth0");
    layVlan("vlan0020", "20", "eth1");
    collect();
    EXPECT_TRUE(writer->CheckExistVlan("eth0"));
    EXPECT_TRUE(writer->CheckExistVlan("eth1"));
}

TEST_F(CheckExistVlan, ComparesTheInterfaceExactlyAndNotTheVlansName) {
    layVlan("eth10.100", "100", "eth10");
    collect();
    for (const char* name : {"eth1", "eth100", "eth10.100", "ETH10", ""}) {
        EXPECT_FALSE(writer->CheckExistVlan(name)) << name;
    }
}

TEST_F(CheckExistVlan, IsFalseWithoutAVlanFile) {
    collect();
    EXPECT_FALSE(writer->CheckExistVlan("eth0"));
    EXPECT_FALSE(writer->CheckExistVlan(""));
}

TEST_F(CheckExistVlan, MeetsTheNamelessEntryOfATableWithoutRows) {
    machine.file("/proc/net/vlan/config", "header\nheader\n");
    collect();
    EXPECT_TRUE(writer->CheckExistVlan(""));
    EXPECT_FALSE(writer->CheckExistVlan("eth0"));
}

TEST_F(CheckExistVlan, TracesNothingOfItsOwn) {
    layVlan("eth0.100", "100", "eth0");
    collect();
    writer->CheckExistVlan("eth0");
    EXPECT_EQ(TestHost::trace(), vlansWithoutACommand());
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

// ---- SetVlanParameters ----

TEST_F(SetVlanParameters, AppendsANodeForEachVlanOnTheInterfaceInTheOrderOfTheNames) {
    layVlan("vlan0020", "20", "eth0");
    layVlan("eth0.9", "9", "eth0");
    layVlan("eth1.5", "5", "eth1");
    layVlan("eth0.10", "10", "eth0");
    collect();
    CKvlXmlNode node("node");
    node.addChildNode(CKvlXmlNode("earlier"));
    writer->SetVlanParameters("eth0", node);
    EXPECT_EQ(
        xmlText(node),
        document(element("node", element("earlier") + element("vlan_parameter", value("interface_name", "eth0.10")) +
                                     element("vlan_parameter", value("interface_name", "eth0.9")) +
                                     element("vlan_parameter", value("interface_name", "vlan0020")))));
    EXPECT_EQ(TestHost::trace(), vlansWithoutACommand());
}

TEST_F(SetVlanParameters, NamesTheVlanInAParameterElementAndInNoAttribute) {
    layVlan("eth0.100", "100", "eth0");
    collect();
    CKvlXmlNode node("node");
    writer->SetVlanParameters("eth0", node);
    EXPECT_EQ(xmlText(node), document("<node>\n  <vlan_parameter>\n    <attr name=\"interface_name\" "
                                      "value=\"eth0.100\" />\n  </vlan_parameter>\n</node>\n"));
}

TEST_F(SetVlanParameters, AppendsNothingForAnInterfaceWithoutVlans) {
    layVlan("eth10.100", "100", "eth10");
    collect();
    CKvlXmlNode node("node");
    for (const char* name : {"eth1", "eth10.100", ""}) {
        writer->SetVlanParameters(name, node);
    }
    EXPECT_EQ(xmlText(node), document(element("node")));
}

TEST_F(SetVlanParameters, AppendsNothingWithoutAVlanFile) {
    collect();
    CKvlXmlNode node("node");
    writer->SetVlanParameters("eth0", node);
    EXPECT_EQ(xmlText(node), document(element("node")));
    EXPECT_EQ(TestHost::trace(), vlansWithoutACommand());
}

}  // namespace
}  // namespace kvl::test
