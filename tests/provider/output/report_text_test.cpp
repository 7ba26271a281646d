#include "provider/output/report_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "provider/output/report_document.h"
#include "provider/output/text_block.h"

namespace {

using kvl::provider::countedContent;
using kvl::provider::reportText;
using kvl::provider::TextBlock;
using testing::HasSubstr;
using testing::Not;

std::string attr(const std::string& name, const std::string& value) {
    return "<attr name=\"" + name + "\" value=\"" + value + "\"/>";
}

pugi::xml_document document(const std::string& content) {
    pugi::xml_document report;
    EXPECT_TRUE(report.load_string(("<data>" + content + "</data>").c_str()));
    return report;
}

std::string textOf(const std::string& content) {
    return reportText(document(content));
}

std::string portWith(const std::string& driver) {
    return textOf(
        "<Physical><physical_port interface_name=\"eth0\"><general-inf/><version-inf/><tcp_ip_parameter/>"
        "<driver_parameter_lin>" +
        driver + "</driver_parameter_lin></physical_port></Physical>");
}

TEST(TextBlock, PutsAllValuesIntoOneColumn) {
    TextBlock block("Heading");
    block.addRow("Name", "value");
    block.addRows("Several", {"one", "two"});
    block.addRow("A name that is very long", "value");
    EXPECT_EQ(
        "Heading\n"
        "  Name              value\n"
        "  Several           one\n"
        "                    two\n"
        "  A name that is very long value\n",
        block.text());
}

TEST(TextBlock, ShowsADashForAnEmptyValue) {
    TextBlock block("Heading");
    block.addRow("Empty", "");
    block.addRow("Blank", " ");
    block.addRows("None", {});
    block.addWrappedRow("None wrapped", {});
    EXPECT_EQ(
        "Heading\n"
        "  Empty             -\n"
        "  Blank             -\n"
        "  None              -\n"
        "  None wrapped      -\n",
        block.text());
}

TEST(TextBlock, BreaksLinesBetweenValuesAtAHundredColumns) {
    TextBlock block("H");
    block.addWrappedRow("Names", std::vector<std::string>(5, std::string(24, 'x')));
    const std::string value(24, 'x');
    EXPECT_EQ("H\n  Names             " + value + ", " + value + ", " + value + ",\n" + std::string(20, ' ') + value +
                  ", " + value + "\n",
              block.text());
    TextBlock wide("H");
    wide.addWrappedRow("Names", {std::string(200, 'x')});
    EXPECT_EQ("H\n  Names             " + std::string(200, 'x') + "\n", wide.text());
}

TEST(TextBlock, ShowsControlCharactersAsBlanks) {
    TextBlock block("a\x1b[2Jb\nc");
    block.addRow("Name", "x\ty\x7fz\r");
    EXPECT_EQ("a [2Jb c\n  Name              x y z \n", block.text());
}

TEST(ReportText, IsEmptyForAReportWithoutSections) {
    EXPECT_EQ("", textOf(""));
}

TEST(ReportText, TellsOfEmptySections) {
    EXPECT_EQ("DNS suffixes: -\n\nPorts: none\n\nTeams: none\n\nVLANs: none\n",
              textOf("<Common/><Physical/><Team/><VLAN/>"));
}

TEST(ReportText, ShowsAPortOfWhichNothingIsKnown) {
    EXPECT_EQ(
        "Port eth0   -\n"
        "  State             -, on boot: -\n"
        "  MAC address       -\n"
        "  PCI bus/dev/func  -\n"
        "  PCI IDs           -:-, subsystem -:-\n"
        "  Versions          driver -, firmware -, OS -\n"
        "  MTU               -\n",
        portWith(""));
}

TEST(ReportText, ShowsVendorItemsOfAPort) {
    const std::string text =
        textOf("<Physical><physical_port interface_name=\"eth0\"><general-inf>" +
               attr("physical_mac_address", "00:11:22:33:44:55") + "</general-inf><version-inf><Utility>" +
               attr("Utility Name", "tool") + attr("Utility Version", "1.2") +
               "</Utility></version-inf></physical_port></Physical>");
    EXPECT_THAT(text, HasSubstr("  Physical MAC      00:11:22:33:44:55\n"));
    EXPECT_THAT(text, HasSubstr("  Utility           tool 1.2\n"));
}

TEST(ReportText, ShowsASlashOnceInAnIpv6Address) {
    const auto vlan = [](const std::string& address) {
        return textOf("<VLAN><vlan_port interface_name=\"eth0.1\"><tcp_ip_parameter><ipv6_address>" +
                      attr("address", address) + attr("prefix", "64") +
                      "</ipv6_address></tcp_ip_parameter></vlan_port></VLAN>");
    };
    EXPECT_THAT(vlan("fe80::1/"), HasSubstr("  IPv6 address      fe80::1/64\n"));
    EXPECT_THAT(vlan("fe80::1"), HasSubstr("  IPv6 address      fe80::1/64\n"));
}

TEST(ReportText, ShowsATeamThatTheCollectorDoesNotKnow) {
    const std::string text = textOf("<Team><team_port interface_name=\"bond0\"><team_parameter>" +
                                    attr("team_name", "bond0") + attr("team_type", "") + attr("monitor_mode", "") +
                                    "</team_parameter><tcp_ip_parameter/></team_port></Team>");
    EXPECT_EQ(
        "Team bond0   -\n"
        "  State             -, on boot: -\n"
        "  MAC address       -\n"
        "  Monitoring        -\n"
        "  Members           -\n",
        text);
}

TEST(ReportText, GroupsDriverSettings) {
    const std::string text = portWith(
        attr("mtu", "9000") + attr("rx-checksumming", "on") + attr("tx-checksumming", "off") +
        attr("scatter-gather", "on") + attr("receive-hashing", "") + attr("Pause parameters Autonegotiate", "on") +
        attr("Pause parameters RX", "") + attr("Pause parameters TX", "off") +
        attr("Ring parameters Pre-set maximums RX", "4096") + attr("Ring parameters Pre-set maximums RX Mini", "") +
        attr("Ring parameters Pre-set maximums TX", "") + attr("Ring parameters Current hardware settings RX", "256") +
        attr("Ring parameters Current hardware settings RX Mini", "") +
        attr("Ring parameters Current hardware settings TX", "128") + attr("Coalesce parameters rx-usecs", "3") +
        attr("Coalesce parameters tx-usecs", "0") + attr("Coalesce parameters rx-frames", "0"));
    EXPECT_THAT(text, HasSubstr("  MTU               9000\n"
                                "  Offload on        rx-checksumming, scatter-gather\n"
                                "  Offload off       tx-checksumming\n"
                                "  Pause             Autonegotiate on, TX off\n"
                                "  Ring              RX 256 of 4096, TX 128 of -\n"
                                "  Coalesce          rx-usecs 3, all others 0\n"));
}

TEST(ReportText, NamesZerosWhereOtherSettingsHaveNoValue) {
    const std::string text =
        portWith(attr("Coalesce parameters rx-usecs", "3") + attr("Coalesce parameters tx-usecs", "0") +
                 attr("Coalesce parameters rx-frames", ""));
    EXPECT_THAT(text, HasSubstr("  Coalesce          rx-usecs 3\n"
                                "  Coalesce 0        tx-usecs\n"));
    EXPECT_THAT(text, Not(HasSubstr("others")));
}

TEST(ReportText, ShowsADashForAGroupWithoutValuesAndNothingForASkippedOne) {
    EXPECT_THAT(
        portWith(attr("mtu", "1") + attr("rx-checksumming", "") + attr("Pause parameters RX", "") +
                 attr("Ring parameters Pre-set maximums RX", "") +
                 attr("Ring parameters Current hardware settings RX", "") + attr("Coalesce parameters rx-usecs", "")),
        HasSubstr("  MTU               1\n"
                  "  Offload           -\n"
                  "  Pause             -\n"
                  "  Ring              -\n"
                  "  Coalesce          -\n"));
    for (const char* group : {"Offload", "Pause", "Ring", "Coalesce"}) {
        EXPECT_THAT(portWith(attr("mtu", "1")), Not(HasSubstr(group)));
    }
}

TEST(CountedContent, CountsTheSectionsThatTheReportHas) {
    EXPECT_EQ("1 port, 0 teams, 2 VLANs",
              countedContent(document("<Common/><Physical><physical_port/></Physical><Team/><VLAN><vlan_port/>"
                                      "<vlan_port/></VLAN>")));
    EXPECT_EQ("1 team", countedContent(document("<Common/><Team><team_port/></Team>")));
    EXPECT_EQ("2 DNS suffixes",
              countedContent(document("<Common>" + attr("dns_suffix", "a") + attr("dns_suffix", "b") + "</Common>")));
    EXPECT_EQ("1 DNS suffix", countedContent(document("<Common>" + attr("dns_suffix", "a") + "</Common>")));
}

}  // namespace
