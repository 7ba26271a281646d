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

    CKvlXmlNode node{"node"};
};

using ParameterElement = ReportFrame;
using CommonSection = ReportFrame;
using Write = ReportFrame;
using GetNicNode = ReportFrame;

// ---- Constructor and destructor ----

TEST_F(ReportFrame, MakesAnEmptyRootAndNeitherTracesNorAsks) {
    forget();
    const CLanXmlWriter made({"8086"}, collector.get(), kModule);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(report(), document(element("data")));
}

TEST_F(ReportFrame, KeepsACopyOfTheVendorList) {
    layTwoPorts();
    std::list<std::string> vendors = {"8086"};
    collect(vendors);
    vendors.front() = "1111";
    EXPECT_TRUE(writer->isTargetVendor("eth0"));
}

TEST_F(ReportFrame, TracesUnderItsOwnModuleName) {
    layInterface("eth0");
    collect();
    CLanXmlWriter other({}, collector.get(), "writer-module");
    other.SetXmlDriverParameters("eth0", node);
    EXPECT_EQ(TestHost::modules(), (Lines{"writer-module"}));
    forget();
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
        writer->SetCommonInfo();
        writer->SetPhysicalInfo();
        writer->SetTeamInfo();
        writer->SetVirtualInfo();
    }
    const std::string sections = element("Common") + element("Physical") + element("Team") + element("VLAN");
    EXPECT_EQ(report(), document(element("data", sections + sections)));
}

TEST_F(ReportFrame, AppendsEverySectionThoughNoQuestionIsAnswered) {
    machine.load(KVL_SOURCE_DIRECTORY "/machines/every-command-fails");
    machine.file("/etc/resolv.conf", "search example.com\n");
    layBond("bond0", {"eth0"});
    layVlan("eth0.100", "100", "eth0");
    writer->SetCommonInfo();
    writer->SetPhysicalInfo();
    writer->SetTeamInfo();
    writer->SetVirtualInfo();
    EXPECT_EQ(report(),
              document(element("data", element("Common") + element("Physical") + element("Team") + element("VLAN"))));
}

TEST_F(ReportFrame, MatchesNoInterfaceWithAnEmptyVendorList) {
    machine.file("/etc/resolv.conf", "search example.com\n");
    layTwoPorts();
    layBondPort("bond0", {"eth0"});
    layVlanPort("eth1.100", "100", "eth1");
    collect({});
    writer->SetCommonInfo();
    writer->SetPhysicalInfo();
    writer->SetTeamInfo();
    writer->SetVirtualInfo();
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
