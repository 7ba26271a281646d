#include <filesystem>

#include "tests/adapter/firmware_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

/// Names that are no family's, some of them nearly.
const Lines kOtherNames = {"",          "OCe11102_",  "oce11102",   "OCe1110", "fcelx_16g_", "fcelx_8g1p_",
                           "fcelx_8g2", "FCELX_8G2P", " fcelx_8g2p"};

// ---- What is updated ----

using FwUpdateFamily = FwUpdate;

TEST_F(FwUpdateFamily, HasItsFilesSentToFunctionZero) {
    for (const Family& row : kFamilies) {
        SCOPED_TRACE(row.uniqueName);
        begin(row);
        EXPECT_TRUE(update());
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), expected(row.bootCode.empty() ? kFirmwareSent : kBootCodeAndFirmwareSent));
        EXPECT_EQ(calls(), goodCalls());
        EXPECT_EQ(TestHost::sleeps(), Sleeps(goodCalls().size(), 30000));
        EXPECT_FALSE(fs::exists(folder));
        EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
    }
}

TEST_F(FwUpdateFamily, HasItsFilesSentToOtherFunctionsOnlyIfEachIsUpdated) {
    for (const Family& row : kFamilies) {
        for (const int number : {1, 7}) {
            SCOPED_TRACE(row.uniqueName + " " + std::to_string(number));
            begin(row, "", number);
            machine.file(folder + "/earlier.ufi", "");
            EXPECT_TRUE(update());
            EXPECT_EQ(lastError(), kEarlierError);
            if (row.updatesEveryFunction) {
                EXPECT_EQ(TestHost::trace(), expected(kBootCodeAndFirmwareSent));
                EXPECT_EQ(calls(), goodCalls());
                EXPECT_FALSE(fs::exists(folder));
            } else {
                EXPECT_EQ(TestHost::trace(), expected(R"(
                    4 CEmulexCommon::FwUpdate() [START]
                    4 CCommon_Information::GetPCIInfo [START]
                    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo={function}
                    4 CCommon_Information::GetPCIInfo [END]
                    1 Func Number is [{function}]
                    1 Func Number is not 0.FwUpdate is skipped
                    4 CEmulexCommon::FwUpdate() [END]
                )"));
                EXPECT_THAT(calls(), testing::IsEmpty());
                EXPECT_EQ(namesIn(folder), (Lines{"earlier.ufi"}));
                EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
                EXPECT_EQ(contentOf(kCnaResult), "(absent)");
            }
        }
    }
}

TEST_F(FwUpdateFamily, IsNotLookedForOnOtherFunctions) {
    for (const std::string& name : kOtherNames) {
        SCOPED_TRACE(name);
        begin(kMacFamily, "", 1);
        family.uniqueName = name;
        EXPECT_TRUE(update());
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), expected(R"(
            4 CEmulexCommon::FwUpdate() [START]
            4 CCommon_Information::GetPCIInfo [START]
            1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=1
            4 CCommon_Information::GetPCIInfo [END]
            1 Func Number is [1]
            1 Func Number is not 0.FwUpdate is skipped
            4 CEmulexCommon::FwUpdate() [END]
        )"));
        EXPECT_FALSE(fs::exists(folder));
    }
}

TEST_F(FwUpdateFamily, ThatIsUnknownIsReportedTwiceWithTwoEndLines) {
    for (const std::string& name : kOtherNames) {
        SCOPED_TRACE(name);
        begin(kMacFamily);
        family.uniqueName = name;
        unsigned long firstError = 0;
        TestHost::onTrace([&](const std::string& line) {
            if (line == "2 No such unique name.") {
                firstError = lastError();
            }
        });
        EXPECT_FALSE(update());
        EXPECT_EQ(firstError, 29U);
        EXPECT_EQ(lastError(), 29U);
        EXPECT_EQ(TestHost::trace(), expected(R"(
            4 CEmulexCommon::FwUpdate() [START]
            4 CCommon_Information::GetPCIInfo [START]
            1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
            4 CCommon_Information::GetPCIInfo [END]
            1 Func Number is [0]
            4 CUnzip_Utility::DeleteFolder [START]
            4 CUnzip_Utility::DeleteFolder [END]
            4 CUnzip_Utility::UpdateModuleUnzip [START]
            4 CUnzip_Utility::Unzip [START]
            1 CUnzip_Utility::Unzip ARG Check tsZipPath={archive} tsOutPath=/tmp/unpacked
            4 CUnzip_Utility::Unzip [END]
            4 CUnzip_Utility::UpdateModuleUnzip [END]
            2 No such unique name.
            4 CEmulexCommon::FwUpdate() [END]
            2 Failed to find update module.There is not firmware file.
            4 CEmulexCommon::FwUpdate() [END]
        )"));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi", "message.txt"}));
    }
}

TEST_F(FwUpdateFamily, OfWhichASkippedFunctionNeedsNothingElse) {
    begin(kMacFamily, "", 1);
    folder = "";
    moduleDir = "/tmp/absent";
    files.clear();
    fs::remove(kListFile);
    EXPECT_TRUE(update());
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), expected(R"(
        4 CEmulexCommon::FwUpdate() [START]
        4 CCommon_Information::GetPCIInfo [START]
        1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=1
        4 CCommon_Information::GetPCIInfo [END]
        1 Func Number is [1]
        1 Func Number is not 0.FwUpdate is skipped
        4 CEmulexCommon::FwUpdate() [END]
    )"));
}

// ---- Arguments ----

using FwUpdateArgument = FwUpdate;

TEST_F(FwUpdateArgument, ThatIsNoLocationFailsFirst) {
    folder = "";
    for (const char* location : {"", "05", "05:", "05:00"}) {
        SCOPED_TRACE(location);
        forget();
        deviceId = location;
        EXPECT_FALSE(update());
        EXPECT_EQ(takeError(), 13U);
        EXPECT_EQ(TestHost::trace(), expected(R"(
            4 CEmulexCommon::FwUpdate() [START]
            4 CCommon_Information::GetPCIInfo [START]
            4 CCommon_Information::GetPCIInfo [END]
            2 PCI Information is invalid
            4 CEmulexCommon::FwUpdate() [END]
        )"));
    }
}

TEST_F(FwUpdateArgument, WithoutANameDoesNotMatter) {
    for (const bool flag : {false, true}) {
        begin(kBootCodeFamily);
        EXPECT_TRUE(update(flag));
        EXPECT_EQ(TestHost::trace(), expected(kBootCodeAndFirmwareSent));
    }
}

TEST_F(FwUpdateArgument, ThatNamesTheModuleSelectsTheDirectoryOfTheResultFile) {
    for (const std::string name : {"cna", "CNA", "fc", "cnax", ""}) {
        SCOPED_TRACE(name);
        begin(kMacFamily);
        useModule(name);
        EXPECT_TRUE(update());
        EXPECT_EQ(contentOf(kCnaResult), name == "cna" ? textOf(kDownloaded) : "(absent)");
        EXPECT_EQ(contentOf(kFcResult), name == "cna" ? "(absent)" : textOf(kDownloaded));
        EXPECT_EQ(TestHost::trace(), expected(kFirmwareSent));
        EXPECT_EQ(TestHost::modules(), (Lines{name}));
    }
}

TEST_F(FwUpdateArgument, ThatIsAPathIsQuotedForTheShell) {
    begin(kBootCodeFamily);
    folder = "/tmp/un packed; echo";
    tool = "/usr/sbin/oc manager's/hbacmd";
    layTool(tool, {printing(kDownloaded)});
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), expected(kBootCodeAndFirmwareSent));
    EXPECT_EQ(calls(), goodCalls());
}

TEST_F(FwUpdateArgument, ThatIsAnAddressIsNotQuoted) {
    address = "10:00 extra $((1+1))";
    layPort(family.addressKey);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), expected(kFirmwareSent));
    EXPECT_EQ(calls(), (Lines{folder + " [Download][10:00][extra][2][" + folder + "/firmware.ufi]"}));
}

TEST_F(FwUpdateArgument, ThatIsTheFolderMayBeThatOfTheResultFile) {
    folder = kWorkRoot + "/temp/CNA/firm";
    for (int time = 0; time < 2; ++time) {
        forget();
        layTool(tool, {printing(kDownloaded)});
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), expected(kFirmwareSent));
        EXPECT_EQ(calls(), goodCalls());
        EXPECT_FALSE(fs::exists(folder));
    }
}

TEST_F(FwUpdateArgument, ThatListsTheFilesNamesTheArchiveByItsFirstZip) {
    machine.file("/tmp/module/damaged.zip", "");
    fs::copy_file(moduleDir + "/module.zip", "/tmp/module/good.zip.1");
    moduleDir = "/tmp/module";
    files = {"readme.txt", "good.zip.1", "damaged.zip"};
    EXPECT_TRUE(update());
    EXPECT_EQ(files, (std::list<std::string>{"readme.txt", "good.zip.1", "damaged.zip"}));
    files = {"good.zip.1"};
    EXPECT_EQ(TestHost::trace(), expected(kFirmwareSent));
}

}  // namespace
}  // namespace kvl::test
