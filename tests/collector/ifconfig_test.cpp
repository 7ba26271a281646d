#include <type_traits>

#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kCollect = "bool CNetworkParameter::GetNetworkConfigurations()";
const std::string kGet = "IfconfigResult* CNetworkParameter::GetIfconfigData(std::string)";
const std::string kLog = "void CNetworkParameter::LogIfconfig(std::string, IfconfigResult)";
const std::string kCommand = "/sbin/ifconfig -a";

const std::string kEth0 =
    "eth0      Link encap:Ethernet  HWaddr 00:1B:21:AA:BB:CC  \n"
    "          inet addr:10.0.0.5  Bcast:10.0.0.255  Mask:255.255.255.0\n"
    "          inet6 addr: fe80::1/64 Scope:Link\n"
    "          inet6 addr: 2001:db8::5/32 Scope:Global\n"
    "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n"
    "          RX packets:1 errors:0 dropped:0 overruns:0 frame:0\n"
    "          Interrupt:10 Memory:feb60000-feb80000 \n"
    "\n";

class Ifconfig : public CollectorTest {
protected:
    void collect(const std::string& output) {
        machine.command(kCommand, output);
        EXPECT_TRUE(collector->GetNetworkConfigurations());
        EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
    }

    IfconfigResult recordOf(const std::string& ifname) {
        const IfconfigResult* record = collector->GetIfconfigData(ifname);
        EXPECT_NE(record, nullptr) << ifname;
        return record != nullptr ? *record : IfconfigResult();
    }

    strarray_t names() {
        strarray_t list;
        collector->GetInterfaceNameList(list);
        return list;
    }

    /// The record of an interface "eth0" whose first line goes on with these words.
    IfconfigResult recordOfWords(const std::string& words) {
        collect("eth0 Link encap:Ethernet " + words + "\n\n");
        return recordOf("eth0");
    }
};

TEST_F(Ifconfig, CollectsAWholeRecord) {
    machine.file("/etc/sysconfig/network-scripts/ifcfg-eth0", "DEVICE=eth0\nBOOTPROTO=dhcp\nONBOOT=yes\n");
    collect(kEth0);
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kCollect)} + ran(kCommand) +
               Lines{detail(kLog,
                            "ifname=eth0, Link encap=Ethernet, HWaddr=00:1B:21:AA:BB:CC, inet addr=10.0.0.5, "
                            "Bcast=10.0.0.255, Mask=255.255.255.0"),
                     detail(kLog,
                            "  inet6 addr=2001:db8::5//32,fe80::1//64, Scope=Global, UP=Enabled, MTU=1500, "
                            "Metric=1, BOOTPROTO=1, ONBOOT=1"),
                     leave(kCollect)}));
    const IfconfigResult record = recordOf("eth0");
    EXPECT_EQ(record.link_encap, 1);
    EXPECT_EQ(record.HWaddr, "00:1B:21:AA:BB:CC");
    EXPECT_EQ(record.inet_addr, "10.0.0.5");
    EXPECT_EQ(record.Bcast, "10.0.0.255");
    EXPECT_EQ(record.Mask, "255.255.255.0");
    EXPECT_EQ(record.inet6_addr, (std::map<std::string, std::string>{{"fe80::1/", "64"}, {"2001:db8::5/", "32"}}));
    EXPECT_EQ(record.Scope, "Global");
    EXPECT_EQ(record.MTU, "1500");
    EXPECT_EQ(record.Metric, "1");
    EXPECT_EQ(record.kernel_release, kKernelRelease);
    EXPECT_TRUE(record.up && record.broadcast && record.running && record.multicast);
    EXPECT_EQ(record.BOOTPROTO, 1);
    EXPECT_EQ(record.ONBOOT, 1);
}

TEST_F(Ifconfig, StartsARecordEmpty) {
    const IfconfigResult record;
    EXPECT_EQ(record.link_encap, -1);
    EXPECT_EQ(record.HWaddr + record.inet_addr + record.Bcast + record.Mask + record.Scope + record.MTU +
                  record.Metric + record.kernel_release,
              "");
    EXPECT_FALSE(record.up || record.broadcast || record.running || record.multicast);
}

TEST_F(Ifconfig, LeavesTheMapEmptyIfTheCommandFails) {
    collect(kEth0);
    machine.command(kCommand, kEth0, {1});
    forget();
    EXPECT_FALSE(collector->GetNetworkConfigurations());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect)} + failed(kCommand)));
    EXPECT_EQ(collector->GetIfconfigData("eth0"), nullptr);
}

TEST_F(Ifconfig, ReplacesEverythingAtEachCollection) {
    collect(kEth0);
    collect("eth1 Link encap:Ethernet\n\n");
    EXPECT_EQ(names(), (strarray_t{"eth1"}));
}

TEST_F(Ifconfig, LeavesLoopbackAndTunnelsOutByAPartOfTheName) {
    const Lines dumpOfEth0 = {
        detail(kLog, "ifname=eth0, Link encap=Ethernet, HWaddr=, inet addr=, Bcast=, Mask="),
        detail(kLog, "  inet6 addr=, Scope=, UP=Disabled, MTU=, Metric=, BOOTPROTO=-1, ONBOOT=-1")};
    collect(
        "eth0 Link encap:Ethernet\n\nlo Link encap:Local Loopback\n\nsit0 Link encap:IPv6-in-IPv4\n\n"
        "vlo1 Link encap:Ethernet\n\nvisit2 Link encap:Ethernet\n\nib0 no link\n\neth9 Link encap:Ethernet\n");
    // What is left out, has no link or isn't closed isn't traced either.
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect)} + ran(kCommand) + dumpOfEth0 + Lines{leave(kCollect)}));
    EXPECT_EQ(names(), (strarray_t{"eth0"}));
}

TEST_F(Ifconfig, DropsABlockWithoutALinkWord) {
    collect("eth0 encap:Ethernet HWaddr 00:00:00:00:00:01 UP\n\neth1 Link encap:Ethernet\n\n");
    EXPECT_EQ(names(), (strarray_t{"eth1"}));
}

TEST_F(Ifconfig, KeepsAnInterfaceThatIsNoEthernet) {
    collect("ib0 Link encap:InfiniBand\n\n");
    EXPECT_EQ(recordOf("ib0").link_encap, 0);
    EXPECT_THAT(TestHost::trace(),
                testing::Contains(detail(kLog, "ifname=ib0, Link encap=lo, HWaddr=, inet addr=, Bcast=, Mask=")));
}

TEST_F(Ifconfig, KeepsAnAliasUnderItsOwnName) {
    collect("eth0 Link encap:Ethernet\n\neth0:1 Link encap:Ethernet\n  inet addr:10.0.0.6  Mask:255.0.0.0\n\n");
    EXPECT_EQ(recordOf("eth0").inet_addr, "");
    EXPECT_EQ(recordOf("eth0:1").inet_addr, "10.0.0.6");
}

TEST_F(Ifconfig, KeepsTheFirstRecordOfARepeatedName) {
    collect("eth0 Link encap:Ethernet HWaddr first\n\neth0 Link encap:Ethernet HWaddr second\n\n");
    EXPECT_EQ(recordOf("eth0").HWaddr, "first");
    EXPECT_THAT(TestHost::trace(), testing::Contains(testing::HasSubstr("HWaddr=first,")));
    EXPECT_THAT(TestHost::trace(), testing::Contains(testing::HasSubstr("HWaddr=second,")));
}

TEST_F(Ifconfig, LosesALastBlockThatNoEmptyLineCloses) {
    collect("eth0 Link encap:Ethernet\n\neth1 Link encap:Ethernet\n");
    EXPECT_EQ(names(), (strarray_t{"eth0"}));
}

TEST_F(Ifconfig, LosesALineThatMeetsTheEndOfTheFile) {
    collect("eth0 Link encap:Ethernet\n\neth1 Link encap:Ethernet\n\nx");
    EXPECT_EQ(names(), (strarray_t{"eth0", "eth1"}));
}

TEST_F(Ifconfig, TakesAnIndentedLineAsAContinuation) {
    collect(" eth0 Link encap:Ethernet\n\n");
    EXPECT_EQ(names(), (strarray_t{""}));
}

TEST_F(Ifconfig, BeginsABlockAtATab) {
    collect("eth0 Link encap:Ethernet\n\teth1 UP\n\n");
    EXPECT_EQ(names(), (strarray_t{"\teth1"}));
}

TEST_F(Ifconfig, KeepsTheNameAcrossBlocksUntilAFirstLineReplacesIt) {
    collect("eth0 Link encap:Local\n\n  Link encap:Ethernet\n\n");
    EXPECT_EQ(names(), (strarray_t{"eth0"}));
    EXPECT_EQ(recordOf("eth0").link_encap, 0);  // the second block met a name that was there
}

TEST_F(Ifconfig, TakesTheLastOfTwoFirstLinesInABlockAsItsName) {
    collect("eth0 Link encap:Ethernet\neth1 UP\n\n");
    EXPECT_EQ(names(), (strarray_t{"eth1"}));
    EXPECT_TRUE(recordOf("eth1").up);
}

TEST_F(Ifconfig, ComparesFlagWordsWhole) {
    const IfconfigResult record = recordOfWords("UPPER BROADCASTS RUNNINGS MULTICASTS up");
    EXPECT_FALSE(record.up || record.broadcast || record.running || record.multicast);
}

TEST_F(Ifconfig, SetsEachFlagByItsOwnWord) {
    EXPECT_TRUE(recordOfWords("UP").up);
    EXPECT_TRUE(recordOfWords("BROADCAST").broadcast);
    EXPECT_TRUE(recordOfWords("RUNNING").running);
    const IfconfigResult record = recordOfWords("MULTICAST");
    EXPECT_TRUE(record.multicast);
    EXPECT_FALSE(record.up || record.broadcast || record.running);
}

TEST_F(Ifconfig, TakesAnEmptyValueBehindAPrefix) {
    const IfconfigResult record = recordOfWords("Bcast: Mask: Scope: MTU: Metric:");
    EXPECT_EQ(record.Bcast + record.Mask + record.Scope + record.MTU + record.Metric, "");
}

TEST_F(Ifconfig, SeesTheWordLinkAgainInALaterLine) {
    EXPECT_EQ(recordOfWords("Link encap:Local").link_encap, 0);
    EXPECT_EQ(recordOfWords("Scope:Link").link_encap, 1);
}

TEST_F(Ifconfig, TakesNothingBehindALastWord) {
    collect("eth0 Link\n\neth1 Link encap:Ethernet HWaddr\n\neth2 Link encap:Ethernet inet6\n\n");
    EXPECT_EQ(recordOf("eth0").link_encap, 0);
    EXPECT_EQ(recordOf("eth1").HWaddr, "");
    EXPECT_EQ(recordOf("eth2").inet6_addr, (std::map<std::string, std::string>{{"", ""}}));
}

TEST_F(Ifconfig, TakesAnIpv6AddressWithoutASlashAsThePrefixOfAnEmptyKey) {
    EXPECT_EQ(recordOfWords("inet6 addr: fe80::1 Scope:Link").inet6_addr,
              (std::map<std::string, std::string>{{"", "fe80::1"}}));
}

TEST_F(Ifconfig, KeepsTheFirstPrefixOfARepeatedIpv6Address) {
    EXPECT_EQ(recordOfWords("inet6 addr: a/1 inet6 addr: a/2 inet6 addr: b/3/4").inet6_addr,
              (std::map<std::string, std::string>{{"a/", "1"}, {"b/", "3/4"}}));
}

TEST_F(Ifconfig, RaisesForAnAddressWithoutAColonAndLeavesTheResultFile) {
    const std::string output = "eth0 Link encap:Ethernet\n\neth1 Link encap:Ethernet\n          inet 10.0.0.5\n\n";
    machine.command(kCommand, output);
    EXPECT_EQ(outOfRangeOf([&] { collector->GetNetworkConfigurations(); }), "basic_string::substr");
    EXPECT_EQ(contentOf(resultFile("ifconfig")), output);
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kCollect)} + ran(kCommand) +
               Lines{detail(kLog, "ifname=eth0, Link encap=Ethernet, HWaddr=, inet addr=, Bcast=, Mask="),
                     detail(kLog, "  inet6 addr=, Scope=, UP=Disabled, MTU=, Metric=, BOOTPROTO=-1, ONBOOT=-1")}));
    EXPECT_EQ(names(), (strarray_t{"eth0"}));
}

TEST_F(Ifconfig, RaisesForAnAddressThatIsNotThere) {
    machine.command(kCommand, "eth0 Link encap:Ethernet inet\n\n");
    EXPECT_EQ(outOfRangeOf([&] { collector->GetNetworkConfigurations(); }), "basic_string::substr");
}

TEST_F(Ifconfig, CutsALongLineAndReadsOn) {
    collect("eth0 Link encap:Ethernet " + std::string(300, 'x') + " UP\n  HWaddr kept\n\n");
    EXPECT_EQ(recordOf("eth0").HWaddr, "kept");
    EXPECT_FALSE(recordOf("eth0").up);
}

TEST_F(Ifconfig, ReadsAnAbsentResultFileAsAnEmptyOne) {
    EXPECT_TRUE(collector->ParseIfconfigResult());
    EXPECT_THAT(names(), testing::IsEmpty());
}

TEST_F(Ifconfig, ParsesOntoWhatIsThere) {
    collect(kEth0);
    machine.file(resultFile("ifconfig"), "eth0 Link encap:Local\n\neth1 Link encap:Ethernet\n\n");
    EXPECT_TRUE(collector->ParseIfconfigResult());
    EXPECT_EQ(names(), (strarray_t{"eth0", "eth1"}));
    EXPECT_EQ(recordOf("eth0").link_encap, 1);
}

TEST_F(Ifconfig, ReadsBootprotoAndOnboot) {
    const struct {
        std::string content;
        int bootproto;
        int onboot;
    } rows[] = {
        {"BOOTPROTO=dhcp\nONBOOT=yes\n", 1, 1},
        {"BOOTPROTO=\"dhcp\"\nONBOOT=\"yes\"", 1, 1},
        {"BOOTPROTO=static\nONBOOT=no\n", 0, 0},
        {"BOOTPROTO=DHCP\nONBOOT=YES\n", 0, 0},
        {"BOOTPROTO=\nONBOOT=yes \n", 0, 0},
        {"BOOTPROTO='dhcp'\n", 0, -1},
        {"ONBOOT=yes\n", -1, 1},
        {"", -1, -1},
    };
    for (const auto& row : rows) {
        machine.file("/etc/sysconfig/network-scripts/ifcfg-eth7", row.content);
        IfconfigResult record;
        EXPECT_TRUE(collector->GetIfconfigFile("eth7", &record));
        EXPECT_EQ(record.BOOTPROTO, row.bootproto) << row.content;
        EXPECT_EQ(record.ONBOOT, row.onboot) << row.content;
    }
}

TEST_F(Ifconfig, HasNoSettingsWithoutAConfigurationFile) {
    IfconfigResult record;
    record.BOOTPROTO = record.ONBOOT = 1;
    EXPECT_TRUE(collector->GetIfconfigFile("eth7", &record));
    EXPECT_EQ(record.BOOTPROTO, -1);
    EXPECT_EQ(record.ONBOOT, -1);
}

TEST_F(Ifconfig, LeavesTheEmptyResultFileOfACommandThatPrintsNothing) {
    machine.command(kCommand, "");
    EXPECT_FALSE(collector->GetNetworkConfigurations());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect)} + printedNothing(kCommand)));
    EXPECT_EQ(libc().sleeps, 10);
    EXPECT_EQ(contentOf(resultFile("ifconfig")), "");
}

TEST_F(Ifconfig, TracesAnUnknownNameAndRunsNothing) {
    collect(kEth0);
    forget();
    EXPECT_EQ(collector->GetIfconfigData("eth9"), nullptr);
    EXPECT_EQ(TestHost::trace(), (Lines{detail(kGet, "-- eth9 has no ifconfig data")}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(Ifconfig, TracesNothingForAKnownName) {
    collect(kEth0);
    forget();
    EXPECT_NE(collector->GetIfconfigData("eth0"), nullptr);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(Ifconfig, DumpsAnEmptyRecord) {
    collector->LogIfconfig("x", IfconfigResult());
    EXPECT_EQ(TestHost::trace(),
              (Lines{detail(kLog, "ifname=x, Link encap=Ethernet, HWaddr=, inet addr=, Bcast=, Mask="),
                     detail(kLog, "  inet6 addr=, Scope=, UP=Disabled, MTU=, Metric=, BOOTPROTO=-1, ONBOOT=-1")}));
}

TEST_F(Ifconfig, CutsADumpTo1023Characters) {
    IfconfigResult record;
    record.HWaddr = std::string(2000, 'h');
    record.Scope = std::string(2000, 's');
    collector->LogIfconfig("x", record);
    const std::string link = "ifname=x, Link encap=Ethernet, HWaddr=" + record.HWaddr;
    const std::string settings = "  inet6 addr=, Scope=" + record.Scope;
    EXPECT_EQ(TestHost::trace(), (Lines{detail(kLog, link.substr(0, 1023)), detail(kLog, settings.substr(0, 1023))}));
}

}  // namespace
}  // namespace kvl::test
