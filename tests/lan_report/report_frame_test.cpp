#include <climits>
#include <type_traits>

#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

class ReportFrame : public WriterTest {
protected:
    void SetUp() override {
        WriterTest::SetUp();
        collect();
    }

    std::string documentOfNode() const { return xmlText(node); }
    /// A document whose root is the test's node with this content.
    static std::string withContent(const std::string& content) { return document(element("node", content)); }

    static void writeSections(CLanXmlWriter& to) {
        to.SetCommonInfo();
        to.SetPhysicalInfo();
        to.SetTeamInfo();
        to.SetVirtualInfo();
    }

    CKvlXmlNode node{"node"};
};

/// A machine of which interfaces and bonds were collected and nothing else: driver data are collected when a section
/// first asks for them, VLANs too, and routes never. Of the ethtool groups only the pause settings are wanted.
class SectionOnDemand : public WriterTest {
protected:
    void SetUp() override {
        WriterTest::SetUp();
        layTwoPorts();
        layBondPort("bond0", {"eth0"});
        layVlanPort("eth1.5", "5", "eth1");
        for (const char* ifname : {"eth0", "eth1"}) {
            machine.command(std::string("/usr/sbin/ethtool -a ") + ifname, "Autonegotiate: on\nRX: off\nTX: on\n");
        }
        machine.command("/usr/sbin/ethtool -a eth1.5", "", {1});
        machine.command("/sbin/route", "default 10.0.0.1 0.0.0.0 UG 0 0 0 eth1.5\n");
        for (const int option : {0, 2, 3, 4}) {
            collector->DisableEthtoolOption(option);
        }
        EXPECT_TRUE(collector->GetNetworkConfigurations());
        EXPECT_TRUE(collector->GetBondingConfifurations());
        writer = std::make_unique<CLanXmlWriter>(std::list<std::string>{"8086", "14e4"}, collector.get(), kModule);
        forget();
    }

    static Lines cardCommands(const std::string& location) {
        return {"/sbin/lspci -mns " + location, "/sbin/lspci -mns " + location, "/sbin/lspci -m | grep " + location};
    }

    static std::string physicalPort(const std::string& ifname, const std::string& pci, const std::string& vendor,
                                    const std::string& vlans) {
        const std::string generalInf = element(
            "general-inf",
            value("PCI Bus/Dev/Func", pci) + value("Vendor ID", "0x" + vendor) + value("Device ID", "0x10c9") +
                value("Subsystem Vendor ID", "0x" + vendor) + value("Subsystem ID", "0xa03c") +
                value("description", "Maker of " + vendor + " Network card") + value("port_state", "Enabled") +
                value("onboot", " ") + value("mac_address", "00:00:00:00:00:01") + value("physical_mac_address", ""));
        const std::string versionInf =
            element("version-inf", value("OS Build Version", kKernelRelease) + value("Firmware Version", "1.7") +
                                       value("Driver Version", "4.0"));
        const std::string driver = element(
            "driver_parameter_lin", value("mtu", "1500") + value("Pause parameters Autonegotiate", "on") +
                                        value("Pause parameters RX", "off") + value("Pause parameters TX", "on"));
        return element(named("physical_port", ifname),
                       generalInf + versionInf + element("tcp_ip_parameter") + vlans + driver);
    }

    const Lines driverCommands = {"/usr/sbin/ethtool -i bond0", "/usr/sbin/ethtool -i eth0",
                                  "/usr/sbin/ethtool -a eth0",  "/usr/sbin/ethtool -i eth1",
                                  "/usr/sbin/ethtool -a eth1",  "/usr/sbin/ethtool -i eth1.5",
                                  "/usr/sbin/ethtool -a eth1.5"};
    const Lines addressCommands = {kReadResolvConf, kReadIpv6Routes};
    const std::string readVlans = "/bin/cat /proc/net/vlan/config";
    const std::string physical = element(
        "Physical",
        physicalPort("eth0", "3/0/0", "8086", "") +
            physicalPort("eth1", "4/0/0", "14e4", element("vlan_parameter", value("interface_name", "eth1.5"))));
    const std::string team = element(
        "Team",
        element(named("team_port", "bond0"),
                value("port_state", "Enabled") + value("onboot", "") + value("mac_address", "00:00:00:00:00:01") +
                    element("team_parameter",
                            value("team_name", "bond0") + value("team_type", "load balancing (round-robin)") +
                                value("monitor_mode", "mii") +
                                element("mii", value("miimon", "100 ms") + value("downdelay", "-1 ms") +
                                                   value("updelay", "-1 ms")) +
                                element("member", value("interface_name", "eth0") + value("PCI Bus/Dev/Func", "3/0/0") +
                                                      value("mac_address", "ETH0"))) +
                    plainTcpIpNode()));
    const std::string vlan = element(
        "VLAN", element(named("vlan_port", "eth1.5"),
                        value("vlan_name", "eth1.5") + value("vlan_id", "5") + value("port_state", "Enabled") +
                            value("onboot", " ") + value("mac_address", "00:00:00:00:00:01") + plainTcpIpNode()));
};

using ParameterElement = ReportFrame;
using CommonSection = ReportFrame;
using Write = ReportFrame;
using GetNicNode = ReportFrame;

// ---- Constructor and destructor ----

TEST_F(ReportFrame, MakesAnEmptyRootAndNeitherTracesNorAsks) {
    forget();
    CLanXmlWriter made({"8086"}, collector.get(), kModule);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_TRUE(made.Write("/tmp/made.xml"));
    EXPECT_EQ(contentOf("/tmp/made.xml"), document(element("data")));
}

TEST_F(ReportFrame, KeepsACopyOfTheVendorList) {
    layTwoPorts();
    std::list<std::string> vendors = {"8086"};
    collect(vendors);
    vendors.front() = "1111";
    EXPECT_TRUE(writer->isTargetVendor("eth0"));
}

TEST_F(ReportFrame, TracesUnderItsOwnModuleNameAndTheCollectorUnderItsOwn) {
    allowedModules = {kModule, "writer-module"};
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    layBond("bond1", {"eth1"});  // a failure: it has no interface
    layBond("bond2", {});        // no target
    layVlan("eth1.7", "7", "eth1");
    layVlanPort("eth1.5", "5", "eth1");
    collect();
    CLanXmlWriter other({"8086", "14e4"}, collector.get(), "writer-module");
    writeSections(other);
    Lines expected;
    for (const std::string& line : TestHost::trace()) {
        const bool ofWriter = line.find("CLanXmlWriter::") != std::string::npos;
        expected.push_back((ofWriter ? "writer-module " : "test-module ") + line);
    }
    EXPECT_EQ(TestHost::moduleTrace(), expected);
    for (const std::string& line :
         {enter(kPhysicalSection), enter(kTeamSection), enter(kVlanSection), enter(kIsTarget, " eth0"),
          enter(kIsTargetTeam, " bond0"), enter(kIsTargetVlan, " eth1.5"), leave(kCheckTeamMember, " Team member"),
          leave(kTcpIpBlock), enter(kDriverBlock), detail(kTeamSection, "** bond2 is not target vendor **"),
          detail(kTeamSection, "** (bond1) Network configuration failure! **"),
          detail(kVlanSection, "** (eth1.7) Network configuration failure! **")}) {
        EXPECT_THAT(writerTrace(), testing::Contains(line));
    }
}

TEST_F(ReportFrame, DestructorIsVirtualAndTracesNothing) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CLanXmlWriter>);
    writer->SetPhysicalInfo();
    forget();
    writer.reset();
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

// ---- Sections in general ----

TEST_F(ReportFrame, AppendsSectionsInTheOrderOfTheCalls) {
    writer->SetVirtualInfo();
    writer->SetCommonInfo();
    writer->SetTeamInfo();
    writer->SetPhysicalInfo();
    EXPECT_EQ(report(),
              document(element("data", element("VLAN") + element("Common") + element("Team") + element("Physical"))));
}

TEST_F(ReportFrame, AppendsASecondSectionAtASecondCall) {
    for (int call = 0; call < 2; ++call) {
        writeSections(*writer);
    }
    const std::string sections = element("Common") + element("Physical") + element("Team") + element("VLAN");
    EXPECT_EQ(report(), document(element("data", sections + sections)));
}

TEST_F(ReportFrame, AppendsEverySectionThoughNoQuestionIsAnswered) {
    machine.load(KVL_SOURCE_DIRECTORY "/machines/every-command-fails");
    machine.file("/etc/resolv.conf", "search example.com\n");
    layBond("bond0", {"eth0"});
    layVlan("eth0.100", "100", "eth0");
    writeSections(*writer);
    EXPECT_EQ(report(),
              document(element("data", element("Common") + element("Physical") + element("Team") + element("VLAN"))));
}

TEST_F(ReportFrame, MatchesNoInterfaceWithAnEmptyVendorList) {
    machine.file("/etc/resolv.conf", "search example.com\n");
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    layVlanPort("eth1.100", "100", "eth1");
    collect({});
    writeSections(*writer);
    EXPECT_EQ(report(), document(element("data", element("Common", value("dns_suffix", "example.com")) +
                                                     element("Physical") + element("Team") + element("VLAN"))));
}

TEST_F(ReportFrame, ReadsTheCollectorAtTheTimeOfTheCall) {
    layTwoPorts();
    collect();
    writer->SetPhysicalInfo();
    ifconfig("eth0").HWaddr = "later";
    writer->SetPhysicalInfo();
    EXPECT_EQ(valuesOf(report(), "mac_address"), (Lines{"00:00:00:00:00:01", "later"}));
}

// ---- Sections on two collections alone ----

TEST_F(SectionOnDemand, PhysicalCollectsDriverDataAndVlans) {
    writer->SetPhysicalInfo();
    EXPECT_EQ(report(), document(element("data", physical)));
    EXPECT_EQ(commandsTraced(),
              (driverCommands + cardCommands("03:00.0") + Lines{readVlans, kListBonds} + cardCommands("04:00.0")));
}

TEST_F(SectionOnDemand, TeamCollectsDriverDataAndVlans) {
    writer->SetTeamInfo();
    EXPECT_EQ(report(), document(element("data", team)));
    EXPECT_EQ(commandsTraced(),
              (Lines{kListBonds} + driverCommands + Lines{"/sbin/lspci -mns 03:00.0", readVlans} + addressCommands));
}

TEST_F(SectionOnDemand, VlanCollectsDriverDataAndVlans) {
    writer->SetVirtualInfo();
    EXPECT_EQ(report(), document(element("data", vlan)));
    EXPECT_EQ(commandsTraced(),
              (Lines{readVlans} + driverCommands + Lines{"/sbin/lspci -mns 04:00.0"} + addressCommands));
}

TEST_F(SectionOnDemand, AllTogetherCollectThemOnce) {
    writer->SetPhysicalInfo();
    writer->SetTeamInfo();
    writer->SetVirtualInfo();
    EXPECT_EQ(report(), document(element("data", physical + team + vlan)));
    EXPECT_EQ(commandsTraced(), (driverCommands + cardCommands("03:00.0") + Lines{readVlans, kListBonds} +
                                 cardCommands("04:00.0") + Lines{kListBonds, "/sbin/lspci -mns 03:00.0"} +
                                 addressCommands + Lines{"/sbin/lspci -mns 04:00.0"} + addressCommands));
}

// ---- Parameter elements ----

TEST_F(ParameterElement, HasANameAndThenAValue) {
    writer->AddXmlElement(node, "name of it", std::string("value of it"));
    EXPECT_EQ(documentOfNode(), document("<node>\n  <attr name=\"name of it\" value=\"value of it\" />\n</node>\n"));
}

TEST_F(ParameterElement, StandsBehindWhatTheParentHolds) {
    node.addChildNode(CKvlXmlNode("earlier"));
    writer->AddXmlElement(node, "a", std::string("1"));
    writer->AddXmlElement(node, "a", 2);
    writer->AddXmlElementOnOff(node, "a", 1);
    writer->AddXmlElementHex(node, "a", "4");
    EXPECT_EQ(documentOfNode(), withContent(element("earlier") + value("a", "1") + value("a", "2") + value("a", "on") +
                                            value("a", "0x4")));
}

TEST_F(ParameterElement, KeepsAnEmptyText) {
    writer->AddXmlElement(node, "a", std::string());
    EXPECT_EQ(documentOfNode(), withContent(value("a", "")));
}

TEST_F(ParameterElement, WritesANumberInDecimalAndMinusOneAsAnEmptyValue) {
    const struct {
        int number;
        std::string text;
    } rows[] = {{-1, ""}, {0, "0"}, {1, "1"}, {-2, "-2"}, {INT_MAX, "2147483647"}, {INT_MIN, "-2147483648"}};
    for (const auto& row : rows) {
        CKvlXmlNode parent("node");
        writer->AddXmlElement(parent, "a", row.number);
        EXPECT_EQ(xmlText(parent), withContent(value("a", row.text)));
    }
}

TEST_F(ParameterElement, WritesASwitchAsOnUnlessItIsZeroOrMinusOne) {
    const struct {
        int number;
        std::string text;
    } rows[] = {{-1, ""}, {0, "off"}, {1, "on"}, {2, "on"}, {-2, "on"}};
    for (const auto& row : rows) {
        CKvlXmlNode parent("node");
        writer->AddXmlElementOnOff(parent, "a", row.number);
        EXPECT_EQ(xmlText(parent), withContent(value("a", row.text))) << row.number;
    }
}

TEST_F(ParameterElement, WritesAHexadecimalTextAsItStandsBehind0x) {
    for (const char* text : {"8086", "a", "0x1", "no number", " "}) {
        CKvlXmlNode parent("node");
        writer->AddXmlElementHex(parent, "a", text);
        EXPECT_EQ(xmlText(parent), withContent(value("a", std::string("0x") + text)));
    }
}

TEST_F(ParameterElement, IsLeftOutForAnEmptyHexadecimalText) {
    writer->AddXmlElementHex(node, "a", "");
    EXPECT_EQ(documentOfNode(), withContent(""));
}

TEST_F(ParameterElement, TracesNothing) {
    writer->AddXmlElement(node, "a", std::string("1"));
    writer->AddXmlElement(node, "a", 2);
    writer->AddXmlElementOnOff(node, "a", 1);
    writer->AddXmlElementHex(node, "a", "4");
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

// ---- Common ----

TEST_F(CommonSection, HoldsTheDnsSuffixesInTheirOrderAndNoNameserver) {
    machine.file("/etc/resolv.conf", "search b.example a.example\nnameserver 10.0.0.1\ndomain c.example\n");
    writer->SetCommonInfo();
    EXPECT_EQ(
        report(),
        document(element("data", element("Common", value("dns_suffix", "c.example") + value("dns_suffix", "b.example") +
                                                       value("dns_suffix", "a.example")))));
}

TEST_F(CommonSection, TracesNothingOfItsOwn) {
    machine.file("/etc/resolv.conf", "domain c.example\n");
    writer->SetCommonInfo();
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kGetResolvConf)} + ran(kReadResolvConf) +
               Lines{detail(kGetResolvConf, "dns_suffix.push_back(c.example)"), leave(kGetResolvConf)}));
}

TEST_F(CommonSection, IsEmptyIfTheResolverConfigurationCannotBeRead) {
    writer->SetCommonInfo();
    EXPECT_EQ(report(), document(element("data", element("Common"))));
    EXPECT_EQ(TestHost::trace(), Lines{enter(kGetResolvConf)} + failed(kReadResolvConf));
}

TEST_F(CommonSection, IsEmptyWithoutASuffix) {
    machine.file("/etc/resolv.conf", "nameserver 10.0.0.1\n");
    writer->SetCommonInfo();
    EXPECT_EQ(report(), document(element("data", element("Common"))));
}

TEST_F(CommonSection, WritesAnEmptySuffixAsAnEmptyValue) {
    machine.file("/etc/resolv.conf", "search a.example \n");
    writer->SetCommonInfo();
    EXPECT_EQ(valuesOf(report(), "dns_suffix"), (Lines{"a.example", ""}));
}

TEST_F(CommonSection, ReadsTheConfigurationAnewAtEachCall) {
    machine.file("/etc/resolv.conf", "domain a.example\n");
    writer->SetCommonInfo();
    machine.file("/etc/resolv.conf", "domain b.example\n");
    writer->SetCommonInfo();
    EXPECT_EQ(report(), document(element("data", element("Common", value("dns_suffix", "a.example")) +
                                                     element("Common", value("dns_suffix", "b.example")))));
}

// ---- Write and GetNicNode ----

TEST_F(Write, GivesTheResultOfTheSerializerAndTracesNothing) {
    EXPECT_TRUE(writer->Write("/tmp/report.xml"));
    EXPECT_FALSE(writer->Write("/tmp/absent/report.xml"));
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(Write, SeesOnlyWhatWasAppendedBefore) {
    EXPECT_EQ(report(), document(element("data")));
    writer->SetPhysicalInfo();
    EXPECT_EQ(report(), document(element("data", element("Physical"))));
    writer->SetTeamInfo();
    EXPECT_EQ(report(), document(element("data", element("Physical") + element("Team"))));
}

TEST_F(GetNicNode, GivesTheWholeTreeUnderTheTagNic) {
    machine.file("/etc/resolv.conf", "domain c.example\n");
    writer->SetCommonInfo();
    writer->SetPhysicalInfo();
    forget();
    EXPECT_EQ(xmlText(writer->GetNicNode()),
              document(element("NIC", element("Common", value("dns_suffix", "c.example")) + element("Physical"))));
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(GetNicNode, RenamesTheRootForGood) {
    EXPECT_EQ(report(), document(element("data")));
    writer->GetNicNode();
    EXPECT_EQ(report(), document(element("NIC")));
    writer->SetPhysicalInfo();
    EXPECT_EQ(report(), document(element("NIC", element("Physical"))));
}

TEST_F(GetNicNode, CanBeCalledMoreThanOnce) {
    writer->SetPhysicalInfo();
    writer->GetNicNode();
    EXPECT_EQ(xmlText(writer->GetNicNode()), document(element("NIC", element("Physical"))));
}

TEST_F(GetNicNode, GivesACopyThatGoesItsOwnWay) {
    writer->SetPhysicalInfo();
    CKvlXmlNode copy = writer->GetNicNode();
    writer->SetTeamInfo();
    EXPECT_EQ(xmlText(copy), document(element("NIC", element("Physical"))));
    copy.setTagName("other");
    copy.addChildNode(CKvlXmlNode("more"));
    EXPECT_EQ(report(), document(element("NIC", element("Physical") + element("Team"))));
}

TEST_F(GetNicNode, OutlivesTheWriter) {
    writer->SetPhysicalInfo();
    const CKvlXmlNode copy = writer->GetNicNode();
    writer.reset();
    EXPECT_EQ(xmlText(copy), document(element("NIC", element("Physical"))));
}

}  // namespace
}  // namespace kvl::test
