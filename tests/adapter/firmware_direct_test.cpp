#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/firmware_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

class FwUpdateDirect : public FwUpdate {
protected:
    void SetUp() override {
        FwUpdate::SetUp();
        beginDirect();
    }

    void beginDirect(const Family& newFamily = kMacFamily) { begin(newFamily, "-without-message"); }

    /// So many calls of the tool, in the directory of the caller.
    Lines directCalls(std::size_t number) const {
        return Lines(number, callIn(fs::current_path().string(), family.firmware));
    }

    /// Has so many forks fail, the first of them that of the first run.
    static void failRuns(int number) {
        TestHost::onTrace([number](const std::string& line) {
            if (line == "1 bios update file name().") {
                libc().failingForks = number;
            }
        });
    }
};

/// The tool printed its success text.
const std::string kSentDirectly = R"(
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
    1 CEmulexCommon::GetHBAInfo() [START]
    1 CEmulexCommon::GetHBAInfoList() [START]
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Number,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Bus Number,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Function,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Type,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Serial No.,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
    1 CEmulexCommon::GetHBAInfoList() [END]
    4 CCommon_Information::GetPCIInfo [START]
    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
    4 CCommon_Information::GetPCIInfo [END]
    1 [PCI Bus Number] is finded
    1 CEmulexCommon::GetHBAInfo() [END]
    1 bios update file name().
    4 CUnzip_Utility::DeleteFolder [START]
    4 CUnzip_Utility::DeleteFolder [END]
    4 CEmulexCommon::FwUpdate() [END]
)";

/// The tool printed no success text in four runs.
const std::string kGivenUp = R"(
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
    1 CEmulexCommon::GetHBAInfo() [START]
    1 CEmulexCommon::GetHBAInfoList() [START]
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Number,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Bus Number,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Function,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Type,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Serial No.,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
    1 CEmulexCommon::GetHBAInfoList() [END]
    4 CCommon_Information::GetPCIInfo [START]
    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
    4 CCommon_Information::GetPCIInfo [END]
    1 [PCI Bus Number] is finded
    1 CEmulexCommon::GetHBAInfo() [END]
    1 bios update file name().
    2 Failed to execute command:"/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/firmware.ufi" ,return:{return}
    4 CEmulexCommon::FwUpdate() [END]
)";

/// The output of a run can't be looked at.
const std::string kResultNotOpened = R"(
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
    1 CEmulexCommon::GetHBAInfo() [START]
    1 CEmulexCommon::GetHBAInfoList() [START]
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Number,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Bus Number,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Function,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Type,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Serial No.,:)
    1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
    1 CEmulexCommon::GetHBAInfoList() [END]
    4 CCommon_Information::GetPCIInfo [START]
    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
    4 CCommon_Information::GetPCIInfo [END]
    1 [PCI Bus Number] is finded
    1 CEmulexCommon::GetHBAInfo() [END]
    1 bios update file name().
    2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt).
    4 CEmulexCommon::FwUpdate() [END]
)";

TEST_F(FwUpdateDirect, IsDoneAtTheFirstToTheFourthRunWhateverTheExitCodes) {
    for (const Family& row : {kFamilies[0], kFamilies[1], kFamilies[2]}) {
        for (std::size_t good = 1; good <= 4; ++good) {
            SCOPED_TRACE(row.uniqueName + " " + std::to_string(good));
            beginDirect(row);
            layTool(tool, Lines(good - 1, "echo Downloading; exit 0") + Lines{printing(kDownloaded) + "\nexit 3"});
            EXPECT_TRUE(update());
            EXPECT_EQ(lastError(), kEarlierError);
            EXPECT_EQ(TestHost::trace(), expected(kSentDirectly));
            EXPECT_EQ(calls(), directCalls(good));
            EXPECT_EQ(TestHost::sleeps(), Sleeps(good - 1, 1000));
            EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
            EXPECT_FALSE(fs::exists(folder));
        }
    }
}

TEST_F(FwUpdateDirect, IsGivenUpBehindTheFourthRun) {
    for (const char* script : {"true", "echo 'download complete'; echo Download; echo Complete", "echo Failed; exit 9",
                               "printf 'Download  Complete'"}) {
        SCOPED_TRACE(script);
        beginDirect();
        layTool(tool, {script});
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 16U);
        EXPECT_EQ(TestHost::trace(), expected({{"return", "0"}}, kGivenUp));
        EXPECT_EQ(calls(), directCalls(4));
        EXPECT_EQ(TestHost::sleeps(), Sleeps(3, 1000));
        EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi"}));
    }
}

TEST_F(FwUpdateDirect, IsDoneWithTheTextAnywhereInALine) {
    for (const char* script : {"echo 'The Download Completed'", "echo; echo 'Download Complete'; echo failed",
                               "printf 'Download Complete'", "printf 'Download Complete\\r\\n'"}) {
        SCOPED_TRACE(script);
        beginDirect();
        layTool(tool, {script});
        EXPECT_TRUE(update());
        EXPECT_EQ(calls(), directCalls(1));
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(FwUpdateDirect, LooksAtTheOutputOfEachRunAlone) {
    layTool(tool, {"printf 'Download '", "echo Complete"});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 16U);
    EXPECT_EQ(contentOf(kCnaResult), "Complete\n");
}

TEST_F(FwUpdateDirect, TellsTheResultOfTheLastRun) {
    // What an earlier update left is looked at where the tool could not be started.
    machine.file(kCnaResult, "Downloading\n");
    layTool(tool, {"true"});
    failRuns(4);
    EXPECT_FALSE(update());
    EXPECT_EQ(takeError(), 16U);
    EXPECT_EQ(TestHost::trace(), expected({{"return", "1"}}, kGivenUp));
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_EQ(contentOf(kCnaResult), "Downloading\n");

    forget();
    failRuns(3);
    EXPECT_FALSE(update());
    EXPECT_EQ(takeError(), 16U);
    EXPECT_EQ(TestHost::trace(), expected({{"return", "0"}}, kGivenUp));
    EXPECT_EQ(calls(), directCalls(1));
}

TEST_F(FwUpdateDirect, IsNotJudgedByTheResultOfTheRun) {
    machine.file(kCnaResult, "Download Complete\n");
    failRuns(1);
    EXPECT_TRUE(update());
    EXPECT_THAT(calls(), testing::IsEmpty());

    beginDirect();
    address = "10:00; kill -9 $$;";
    layPort(family.addressKey);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), expected(kSentDirectly));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(FwUpdateDirect, FailsWithoutTheDirectoryOfTheResultFile) {
    for (const Family& row : {kFamilies[0], kFamilies[1], kFamilies[2]}) {
        beginDirect(row);
        fs::remove(kWorkRoot + "/temp/CNA/firm");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
        EXPECT_EQ(TestHost::trace(), expected(kResultNotOpened));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
        EXPECT_EQ(namesIn(folder), (Lines{row.firmware}));
    }
}

TEST_F(FwUpdateDirect, FailsWithoutAnotherRunWhereTheResultFileCannotBeRead) {
    machine.file(kCnaResult, "");
    chmod(kCnaResult.c_str(), 0200);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), expected(kResultNotOpened));
    EXPECT_EQ(calls(), directCalls(1));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(FwUpdateDirect, FailsWhereTheResultFileCannotBeOpenedAtALaterRun) {
    layTool(tool, {"true"});
    atSleep(2, [] { fs::remove_all(kWorkRoot + "/temp/CNA/firm"); });
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), expected(kResultNotOpened));
    EXPECT_EQ(calls(), directCalls(2));
    EXPECT_EQ(TestHost::sleeps(), Sleeps(2, 1000));
}

TEST_F(FwUpdateDirect, GivesUpADirectoryInPlaceOfTheResultFile) {
    machine.directory(kCnaResult);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 16U);
    EXPECT_EQ(TestHost::trace(), expected({{"return", "0"}}, kGivenUp));
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_EQ(TestHost::sleeps(), Sleeps(3, 1000));
}

TEST_F(FwUpdateDirect, ReadsOutputOfAnyLength) {
    for (const char* filler :
         {"head -c 10485760 /dev/zero | tr '\\0' x", "head -c 100000 /dev/zero | tr '\\0' '\\n'"}) {
        SCOPED_TRACE(filler);
        beginDirect();
        layTool(tool, {std::string(filler) + "; printf 'Download Complete'"});
        EXPECT_TRUE(update());
        EXPECT_EQ(calls(), directCalls(1));
    }
}

TEST_F(FwUpdateDirect, FailsWhereTheFolderCannotBeDeletedAtTheEnd) {
    layTool(tool, {"ln -s nowhere " + folder + "/dangling; echo Download Complete"});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 28U);
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
        1 CEmulexCommon::GetHBAInfo() [START]
        1 CEmulexCommon::GetHBAInfoList() [START]
        1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
        1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Number,:)
        1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Bus Number,:)
        1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,PCI Function,:)
        1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port Type,:)
        1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Serial No.,:)
        1 GetKeyValueFromFile(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt,Port WWN|Permanent MAC,:)
        1 CEmulexCommon::GetHBAInfoList() [END]
        4 CCommon_Information::GetPCIInfo [START]
        1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
        4 CCommon_Information::GetPCIInfo [END]
        1 [PCI Bus Number] is finded
        1 CEmulexCommon::GetHBAInfo() [END]
        1 bios update file name().
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        2 Failed to get delete update module folder(/tmp/unpacked)
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(namesIn(folder), (Lines{"dangling"}));
}

}  // namespace
}  // namespace kvl::test
