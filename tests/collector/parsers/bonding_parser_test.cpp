#include "collector/bonding_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

class BondTable : public ParserTable {};

/// The whole record; a slave as NAME@ADDRESS.
std::string parsed(std::istream& text) {
    return outcomeOf([&text](std::string& shown) {
        const BondingConfig bond = parseBond(text);
        shown = "[" + bond.Mode + "][" + bond.PrimarySlave + "] mii=" + std::to_string(bond.MiiStatus) +
                " pi=" + std::to_string(bond.pi) + " ud=" + std::to_string(bond.ud) + " dd=" + std::to_string(bond.dd) +
                " arp=" + std::to_string(bond.arp_pi);
        for (const std::string& target : bond.arp_ip) {
            shown += " target[" + target + "]";
        }
        for (const SlaveInterface& slave : bond.slaves) {
            shown += " " + slave.name + "@" + slave.HWaddr;
        }
    });
}

TEST_P(BondTable, IsRead) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsed(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, BondTable,
    testing::Values(
        ParserCase{"Whole",
                   "Ethernet Channel Bonding Driver: v3.6.0\n\nBonding Mode: fault-tolerance (active-backup)\n"
                   "Primary Slave: eth0 (primary_reselect always)\nCurrently Active Slave: eth0\nMII Status: up\n"
                   "MII Polling Interval (ms): 100\nUp Delay (ms): 200\nDown Delay (ms): 300\n"
                   "ARP Polling Interval (ms): 400\nARP IP target/s (n.n.n.n form): 10.0.0.1, 10.0.0.2\n\n"
                   "Slave Interface: eth0\nMII Status: down\nPermanent HW addr: 00:1b:21:aa:bb:0c\n\n"
                   "Slave Interface: eth1\nMII Status: up\nPermanent HW addr: 00:1b:21:aa:bb:0d\n",
                   "[fault-tolerance (active-backup)][eth0] mii=1 pi=100 ud=200 dd=300 arp=400 target[10.0.0.1] "
                   "target[10.0.0.2] eth0@00:1B:21:AA:BB:0C eth1@00:1B:21:AA:BB:0D"},
        ParserCase{"EmptyWithMarks", "", "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1"},
        ParserCase{"WithTheStatusUpAlone", "MII Status: up \n", "[][] mii=0 pi=-1 ud=-1 dd=-1 arp=-1"},
        ParserCase{"WithADownStatus", "MII Status: down\n", "[][] mii=0 pi=-1 ud=-1 dd=-1 arp=-1"},
        ParserCase{"WithOneEmptyTargetForNone", "ARP IP target/s (n.n.n.n form):\n",
                   "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1 target[]"},
        ParserCase{"WithTargetsWithoutBlanksAndEmptyOnes", "ARP IP target/s: 1. 2 ,,3,\n",
                   "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1 target[1.2] target[] target[3] target[]"},
        ParserCase{"WithTheTargetsOfTwoLines", "ARP IP target/s: 1\nARP IP target/s: 2\n",
                   "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1 target[1] target[2]"},
        ParserCase{"WithZeroForWhatIsNoNumber", "Up Delay (ms): x\nDown Delay (ms): 12x\n",
                   "[][] mii=-1 pi=-1 ud=0 dd=12 arp=-1"},
        ParserCase{"FromKeysAtTheBeginningOfALine", " Bonding Mode: a\nxUp Delay: 1\n",
                   "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1"},
        ParserCase{"WithTheNextAddressForASlaveWithoutOne",
                   "Slave Interface: eth0\nSlave Interface: eth1\nPermanent HW addr: 01\nSlave Interface: eth2\n"
                   "Permanent HW addr: 02\n",
                   "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1 eth0@01 eth2@02"},
        ParserCase{"WithoutASlaveWhoseAddressNeverComes", "Slave Interface: eth0\nMII Status: up\n",
                   "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1"},
        ParserCase{"WithoutAnAddressOfNoSlave", "Permanent HW addr: 01\n", "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1"},
        ParserCase{"WithoutALastLineThatMeetsTheEnd", "Up Delay: 1\nDown Delay: 2",
                   "[][] mii=-1 pi=-1 ud=1 dd=-1 arp=-1"},
        ParserCase{"WithoutAnAddressThatMeetsTheEnd", "Slave Interface: eth0\nPermanent HW addr: 01",
                   "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1"},
        ParserCase{"WithALineCutAt255Characters", "Bonding Mode: " + std::string(300, 'x') + "\nUp Delay: 1\n",
                   "[" + std::string(241, 'x') + "][] mii=-1 pi=-1 ud=1 dd=-1 arp=-1"},
        ParserCase{"WithALineCutAtAZeroByte", "Bonding Mode: a\0b\nUp Delay: 1\n"s,
                   "[a][] mii=-1 pi=-1 ud=1 dd=-1 arp=-1"},
        ParserCase{"NotWithAKeyWithoutAColon", "Up Delay 1\n", "!basic_string::substr"},
        ParserCase{"WithADelayOfItsOwnForEach", "MII Polling Interval: 1\n", "[][] mii=-1 pi=1 ud=-1 dd=-1 arp=-1"}),
    ruleOf);

TEST(BondFile, IsAnEmptyRecordWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(parsed(file), "[][] mii=-1 pi=-1 ud=-1 dd=-1 arp=-1");
    }
}

}  // namespace
}  // namespace kvl::test
