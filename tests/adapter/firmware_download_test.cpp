#include <filesystem>

#include "tests/adapter/firmware_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

using FwUpdateDownload = FwUpdate;

TEST_F(FwUpdateDownload, OfTheBootCodeComesFirstAndTheFirmwareTruncatesItsResult) {
    begin(kBootCodeFamily);
    layTool(tool, {printing(Lines{"Downloading boot code"} + kDownloaded), printing(kDownloaded)});
    EXPECT_TRUE(update());
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
        1 bios update file name(boot.prg).
        1 Execute bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
        1 successMessage[0]=[Download Complete]
        1 log_mes_ifs. buf=[EndMessage=End of download]
        1 endMessage[0]=[End of download]
        1 Result file check endmsg [Downloading boot code]
        1 Result file check endmsg [Downloading firmware]
        1 Result file check endmsg [Download Complete.]
        1 Result file check endmsg [End of download.]
        1 Find endmsg[] in [End of download.]
        1 Result file check success msg [Downloading boot code]
        1 Result file check success msg [Downloading firmware]
        1 Result file check success msg [Download Complete.]
        1 Find SuccessMsg[] in [Download Complete.]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
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
    EXPECT_EQ(calls(), (Lines{call("boot.prg"), call("firmware.all")}));
    EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
}

TEST_F(FwUpdateDownload, OfTheFirmwareThatFailsLeavesTheNewBootCode) {
    begin(kBootCodeFamily);
    layTool(tool, {printing(kDownloaded), printing({"End of download"})});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
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
        1 bios update file name(boot.prg).
        1 Execute bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
        1 successMessage[0]=[Download Complete]
        1 log_mes_ifs. buf=[EndMessage=End of download]
        1 endMessage[0]=[End of download]
        1 Result file check endmsg [End of download]
        1 Find endmsg[] in [End of download]
        1 Result file check success msg [End of download]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/firmware.all").
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt).
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(calls(), goodCalls());
    EXPECT_EQ(namesIn(folder), (Lines{"boot.prg", "firmware.all", "message.txt"}));
    EXPECT_EQ(contentOf(kCnaResult), "End of download\n");
}

TEST_F(FwUpdateDownload, FailsWhereTheToolCannotBeStarted) {
    const std::vector<std::pair<Family, std::string>> rows = {
        {kMacFamily, R"(
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
            2 Failed to update execute("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/firmware.ufi")(11)(Windows Error code:17).
            4 CEmulexCommon::EmulexUpdate() [END]
            2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt).
            4 CEmulexCommon::FwUpdate() [END]
        )"},
        {kBootCodeFamily, R"(
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
            1 bios update file name(boot.prg).
            1 Execute bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
            4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
            2 Failed to update execute("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg")(11)(Windows Error code:17).
            4 CEmulexCommon::EmulexUpdate() [END]
            2 Failed to bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
            4 CEmulexCommon::FwUpdate() [END]
        )"},
    };
    for (const auto& [row, trace] : rows) {
        SCOPED_TRACE(row.uniqueName);
        begin(row);
        TestHost::onTrace([](const std::string& line) {
            if (line.find("1 bios update file name(") == 0) {
                libc().failingForks = 1;
            }
        });
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
        EXPECT_EQ(TestHost::trace(), expected(trace));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(FwUpdateDownload, FailsWhereASignalEndsTheShell) {
    address = "10:00; kill -9 $$;";
    layPort(family.addressKey);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
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
        2 Failed to update execute("/usr/sbin/ocmanager/hbacmd" Download 10:00; kill -9 $$; "/tmp/unpacked/firmware.ufi")(11)(Windows Error code:17).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt).
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
}

TEST_F(FwUpdateDownload, FailsWithoutTheTool) {
    machine.dropCommand(tool);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
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
        1 log_mes_ifs. buf=[EndMessage=End of download]
        1 endMessage[0]=[End of download]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/firmware.ufi").
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt).
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(contentOf(kCnaResult), "");
    EXPECT_EQ(TestHost::sleeps(), Sleeps(5, 30000));
}

TEST_F(FwUpdateDownload, OfBootCodeFailsWithoutAMessageFileOnceTheToolHasRun) {
    for (const Family& row : kFamilies) {
        if (row.bootCode.empty()) {
            continue;
        }
        SCOPED_TRACE(row.uniqueName);
        begin(row, "-without-message");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
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
            1 bios update file name(boot.prg).
            1 Execute bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
            4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
            4 CEmulexCommon::CheckUpdateResult_() [START]
            2 File open error /tmp/unpacked/message.txt
            4 CEmulexCommon::CheckUpdateResult_() [END]
            2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
            4 CEmulexCommon::EmulexUpdate() [END]
            2 Failed to bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
            4 CEmulexCommon::FwUpdate() [END]
        )"));
        EXPECT_EQ(calls(), (Lines{call("boot.prg")}));
        EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(FwUpdateDownload, FailsWhereTheMessageFileIsADirectory) {
    moduleDir = kArchives;
    files = {"firmware_with_directory.zip"};
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
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
        2 no successMessage
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/firmware.ufi").
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt).
        4 CEmulexCommon::FwUpdate() [END]
    )"));
    EXPECT_EQ(calls(), goodCalls());
    EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi", "message.txt"}));
}

TEST_F(FwUpdate, NamesTheResultFileOfItsClassWhereItFails) {
    useModule("fc");
    begin(kWwnFamily);
    layTool(tool, {"echo Failed"});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
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
        1 log_mes_ifs. buf=[EndMessage=End of download]
        1 endMessage[0]=[End of download]
        1 Result file check endmsg [Failed]
        1 Result file check endmsg [Failed]
        1 Result file check endmsg [Failed]
        1 Result file check endmsg [Failed]
        1 Result file check endmsg [Failed]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/firmware.grp").
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/FC/firm/temp_hbacmd_Download.txt).
        4 CEmulexCommon::FwUpdate() [END]
    )"));

    begin(kWwnFamily, "-without-message");
    fs::remove_all(kWorkRoot + "/temp/FC/firm");
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
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
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/FC/firm/temp_hbacmd_Download.txt).
        4 CEmulexCommon::FwUpdate() [END]
    )"));
}

TEST_F(FwUpdate, LooksForTheMessageFileOnceMoreBehindTheBootCode) {
    begin(kBootCodeFamily);
    TestHost::onTrace([this](const std::string& line) {
        if (line == "1 Update Result Check OK") {
            fs::remove(folder + "/message.txt");
        }
    });
    EXPECT_TRUE(update());
    EXPECT_EQ(calls(), (Lines{call("boot.prg"), callIn(fs::current_path().string(), "firmware.all")}));
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
        1 bios update file name(boot.prg).
        1 Execute bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
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
}

}  // namespace
}  // namespace kvl::test
