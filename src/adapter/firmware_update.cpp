#include <array>
#include <fstream>
#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_record.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "adapter/result_mode.h"
#include "adapter/update_failure.h"
#include "adapter/update_families.h"
#include "adapter/working_tree.h"
#include "foundation/CCommon_Information.h"
#include "foundation/CUnzip_Utility.h"
#include "foundation/line_search.h"
#include "foundation/shell_child.h"
#include "host/CFileUtility.h"
#include "host/HostFunctions.h"

using kvl::AdapterTrace;
using kvl::fail;
using kvl::UpdateFamily;

namespace {

constexpr int kDownloadRuns = 4;
constexpr unsigned long kDownloadPause = 1000;

/// The update of one adapter function, from its unpacked module.
struct FirmwareUpdate {
    const UpdateFamily* family;  ///< Null for an unknown name.
    std::string deviceId;
    std::string folder;  ///< Where the module is unpacked.
    std::string tool;
    std::string moduleName;

    std::string bootCode;  ///< File name; empty without one.
    std::string firmware;
    std::string address;

    std::string messageFile() const { return folder + "/message.txt"; }
    std::string resultFile() const {
        const std::string adapterClass = kvl::isCna(moduleName) ? "CNA" : "FC";
        return kvl::workPath("temp/" + adapterClass + "/firm/temp_hbacmd_Download.txt");
    }
    std::string downloadCommand(const std::string& file) const {
        return kvl::downloadCommand(tool, address, folder, file);
    }
};

/// How a search for the one file of its kind fails.
struct FileTexts {
    const char* none;
    const char* several;
};

constexpr FileTexts kBootCodeTexts = {"Failed to find update module.There is not bios file.",
                                      "Failed to find update module.There is some bios file."};
constexpr FileTexts kFirmwareTexts = {"Failed to find update module.There is not firmware file.",
                                      "Failed to find update module.There is some firmware file."};

/// Deletes what an earlier update left, and unpacks the module.
bool unpack(const FirmwareUpdate& update, const std::string& moduleDir, std::list<std::string>* moduleFiles,
            const AdapterTrace& trace) {
    if (!CUnzip_Utility::DeleteFolder(update.folder, update.moduleName)) {
        return fail(kvl::kUnpackFolderNotDeleted);
    }
    if (!CFileUtility::CreateFolder(update.folder)) {
        return fail(kvl::kNoTemporaryDirectory, trace, "Failed to get create unzip folder");
    }
    std::string archiveName;
    return CUnzip_Utility::UpdateModuleUnzip(moduleDir, moduleFiles, update.folder, &archiveName, update.moduleName) ||
           fail(kvl::kNotUnpacked);
}

/// Takes the only file of its kind.
bool takeOnly(const std::list<std::string>& found, const FileTexts& texts, std::string& file,
              const AdapterTrace& trace) {
    if (found.size() != 1) {
        return fail(kvl::kWrongModuleContent, trace, found.empty() ? texts.none : texts.several);
    }
    file = found.front();
    return true;
}

bool chooseFiles(FirmwareUpdate& update, const AdapterTrace& trace) {
    std::list<std::string> found;
    if (update.family == nullptr) {
        // kept: reported here, and once more by the search that then finds nothing.
        fail(kvl::kWrongModuleContent, trace, "No such unique name.");
        trace.boundary("CEmulexCommon::FwUpdate() [END]");
    } else {
        if (update.family->bootCodePattern != nullptr) {
            CFileUtility::SearchFile(update.folder, update.family->bootCodePattern, &found, false);
            if (!takeOnly(found, kBootCodeTexts, update.bootCode, trace)) {
                return false;
            }
        }
        CFileUtility::SearchFile(update.folder, update.family->firmwarePattern, &found, false);
    }
    return takeOnly(found, kFirmwareTexts, update.firmware, trace);
}

bool findAddress(FirmwareUpdate& update, const AdapterTrace& trace) {
    kvl::AdapterRecord info;
    if (!CEmulexCommon::GetHBAInfo(update.deviceId, &info, update.moduleName)) {
        return fail(kvl::kNoAdapters, trace, "HBA information could not be obtained.");
    }
    update.address = kvl::valueOf(info, update.family->addressKey);
    return !update.address.empty() || fail(kvl::kNoAddress, trace, update.family->noAddress);
}

/// Sends a file of a module with a message file.
bool downloadAndCheck(const FirmwareUpdate& update, const std::string& command) {
    unsigned long exitCode = 0;
    return CEmulexCommon::EmulexUpdate(command, update.resultFile(), update.folder, &exitCode, "", update.messageFile(),
                                       kvl::kByOutput, update.moduleName);
}

bool updateBootCode(const FirmwareUpdate& update, const AdapterTrace& trace) {
    const std::string command = update.downloadCommand(update.bootCode);
    trace.flow("Execute bios update(%s).", command);
    return downloadAndCheck(update, command) || fail(kvl::kFileNotOpened, trace, "Failed to bios update(%s).", command);
}

/// Sends the firmware of a module without a message file, and judges by the tool's own text.
bool downloadUntilComplete(const FirmwareUpdate& update, const std::string& command, const AdapterTrace& trace) {
    for (int run = 1;; ++run) {
        unsigned long exitCode = 0;
        const unsigned long result =
            CCommon_Information::ExecForeignModule(command, update.resultFile(), "", &exitCode, kvl::kNoTimeout);
        std::ifstream output(update.resultFile());
        if (!output.is_open()) {
            return kvl::failToOpen(update.resultFile(), trace);
        }
        if (kvl::anyLineHolds(output, "Download Complete")) {
            return true;
        }
        if (run == kDownloadRuns) {
            return fail(kvl::kDownloadFailed, trace, "Failed to execute command:%s ,return:%d", command,
                        static_cast<int>(result));
        }
        Sleep(kDownloadPause);
    }
}

bool updateFirmware(const FirmwareUpdate& update, const AdapterTrace& trace) {
    const std::string command = update.downloadCommand(update.firmware);
    if (CFileUtility::IsFileExist(update.messageFile())) {
        // kept: whatever failed, the trace names the result file as one that can't be opened.
        return downloadAndCheck(update, command) || kvl::failToOpen(update.resultFile(), trace);
    }
    return downloadUntilComplete(update, command, trace);
}

bool removeFolder(const FirmwareUpdate& update, const AdapterTrace& trace) {
    return CUnzip_Utility::DeleteFolder(update.folder, update.moduleName) ||
           fail(kvl::kUnpackFolderNotDeleted, trace, "Failed to get delete update module folder(%s)", update.folder);
}

bool run(FirmwareUpdate& update, const std::string& moduleDir, std::list<std::string>* moduleFiles,
         const AdapterTrace& trace) {
    if (!unpack(update, moduleDir, moduleFiles, trace) || !chooseFiles(update, trace) || !findAddress(update, trace)) {
        return false;
    }
    trace.flow("bios update file name(%s).", update.bootCode);
    // The boot code goes first: if it fails, the firmware is not touched.
    if (!update.bootCode.empty() && !updateBootCode(update, trace)) {
        return false;
    }
    return updateFirmware(update, trace) && removeFolder(update, trace);
}

}  // namespace

bool CEmulexCommon::FwUpdate(std::string DeviceID, std::string moduleDir, std::string unzipFolder,
                             std::string hbacmdPath, std::list<std::string>* moduleFiles, bool /*unused*/,
                             std::string moduleName, std::string uniqueName) {
    const AdapterTrace trace(moduleName);
    trace.boundary("CEmulexCommon::FwUpdate() [START]");
    const auto end = [&trace](bool result) {
        trace.boundary("CEmulexCommon::FwUpdate() [END]");
        return result;
    };
    int bus = -1;
    int device = -1;
    int function = -1;
    if (!CCommon_Information::GetPCIInfo(DeviceID, &bus, &device, &function, moduleName)) {
        return end(fail(kvl::kBadDeviceId, trace, "PCI Information is invalid"));
    }
    trace.flow("Func Number is [%d]", function);
    const UpdateFamily* family = kvl::findUpdateFamily(uniqueName);
    // kept: also for an unknown family, which is judged only after the module is unpacked.
    if (function != 0 && (family == nullptr || !family->updatesEveryFunction)) {
        trace.flow("Func Number is not 0.FwUpdate is skipped");
        return end(true);
    }
    FirmwareUpdate update = {family, DeviceID, unzipFolder, hbacmdPath, moduleName, "", "", ""};
    return end(run(update, moduleDir, moduleFiles, trace));
}
