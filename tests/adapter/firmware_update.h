#ifndef KVL_TESTS_ADAPTER_FIRMWARE_UPDATE_H
#define KVL_TESTS_ADAPTER_FIRMWARE_UPDATE_H

#include <list>
#include <string>
#include <vector>

#include "tests/adapter/update_test.h"

namespace kvl::test {

inline const std::string kArchives = std::string(KVL_BUILD_DIRECTORY) + "/machines/archives";
inline const std::string kFcResult = kWorkRoot + "/temp/FC/firm/temp_hbacmd_Download.txt";
inline const std::string kCnaResult = kWorkRoot + "/temp/CNA/firm/temp_hbacmd_Download.txt";

inline const Lines kDownloaded = {"Downloading firmware", "Download Complete.", "End of download."};

/// How one family is updated.
struct Family {
    std::string uniqueName;
    std::string module;
    std::string firmware;
    std::string bootCode;
    std::string addressKey;
    bool updatesEveryFunction;
};

inline const std::vector<Family> kFamilies = {
    {"OCe11102", "OCe11102", "firmware.ufi", "", "Permanent MAC", false},
    {"OCl14104", "OCl14104", "firmware.ufi", "", "Permanent MAC", false},
    {"fcelx_16g", "fcelx_16g", "firmware.grp", "", "Port WWN", false},
    {"fcelx_8g1p", "fcelx_8g1p", "firmware.all", "boot.prg", "Port WWN", true},
    {"fcelx_8g2p_", "fcelx_8g2p", "firmware.all", "boot.prg", "Port WWN", true},
    {"fcelx_8g2p", "fcelx_8g2p", "firmware.all", "boot.prg", "Port WWN", true},
    {"fcelx_8g2pxyz", "fcelx_8g2p", "firmware.all", "boot.prg", "Port WWN", true},
};
inline const Family& kMacFamily = kFamilies[0];
inline const Family& kWwnFamily = kFamilies[2];
inline const Family& kBootCodeFamily = kFamilies[3];

/// The whole trace of an update by one file: the firmware.
inline const std::string kFirmwareSent = R"(
    4 CEmulexCommon::FwUpdate() [START]
    4 CCommon_Information::GetPCIInfo [START]
    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo={function}
    4 CCommon_Information::GetPCIInfo [END]
    1 Func Number is [{function}]
    4 CUnzip_Utility::DeleteFolder [START]
    4 CUnzip_Utility::DeleteFolder [END]
    4 CUnzip_Utility::UpdateModuleUnzip [START]
    4 CUnzip_Utility::Unzip [START]
    1 CUnzip_Utility::Unzip ARG Check tsZipPath={archive} tsOutPath={folder}
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
    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo={function}
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
)";

/// The whole trace of an update by two files: the boot code comes first.
inline const std::string kBootCodeAndFirmwareSent = R"(
    4 CEmulexCommon::FwUpdate() [START]
    4 CCommon_Information::GetPCIInfo [START]
    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo={function}
    4 CCommon_Information::GetPCIInfo [END]
    1 Func Number is [{function}]
    4 CUnzip_Utility::DeleteFolder [START]
    4 CUnzip_Utility::DeleteFolder [END]
    4 CUnzip_Utility::UpdateModuleUnzip [START]
    4 CUnzip_Utility::Unzip [START]
    1 CUnzip_Utility::Unzip ARG Check tsZipPath={archive} tsOutPath={folder}
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
    1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=5, DevNo=0, FuncNo={function}
    4 CCommon_Information::GetPCIInfo [END]
    1 [PCI Bus Number] is finded
    1 CEmulexCommon::GetHBAInfo() [END]
    1 bios update file name(boot.prg).
    1 Execute bios update("{tool}" Download {address} "{folder}/boot.prg").
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
)";

/// Updates of a module after an earlier error that a good call leaves. The tool writes everything at once; the
/// directories of the result file are there, as the caller makes them.
class FwUpdate : public UpdateTest {
protected:
    static constexpr unsigned long kEarlierError = 38;

    void SetUp() override {
        UpdateTest::SetUp();
        begin(kMacFamily);
    }

    /// Starts again with the good module and the port of a family.
    void begin(const Family& newFamily, const std::string& variant = "", int newFunction = 0) {
        machine.reset();
        forget();
        machine.directory(kWorkRoot + "/temp/CNA/firm");
        machine.directory(kWorkRoot + "/temp/FC/firm");
        CEmulexCommon::SetLastError(kEarlierError);
        family = newFamily;
        function = newFunction;
        deviceId = "05:00." + std::to_string(function);
        moduleDir = kModules + "/" + family.module + variant;
        files = {"module.zip"};
        layPort(family.addressKey);
        layTool(tool, {printing(kDownloaded)});
    }

    void layPort(const std::string& addressKey) {
        Port port;
        port.addressKey = addressKey;
        port.address = address;
        port.function = std::to_string(function);
        layList({port});
    }

    bool update(bool unusedFlag = false) {
        const bool isUpdated = quietly([&] {
            return CEmulexCommon::FwUpdate(deviceId, moduleDir, folder, tool, &files, unusedFlag, module,
                                           family.uniqueName);
        });
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
        return isUpdated;
    }

    static unsigned long lastError() { return CEmulexCommon::GetLastError(); }

    /// A call of the tool in the folder, as `calls` has it.
    std::string call(const std::string& file) const { return callIn(folder, file); }
    std::string callIn(const std::string& directory, const std::string& file) const {
        return directory + " [Download][" + address + "][" + folder + "/" + file + "]";
    }

    /// A trace that is written out, with the names of this update in place of its placeholders.
    Lines expected(Values values, const std::string& text) const {
        values.insert(values.end(), {{"function", std::to_string(function)},
                                     {"archive", moduleDir + "/" + (files.empty() ? "" : files.front())},
                                     {"folder", folder},
                                     {"tool", tool},
                                     {"address", address},
                                     {"firmware", family.firmware}});
        return traceOf(values, text);
    }
    Lines expected(const std::string& text) const { return expected({}, text); }

    /// The calls of a good update.
    Lines goodCalls() const {
        return family.bootCode.empty() ? Lines{call(family.firmware)}
                                       : Lines{call(family.bootCode), call(family.firmware)};
    }

    Family family;
    int function = 0;
    std::string deviceId;
    std::string moduleDir;
    std::string folder = "/tmp/unpacked";
    std::string tool = kTool;
    std::string address = "10:00:00:00:c9:aa:bb:cc";
    std::list<std::string> files;
};

}  // namespace kvl::test

#endif
