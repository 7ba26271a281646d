#include <sys/stat.h>

#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kGet = "bool CNetworkParameter::GetVLANData(vlanconfmap_t&)";
const std::string kParse = "bool CNetworkParameter::ParseVlanConfigResult(vlanconfmap_t&)";
const std::string kRemove = "bool CNetworkParameter::RemoveVlanId(std::string, std::string&)";
const std::string kFile = "/proc/net/vlan/config";
const std::string kCommand = "/bin/cat /proc/net/vlan/config";
const std::string kHeader = "VLAN Dev name\t | VLAN ID\nName-Type: VLAN_NAME_TYPE_RAW_PLUS_VID_NO_PAD\n";

/// Each entry as "NAME ID INTERFACE".
Lines asLines(const vlanconfmap_t& vlans) {
    Lines lines;
    for (const auto& [name, vlan] : vlans) {
        lines.push_back(name + " " + std::to_string(vlan.id) + " " + vlan.interface);
    }
    return lines;
}

class Vlan : public CollectorTest {
protected:
    Lines collect(const std::string& table) {
        machine.file(kFile, kHeader + table);
        vlanconfmap_t vlans;
        EXPECT_TRUE(collector->GetVLANData(vlans));
        EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
        return asLines(vlans);
    }
};

using GetVLANData = Vlan;
using ParseVlanConfigResult = Vlan;
using RemoveVlanId = Vlan;

TEST_F(GetVLANData, ReadsTheKernelsTable) {
    EXPECT_EQ(collect("eth0.100       | 100  | eth0\nbond0.200      | 200  | bond0\n"),
              (Lines{"bond0.200 200 bond0", "eth0.100 100 eth0"}));
    // One more pass at the end of the file, on the texts of the row before.
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet)} + ran(kCommand) +
                                  Lines{detail(kParse, "ifname=eth0.100, id=100, interface=eth0"),
                                        detail(kParse, "ifname=bond0.200, id=200, interface=bond0"),
                                        detail(kParse, "ifname=bond0.200, id=0, interface=bond0"), leave(kGet)}));
}

TEST_F(GetVLANData, AnswersTheSecondQuestionWithoutACommandAndWithoutALeaveLine) {
    collect("eth0.100 | 100 | eth0\n");
    forget();
    machine.dropCommand("/bin/cat");
    vlanconfmap_t vlans;
    EXPECT_TRUE(collector->GetVLANData(vlans));
    EXPECT_EQ(asLines(vlans), (Lines{"eth0.100 100 eth0"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet)}));
}

TEST_F(GetVLANData, KeepsTheEntriesOfTheCallersMap) {
    machine.file(kFile, kHeader + "eth0.100 | 100 | eth0\n");
    for (int question = 1; question <= 2; ++question) {
        vlanconfmap_t vlans = {{"eth0.100", {7, "kept"}}, {"other", {8, "x"}}};
        EXPECT_TRUE(collector->GetVLANData(vlans));
        EXPECT_EQ(asLines(vlans), (Lines{"eth0.100 7 kept", "other 8 x"}));
    }
}

TEST_F(GetVLANData, RunsNothingWithoutTheFile) {
    vlanconfmap_t vlans;
    EXPECT_FALSE(collector->GetVLANData(vlans));
    EXPECT_FALSE(collector->GetVLANData(vlans));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet), enter(kGet)}));
}

TEST_F(GetVLANData, FailsWithTheCommand) {
    machine.file(kFile, kHeader);
    machine.command(kCommand, "", {1});
    vlanconfmap_t vlans;
    EXPECT_FALSE(collector->GetVLANData(vlans));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet)} + failed(kCommand)));
}

TEST_F(GetVLANData, HasAnEntryWithoutANameForATableWithoutRows) {
    EXPECT_EQ(collect(""), (Lines{" 0 "}));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kGet)} + ran(kCommand) + Lines{detail(kParse, "ifname=, id=0, interface="), leave(kGet)}));
}

TEST_F(GetVLANData, IsTrueThoughTheResultFileCannotBeRead) {
    machine.file(kFile, kHeader);
    libc().system = [this](const char*) {
        machine.file(resultFile("cat"), "x");
        chmod(resultFile("cat").c_str(), 0);
        return 0;
    };
    vlanconfmap_t vlans;
    EXPECT_TRUE(collector->GetVLANData(vlans));
    EXPECT_THAT(vlans, testing::IsEmpty());
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(ParseVlanConfigResult, FailsWithoutAResultFile) {
    vlanconfmap_t vlans;
    EXPECT_FALSE(collector->ParseVlanConfigResult(vlans));
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(ParseVlanConfigResult, MakesNoFurtherPassForALastRowWithoutALineFeed) {
    EXPECT_EQ(collect("eth0.100 | 100 | eth0"), (Lines{"eth0.100 100 eth0"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet)} + ran(kCommand) +
                                  Lines{detail(kParse, "ifname=eth0.100, id=100, interface=eth0"), leave(kGet)}));
}

TEST_F(ParseVlanConfigResult, TakesFiveWordsAtATimeWhateverTheLines) {
    EXPECT_EQ(collect("eth0.1 x 1\nx eth0 eth0.2 | 2 |\neth1\n"), (Lines{"eth0.1 1 eth0", "eth0.2 2 eth1"}));
}

TEST_F(ParseVlanConfigResult, IsOutOfStepBehindANameThatTouchesTheBar) {
    EXPECT_EQ(collect("averylongname15| 4094  | eth4\neth0.100       | 100  | eth0\n"),
              (Lines{"averylongname15| 0 eth0.100", "| 0 eth0"}));
}

TEST_F(ParseVlanConfigResult, TakesTheWordsOfTheRowBeforeForARowThatIsCut) {
    EXPECT_EQ(collect("eth0.100 | 100 | eth0\neth0.200 |"), (Lines{"eth0.100 100 eth0", "eth0.200 0 |"}));
    collector = std::make_unique<CNetworkParameter>(kModule);
    EXPECT_EQ(collect("eth0.100 | 100 | eth0\neth0.200\n"), (Lines{"eth0.100 100 eth0", "eth0.200 0 eth0"}));
}

TEST_F(ParseVlanConfigResult, KeepsTheFirstEntryOfARepeatedName) {
    EXPECT_EQ(collect("eth0.1 | 1 | eth0\neth0.1 | 2 | eth1\n"), (Lines{"eth0.1 1 eth0"}));
}

TEST_F(ParseVlanConfigResult, ReadsAnIdentifierThatIsNoNumberAsZero) {
    EXPECT_EQ(collect("eth0.1 | x | eth0\n"), (Lines{"eth0.1 0 eth0"}));
}

TEST_F(RemoveVlanId, TellsTheInterfaceUnderAVlan) {
    machine.file(kFile, kHeader + "storage | 100 | eth0\n");
    std::string base = "untouched";
    EXPECT_TRUE(collector->RemoveVlanId("storage", base));
    EXPECT_EQ(base, "eth0");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kRemove, " storage"), enter(kGet)} + ran(kCommand) +
               Lines{detail(kParse, "ifname=storage, id=100, interface=eth0"),
                     detail(kParse, "ifname=storage, id=0, interface=eth0"), leave(kGet), leave(kRemove, " eth0")}));
}

TEST_F(RemoveVlanId, LeavesTheTextForANameThatIsNoVlan) {
    collect("eth0.100 | 100 | eth0\n");
    forget();
    std::string base = "untouched";
    EXPECT_TRUE(collector->RemoveVlanId("eth0", base));
    EXPECT_EQ(base, "untouched");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kRemove, " eth0"), leave(kRemove, " untouched")}));
}

TEST_F(RemoveVlanId, GoesByTheTableAndNotByTheName) {
    std::string base;
    EXPECT_TRUE(collector->RemoveVlanId("eth0.100", base));
    EXPECT_EQ(base, "");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kRemove, " eth0.100"), enter(kGet), leave(kRemove, " ")}));
}

TEST_F(ParseVlanConfigResult, GivesTheEntriesOfEarlierTablesToo) {
    collect("eth0.1 | 1 | eth0\n");
    machine.file(resultFile("cat"), kHeader + "eth0.1 | 9 | eth9\neth0.2 | 2 | eth0\n");
    vlanconfmap_t vlans;
    EXPECT_TRUE(collector->ParseVlanConfigResult(vlans));
    EXPECT_EQ(asLines(vlans), (Lines{"eth0.1 1 eth0", "eth0.2 2 eth0"}));
}

}  // namespace
}  // namespace kvl::test
