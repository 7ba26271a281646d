#include "collector/ifconfig_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

/// Name and record of an interface, what is empty left out.
std::string shown(const std::string& ifname, const IfconfigResult& record) {
    std::string text = ifname + " link=" + std::to_string(record.link_encap);
    const auto add = [&text](const char* name, const std::string& value) {
        if (!value.empty()) {
            text += std::string(" ") + name + "=" + value;
        }
    };
    add("mac", record.HWaddr);
    add("inet", record.inet_addr);
    add("bcast", record.Bcast);
    add("mask", record.Mask);
    for (const auto& [address, prefix] : record.inet6_addr) {
        add("inet6", address + "|" + prefix);
    }
    add("scope", record.Scope);
    add("mtu", record.MTU);
    add("metric", record.Metric);
    add("release", record.kernel_release);
    text += std::string(record.up ? " up" : "") + (record.broadcast ? " broadcast" : "") +
            (record.running ? " running" : "") + (record.multicast ? " multicast" : "");
    const bool isConfigured = record.BOOTPROTO != -1 || record.ONBOOT != -1;
    return text + (isConfigured ? " configured" : "") + "\n";
}

class IfconfigTable : public ParserTable {};

std::string parsed(std::istream& text) {
    return outcomeOf([&text](std::string& records) {
        parseIfconfig(text, [&records](const std::string& ifname, const IfconfigResult& record) {
            records += shown(ifname, record);
        });
    });
}

TEST_P(IfconfigTable, GivesTheRecords) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsed(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, IfconfigTable,
    testing::Values(
        ParserCase{"OfAWholeBlock",
                   "eth0      Link encap:Ethernet  HWaddr 00:1B:21:AA:BB:CC  \n"
                   "          inet addr:10.0.0.5  Bcast:10.0.0.255  Mask:255.255.255.0\n"
                   "          inet6 addr: fe80::1/64 Scope:Link\n"
                   "          inet6 addr: 2001:db8::5/32 Scope:Global\n"
                   "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n"
                   "          RX packets:1 errors:0 dropped:0 overruns:0 frame:0\n"
                   "          Interrupt:10 Memory:feb60000-feb80000 \n\n",
                   "eth0 link=1 mac=00:1B:21:AA:BB:CC inet=10.0.0.5 bcast=10.0.0.255 mask=255.255.255.0 "
                   "inet6=2001:db8::5/|32 inet6=fe80::1/|64 scope=Global mtu=1500 metric=1 up broadcast running "
                   "multicast\n"},
        ParserCase{"OfEachBlockInOrder", "eth1 Link encap:Ethernet MTU:9000\n\neth0 Link encap:Ethernet\n\n",
                   "eth1 link=1 mtu=9000\neth0 link=1\n"},
        ParserCase{"WithoutLoopbackAndTunnels",
                   "lo Link encap:Local\n\nsit0 Link encap:IPv6-in-IPv4\n\nvlo1 Link encap:Ethernet\n\n"
                   "xsity Link encap:Ethernet\n\neth0 Link encap:Ethernet\n\n",
                   "eth0 link=1\n"},
        ParserCase{"WithoutABlockThatHasNoLink", "eth0 HWaddr 00:11\n\neth1 Link encap:Ethernet\n\n", "eth1 link=1\n"},
        ParserCase{"WithoutALastBlockThatIsNotClosed", "eth0 Link encap:Ethernet\n\neth1 Link encap:Ethernet\n",
                   "eth0 link=1\n"},
        ParserCase{"OfAnotherEncapsulation", "ib0 Link encap:InfiniBand\n\np0 Link encap:EthernetX\n\n",
                   "ib0 link=0\np0 link=0\n"},
        ParserCase{"OfAnAlias", "eth0:1 Link encap:Ethernet\n\n", "eth0:1 link=1\n"},
        ParserCase{"OfARepeatedNameTwice", "eth0 Link encap:Ethernet\n\neth0 Link encap:Other\n\n",
                   "eth0 link=1\neth0 link=0\n"},
        ParserCase{"ByWholeWords",
                   "eth0 Link encap:Ethernet UPX XUP BROADCASTX RUNNINGX MULTICASTX xMTU:1 HWaddrX 2\n\n",
                   "eth0 link=1\n"},
        ParserCase{"WithFlagsEachOfItsOwn",
                   "a Link x UP\n\nb Link x BROADCAST\n\nc Link x RUNNING\n\nd Link x MULTICAST\n\n",
                   "a link=0 up\nb link=0 broadcast\nc link=0 running\nd link=0 multicast\n"},
        ParserCase{"WithTheFirstPrefixOfARepeatedAddress",
                   "eth0 Link encap:Ethernet inet6 addr: a::/64 inet6 addr: a::/32\n\n", "eth0 link=1 inet6=a::/|64\n"},
        ParserCase{"WithAnEmptyAddressForOneWithoutASlash", "eth0 Link encap:Ethernet inet6 addr: a::1\n\n",
                   "eth0 link=1 inet6=|a::1\n"},
        ParserCase{"WithAnEmptyValueWhereNothingFollows", "eth0 Link encap:Ethernet MTU:1 MTU: Metric:\n\n",
                   "eth0 link=1\n"},
        ParserCase{"WithTheLastValueOfARepeatedWord", "eth0 Link encap:Ethernet Scope:a Scope:b\n\n",
                   "eth0 link=1 scope=b\n"},
        ParserCase{"WithTheNameOfTheLastLineThatHasOne", "eth0 Link encap:Ethernet\neth1 MTU:5\n\n",
                   "eth1 link=1 mtu=5\n"},
        ParserCase{"WithTheNameBeforeWhereABlockHasNone", "eth0 Link encap:Ethernet\n\n  Link encap:Ethernet MTU:5\n\n",
                   "eth0 link=1\neth0 link=1 mtu=5\n"},
        ParserCase{"OfALineCutAt255Characters",
                   "eth0 Link encap:Ethernet MTU:15" + std::string(224, ' ') + " Metric:1\n UP\n\n",
                   "eth0 link=1 mtu=15 up\n"},
        ParserCase{"OfALineCutAtAZeroByte", "eth0 Link encap:Ethernet MTU:1\0"s + "500 UP\n\n", "eth0 link=1 mtu=1\n"},
        ParserCase{"BeforeAnAddressWithoutAColonThatRaises",
                   "eth0 Link encap:Ethernet\n\neth1 Link encap:Ethernet inet 10.0.0.1\n\neth2 Link encap:Ethernet\n\n",
                   "eth0 link=1\n!basic_string::substr"},
        ParserCase{"BeforeAnAddressThatTheLineLacks", "eth0 Link encap:Ethernet inet\n\n", "!basic_string::substr"},
        ParserCase{"OfNothing", "", ""}),
    ruleOf);

TEST(IfconfigFile, HasNoRecordsWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(parsed(file), "");
    }
}

}  // namespace
}  // namespace kvl::test
