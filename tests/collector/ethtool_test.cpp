#include <array>

#include "tests/collector/group_fields.h"
#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kCollect = "bool CNetworkParameter::GetEtherConfigurations()";
const std::string kGet = "EthtoolResult* CNetworkParameter::GetEthtoolData(std::string)";
const std::string kIdentity = "bool CNetworkParameter::ExecEthtool_I(std::string, EthtoolResult&)";
const std::string kLog = "void CNetworkParameter::LogEthtool(std::string, EthtoolResult)";
const std::string kDisable = "void CNetworkParameter::DisableEthtoolOption(int)";
const std::string kItem = "std::string CNetworkParameter::GetVendorDependInfo(std::string, int)";

Lines itemsMissing(const std::string& ifname, const std::vector<int>& items) {
    Lines lines;
    for (const int item : items) {
        lines = lines + itemMissing(kItemDirectory + ("/" + ifname) + std::to_string(item));
    }
    return lines;
}

/// The dump of a record in which no group was written.
Lines dumpWithoutGroups(const std::string& identity) {
    return {detail(kLog, identity),
            detail(kLog,
                   "  -k: rcs=-1, tcs=-1, sg=-1, tso=-1, ufo=-1, gso=-1, gro=-1, lro=-1, rvo=-1, tvo=-1, nf=-1, "
                   "rh=-1"),
            detail(kLog,
                   "  -c: rx=-1, tx=-1, sbu=-1, si=-1, prl=-1, prh=-1, ru=-1, rf=-1, rui=-1, rfi=-1, tu=-1, "
                   "tf=-1"),
            detail(kLog, "      tui=-1, tfi=-1, rul=-1, rfl=-1, tul=-1, tfl=-1, ruh=-1, rfh=-1, tuh=-1, tfh=-1"),
            detail(kLog, "  -g: Pre(rx=-1, mini=-1, jumbo=-1, tx=-1), Cur(rx=-1, mini=-1, jumbo=-1, tx=-1)"),
            detail(kLog, "  -a: autonego=-1, rx=-1, tx=-1, PhysicalMacAddr=")};
}

class Ethtool : public CollectorTest {
protected:
    using Group = bool (CNetworkParameter::*)(std::string, EthtoolResult&);

    /// Has a group parse this output for eth0.
    EthtoolResult parse(Group group, const std::string& option, const std::string& output) {
        machine.command("/usr/sbin/ethtool " + option + " eth0", output);
        EthtoolResult result;
        EXPECT_TRUE((collector.get()->*group)("eth0", result));
        EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
        return result;
    }

    EthtoolResult parseI(const std::string& output) { return parse(&CNetworkParameter::ExecEthtool_I, "-i", output); }
    EthtoolResult parseK(const std::string& output) { return parse(&CNetworkParameter::ExecEthtool_K, "-k", output); }
    EthtoolResult parseA(const std::string& output) { return parse(&CNetworkParameter::ExecEthtool_A, "-a", output); }
    EthtoolResult parseG(const std::string& output) { return parse(&CNetworkParameter::ExecEthtool_G, "-g", output); }
    EthtoolResult parseC(const std::string& output) { return parse(&CNetworkParameter::ExecEthtool_C, "-c", output); }

    /// Lays down the value of a vendor's item of eth0.
    void item(int number, const std::string& value) {
        machine.file(kItemDirectory + ("/eth0" + std::to_string(number)), value);
    }
};

using ExecEthtoolI = Ethtool;
using ExecEthtoolK = Ethtool;
using ExecEthtoolA = Ethtool;
using ExecEthtoolG = Ethtool;
using ExecEthtoolC = Ethtool;
using ExecEthtoolE = Ethtool;
using LogEthtool = Ethtool;
using GetEtherConfigurations = Ethtool;
using GetEthtoolData = Ethtool;
using DisableEthtoolOption = Ethtool;

// ---- -i ----

TEST_F(ExecEthtoolI, ReadsTheIdentityOfTheDriver) {
    const EthtoolResult result = parseI(
        "driver: igb\nversion: 3.2.10-k\nfirmware-version: 1.5-1\nbus-info: 0000:03:00.0\nsupports-statistics: yes\n");
    EXPECT_EQ(result.driver_info.driver, "igb");
    EXPECT_EQ(result.driver_info.version, "3.2.10-k");
    EXPECT_EQ(result.driver_info.firmver, "1.5-1");
    EXPECT_EQ(result.driver_info.bus_info, "0000:03:00.0");
    EXPECT_EQ(result.driver_info.businfo, "3/0/0");
    EXPECT_EQ(result.driver_info.spare_text, "");
    EXPECT_EQ(result.driver_info.ifname, "eth0");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIdentity, " eth0")} + ran("/usr/sbin/ethtool -i eth0") +
                                  itemsMissing("eth0", {1, 0}) + Lines{leave(kIdentity, " 3/0/0")}));
}

TEST_F(ExecEthtoolI, DerivesBusDeviceAndFunctionInHexadecimal) {
    const struct {
        std::string busInfo;
        std::string businfo;
    } rows[] = {
        {"0000:03:00.0", "3/0/0"},   {"0000:1f:1c.7", "1f/1c/7"},
        {"0000:FF:1F.1", "ff/1f/1"}, {"0000:03:00.12", "3/0/1"},  // the function is one character
        {"0000:03:00.", ""},                                      // 11 characters
        {"0000:zz:yy.x", "0/0/0"},   {"", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parseI("bus-info: " + row.busInfo + "\n").driver_info.businfo, row.businfo) << row.busInfo;
        EXPECT_EQ(parseI("bus-info: " + row.busInfo + "\n").driver_info.bus_info, row.busInfo);
    }
}

TEST_F(ExecEthtoolI, KeepsTheDerivedTextWhereALaterLineIsShort) {
    const EthtoolResult result = parseI("bus-info: 0000:03:00.0\nbus-info: x\n");
    EXPECT_EQ(result.driver_info.bus_info, "x");
    EXPECT_EQ(result.driver_info.businfo, "3/0/0");
}

TEST_F(ExecEthtoolI, MatchesItsKeysAtTheBeginningOfALine) {
    const EthtoolResult result = parseI("xversion: 1\n driver: a\nfirmware-version: 2\nversions: 3\n");
    EXPECT_EQ(result.driver_info.driver, "");
    EXPECT_EQ(result.driver_info.firmver, "2");
    EXPECT_EQ(result.driver_info.version, "3");
}

TEST_F(ExecEthtoolI, LosesALineThatMeetsTheEndOfTheFile) {
    const EthtoolResult result = parseI("driver: a\nversion: 1");
    EXPECT_EQ(result.driver_info.driver, "a");
    EXPECT_EQ(result.driver_info.version, "");
}

TEST_F(ExecEthtoolI, RaisesForAKeyWithoutAColon) {
    for (const char* line : {"driver\n", "version 1\n", "firmware-version\n", "bus-info 0000:\n"}) {
        machine.command("/usr/sbin/ethtool -i eth0", line);
        EthtoolResult result;
        const bool hasColon = std::string(line).find(':') != std::string::npos;
        EXPECT_EQ(outOfRangeOf([&] { collector->ExecEthtool_I("eth0", result); }),
                  hasColon ? "(none)" : "basic_string::substr")
            << line;
    }
}

TEST_F(ExecEthtoolI, LeavesTheResultFileWhereItRaises) {
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info 03\n");
    EthtoolResult result;
    EXPECT_EQ(outOfRangeOf([&] { collector->ExecEthtool_I("eth0", result); }), "basic_string::substr");
    EXPECT_EQ(contentOf(resultFile("ethtool")), "bus-info 03\n");
}

TEST_F(ExecEthtoolI, LeavesTheRecordIfTheCommandFails) {
    machine.command("/usr/sbin/ethtool -i eth0", "driver: a\n", {71});
    EthtoolResult result;
    result.driver_info.ifname = "kept";
    result.driver_info.utility = {{"kept", "1"}};
    EXPECT_FALSE(collector->ExecEthtool_I("eth0", result));
    EXPECT_EQ(result.driver_info.ifname, "kept");
    EXPECT_EQ(result.driver_info.utility.size(), 1U);
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIdentity, " eth0")} + failed("/usr/sbin/ethtool -i eth0")));
}

TEST_F(ExecEthtoolI, ClearsTheUtilitiesOfTheRecord) {
    machine.command("/usr/sbin/ethtool -i eth0", "driver: a\n");
    EthtoolResult result;
    result.driver_info.utility = {{"old", "1"}};
    EXPECT_TRUE(collector->ExecEthtool_I("eth0", result));
    EXPECT_THAT(result.driver_info.utility, testing::IsEmpty());
}

TEST_F(ExecEthtoolI, PrefersTheVendorsItems) {
    item(1, "4.0-vendor\nsecond line");
    item(0, "9.9");
    const EthtoolResult result = parseI("version: 3.2\nfirmware-version: 1.5\n");
    EXPECT_EQ(result.driver_info.version, "4.0-vendor");
    EXPECT_EQ(result.driver_info.firmver, "9.9");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kIdentity, " eth0")} + ran("/usr/sbin/ethtool -i eth0") +
               Lines{enter(kItem), detail(kItem, "infs[1] = [4.0-vendor]"), leave(kItem), enter(kItem),
                     detail(kItem, "infs[0] = [9.9]"), leave(kItem), leave(kIdentity, " ")}));
}

TEST_F(ExecEthtoolI, EmptiesAFieldOnPurpose) {
    item(1, "#EMP");
    item(0, "#EMP");
    const EthtoolResult result = parseI("version: 3.2\nfirmware-version: 1.5\n");
    EXPECT_EQ(result.driver_info.version, "");
    EXPECT_EQ(result.driver_info.firmver, "");
}

TEST_F(ExecEthtoolI, TakesAnEmptyItemAsNoStatement) {
    item(1, "");
    item(0, "\n#EMP");
    const EthtoolResult result = parseI("version: 3.2\nfirmware-version: 1.5\n");
    EXPECT_EQ(result.driver_info.version, "3.2");
    EXPECT_EQ(result.driver_info.firmver, "1.5");
}

// ---- -k ----

struct Row {
    const char* key;
    int EthtoolResult::*field;
};

constexpr std::array<Row, 12> kOffload = {{
    {"rx-checksumming", &EthtoolResult::rcs},
    {"tx-checksumming", &EthtoolResult::tcs},
    {"scatter-gather", &EthtoolResult::sg},
    {"tcp-segmentation-offload", &EthtoolResult::tso},
    {"udp-fragmentation-offload", &EthtoolResult::ufo},
    {"generic-segmentation-offload", &EthtoolResult::gso},
    {"generic-receive-offload", &EthtoolResult::gro},
    {"large-receive-offload", &EthtoolResult::lro},
    {"rx-vlan-offload", &EthtoolResult::rvo},
    {"tx-vlan-offload", &EthtoolResult::tvo},
    {"ntuple-filters", &EthtoolResult::nf},
    {"receive-hashing", &EthtoolResult::rh},
}};

/// Expects a value in one field of a table and -1 in all others.
template <typename Table>
void expectAlone(const Table& table, const EthtoolResult& result, const Row& row, int value) {
    for (const Row& other : table) {
        EXPECT_EQ(result.*other.field, other.field == row.field ? value : -1) << row.key << " / " << other.key;
    }
}

TEST_F(ExecEthtoolK, ReadsEachSettingIntoItsField) {
    for (const Row& row : kOffload) {
        expectAlone(kOffload, parseK("Features for eth0:\n" + std::string(row.key) + ": on\n"), row, 1);
        expectAlone(kOffload, parseK(std::string(row.key) + ": off\n"), row, 0);
    }
}

TEST_F(ExecEthtoolK, TakesOnFollowedByMoreTextAsOn) {
    const EthtoolResult result = parseK(
        "rx-checksumming: on [fixed]\ntx-checksumming: off [fixed]\nscatter-gather: only\ntcp-segmentation-offload: "
        "ON\n"
        "udp-fragmentation-offload:\ngeneric-segmentation-offload:\ton\ngeneric-receive-offload:on\n");
    EXPECT_EQ(result.rcs, 1);
    EXPECT_EQ(result.tcs, 0);
    EXPECT_EQ(result.sg, 1);
    EXPECT_EQ(result.tso, 0);
    EXPECT_EQ(result.ufo, 0);
    EXPECT_EQ(result.gso, 0);  // after a tab
    EXPECT_EQ(result.gro, 1);
}

TEST_F(ExecEthtoolK, MatchesKeysAtTheBeginningOfALineAndTakesTheLastLine) {
    const EthtoolResult result =
        parseK("\ttx-checksumming: on\ntx-checksum-ipv4: on\nntuple-filters: on\nntuple-filters: off\n");
    EXPECT_EQ(result.tcs, -1);
    EXPECT_EQ(result.nf, 0);
}

TEST_F(ExecEthtoolK, RaisesForAKeyWithoutAColon) {
    for (const Row& row : kOffload) {
        machine.command("/usr/sbin/ethtool -k eth0", std::string(row.key) + " on\n");
        EthtoolResult result;
        EXPECT_EQ(outOfRangeOf([&] { collector->ExecEthtool_K("eth0", result); }), "basic_string::substr") << row.key;
    }
}

TEST_F(ExecEthtoolK, LosesALineThatMeetsTheEndOfTheFile) {
    EXPECT_EQ(parseK("x\nscatter-gather: on").sg, -1);
}

TEST_F(Ethtool, GroupsTraceNothingOfTheirOwn) {
    machine.command("/usr/sbin/ethtool -k eth0", "x\n");
    machine.command("/usr/sbin/ethtool -a eth0", "x\n");
    machine.command("/usr/sbin/ethtool -g eth0", "x\n");
    machine.command("/usr/sbin/ethtool -c eth0", "x\n");
    EthtoolResult result;
    collector->ExecEthtool_K("eth0", result);
    collector->ExecEthtool_A("eth0", result);
    collector->ExecEthtool_G("eth0", result);
    collector->ExecEthtool_C("eth0", result);
    EXPECT_EQ(TestHost::trace(), ran("/usr/sbin/ethtool -k eth0") + ran("/usr/sbin/ethtool -a eth0") +
                                     ran("/usr/sbin/ethtool -g eth0") + ran("/usr/sbin/ethtool -c eth0"));
}

TEST_F(Ethtool, AGroupWhoseCommandFailsLeavesItsFields) {
    EthtoolResult result;
    result.rcs = result.autonego = result.pre_rx = result.adaptive_rx = result.sbu = 7;
    EXPECT_FALSE(collector->ExecEthtool_K("eth0", result));
    EXPECT_FALSE(collector->ExecEthtool_A("eth0", result));
    EXPECT_FALSE(collector->ExecEthtool_G("eth0", result));
    EXPECT_FALSE(collector->ExecEthtool_C("eth0", result));
    EXPECT_EQ(result.rcs + result.autonego + result.pre_rx + result.adaptive_rx + result.sbu, 35);
}

TEST_F(Ethtool, AGroupSetsAllItsFieldsAndNoOthers) {
    const struct {
        const char* option;
        Group collect;
    } groups[] = {{"-k", &CNetworkParameter::ExecEthtool_K},
                  {"-a", &CNetworkParameter::ExecEthtool_A},
                  {"-g", &CNetworkParameter::ExecEthtool_G},
                  {"-c", &CNetworkParameter::ExecEthtool_C}};
    const std::vector<Fields> fields = groupFields();
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    for (std::size_t group = 0; group < fields.size(); ++group) {
        EthtoolResult result;
        for (const Fields& all : fields) {
            for (const auto field : all) {
                result.*field = 7;
            }
        }
        EXPECT_TRUE((collector.get()->*groups[group].collect)("eth0", result));
        for (std::size_t other = 0; other < fields.size(); ++other) {
            for (const auto field : fields[other]) {
                EXPECT_EQ(result.*field, other == group ? -1 : 7) << groups[group].option << " " << other;
            }
        }
    }
}

TEST_F(Ethtool, AGroupWithoutOutputWaitsTenSecondsAndLeavesItsFields) {
    collectInterfaces({"eth0"});
    machine.anyCommand("/usr/sbin/ethtool", "");
    EXPECT_TRUE(collector->GetEtherConfigurations());
    EXPECT_EQ(libc().sleeps, 50);
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kCollect), enter(kIdentity, " eth0")} + printedNothing("/usr/sbin/ethtool -i eth0") +
               printedNothing("/usr/sbin/ethtool -k eth0") + printedNothing("/usr/sbin/ethtool -a eth0") +
               printedNothing("/usr/sbin/ethtool -g eth0") + printedNothing("/usr/sbin/ethtool -c eth0") +
               itemsMissing("eth0", {2, 3, 5, 7}) +
               dumpWithoutGroups("ifname=, -i: businfo=, driver=, version=, firmver=, utility=(-)") +
               Lines{leave(kCollect)}));
    EthtoolResult result;
    result.sg = result.pause_rx = result.cur_rx = result.tfh = 7;
    EXPECT_FALSE(collector->ExecEthtool_K("eth0", result));
    EXPECT_FALSE(collector->ExecEthtool_A("eth0", result));
    EXPECT_FALSE(collector->ExecEthtool_G("eth0", result));
    EXPECT_FALSE(collector->ExecEthtool_C("eth0", result));
    EXPECT_EQ(result.sg + result.pause_rx + result.cur_rx + result.tfh, 28);
}

// ---- -a ----

TEST_F(ExecEthtoolA, ReadsThePauseSettings) {
    const EthtoolResult on = parseA("Pause parameters for eth0:\nAutonegotiate: on\nRX: on\nTX: on\n\n");
    EXPECT_EQ(on.autonego, 1);
    EXPECT_EQ(on.pause_rx, 1);
    EXPECT_EQ(on.pause_tx, 1);
    const EthtoolResult off = parseA("Autonegotiate: off\nRX: off\nTX: off\n");
    EXPECT_EQ(off.autonego, 0);
    EXPECT_EQ(off.pause_rx, 0);
    EXPECT_EQ(off.pause_tx, 0);
    EXPECT_EQ(parseA("nothing\n").autonego, -1);
    EXPECT_EQ(parseA("nothing\n").pause_rx, -1);
    EXPECT_EQ(parseA("nothing\n").pause_tx, -1);
}

TEST_F(ExecEthtoolA, ComparesTheWholeValueForTransmitAlone) {
    const EthtoolResult result = parseA("Autonegotiate: on now\nRX: on now\nTX: on now\n");
    EXPECT_EQ(result.autonego, 1);
    EXPECT_EQ(result.pause_rx, 1);
    EXPECT_EQ(result.pause_tx, 0);
}

TEST_F(ExecEthtoolA, ReadsAValueBehindATabAsOff) {
    const EthtoolResult result = parseA("Autonegotiate:\ton\nRX:\t\ton\nTX:\t\ton\n");
    EXPECT_EQ(result.autonego, 0);
    EXPECT_EQ(result.pause_rx, 0);
    EXPECT_EQ(result.pause_tx, 0);
}

TEST_F(ExecEthtoolA, RaisesForAutonegotiateWithoutAColon) {
    machine.command("/usr/sbin/ethtool -a eth0", "Autonegotiate on\n");
    EthtoolResult result;
    EXPECT_EQ(outOfRangeOf([&] { collector->ExecEthtool_A("eth0", result); }), "basic_string::substr");
}

// ---- -g ----

TEST_F(ExecEthtoolG, ReadsTwoSections) {
    const EthtoolResult result = parseG(
        "Ring parameters for eth0:\nPre-set maximums:\nRX:\t\t4096\nRX Mini:\t1\nRX Jumbo:\t2\nTX:\t\t4095\n"
        "Current hardware settings:\nRX:\t\t256\nRX Mini:\t3\nRX Jumbo:\t4\nTX:\t\t255\n\n");
    EXPECT_EQ(result.pre_rx, 4096);
    EXPECT_EQ(result.pre_mini, 1);
    EXPECT_EQ(result.pre_jumbo, 2);
    EXPECT_EQ(result.pre_tx, 4095);
    EXPECT_EQ(result.cur_rx, 256);
    EXPECT_EQ(result.cur_mini, 3);
    EXPECT_EQ(result.cur_jumbo, 4);
    EXPECT_EQ(result.cur_tx, 255);
}

TEST_F(ExecEthtoolG, SkipsLinesBeforeASectionAndMarksAbsentOnes) {
    const EthtoolResult result = parseG("RX: 9\nPre-set maximums\nTX: 8\n");
    EXPECT_EQ(result.pre_rx, -1);
    EXPECT_EQ(result.pre_mini, -1);
    EXPECT_EQ(result.pre_jumbo, -1);
    EXPECT_EQ(result.pre_tx, 8);
    EXPECT_EQ(result.cur_rx, -1);
    EXPECT_EQ(result.cur_mini, -1);
    EXPECT_EQ(result.cur_jumbo, -1);
    EXPECT_EQ(result.cur_tx, -1);
}

TEST_F(ExecEthtoolG, ReadsAValueThatIsNoNumberAsZero) {
    EXPECT_EQ(parseG("Pre-set maximums:\nRX: n/a\n").pre_rx, 0);
    EXPECT_EQ(parseG("Pre-set maximums:\nRX:\n").pre_rx, 0);
    EXPECT_EQ(parseG("Pre-set maximums:\nRX: 12 34\n").pre_rx, 12);
    EXPECT_EQ(parseG("Pre-set maximums:\nRX: -5\n").pre_rx, -5);
}

TEST_F(ExecEthtoolG, PassesOverLongerKeys) {
    const EthtoolResult result = parseG("Current hardware settings:\nRX: 1\nRX Buf Len: 2\nTX Push: 3\nTX: 4\n");
    EXPECT_EQ(result.cur_rx, 1);
    EXPECT_EQ(result.cur_tx, 4);
}

TEST_F(ExecEthtoolG, RaisesForAKeyWithoutAColonInASectionAlone) {
    machine.command("/usr/sbin/ethtool -g eth0", "Pre-set maximums:\nRX Mini 4\n");
    EthtoolResult result;
    EXPECT_EQ(outOfRangeOf([&] { collector->ExecEthtool_G("eth0", result); }), "basic_string::substr");
    EXPECT_EQ(parseG("RX Mini 4\n").pre_mini, -1);
}

// ---- -c ----

constexpr std::array<Row, 20> kCoalesce = {{
    {"stats-block-usecs:", &EthtoolResult::sbu}, {"sample-interval:", &EthtoolResult::si},
    {"pkt-rate-low:", &EthtoolResult::prl},      {"pkt-rate-high:", &EthtoolResult::prh},
    {"rx-usecs:", &EthtoolResult::ru},           {"rx-frames:", &EthtoolResult::rf},
    {"rx-usecs-irq:", &EthtoolResult::rui},      {"rx-frames-irq:", &EthtoolResult::rfi},
    {"tx-usecs:", &EthtoolResult::tu},           {"tx-frames:", &EthtoolResult::tf},
    {"tx-usecs-irq:", &EthtoolResult::tui},      {"tx-frames-irq:", &EthtoolResult::tfi},
    {"rx-usecs-low:", &EthtoolResult::rul},      {"rx-frame-low:", &EthtoolResult::rfl},
    {"tx-usecs-low:", &EthtoolResult::tul},      {"tx-frame-low:", &EthtoolResult::tfl},
    {"rx-usecs-high:", &EthtoolResult::ruh},     {"rx-frame-high:", &EthtoolResult::rfh},
    {"tx-usecs-high:", &EthtoolResult::tuh},     {"tx-frame-high:", &EthtoolResult::tfh},
}};

TEST_F(ExecEthtoolC, ReadsEachNumberIntoItsField) {
    for (const Row& row : kCoalesce) {
        const EthtoolResult result = parseC("Coalesce parameters for eth0:\n" + std::string(row.key) + " 17\n");
        expectAlone(kCoalesce, result, row, 17);
        EXPECT_EQ(result.adaptive_rx, -1);
        EXPECT_EQ(result.adaptive_tx, -1);
    }
}

TEST_F(ExecEthtoolC, ReadsAValueThatIsNoNumberAsZero) {
    EXPECT_EQ(parseC("rx-usecs: n/a\n").ru, 0);
}

TEST_F(ExecEthtoolC, PassesOverTheOlderNamesOfFrames) {
    EXPECT_EQ(parseC("rx-frames-low: 3\n").rfl, -1);
    EXPECT_EQ(parseC("rx-frames-low: 3\n").rf, -1);
}

TEST_F(ExecEthtoolC, ReadsTwoSwitchesFromOneLine) {
    const struct {
        std::string line;
        int rx;
        int tx;
    } rows[] = {
        {"Adaptive RX: on  TX: off", 1, 0},  {"Adaptive RX: off  TX: on", 0, 1},  {"Adaptive RX: on  TX: on [x]", 1, 1},
        {"Adaptive RX: n/a  TX: n/a", 0, 0}, {"Adaptive RX: off  TX:\ton", 0, 0}, {"Adaptive RX:on TX:on", 1, 1},
        {"Adaptive RX off TX: on", 1, 1},  // without "RX:" the search starts at position 3
    };
    for (const auto& row : rows) {
        const EthtoolResult result = parseC(row.line + "\n");
        EXPECT_EQ(result.adaptive_rx, row.rx) << row.line;
        EXPECT_EQ(result.adaptive_tx, row.tx) << row.line;
    }
}

TEST_F(ExecEthtoolC, RaisesForAnAdaptiveLineWithoutItsColons) {
    for (const char* line : {"Adaptive RX off TX on\n", "Adaptive RX: off  TX on\n", "Adaptive RX:\n"}) {
        machine.command("/usr/sbin/ethtool -c eth0", line);
        EthtoolResult result;
        EXPECT_EQ(outOfRangeOf([&] { collector->ExecEthtool_C("eth0", result); }), "basic_string::substr") << line;
    }
}

// ---- Vendor items ----

TEST_F(ExecEthtoolE, RunsNoCommandAndAsksForItsItems) {
    EthtoolResult result;
    EXPECT_TRUE(collector->ExecEthtool_E("eth0", result));
    EXPECT_EQ(TestHost::trace(), itemsMissing("eth0", {2, 3, 5, 7}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(result.PhysicalMacAddr, "");
}

TEST_F(ExecEthtoolE, TakesThePhysicalAddress) {
    EthtoolResult result;
    item(2, "00:00:C9:00:00:01");
    collector->ExecEthtool_E("eth0", result);
    EXPECT_EQ(result.PhysicalMacAddr, "00:00:C9:00:00:01");
    item(2, "");
    collector->ExecEthtool_E("eth0", result);
    EXPECT_EQ(result.PhysicalMacAddr, "00:00:C9:00:00:01");
    item(2, "#EMP");
    collector->ExecEthtool_E("eth0", result);
    EXPECT_EQ(result.PhysicalMacAddr, "");
}

TEST_F(ExecEthtoolE, TakesUpToThreeUtilities) {
    item(3, "one");
    item(4, "1.0");
    item(6, "lost");  // its name is missing
    item(7, "three");
    item(9, "unused");
    EthtoolResult result;
    collector->ExecEthtool_E("eth0", result);
    ASSERT_EQ(result.driver_info.utility.size(), 2U);
    EXPECT_EQ(result.driver_info.utility[0].name + "/" + result.driver_info.utility[0].version, "one/1.0");
    EXPECT_EQ(result.driver_info.utility[1].name + "/" + result.driver_info.utility[1].version, "three/");
}

TEST_F(ExecEthtoolE, TakesTheMarkerOfAnEmptyFieldAsAnyOtherName) {
    item(3, "#EMP");
    item(4, "#EMP");
    EthtoolResult result;
    collector->ExecEthtool_E("eth0", result);
    EXPECT_EQ(result.driver_info.utility.at(0).name, "#EMP");
    EXPECT_EQ(result.driver_info.utility.at(0).version, "#EMP");
}

// ---- Dump ----

TEST_F(LogEthtool, WritesSixLines) {
    EthtoolResult r;
    r.driver_info = {"igb", "3.2", "1.5", "0000:03:00.0", "3/0/0", "", "own", {{"u1", "1"}, {"u2", "2"}}};
    int value = 0;
    for (const Row& row : kOffload) {
        r.*row.field = ++value;
    }
    r.autonego = ++value;
    r.pause_rx = ++value;
    r.pause_tx = ++value;
    for (int EthtoolResult::*field :
         {&EthtoolResult::pre_rx, &EthtoolResult::pre_mini, &EthtoolResult::pre_jumbo, &EthtoolResult::pre_tx,
          &EthtoolResult::cur_rx, &EthtoolResult::cur_mini, &EthtoolResult::cur_jumbo, &EthtoolResult::cur_tx,
          &EthtoolResult::adaptive_rx, &EthtoolResult::adaptive_tx}) {
        r.*field = ++value;
    }
    for (const Row& row : kCoalesce) {
        r.*row.field = ++value;
    }
    r.PhysicalMacAddr = "mac";
    collector->LogEthtool("given", r);
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{
            detail(kLog, "ifname=own, -i: businfo=3/0/0, driver=igb, version=3.2, firmver=1.5, utility=(u1/1, u2/2)"),
            detail(kLog, "  -k: rcs=1, tcs=2, sg=3, tso=4, ufo=5, gso=6, gro=7, lro=8, rvo=9, tvo=10, nf=11, rh=12"),
            detail(kLog,
                   "  -c: rx=24, tx=25, sbu=26, si=27, prl=28, prh=29, ru=30, rf=31, rui=32, rfi=33, tu=34, "
                   "tf=35"),
            detail(kLog, "      tui=36, tfi=37, rul=38, rfl=39, tul=40, tfl=41, ruh=42, rfh=43, tuh=44, tfh=45"),
            detail(kLog, "  -g: Pre(rx=16, mini=17, jumbo=18, tx=19), Cur(rx=20, mini=21, jumbo=22, tx=23)"),
            detail(kLog, "  -a: autonego=13, rx=14, tx=15, PhysicalMacAddr=mac")}));
}

TEST_F(LogEthtool, WritesAHyphenWithoutUtilitiesAndMinusOneWithoutGroups) {
    collector->LogEthtool("given", EthtoolResult());
    EXPECT_EQ(TestHost::trace(), dumpWithoutGroups("ifname=, -i: businfo=, driver=, version=, firmver=, utility=(-)"));
}

TEST_F(LogEthtool, CutsADumpTo1023Characters) {
    EthtoolResult result;
    result.driver_info.driver = std::string(2000, 'd');
    result.PhysicalMacAddr = std::string(2000, 'm');
    collector->LogEthtool("given", result);
    const Lines trace = TestHost::trace();
    EXPECT_EQ(trace.front(),
              detail(kLog, ("ifname=, -i: businfo=, driver=" + result.driver_info.driver).substr(0, 1023)));
    EXPECT_EQ(
        trace.back(),
        detail(kLog, ("  -a: autonego=-1, rx=-1, tx=-1, PhysicalMacAddr=" + result.PhysicalMacAddr).substr(0, 1023)));
}

// ---- Collection ----

TEST_F(GetEtherConfigurations, RunsAllGroupsForAnEthernetPort) {
    collectInterfaces({"eth0"});
    machine.command("/usr/sbin/ethtool -i eth0", "driver: igb\n");
    machine.command("/usr/sbin/ethtool -k eth0", "scatter-gather: on\n");
    machine.command("/usr/sbin/ethtool -a eth0", "RX: on\n");
    machine.command("/usr/sbin/ethtool -g eth0", "Pre-set maximums:\nRX: 5\n");
    machine.command("/usr/sbin/ethtool -c eth0", "rx-usecs: 6\n");
    EXPECT_TRUE(collector->GetEtherConfigurations());
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{enter(kCollect)} + Lines{enter(kIdentity, " eth0")} + ran("/usr/sbin/ethtool -i eth0") +
         itemsMissing("eth0", {1, 0}) + Lines{leave(kIdentity, " ")} + ran("/usr/sbin/ethtool -k eth0") +
         ran("/usr/sbin/ethtool -a eth0") + ran("/usr/sbin/ethtool -g eth0") + ran("/usr/sbin/ethtool -c eth0") +
         itemsMissing("eth0", {2, 3, 5, 7}) +
         Lines{detail(kLog, "ifname=eth0, -i: businfo=, driver=igb, version=, firmver=, utility=(-)"),
               detail(kLog,
                      "  -k: rcs=-1, tcs=-1, sg=1, tso=-1, ufo=-1, gso=-1, gro=-1, lro=-1, rvo=-1, tvo=-1, "
                      "nf=-1, rh=-1"),
               detail(kLog,
                      "  -c: rx=-1, tx=-1, sbu=-1, si=-1, prl=-1, prh=-1, ru=6, rf=-1, rui=-1, rfi=-1, tu=-1, "
                      "tf=-1"),
               detail(kLog, "      tui=-1, tfi=-1, rul=-1, rfl=-1, tul=-1, tfl=-1, ruh=-1, rfh=-1, tuh=-1, tfh=-1"),
               detail(kLog, "  -g: Pre(rx=5, mini=-1, jumbo=-1, tx=-1), Cur(rx=-1, mini=-1, jumbo=-1, tx=-1)"),
               detail(kLog, "  -a: autonego=-1, rx=1, tx=-1, PhysicalMacAddr="), leave(kCollect)}));
    EXPECT_EQ(collector->GetEthtoolData("eth0")->ru, 6);
}

TEST_F(GetEtherConfigurations, RunsTheIdentityAloneForOtherNames) {
    collectInterfaces({"bond0", "eth0.100", "ib0", "veth0"});
    collector->GetEtherConfigurations();
    EXPECT_EQ(machine.commandsRun(), Lines{});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    forget();
    collector->GetEtherConfigurations();
    EXPECT_EQ(machine.commandsRun(),
              (Lines{"/usr/sbin/ethtool -i bond0", "/usr/sbin/ethtool -i eth0.100", "/usr/sbin/ethtool -k eth0.100",
                     "/usr/sbin/ethtool -a eth0.100", "/usr/sbin/ethtool -g eth0.100", "/usr/sbin/ethtool -c eth0.100",
                     "/usr/sbin/ethtool -i ib0", "/usr/sbin/ethtool -i veth0"}));
}

TEST_F(GetEtherConfigurations, WalksInByteOrder) {
    collectInterfaces({"ib2", "ib10", "ib1"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    collector->GetEtherConfigurations();
    EXPECT_EQ(machine.commandsRun(),
              (Lines{"/usr/sbin/ethtool -i ib1", "/usr/sbin/ethtool -i ib10", "/usr/sbin/ethtool -i ib2"}));
}

TEST_F(GetEtherConfigurations, StoresARecordThoughEverythingFails) {
    collectInterfaces({"eth0"});
    EXPECT_TRUE(collector->GetEtherConfigurations());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect), enter(kIdentity, " eth0")} +
                                  failed("/usr/sbin/ethtool -i eth0") + failed("/usr/sbin/ethtool -k eth0") +
                                  failed("/usr/sbin/ethtool -a eth0") + failed("/usr/sbin/ethtool -g eth0") +
                                  failed("/usr/sbin/ethtool -c eth0") + itemsMissing("eth0", {2, 3, 5, 7}) +
                                  dumpWithoutGroups("ifname=, -i: businfo=, driver=, version=, firmver=, utility=(-)") +
                                  Lines{leave(kCollect)}));
    ASSERT_NE(collector->GetEthtoolData("eth0"), nullptr);
    EXPECT_EQ(collector->GetEthtoolData("eth0")->rcs, -1);
}

TEST_F(GetEtherConfigurations, CollectsTheInterfacesFirstIfThereAreNone) {
    machine.command("/sbin/ifconfig -a", "ib0 Link encap:Ethernet\n\n");
    machine.anyCommand("/usr/sbin/ethtool", "driver: x\n");
    EXPECT_TRUE(collector->GetEtherConfigurations());
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/ifconfig -a", "/usr/sbin/ethtool -i ib0"}));
}

TEST_F(GetEtherConfigurations, IsTrueThoughTheInterfacesCannotBeCollected) {
    EXPECT_TRUE(collector->GetEtherConfigurations());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect), enter("bool CNetworkParameter::GetNetworkConfigurations()")} +
                                  failed("/sbin/ifconfig -a") + Lines{leave(kCollect)}));
}

TEST_F(GetEtherConfigurations, KeepsWhatWasCollectedBefore) {
    collectInterfaces({"ib0"});
    machine.command("/usr/sbin/ethtool -i ib0", "driver: first\n");
    collector->GetEtherConfigurations();
    const EthtoolResult* first = collector->GetEthtoolData("ib0");
    machine.command("/usr/sbin/ethtool -i ib0", "driver: second\n");
    forget();
    collector->GetEtherConfigurations();
    EXPECT_EQ(machine.commandsRun(), (Lines{"/usr/sbin/ethtool -i ib0"}));
    EXPECT_EQ(collector->GetEthtoolData("ib0"), first);
    EXPECT_EQ(first->driver_info.driver, "first");
}

TEST_F(GetEtherConfigurations, RunsAGroupOnlyIfItIsEnabled) {
    const Lines options = {"-k", "-a", "-g", "-c"};
    for (int disabled = 0; disabled < 4; ++disabled) {
        collector = std::make_unique<CNetworkParameter>(kModule);
        collectInterfaces({"eth0"});
        machine.anyCommand("/usr/sbin/ethtool", "x\n");
        collector->DisableEthtoolOption(disabled);
        collector->GetEtherConfigurations();
        Lines expected = {"/usr/sbin/ethtool -i eth0"};
        for (int option = 0; option < 4; ++option) {
            if (option != disabled) {
                expected.push_back("/usr/sbin/ethtool " + options[static_cast<std::size_t>(option)] + " eth0");
            }
        }
        EXPECT_EQ(machine.commandsRun(), expected);
    }
}

TEST_F(GetEtherConfigurations, ReadsNoItemsOfTheLastGroupIfItIsDisabled) {
    collectInterfaces({"eth0"});
    item(2, "mac");
    item(3, "utility");
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    collector->DisableEthtoolOption(4);
    collector->GetEtherConfigurations();
    EXPECT_EQ(collector->GetEthtoolData("eth0")->PhysicalMacAddr, "");
    EXPECT_THAT(collector->GetEthtoolData("eth0")->driver_info.utility, testing::IsEmpty());
}

TEST_F(GetEtherConfigurations, WritesNoGroupIfAllAreDisabled) {
    collectInterfaces({"eth0"});
    machine.anyCommand("/usr/sbin/ethtool", "driver: x\n");
    for (int option = 0; option <= 4; ++option) {
        collector->DisableEthtoolOption(option);
    }
    collector->GetEtherConfigurations();
    EXPECT_EQ(machine.commandsRun(), (Lines{"/usr/sbin/ethtool -i eth0"}));
    EXPECT_EQ(collector->GetEthtoolData("eth0")->driver_info.driver, "x");
    EXPECT_EQ(collector->GetEthtoolData("eth0")->sg, -1);
}

TEST_F(GetEthtoolData, CollectsTwiceOverIfThereIsNothing) {
    collectInterfaces({"ib0"});
    machine.anyCommand("/usr/sbin/ethtool", "driver: x\n");
    ASSERT_NE(collector->GetEthtoolData("ib0"), nullptr);
    // The list of names is empty, so the interfaces are collected again.
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/ifconfig -a", "/usr/sbin/ethtool -i ib0"}));
}

TEST_F(GetEthtoolData, CollectsNoInterfacesIfTheListOfNamesIsFilled) {
    collectInterfaces({"ib0"});
    strarray_t names;
    collector->GetInterfaceNameList(names);
    machine.anyCommand("/usr/sbin/ethtool", "driver: x\n");
    ASSERT_NE(collector->GetEthtoolData("ib0"), nullptr);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/usr/sbin/ethtool -i ib0"}));
}

TEST_F(GetEthtoolData, IsNullForAnUnknownNameAfterAllCollections) {
    machine.command("/sbin/ifconfig -a", "ib0 Link encap:Ethernet\n\n");
    machine.anyCommand("/usr/sbin/ethtool", "driver: x\n");
    EXPECT_EQ(collector->GetEthtoolData("eth9"), nullptr);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/ifconfig -a", "/usr/sbin/ethtool -i ib0"}));
    EXPECT_EQ(TestHost::trace().back(), detail(kGet, "-- eth9 has no ethtool data"));
    forget();
    EXPECT_EQ(collector->GetEthtoolData("eth9"), nullptr);
    EXPECT_EQ(TestHost::trace(), (Lines{detail(kGet, "-- eth9 has no ethtool data")}));
}

TEST_F(GetEthtoolData, TracesNothingForAKnownName) {
    collectInterfaces({"ib0"});
    collector->GetEtherConfigurations();
    forget();
    EXPECT_NE(collector->GetEthtoolData("ib0"), nullptr);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(DisableEthtoolOption, ClearsOneFlagForGood) {
    for (int option = 0; option <= 4; ++option) {
        forget();
        collector->DisableEthtoolOption(option);
        EXPECT_EQ(collector->GetEthtoolOptionConf(option), 0);
        EXPECT_EQ(option == 4 ? 0 : collector->GetEthtoolOptionConf(option + 1), option == 4 ? 0 : 1);
        EXPECT_EQ(TestHost::trace(),
                  (Lines{enter(kDisable), detail(kDisable, "option=" + std::to_string(option)), leave(kDisable)}));
    }
}

TEST_F(DisableEthtoolOption, ChangesNothingForAnyOtherNumber) {
    for (const int option : {-1, 5, 1000}) {
        collector->DisableEthtoolOption(option);
    }
    for (int option = 0; option <= 4; ++option) {
        EXPECT_NE(collector->GetEthtoolOptionConf(option), 0);
    }
    EXPECT_EQ(TestHost::trace().size(), 9U);
}

TEST_F(GetEtherConfigurations, LetsAnExceptionThroughAtOnce) {
    collectInterfaces({"eth0", "eth1"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    machine.command("/usr/sbin/ethtool -k eth0", "scatter-gather on\n");
    EXPECT_EQ(outOfRangeOf([this] { collector->GetEtherConfigurations(); }), "basic_string::substr");
    EXPECT_EQ(machine.commandsRun(), (Lines{"/usr/sbin/ethtool -i eth0", "/usr/sbin/ethtool -k eth0"}));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kCollect), enter(kIdentity, " eth0")} + ran("/usr/sbin/ethtool -i eth0") +
               itemsMissing("eth0", {1, 0}) + Lines{leave(kIdentity, " ")} + ran("/usr/sbin/ethtool -k eth0")));
    EXPECT_EQ(contentOf(resultFile("ethtool")), "scatter-gather on\n");
}

TEST_F(GetEtherConfigurations, ShowsALaterItemToANewObjectAlone) {
    collectInterfaces({"eth0"});
    machine.anyCommand("/usr/sbin/ethtool", "version: printed\n");
    collector->GetEtherConfigurations();
    collector->SetVendorDependInfo("eth0", 1, "vendor's");
    collector->GetEtherConfigurations();
    EXPECT_EQ(collector->GetEthtoolData("eth0")->driver_info.version, "printed");
    collector = std::make_unique<CNetworkParameter>(kModule);
    EXPECT_EQ(collector->GetEthtoolData("eth0")->driver_info.version, "vendor's");
}

TEST_F(Ethtool, GroupsLoseALineThatMeetsTheEndOfTheFile) {
    EXPECT_EQ(parseA("x\nRX: on").pause_rx, -1);
    EXPECT_EQ(parseG("Pre-set maximums:\nRX: 5").pre_rx, -1);
    EXPECT_EQ(parseC("x\nrx-usecs: 5").ru, -1);
}

TEST_F(ExecEthtoolC, WrapsANumberThatDoesNotFit) {
    EXPECT_EQ(parseC("rx-usecs: 4294967295\n").ru, -1);
    EXPECT_EQ(parseC("rx-usecs: 2147483648\n").ru, -2147483647 - 1);
}

}  // namespace
}  // namespace kvl::test
