#include <fstream>

#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kGet = "std::string CNetworkParameter::GetVendorDependInfo(std::string, int)";
const std::string kSet = "void CNetworkParameter::SetVendorDependInfo(std::string, int, std::string)";
const std::string kRoot = "/opt/tarvenn/kvl/tmp/LAN_COMMON";
const std::string kItem2 = kRoot + "/test-module/eth02";

using GetVendorDependInfo = CollectorTest;
using SetVendorDependInfo = CollectorTest;

TEST_F(GetVendorDependInfo, ReadsTheFirstLineOfTheItemsFile) {
    machine.file(kItem2, "value\nsecond\n");
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "value");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet), detail(kGet, "infs[2] = [value]"), leave(kGet)}));
}

TEST_F(GetVendorDependInfo, HasNoLimitOfLength) {
    machine.file(kItem2, std::string(5000, 'x'));
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), std::string(5000, 'x'));
}

TEST_F(GetVendorDependInfo, TracesAMissingItem) {
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet), detail(kGet, "[" + kItem2 + "] is not exist")}));
    EXPECT_THAT(namesIn("/opt/tarvenn/kvl/tmp"), testing::IsEmpty());
}

TEST_F(GetVendorDependInfo, IsEmptyForAnEmptyFile) {
    machine.file(kItem2, "");
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGet), detail(kGet, "infs[2] = []"), leave(kGet)}));
}

TEST_F(GetVendorDependInfo, IsEmptyForADirectory) {
    machine.directory(kItem2);
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "");
}

TEST_F(GetVendorDependInfo, SeesTheItemsOfItsOwnModuleAlone) {
    machine.file(kRoot + "/other/eth02", "value");
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "");
}

TEST_F(SetVendorDependInfo, MakesTheDirectoriesAndTheFile) {
    collector->SetVendorDependInfo("eth0", 2, "value");
    EXPECT_EQ(contentOf(kItem2), "value");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kSet), leave(kSet)}));
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "value");
}

TEST_F(SetVendorDependInfo, ReplacesTheValue) {
    collector->SetVendorDependInfo("eth0", 2, "a long first value");
    collector->SetVendorDependInfo("eth0", 2, "second");
    EXPECT_EQ(contentOf(kItem2), "second");
}

TEST_F(SetVendorDependInfo, StoresTheMarkerAndAnEmptyTextLikeAnyOther) {
    collector->SetVendorDependInfo("eth0", 1, "#EMP");
    collector->SetVendorDependInfo("eth0", 2, "");
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 1), "#EMP");
    EXPECT_EQ(contentOf(kItem2), "");
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "");
}

TEST_F(SetVendorDependInfo, PutsNothingBetweenNameAndNumber) {
    collector->SetVendorDependInfo("eth1", 10, "ten of eth1");
    EXPECT_EQ(collector->GetVendorDependInfo("eth11", 0), "ten of eth1");
}

TEST_F(SetVendorDependInfo, GivesUpWithoutTheRoot) {
    machine.file("/opt/tarvenn/kvl/tmp", "in the way");
    collector->SetVendorDependInfo("eth0", 2, "value");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kSet), error(kSet, "Failed to create [" + kRoot + "]")}));
}

TEST_F(SetVendorDependInfo, GivesUpWithoutTheModulesDirectory) {
    machine.file(kRoot + "/test-module", "in the way");
    collector->SetVendorDependInfo("eth0", 2, "value");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kSet), error(kSet, "Failed to create [" + kRoot + "/test-module]")}));
}

TEST_F(SetVendorDependInfo, GoesOnBehindAFailedDeleteAndGivesUpWhereItCannotOpen) {
    machine.file(kItem2 + "/entry", "a directory in the way");
    collector->SetVendorDependInfo("eth0", 2, "value");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kSet), error(kSet, "Failed to delete File [" + kItem2 + "]"),
                                        error(kSet, "Failed to open File [" + kItem2 + "]")}));
    EXPECT_EQ(TestHost::sleeps().size(), 5U);
}

TEST_F(SetVendorDependInfo, AppendsToAFileThatCouldNotBeDeleted) {
    // Behind the last attempt another program puts its own file in the place of what was in the way.
    machine.file(kItem2 + "/entry", "");
    TestHost::onSleep([this] {
        if (TestHost::sleeps().size() == 5) {
            std::remove((kItem2 + "/entry").c_str());
            std::remove(kItem2.c_str());
            machine.file(kItem2, "old-");
        }
    });
    collector->SetVendorDependInfo("eth0", 2, "new");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kSet), error(kSet, "Failed to delete File [" + kItem2 + "]"), leave(kSet)}));
    EXPECT_EQ(collector->GetVendorDependInfo("eth0", 2), "old-new");
}

}  // namespace
}  // namespace kvl::test
