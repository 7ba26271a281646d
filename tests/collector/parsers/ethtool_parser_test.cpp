#include "collector/ethtool_parser.h"

#include <functional>
#include <vector>

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using R = EthtoolResult;

struct Field {
    const char* name;
    int R::*field;
};

const std::vector<Field> kFields = {
    {"rcs", &R::rcs},
    {"tcs", &R::tcs},
    {"sg", &R::sg},
    {"tso", &R::tso},
    {"ufo", &R::ufo},
    {"gso", &R::gso},
    {"gro", &R::gro},
    {"lro", &R::lro},
    {"rvo", &R::rvo},
    {"tvo", &R::tvo},
    {"nf", &R::nf},
    {"rh", &R::rh},
    {"autonego", &R::autonego},
    {"pause_rx", &R::pause_rx},
    {"pause_tx", &R::pause_tx},
    {"pre_rx", &R::pre_rx},
    {"pre_mini", &R::pre_mini},
    {"pre_jumbo", &R::pre_jumbo},
    {"pre_tx", &R::pre_tx},
    {"cur_rx", &R::cur_rx},
    {"cur_mini", &R::cur_mini},
    {"cur_jumbo", &R::cur_jumbo},
    {"cur_tx", &R::cur_tx},
    {"adaptive_rx", &R::adaptive_rx},
    {"adaptive_tx", &R::adaptive_tx},
    {"sbu", &R::sbu},
    {"si", &R::si},
    {"prl", &R::prl},
    {"prh", &R::prh},
    {"ru", &R::ru},
    {"rf", &R::rf},
    {"rui", &R::rui},
    {"rfi", &R::rfi},
    {"tu", &R::tu},
    {"tf", &R::tf},
    {"tui", &R::tui},
    {"tfi", &R::tfi},
    {"rul", &R::rul},
    {"rfl", &R::rfl},
    {"tul", &R::tul},
    {"tfl", &R::tfl},
    {"ruh", &R::ruh},
    {"rfh", &R::rfh},
    {"tuh", &R::tuh},
    {"tfh", &R::tfh},
};

constexpr int kUntouched = 777;

/// All numbers that a parser touched but those that it marked as not found, and how many it did mark.
std::string touched(const EthtoolResult& result) {
    std::string text;
    int marked = 0;
    for (const Field& field : kFields) {
        const int value = result.*field.field;
        if (value == -1) {
            ++marked;
        } else if (value != kUntouched) {
            text += std::string(field.name) + "=" + std::to_string(value) + " ";
        }
    }
    return text + "(-1: " + std::to_string(marked) + ")";
}

using GroupParser = void (*)(std::istream&, EthtoolResult&);

std::string parsedGroup(GroupParser parse, std::istream& text) {
    EthtoolResult result;
    for (const Field& field : kFields) {
        result.*field.field = kUntouched;
    }
    const std::string raised = outcomeOf([&](std::string&) { parse(text, result); });
    return touched(result) + raised;
}

std::string parsedGroup(GroupParser parse, const std::string& output) {
    std::istringstream text(output);
    return parsedGroup(parse, text);
}

// ---- ethtool -i ----

class DriverInfoTable : public ParserTable {};

std::string parsedInfo(std::istream& text) {
    EthtoolDriverInfo info;
    info.driver = info.version = info.firmver = info.bus_info = info.businfo = "?";
    const std::string raised = outcomeOf([&](std::string&) { parseDriverInfo(text, info); });
    EXPECT_TRUE(info.ifname.empty() && info.spare_text.empty() && info.utility.empty());
    return info.driver + "," + info.version + "," + info.firmver + "," + info.bus_info + "," + info.businfo + raised;
}

TEST_P(DriverInfoTable, IsRead) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsedInfo(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, DriverInfoTable,
    testing::Values(ParserCase{"Whole",
                               "driver: igb\nversion: 4.0.1-k\nfirmware-version: 1.7.2\nbus-info: 0000:03:00.1\n",
                               "igb,4.0.1-k,1.7.2,0000:03:00.1,3/0/1"},
                    ParserCase{"WithALocationInHexadecimal", "bus-info: 0000:1a:1f.7\n", "?,?,?,0000:1a:1f.7,1a/1f/7"},
                    ParserCase{"WithoutALocationInElevenCharacters", "bus-info: 0000:03:00.\n", "?,?,?,0000:03:00.,?"},
                    ParserCase{"WithoutALocationInAnEmptyText", "bus-info: \n", "?,?,?,,?"},
                    ParserCase{"WithTheLocationOfTheLongerLineBefore", "bus-info: 0000:03:00.1\nbus-info: short\n",
                               "?,?,?,short,3/0/1"},
                    ParserCase{"WithZeroForWhatIsNoNumber", "bus-info: xxxxxxxxxxxxxx\n", "?,?,?,xxxxxxxxxxxxxx,0/0/0"},
                    ParserCase{"FromKeysAtTheBeginningOfALine", " driver: a\nxversion: b\nfirmware: c\n", "?,?,?,?,?"},
                    ParserCase{"FromLongerKeysToo", "drivers: a\nversions: b\n", "a,b,?,?,?"},
                    ParserCase{"WithTheLastOfTwoLines", "driver: a\ndriver: b\n", "b,?,?,?,?"},
                    ParserCase{"WithoutALastLineThatMeetsTheEnd", "driver: a\nversion: b", "a,?,?,?,?"},
                    ParserCase{"UpToAKeyWithoutAColon", "driver: a\nversion\nfirmware-version: c\n",
                               "a,?,?,?,?!basic_string::substr"},
                    ParserCase{"OfNothing", "", "?,?,?,?,?"}),
    ruleOf);

// ---- ethtool -k ----

class OffloadTable : public ParserTable {};

TEST_P(OffloadTable, IsRead) {
    EXPECT_EQ(parsedGroup(parseOffload, GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, OffloadTable,
    testing::Values(
        ParserCase{"Whole",
                   "Offload parameters for eth0:\nrx-checksumming: on\ntx-checksumming: off\nscatter-gather: on\n"
                   "tcp-segmentation-offload: off\nudp-fragmentation-offload: on\n"
                   "generic-segmentation-offload: off\ngeneric-receive-offload: on\nlarge-receive-offload: off\n"
                   "rx-vlan-offload: on\ntx-vlan-offload: off\nntuple-filters: on\nreceive-hashing: off\n",
                   "rcs=1 tcs=0 sg=1 tso=0 ufo=1 gso=0 gro=1 lro=0 rvo=1 tvo=0 nf=1 rh=0 (-1: 0)"},
        ParserCase{"TheOtherWayRound",
                   "rx-checksumming: off\ntx-checksumming: on\nscatter-gather: off\ntcp-segmentation-offload: on\n"
                   "udp-fragmentation-offload: off\ngeneric-segmentation-offload: on\n"
                   "generic-receive-offload: off\nlarge-receive-offload: on\nrx-vlan-offload: off\n"
                   "tx-vlan-offload: on\nntuple-filters: off\nreceive-hashing: on\n",
                   "rcs=0 tcs=1 sg=0 tso=1 ufo=0 gso=1 gro=0 lro=1 rvo=0 tvo=1 nf=0 rh=1 (-1: 0)"},
        ParserCase{"WithOnFollowedByMoreText", "rx-checksumming: on [fixed]\ntx-checksumming: only\n",
                   "rcs=1 tcs=1 (-1: 10)"},
        ParserCase{"WithATabAsOff", "rx-checksumming:\ton\ntx-checksumming: ON\n", "rcs=0 tcs=0 (-1: 10)"},
        ParserCase{"FromKeysAtTheBeginningOfALine", "\trx-checksumming: on\n rx-checksumming: on\n", "(-1: 12)"},
        ParserCase{"WithTheLastOfTwoLines", "scatter-gather: on\nscatter-gather: off\n", "sg=0 (-1: 11)"},
        ParserCase{"WithoutALastLineThatMeetsTheEnd", "scatter-gather: on", "(-1: 12)"},
        ParserCase{"UpToAKeyWithoutAColon", "scatter-gather: on\nntuple-filters\nrx-checksumming: on\n",
                   "sg=1 (-1: 11)!basic_string::substr"},
        ParserCase{"OfNothing", "", "(-1: 12)"}),
    ruleOf);

// ---- ethtool -a ----

class PauseTable : public ParserTable {};

TEST_P(PauseTable, IsRead) {
    EXPECT_EQ(parsedGroup(parsePause, GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, PauseTable,
    testing::Values(ParserCase{"Whole", "Pause parameters for eth0:\nAutonegotiate:\ton\nRX:\t\ton\nTX:\t\ton\n",
                               "autonego=0 pause_rx=0 pause_tx=0 (-1: 0)"},
                    ParserCase{"AfterBlanks", "Autonegotiate:  on\nRX:  off\nTX:  on\n",
                               "autonego=1 pause_rx=0 pause_tx=1 (-1: 0)"},
                    ParserCase{"AsAWholeValueForTransmitAlone", "Autonegotiate: on x\nRX: on x\nTX: on x\n",
                               "autonego=1 pause_rx=1 pause_tx=0 (-1: 0)"},
                    ParserCase{"WithoutALastLineThatMeetsTheEnd", "RX: on\nTX: on", "pause_rx=1 (-1: 2)"},
                    ParserCase{"UpToAKeyWithoutAColon", "RX: on\nAutonegotiate\nTX: on\n",
                               "pause_rx=1 (-1: 2)!basic_string::substr"},
                    ParserCase{"OfNothing", "", "(-1: 3)"}),
    ruleOf);

// ---- ethtool -g ----

class RingTable : public ParserTable {};

TEST_P(RingTable, IsRead) {
    EXPECT_EQ(parsedGroup(parseRings, GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, RingTable,
    testing::Values(
        ParserCase{"Whole",
                   "Ring parameters for eth0:\nPre-set maximums:\nRX: 4096\nRX Mini: 1\nRX Jumbo: 2\nTX: 4095\n"
                   "Current hardware settings:\nRX: 256\nRX Mini: 3\nRX Jumbo: 4\nTX: 255\n",
                   "pre_rx=4096 pre_mini=1 pre_jumbo=2 pre_tx=4095 cur_rx=256 cur_mini=3 cur_jumbo=4 cur_tx=255 "
                   "(-1: 0)"},
        ParserCase{"BelowAHeadingAlone", "RX: 1\nTX: 2\nCurrent hardware settings:\nTX: 3\n", "cur_tx=3 (-1: 7)"},
        ParserCase{"BelowTheLastHeading", "Current hardware settings\nPre-set maximums\nRX: 5\n", "pre_rx=5 (-1: 7)"},
        ParserCase{"WithZeroForWhatIsNoNumber", "Pre-set maximums:\nRX: n/a\nTX: 12x\n", "pre_rx=0 pre_tx=12 (-1: 6)"},
        ParserCase{"WithTabsBeforeTheNumber", "Pre-set maximums:\nRX:\t\t4096\n", "pre_rx=4096 (-1: 7)"},
        ParserCase{"WithoutOtherKeys", "Pre-set maximums:\nRX Push: 1\n RX: 2\nTX Push: 3\n", "(-1: 8)"},
        ParserCase{"WithoutALastLineThatMeetsTheEnd", "Pre-set maximums:\nRX: 1\nTX: 2", "pre_rx=1 (-1: 7)"},
        ParserCase{"UpToAKeyWithoutAColon", "RX Mini\nPre-set maximums:\nTX: 1\nRX Mini\nRX: 2\n",
                   "pre_tx=1 (-1: 7)!basic_string::substr"},
        ParserCase{"OfNothing", "", "(-1: 8)"}),
    ruleOf);

// ---- ethtool -c ----

class CoalesceTable : public ParserTable {};

TEST_P(CoalesceTable, IsRead) {
    EXPECT_EQ(parsedGroup(parseCoalesce, GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, CoalesceTable,
    testing::Values(
        ParserCase{"Whole",
                   "Coalesce parameters for eth0:\nAdaptive RX: on  TX: off\nstats-block-usecs: 1\nsample-interval: 2\n"
                   "pkt-rate-low: 3\npkt-rate-high: 4\n\nrx-usecs: 5\nrx-frames: 6\nrx-usecs-irq: 7\n"
                   "rx-frames-irq: 8\n\ntx-usecs: 9\ntx-frames: 10\ntx-usecs-irq: 11\ntx-frames-irq: 12\n\n"
                   "rx-usecs-low: 13\nrx-frame-low: 14\ntx-usecs-low: 15\ntx-frame-low: 16\n\nrx-usecs-high: 17\n"
                   "rx-frame-high: 18\ntx-usecs-high: 19\ntx-frame-high: 20\n",
                   "adaptive_rx=1 adaptive_tx=0 sbu=1 si=2 prl=3 prh=4 ru=5 rf=6 rui=7 rfi=8 tu=9 tf=10 tui=11 tfi=12 "
                   "rul=13 rfl=14 tul=15 tfl=16 ruh=17 rfh=18 tuh=19 tfh=20 (-1: 0)"},
        ParserCase{"WithTwoSwitchesInOneLine", "Adaptive RX: off  TX: on\n", "adaptive_rx=0 adaptive_tx=1 (-1: 20)"},
        ParserCase{"WithTheSecondColonNotRightAfterTheFirst", "Adaptive RX:: on TX: off\n",
                   "adaptive_rx=0 adaptive_tx=0 (-1: 20)"},
        ParserCase{"UpToAnAdaptiveLineWithoutASecondColon", "Adaptive RX: on\nrx-usecs: 1\n",
                   "adaptive_rx=1 (-1: 21)!basic_string::substr"},
        ParserCase{"UpToAnAdaptiveLineWithoutAColon", "rx-usecs: 1\nAdaptive RX\n",
                   "ru=1 (-1: 21)!basic_string::substr"},
        ParserCase{"WithOneValueForBothWhereTheFirstColonStandsApart", "Adaptive RX  TX: on\n",
                   "adaptive_rx=1 adaptive_tx=1 (-1: 20)"},
        ParserCase{"WithZeroForWhatIsNoNumber", "rx-usecs: n/a\n", "ru=0 (-1: 21)"},
        ParserCase{"WithoutTheOlderNamesOfFrames", "rx-frames-low: 1\ntx-frames-high: 2\n", "(-1: 22)"},
        ParserCase{"WithoutALastLineThatMeetsTheEnd", "rx-usecs: 1\ntx-usecs: 2", "ru=1 (-1: 21)"},
        ParserCase{"WithoutTheRestOfALongLine", "rx-usecs: 1" + std::string(400, 'x') + "\ntx-usecs: 2\n",
                   "ru=1 tu=2 (-1: 20)"},
        ParserCase{"OfNothing", "", "(-1: 22)"}),
    ruleOf);

TEST(EthtoolFile, GivesNothingWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        const auto group = [path](GroupParser parse) {
            std::ifstream file(path);
            return parsedGroup(parse, file);
        };
        std::ifstream file(path);
        EXPECT_EQ(parsedInfo(file), "?,?,?,?,?");
        EXPECT_EQ(group(parseOffload), "(-1: 12)");
        EXPECT_EQ(group(parsePause), "(-1: 3)");
        EXPECT_EQ(group(parseRings), "(-1: 8)");
        EXPECT_EQ(group(parseCoalesce), "(-1: 22)");
    }
}

}  // namespace
}  // namespace kvl::test
