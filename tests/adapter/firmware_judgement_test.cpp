#include <filesystem>

#include "tests/adapter/firmware_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

using FwUpdateDownload = FwUpdate;

/// An update by one file that passes, with what is read and judged of its output.
const std::string kFirmwarePassed = R"(
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
    {judged}
    4 CEmulexCommon::CheckUpdateResult_() [END]
    4 CEmulexCommon::EmulexUpdate() [END]
    4 CUnzip_Utility::DeleteFolder [START]
    4 CUnzip_Utility::DeleteFolder [END]
    4 CEmulexCommon::FwUpdate() [END]
)";

/// An update by two files that both pass, with what is read and judged of its output.
const std::string kBothPassed = R"(
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
    {judged}
    4 CEmulexCommon::CheckUpdateResult_() [END]
    4 CEmulexCommon::EmulexUpdate() [END]
    4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
    4 CEmulexCommon::CheckUpdateResult_() [START]
    {judged}
    4 CEmulexCommon::CheckUpdateResult_() [END]
    4 CEmulexCommon::EmulexUpdate() [END]
    4 CUnzip_Utility::DeleteFolder [START]
    4 CUnzip_Utility::DeleteFolder [END]
    4 CEmulexCommon::FwUpdate() [END]
)";

/// An update by one file that fails, with what is read and judged of its output.
const std::string kFirmwareFailed = R"(
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
    {judged}
    4 CEmulexCommon::CheckUpdateResult_() [END]
    2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/{firmware}").
    4 CEmulexCommon::EmulexUpdate() [END]
    2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt).
    4 CEmulexCommon::FwUpdate() [END]
)";

/// An update by two files whose first one fails, with what is read and judged of its output.
const std::string kBootCodeFailed = R"(
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
    {judged}
    4 CEmulexCommon::CheckUpdateResult_() [END]
    2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
    4 CEmulexCommon::EmulexUpdate() [END]
    2 Failed to bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
    4 CEmulexCommon::FwUpdate() [END]
)";

TEST_F(FwUpdateDownload, IsJudgedByTheMessageFileOfTheModule) {
    struct Row {
        std::string variant;
        bool isGood;
        std::size_t looks;
        std::string judged;
    };
    const std::vector<Row> rows = {
        {"", true, 1, R"(
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
        )"},
        {"-crlf-message", true, 1, R"(
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete{CR}]
            1 successMessage[0]=[Download Complete]
            1 log_mes_ifs. buf=[EndMessage=End of download{CR}]
            1 endMessage[0]=[End of download]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Find endmsg[] in [End of download.]
            1 Result file check success msg [Downloading firmware]
            1 Result file check success msg [Download Complete.]
            1 Find SuccessMsg[] in [Download Complete.]
            1 Update Result Check OK
        )"},
        {"-only-success-text", true, 0, R"(
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 successMessage[0]=[Download Complete]
            1 no endMessage
            1 Result file check success msg [Downloading firmware]
            1 Result file check success msg [Download Complete.]
            1 Find SuccessMsg[] in [Download Complete.]
            1 Update Result Check OK
        )"},
        {"-six-success-texts", true, 1, R"(
            1 log_mes_ifs. buf=[SuccessMessage=A1]
            1 successMessage[0]=[A1]
            1 log_mes_ifs. buf=[SuccessMessage=B2]
            1 successMessage[1]=[B2]
            1 log_mes_ifs. buf=[SuccessMessage=C3]
            1 successMessage[2]=[C3]
            1 log_mes_ifs. buf=[SuccessMessage=D4]
            1 successMessage[3]=[D4]
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 successMessage[4]=[Download Complete]
            1 log_mes_ifs. buf=[SuccessMessage=F6]
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
        )"},
        {"-six-end-texts", true, 1, R"(
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 successMessage[0]=[Download Complete]
            1 log_mes_ifs. buf=[EndMessage=A1]
            1 endMessage[0]=[A1]
            1 log_mes_ifs. buf=[EndMessage=B2]
            1 endMessage[1]=[B2]
            1 log_mes_ifs. buf=[EndMessage=C3]
            1 endMessage[2]=[C3]
            1 log_mes_ifs. buf=[EndMessage=D4]
            1 endMessage[3]=[D4]
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 endMessage[4]=[End of download]
            1 log_mes_ifs. buf=[EndMessage=F6]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Find endmsg[] in [End of download.]
            1 Result file check success msg [Downloading firmware]
            1 Result file check success msg [Download Complete.]
            1 Find SuccessMsg[] in [Download Complete.]
            1 Update Result Check OK
        )"},
        {"-sixth-success-text", false, 1, R"(
            1 log_mes_ifs. buf=[SuccessMessage=A1]
            1 successMessage[0]=[A1]
            1 log_mes_ifs. buf=[SuccessMessage=B2]
            1 successMessage[1]=[B2]
            1 log_mes_ifs. buf=[SuccessMessage=C3]
            1 successMessage[2]=[C3]
            1 log_mes_ifs. buf=[SuccessMessage=D4]
            1 successMessage[3]=[D4]
            1 log_mes_ifs. buf=[SuccessMessage=E5]
            1 successMessage[4]=[E5]
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 endMessage[0]=[End of download]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Find endmsg[] in [End of download.]
            1 Result file check success msg [Downloading firmware]
            1 Result file check success msg [Download Complete.]
            1 Result file check success msg [End of download.]
            2 No such success message.
        )"},
        {"-sixth-end-text", false, 5, R"(
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 successMessage[0]=[Download Complete]
            1 log_mes_ifs. buf=[EndMessage=A1]
            1 endMessage[0]=[A1]
            1 log_mes_ifs. buf=[EndMessage=B2]
            1 endMessage[1]=[B2]
            1 log_mes_ifs. buf=[EndMessage=C3]
            1 endMessage[2]=[C3]
            1 log_mes_ifs. buf=[EndMessage=D4]
            1 endMessage[3]=[D4]
            1 log_mes_ifs. buf=[EndMessage=E5]
            1 endMessage[4]=[E5]
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            2 No such end message.
        )"},
        {"-only-end-text", false, 0, R"(
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 endMessage[0]=[End of download]
            2 no successMessage
        )"},
        {"-other-texts", false, 1, R"(
            1 log_mes_ifs. buf=[SuccessMessage=Update finished]
            1 successMessage[0]=[Update finished]
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 endMessage[0]=[End of download]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Find endmsg[] in [End of download.]
            1 Result file check success msg [Downloading firmware]
            1 Result file check success msg [Download Complete.]
            1 Result file check success msg [End of download.]
            2 No such success message.
        )"},
    };
    for (const Family& family_ : kFamilies) {
        for (const Row& row : rows) {
            SCOPED_TRACE(family_.uniqueName + row.variant);
            begin(family_, row.variant);
            const bool hasBootCode = !family.bootCode.empty();
            EXPECT_EQ(update(), row.isGood);
            EXPECT_EQ(lastError(), row.isGood ? kEarlierError : 17U);
            if (row.isGood) {
                EXPECT_EQ(TestHost::trace(),
                          expected({{"judged", row.judged}}, hasBootCode ? kBothPassed : kFirmwarePassed));
            } else {
                EXPECT_EQ(TestHost::trace(),
                          expected({{"judged", row.judged}}, hasBootCode ? kBootCodeFailed : kFirmwareFailed));
            }
            EXPECT_EQ(calls(), row.isGood ? goodCalls() : Lines{goodCalls().front()});
            EXPECT_EQ(TestHost::sleeps(), Sleeps(row.isGood ? row.looks * goodCalls().size() : row.looks, 30000));
            EXPECT_EQ(fs::exists(folder), !row.isGood);
        }
    }
}

TEST_F(FwUpdateDownload, IsWaitedForUpToTheFifthLook) {
    struct Row {
        std::size_t last;
        std::string judged;
    };
    const std::vector<Row> rows = {
        {2, R"(
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 successMessage[0]=[Download Complete]
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 endMessage[0]=[End of download]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Find endmsg[] in [End of download.]
            1 Result file check success msg [Downloading firmware]
            1 Result file check success msg [Download Complete.]
            1 Find SuccessMsg[] in [Download Complete.]
            1 Update Result Check OK
        )"},
        {5, R"(
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 successMessage[0]=[Download Complete]
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 endMessage[0]=[End of download]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Downloading firmware]
            1 Result file check endmsg [Download Complete.]
            1 Result file check endmsg [End of download.]
            1 Find endmsg[] in [End of download.]
            1 Result file check success msg [Downloading firmware]
            1 Result file check success msg [Download Complete.]
            1 Find SuccessMsg[] in [Download Complete.]
            1 Update Result Check OK
        )"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.last);
        begin(kMacFamily);
        layTool(tool, {printing({kDownloaded[0]})});
        atSleep(row.last, [this] { machine.file(kCnaResult, textOf(kDownloaded)); });
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), expected({{"judged", row.judged}}, kFirmwarePassed));
        EXPECT_EQ(TestHost::sleeps(), Sleeps(row.last, 30000));
    }
}

TEST_F(FwUpdateDownload, IsJudgedWhateverTheExitCode) {
    begin(kBootCodeFamily);
    layTool(tool, {printing(kDownloaded) + "\nexit 1", printing(kDownloaded) + "\nexit 255"});
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), expected(kBootCodeAndFirmwareSent));

    begin(kBootCodeFamily);
    layTool(tool, {printing({"End of download"}) + "\nexit 0"});
    EXPECT_FALSE(update());
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
        1 Result file check endmsg [End of download]
        1 Find endmsg[] in [End of download]
        1 Result file check success msg [End of download]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to bios update("/usr/sbin/ocmanager/hbacmd" Download 10:00:00:00:c9:aa:bb:cc "/tmp/unpacked/boot.prg").
        4 CEmulexCommon::FwUpdate() [END]
    )"));
}

TEST_F(FwUpdateDownload, FailsWithoutTheDirectoryOfTheResultFile) {
    for (const Family& row : kFamilies) {
        SCOPED_TRACE(row.uniqueName);
        begin(row);
        fs::remove(kWorkRoot + "/temp/CNA/firm");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
        const std::string judged = R"(
            1 log_mes_ifs. buf=[SuccessMessage=Download Complete]
            1 successMessage[0]=[Download Complete]
            1 log_mes_ifs. buf=[EndMessage=End of download]
            1 endMessage[0]=[End of download]
            2 File Open Error
        )";
        EXPECT_EQ(TestHost::trace(),
                  expected({{"judged", judged}}, row.bootCode.empty() ? kFirmwareFailed : kBootCodeFailed));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_EQ(TestHost::sleeps(), Sleeps(1, 30000));
        EXPECT_FALSE(fs::exists(kWorkRoot + "/temp/CNA/firm"));
    }
}

}  // namespace
}  // namespace kvl::test
