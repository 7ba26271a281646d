#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kList = "bool CNetworkParameter::GetBondingIfList(strarray_t&)";
const std::string kCollect = "bool CNetworkParameter::GetBondingConfifurations()";
const std::string kGet = "BondingConfig* CNetworkParameter::GetBondingData(std::string)";
const std::string kLog = "void CNetworkParameter::LogBondingConf(std::string, BondingConfig)";
const std::string kLs = "/bin/ls /proc/net/bonding";
const std::string kDirectory = "/proc/net/bonding/";

class Bonding : public CollectorTest {
protected:
    /// Has the bond "bond0" collected from this file.
    BondingConfig collect(const std::string& content) {
        machine.file(kDirectory + "bond0", content);
        EXPECT_TRUE(collector->GetBondingConfifurations());
        EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
        const BondingConfig* config = collector->GetBondingData("bond0");
        EXPECT_NE(config, nullptr);
        return config != nullptr ? *config : BondingConfig();
    }
};

using GetBondingIfList = Bonding;
using LogBondingConf = Bonding;

// ---- List ----

TEST_F(GetBondingIfList, ListsTheFilesOfTheDirectory) {
    machine.file(kDirectory + "bond10", "");
    machine.file(kDirectory + "bond2", "");
    strarray_t bonds = {"earlier"};
    EXPECT_TRUE(collector->GetBondingIfList(bonds));
    EXPECT_EQ(bonds, (strarray_t{"bond10", "bond2"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kList)} + ran(kLs) +
                                  Lines{detail(kList, "bonding_list.push_back(bond10)"),
                                        detail(kList, "bonding_list.push_back(bond2)"), leave(kList)}));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(GetBondingIfList, RunsNothingWithoutTheDirectory) {
    strarray_t bonds = {"earlier"};
    EXPECT_FALSE(collector->GetBondingIfList(bonds));
    EXPECT_THAT(bonds, testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kList)}));
}

TEST_F(GetBondingIfList, WaitsTenSecondsForAnEmptyDirectory) {
    machine.directory(kDirectory);
    strarray_t bonds;
    EXPECT_FALSE(collector->GetBondingIfList(bonds));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kList)} + printedNothing(kLs)));
    EXPECT_EQ(libc().sleeps, 10);
    EXPECT_EQ(contentOf(resultFile("ls")), "");
}

TEST_F(GetBondingIfList, FailsWithTheCommand) {
    machine.directory(kDirectory);
    machine.dropCommand("/bin/ls");
    strarray_t bonds;
    EXPECT_FALSE(collector->GetBondingIfList(bonds));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kList)} + failed(kLs)));
}

TEST_F(GetBondingIfList, TakesWordsAndLosesALastOneWithoutALineFeed) {
    machine.directory(kDirectory);
    machine.command(kLs, "bond0 bond1\n\tbond2\nbond3");
    strarray_t bonds;
    EXPECT_TRUE(collector->GetBondingIfList(bonds));
    EXPECT_EQ(bonds, (strarray_t{"bond0", "bond1", "bond2"}));
}

// ---- Collection ----

TEST_F(Bonding, CollectsAWholeBond) {
    const BondingConfig config = collect(
        "Ethernet Channel Bonding Driver: v3.6.0\n\nBonding Mode: fault-tolerance (active-backup)\n"
        "Primary Slave: eth0 (primary_reselect always)\nCurrently Active Slave: eth0\nMII Status: up\n"
        "MII Polling Interval (ms): 100\nUp Delay (ms): 200\nDown Delay (ms): 300\n\n"
        "Slave Interface: eth0\nMII Status: down\nSpeed: 1000 Mbps\nPermanent HW addr: 00:1b:21:aa:bb:c0\n\n"
        "Slave Interface: eth1\nMII Status: down\nPermanent HW addr: 00:1b:21:aa:bb:c1\n");
    EXPECT_EQ(config.Mode, "fault-tolerance (active-backup)");
    EXPECT_EQ(config.PrimarySlave, "eth0");
    EXPECT_EQ(config.MiiStatus, 1);  // a slave's own status doesn't count
    EXPECT_EQ(config.pi, 100);
    EXPECT_EQ(config.ud, 200);
    EXPECT_EQ(config.dd, 300);
    EXPECT_EQ(config.arp_pi, -1);
    EXPECT_THAT(config.arp_ip, testing::IsEmpty());
    ASSERT_EQ(config.slaves.size(), 2U);
    EXPECT_EQ(config.slaves[0].name + " " + config.slaves[0].HWaddr, "eth0 00:1B:21:AA:BB:C0");
    EXPECT_EQ(config.slaves[1].name + " " + config.slaves[1].HWaddr, "eth1 00:1B:21:AA:BB:C1");
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{enter(kCollect), enter(kList)} + ran(kLs) +
         Lines{detail(kList, "bonding_list.push_back(bond0)"), leave(kList)} + ran("/bin/cat /proc/net/bonding/bond0") +
         Lines{detail(kLog,
                      "ifname=bond0, Mode=fault-tolerance (active-backup), PrimarySlave=eth0, "
                      "MiiStatus=up (pi=100, ud=200, dd=300)"),
               detail(kLog, "  Slave Interface=eth0, HWaddr=00:1B:21:AA:BB:C0"),
               detail(kLog, "  Slave Interface=eth1, HWaddr=00:1B:21:AA:BB:C1"), leave(kCollect)}));
}

TEST_F(Bonding, MarksWhatIsAbsent) {
    const BondingConfig config = collect("Ethernet Channel Bonding Driver: v3.6.0\n");
    EXPECT_EQ(config.Mode + config.PrimarySlave, "");
    EXPECT_EQ(config.MiiStatus, -1);
    EXPECT_EQ(config.pi, -1);
    EXPECT_EQ(config.ud, -1);
    EXPECT_EQ(config.dd, -1);
    EXPECT_EQ(config.arp_pi, -1);
    EXPECT_THAT(config.arp_ip, testing::IsEmpty());
    EXPECT_THAT(config.slaves, testing::IsEmpty());
}

TEST_F(Bonding, IsEmptyAndTrueOnAMachineWithoutBonds) {
    EXPECT_TRUE(collector->GetBondingConfifurations());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect), enter(kList), leave(kCollect)}));
    EXPECT_EQ(collector->GetBondingData("bond0"), nullptr);
}

TEST_F(Bonding, StopsAtABondThatCannotBeReadAndKeepsTheOnesBefore) {
    for (const char* name : {"bond0", "bond1", "bond2"}) {
        machine.file(kDirectory + name, "Bonding Mode: x\n");
    }
    machine.command("/bin/cat /proc/net/bonding/bond0", "Bonding Mode: first\n");
    machine.command("/bin/cat /proc/net/bonding/bond1", "", {1});
    EXPECT_FALSE(collector->GetBondingConfifurations());
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/cat /proc/net/bonding/bond0", "/bin/cat /proc/net/bonding/bond1"}));
    const Lines trace = TestHost::trace();
    EXPECT_EQ(Lines(trace.end() - 3, trace.end()), failed("/bin/cat /proc/net/bonding/bond1"));
    EXPECT_NE(collector->GetBondingData("bond0"), nullptr);
    EXPECT_EQ(collector->GetBondingData("bond1"), nullptr);
    EXPECT_EQ(collector->GetBondingData("bond2"), nullptr);
}

TEST_F(Bonding, ReplacesEverythingAtEachCollection) {
    collect("Bonding Mode: x\n");
    std::remove("/proc/net/bonding/bond0");
    machine.file(kDirectory + "bond1", "Bonding Mode: y\n");
    EXPECT_TRUE(collector->GetBondingConfifurations());
    EXPECT_EQ(collector->GetBondingData("bond0"), nullptr);
    EXPECT_EQ(collector->GetBondingData("bond1")->Mode, "y");
}

TEST_F(Bonding, TakesTheStatusUpAlone) {
    EXPECT_EQ(collect("MII Status: up\n").MiiStatus, 1);
    EXPECT_EQ(collect("MII Status: down\n").MiiStatus, 0);
    EXPECT_EQ(collect("MII Status: up \n").MiiStatus, 0);
    EXPECT_EQ(collect("MII Status:\n").MiiStatus, 0);
}

TEST_F(Bonding, CutsThePrimarySlaveAtItsFirstBlank) {
    EXPECT_EQ(collect("Primary Slave: eth0 (primary_reselect always)\n").PrimarySlave, "eth0");
    EXPECT_EQ(collect("Primary Slave: None\n").PrimarySlave, "None");
    EXPECT_EQ(collect("Primary Slave:\n").PrimarySlave, "");
}

TEST_F(Bonding, ReadsATextThatIsNoNumberAsZero) {
    EXPECT_EQ(collect("MII Polling Interval (ms): x\n").pi, 0);
    EXPECT_EQ(collect("Up Delay (ms):\n").ud, 0);
    EXPECT_EQ(collect("Down Delay (ms): 7 ms\n").dd, 7);
}

TEST_F(Bonding, CutsTheArpTargetsAtCommas) {
    const struct {
        std::string value;
        strarray_t targets;
    } rows[] = {
        {" 10.0.0.1, 10.0.0.2", {"10.0.0.1", "10.0.0.2"}},
        {" 10.0.0.1", {"10.0.0.1"}},
        {" 1 0.0.0.1 ,,", {"10.0.0.1", "", ""}},
        {"", {""}},
    };
    for (const auto& row : rows) {
        const BondingConfig config =
            collect("ARP Polling Interval (ms): 1000\nARP IP target/s (n.n.n.n form):" + row.value + "\n");
        EXPECT_EQ(config.arp_ip, row.targets) << row.value;
        EXPECT_EQ(config.arp_pi, 1000);
    }
}

TEST_F(Bonding, AddsTheTargetsOfASecondLine) {
    EXPECT_EQ(collect("ARP IP target/s: a\nARP IP target/s: b\n").arp_ip, (strarray_t{"a", "b"}));
}

TEST_F(Bonding, GivesASlaveWithoutAnAddressTheNextOnesAndLosesThatOne) {
    const BondingConfig config = collect(
        "Slave Interface: eth0\nUp Delay (ms): 5\nSlave Interface: eth1\nPermanent HW addr: aa\n"
        "Slave Interface: eth2\nPermanent HW addr: bb\n");
    ASSERT_EQ(config.slaves.size(), 2U);
    EXPECT_EQ(config.slaves[0].name + " " + config.slaves[0].HWaddr, "eth0 AA");
    EXPECT_EQ(config.slaves[1].name + " " + config.slaves[1].HWaddr, "eth2 BB");
    EXPECT_EQ(config.ud, -1);  // read over
}

TEST_F(Bonding, DropsASlaveWhoseAddressNeverComes) {
    EXPECT_THAT(collect("Slave Interface: eth0\nMII Status: up\n").slaves, testing::IsEmpty());
    EXPECT_THAT(collect("Slave Interface: eth0\nPermanent HW addr: aa").slaves, testing::IsEmpty());
}

TEST_F(Bonding, LosesALineThatMeetsTheEndOfTheFile) {
    EXPECT_EQ(collect("MII Status: up\nBonding Mode: x").Mode, "");
}

TEST_F(Bonding, MatchesKeysAtTheBeginningOfALine) {
    EXPECT_EQ(collect(" Bonding Mode: x\nBonding mode: y\n").Mode, "");
}

TEST_F(Bonding, RaisesForAKeyWithoutAColon) {
    for (const char* line :
         {"MII Polling Interval", "Up Delay 5", "Down Delay", "ARP Polling Interval", "ARP IP target/s"}) {
        machine.file(kDirectory + "bond0", std::string(line) + "\n");
        EXPECT_EQ(outOfRangeOf([&] { collector->GetBondingConfifurations(); }), "basic_string::substr") << line;
        EXPECT_EQ(contentOf(resultFile("cat")), std::string(line) + "\n");
    }
}

TEST_F(Bonding, CutsALineOf302CharactersAndReadsOn) {
    std::string targets;
    for (int number = 100; number < 116; ++number) {
        targets += (targets.empty() ? "" : ", ") + std::string("192.168.100.") + std::to_string(number);
    }
    const std::string line = "ARP IP target/s (n.n.n.n form): " + targets;
    const BondingConfig config = collect(line + "\nSlave Interface: eth0\nPermanent HW addr: aa\n");
    EXPECT_GT(line.size(), 255U);
    EXPECT_EQ(config.arp_ip.size(), 14U);
    EXPECT_EQ(config.arp_ip.back(), "19");  // what the 255 characters leave of it
    EXPECT_EQ(config.slaves.size(), 1U);
}

TEST_F(Bonding, KeepsTheFirstRecordOfARepeatedName) {
    collect("Bonding Mode: first\n");
    machine.file(resultFile("cat"), "Bonding Mode: second\n");
    EXPECT_TRUE(collector->ParseBondingResult("bond0"));
    EXPECT_EQ(collector->GetBondingData("bond0")->Mode, "first");
}

TEST_F(Bonding, ParsesAnAbsentResultFileAsAnEmptyOne) {
    EXPECT_TRUE(collector->ParseBondingResult("bond7"));
    ASSERT_NE(collector->GetBondingData("bond7"), nullptr);
    EXPECT_EQ(collector->GetBondingData("bond7")->Mode, "");
}

TEST_F(Bonding, TracesAnUnknownNameAndCollectsNothing) {
    machine.file(kDirectory + "bond0", "Bonding Mode: x\n");
    EXPECT_EQ(collector->GetBondingData("bond0"), nullptr);
    EXPECT_EQ(TestHost::trace(), (Lines{detail(kGet, "-- bond0 has no bonding data")}));
}

TEST_F(Bonding, TracesNothingForAKnownName) {
    collect("Bonding Mode: x\n");
    forget();
    EXPECT_NE(collector->GetBondingData("bond0"), nullptr);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

// ---- Dump ----

TEST_F(LogBondingConf, ReadsAnUnknownStatusAsUp) {
    collector->LogBondingConf("b", BondingConfig());
    EXPECT_EQ(TestHost::trace(),
              (Lines{detail(kLog, "ifname=b, Mode=, PrimarySlave=, MiiStatus=up (pi=-1, ud=-1, dd=-1)")}));
}

TEST_F(LogBondingConf, WritesTheArpLineForADownBondWithAnInterval) {
    BondingConfig config;
    config.MiiStatus = 0;
    config.arp_pi = 1000;
    config.arp_ip = {"10.0.0.1", "10.0.0.2"};
    config.slaves = {{"eth0", "AA"}};
    collector->LogBondingConf("b", config);
    EXPECT_EQ(TestHost::trace(),
              (Lines{detail(kLog, "ifname=b, Mode=, PrimarySlave=, MiiStatus=down (pi=-1, ud=-1, dd=-1)"),
                     detail(kLog, "  ARP (pi=1000, ip=10.0.0.1, 10.0.0.2)"),
                     detail(kLog, "  Slave Interface=eth0, HWaddr=AA")}));
}

TEST_F(LogBondingConf, RemovesTheCommaBehindTheIntervalWithoutTargets) {
    BondingConfig config;
    config.MiiStatus = 0;
    config.arp_pi = 0;
    collector->LogBondingConf("b", config);
    EXPECT_EQ(TestHost::trace().back(), detail(kLog, "  ARP (pi=0ip=)"));
}

TEST_F(LogBondingConf, WritesNoArpLineForAnUpBondOrWithoutAnInterval) {
    BondingConfig config;
    config.MiiStatus = 1;
    config.arp_pi = 1000;
    collector->LogBondingConf("b", config);
    config.MiiStatus = 0;
    config.arp_pi = -1;
    collector->LogBondingConf("b", config);
    EXPECT_EQ(TestHost::trace().size(), 2U);
}

TEST_F(LogBondingConf, CutsADumpTo1023Characters) {
    BondingConfig config;
    config.Mode = std::string(2000, 'm');
    config.MiiStatus = 0;
    config.arp_pi = 1;
    config.arp_ip = {std::string(2000, 'a')};
    config.slaves = {{std::string(2000, 's'), ""}};
    collector->LogBondingConf("b", config);
    EXPECT_EQ(TestHost::trace(), (Lines{detail(kLog, ("ifname=b, Mode=" + config.Mode).substr(0, 1023)),
                                        detail(kLog, ("  ARP (pi=1, ip=" + config.arp_ip[0]).substr(0, 1023)),
                                        detail(kLog, ("  Slave Interface=" + config.slaves[0].name).substr(0, 1023))}));
}

TEST_F(LogBondingConf, WritesNoArpLineForAnUnknownStatus) {
    BondingConfig config;
    config.arp_pi = 1000;
    collector->LogBondingConf("b", config);
    EXPECT_EQ(TestHost::trace().size(), 1U);
}

TEST_F(Bonding, PassesOverAnAddressThatBelongsToNoSlave) {
    const BondingConfig config =
        collect("Permanent HW addr: 11\nSlave Interface: eth0\nPermanent HW addr: aa\nPermanent HW addr: bb\n");
    ASSERT_EQ(config.slaves.size(), 1U);
    EXPECT_EQ(config.slaves[0].HWaddr, "AA");
}

}  // namespace
}  // namespace kvl::test
