#include <filesystem>

#include "tests/adapter/firmware_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

// ---- The folder and the archive ----

using FwUpdateFolder = FwUpdate;

TEST_F(FwUpdateFolder, LosesWhatAnEarlierUpdateLeft) {
    machine.file(folder + "/earlier.ufi", "");
    machine.file(folder + "/inner/deep/earlier.prg", "");
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), expected(R"(
        4 CEmulexCommon::FwUpdate() [START]
        4 CCommon_Information::GetPCIInfo [START]
        1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
        4 CCommon_Information::GetPCIInfo [END]
        1 Func Number is [0]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::DeleteFolder [END]
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
        1 successMessage[0]=[Download Complete]
        1 log_mes_ifs. buf=[EndMessage=End of download]
        1 endMessage[0]=[End of download]
        1 Result file check endmsg [Downloading firmware]
        1 Result file check endmsg [Download Complete.]
        1 Result file check endmsg [End of download.]
        1 Find endmsg[] in [End of download.]
        1 Result file check success msg [Downloading firmware]
        1 Result file check success msg [Download Complete.]
        1 Find SuccessMsg[] in [Download Complete.]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(FwUpdateFolder, IsMadeWithTheDirectoriesAboveIt) {
    folder = "/tmp/new/and/deep";
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), expected(kFirmwareSent));
    EXPECT_THAT(namesIn("/tmp/new/and"), testing::IsEmpty());
    EXPECT_TRUE(fs::exists("/tmp/new/and"));
}

TEST_F(FwUpdateFolder, WithoutANameFailsTheUpdate) {
    folder = "";
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 28U);
    EXPECT_EQ(TestHost::trace(), expected(R"(
        4 CEmulexCommon::FwUpdate() [START]
        4 CCommon_Information::GetPCIInfo [START]
        1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
        4 CCommon_Information::GetPCIInfo [END]
        1 Func Number is [0]
        4 CUnzip_Utility::DeleteFolder [START]
        2 CUnzip_Utility::DeleteFolder Invalid input path
        4 CUnzip_Utility::DeleteFolder [END]
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateFolder, ThatCannotBeDeletedFailsTheUpdate) {
    machine.directory(folder);
    fs::create_symlink("nowhere", folder + "/dangling");
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
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(namesIn(folder), (Lines{"dangling"}));
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateFolder, ThatCannotBeMadeFailsTheUpdate) {
    machine.file("/tmp/file", "text");
    folder = "/tmp/file/unpacked";
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 19U);
    EXPECT_EQ(TestHost::trace(), expected(R"(
        4 CEmulexCommon::FwUpdate() [START]
        4 CCommon_Information::GetPCIInfo [START]
        1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
        4 CCommon_Information::GetPCIInfo [END]
        1 Func Number is [0]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        2 Failed to get create unzip folder
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(contentOf("/tmp/file"), "text");
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateFolder, StaysEmptyWithoutAnArchive) {
    for (const Family& row : kFamilies) {
        for (const std::list<std::string>& list :
             {std::list<std::string>{}, std::list<std::string>{"readme.txt", "module.ZIP"}}) {
            begin(row, "-no-archive");
            files = list;
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 26U);
            EXPECT_EQ(TestHost::trace(), expected(R"(
                4 CEmulexCommon::FwUpdate() [START]
                4 CCommon_Information::GetPCIInfo [START]
                1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo=0
                4 CCommon_Information::GetPCIInfo [END]
                1 Func Number is [0]
                4 CUnzip_Utility::DeleteFolder [START]
                4 CUnzip_Utility::DeleteFolder [END]
                4 CUnzip_Utility::UpdateModuleUnzip [START]
                4 CUnzip_Utility::UpdateModuleUnzip [END]
                4 CEmulexCommon::FwUpdate() [END]
            )"));
            EXPECT_TRUE(fs::is_directory(folder));
            EXPECT_THAT(namesIn(folder), testing::IsEmpty());
            EXPECT_THAT(calls(), testing::IsEmpty());
        }
    }
}

TEST_F(FwUpdateFolder, StaysBehindAnArchiveThatCannotBeUnpacked) {
    const std::vector<std::pair<std::string, int>> rows = {
        {"-damaged-archive", 9}, {"-empty-archive", 1}, {"-no-archive", 9}};
    for (const Family& row : kFamilies) {
        for (const auto& [variant, status] : rows) {
            SCOPED_TRACE(row.uniqueName + variant);
            begin(row, variant);
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 26U);
            EXPECT_EQ(TestHost::trace(), expected({{"status", std::to_string(status)}}, R"(
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
                2 CUnzip_Utility::Unzip() unzip() failed. dwRtnCode={status}
                4 CUnzip_Utility::Unzip [END]
                4 CUnzip_Utility::UpdateModuleUnzip [END]
                4 CEmulexCommon::FwUpdate() [END]
            )"));
            EXPECT_TRUE(fs::is_directory(folder));
            EXPECT_THAT(calls(), testing::IsEmpty());
        }
    }
}

TEST_F(FwUpdateFolder, ThatCannotBeDeletedAtTheEndFailsAnUpdateThatWasDone) {
    moduleDir = kArchives;
    files = {"firmware_with_link.zip"};
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
        1 successMessage[0]=[Download Complete]
        1 no endMessage
        1 Result file check success msg [Downloading firmware]
        1 Result file check success msg [Download Complete.]
        1 Find SuccessMsg[] in [Download Complete.]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        2 Failed to get delete update module folder(/tmp/unpacked)
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(calls(), goodCalls());
    EXPECT_EQ(namesIn(folder), (Lines{"dangling"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

// ---- The files of the module ----

using FwUpdateFiles = FwUpdate;

const std::string kFileMissed = R"(
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
    {failure}
    4 CEmulexCommon::FwUpdate() [END]
)";

TEST_F(FwUpdateFiles, AreOneOfEachKindBeforeTheAdapterIsLookedFor) {
    struct Row {
        std::string variant;
        bool isForBootCode;
        std::string failure;
    };
    const std::vector<Row> rows = {
        {"-no-firmware", false, "2 Failed to find update module.There is not firmware file."},
        {"-two-firmware", false, "2 Failed to find update module.There is some firmware file."},
        {"-no-boot-code", true, "2 Failed to find update module.There is not bios file."},
        {"-two-boot-code", true, "2 Failed to find update module.There is some bios file."},
    };
    for (const Family& family_ : kFamilies) {
        for (const Row& row : rows) {
            if (row.isForBootCode && family_.bootCode.empty()) {
                continue;
            }
            SCOPED_TRACE(family_.uniqueName + row.variant);
            begin(family_, row.variant);
            fs::remove(kListFile);
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 29U);
            EXPECT_EQ(TestHost::trace(), expected({{"failure", row.failure}}, kFileMissed));
            EXPECT_THAT(calls(), testing::IsEmpty());
            EXPECT_EQ(contentOf(kCnaResult), "(absent)");
            EXPECT_THAT(namesIn(folder), testing::Contains("message.txt"));
        }
    }
}

TEST_F(FwUpdateFiles, AreThoseOfTheOwnFamily) {
    const std::vector<std::pair<Family, std::string>> rows = {
        {kMacFamily, "2 Failed to find update module.There is not firmware file."},
        {kWwnFamily, "2 Failed to find update module.There is not firmware file."},
        {kBootCodeFamily, "2 Failed to find update module.There is not bios file."},
    };
    for (const auto& [row, failure] : rows) {
        for (const Family& other : kFamilies) {
            if (other.firmware == row.firmware) {
                continue;
            }
            SCOPED_TRACE(row.uniqueName + " with " + other.module);
            begin(row);
            moduleDir = kModules + "/" + other.module;
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 29U);
            EXPECT_EQ(TestHost::trace(), expected({{"failure", failure}}, kFileMissed));
            EXPECT_THAT(calls(), testing::IsEmpty());
        }
    }
}

TEST_F(FwUpdateFiles, StayBehindAFailureUntilTheNextUpdate) {
    begin(kMacFamily, "-two-firmware");
    EXPECT_FALSE(update());
    EXPECT_EQ(namesIn(folder), (Lines{"firmware-2.ufi", "firmware.ufi", "message.txt"}));
    forget();
    moduleDir = kModules + "/OCe11102";
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), expected(kFirmwareSent));
    EXPECT_FALSE(fs::exists(folder));
}

// ---- The adapter ----

using FwUpdateAdapter = FwUpdate;

TEST_F(FwUpdateAdapter, IsMissedWithoutTheList) {
    for (const Family& row : kFamilies) {
        begin(row);
        fs::remove(kListFile);
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 15U);
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
            2 File Open Error. file(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt) errcode(2)
            1 CEmulexCommon::GetKeyValueFromFile_() [END]
            1 CEmulexCommon::GetHBAInfoList() [END]
            1 CEmulexCommon::GetHBAInfo() [END]
            2 HBA information could not be obtained.
            4 CEmulexCommon::FwUpdate() [END]
        )"));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_TRUE(fs::exists(folder + "/" + row.firmware));
    }
}

TEST_F(FwUpdateAdapter, IsMissedAtAnotherLocation) {
    Port port;
    port.bus = "6";
    layList({port});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 15U);
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
        2 HBA information could not be obtained.
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateAdapter, NeedsTheAddressOfItsFamily) {
    for (const Family& row : kFamilies) {
        SCOPED_TRACE(row.uniqueName);
        const bool isKnownByMac = row.addressKey == "Permanent MAC";
        begin(row);
        layPort(isKnownByMac ? "Port WWN" : "Permanent MAC");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 27U);
        EXPECT_EQ(TestHost::trace(),
                  expected({{"failure", isKnownByMac ? "2 Failed to get MAC Address" : "2 Failed to get WWPN"}}, R"(
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
            {failure}
            4 CEmulexCommon::FwUpdate() [END]
        )"));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_TRUE(fs::exists(folder + "/" + row.firmware));
    }
}

TEST_F(FwUpdateAdapter, IsTheOneAtTheLocation) {
    Port other;
    other.addressKey = "Permanent MAC";
    other.address = "other";
    other.function = "1";
    Port own = other;
    own.address = address;
    own.function = "0";
    layList({other, own});
    EXPECT_TRUE(update());
    EXPECT_EQ(calls(), goodCalls());
}

TEST_F(FwUpdateAdapter, RaisesForAListWithAShortLine) {
    std::string list = contentOf(kListFile);
    list.replace(list.find("PCI Bus Number : 5\n"), 19, "PCI Bus Number:\n");
    machine.file(kListFile, list);
    EXPECT_EQ(outOfRangeOf([this] { update(); }), "basic_string::substr");
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace().back(), "1 [PCI Bus Number] is finded");
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi", "message.txt"}));
}

}  // namespace
}  // namespace kvl::test
