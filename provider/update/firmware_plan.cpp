#include "provider/update/firmware_plan.h"

#include "adapter/CEmulexCommon.h"
#include "foundation/CCommon_Information.h"
#include "provider/library/adapter_kinds.h"
#include "provider/library/working_tree.h"
#include "provider/output/text_block.h"
#include "provider/update/requirements.h"

namespace kvl::provider {
namespace {

constexpr const char* kMessageFile = "message.txt";
constexpr const char* kOwnScratch = "/kvl-update";

[[noreturn]] void refuse(AdapterError code, const std::string& why) {
    Failure failure = failureOf(code);
    failure.meaning += ": " + why;
    throw AdapterFailure(failure);
}

/// Finds the one file of its kind in the module, as the library will.
std::string onlyEntry(const UpdateModule& module, const char* pattern, const char* what) {
    const std::vector<std::string> found = topEntries(module, pattern);
    if (found.size() != 1) {
        refuse(kWrongModuleContent, module.archive + " holds " + (found.empty() ? "no " : "several ") + what +
                                        (found.empty() ? " file (" : " files (") + pattern + ")");
    }
    if (!isPlainPath(found.front())) {
        refuse(kWrongModuleContent, "a shell would take the name of the " + std::string(what) + " file '" +
                                        printable(found.front()) + "' differently");
    }
    return found.front();
}

std::string addressFor(const UpdateFamily& family, const AdapterRecord& record) {
    const auto found = record.find(family.addressKey);
    if (found == record.end() || found->second.empty()) {
        refuse(kNoAddress, "hbacmd's list has no '" + std::string(family.addressKey) + "' of it");
    }
    if (!isPlainAddress(found->second)) {
        throw AdapterFailure(formFailure("hbacmd's list tells no proper '" + std::string(family.addressKey) + "'"));
    }
    return found->second;
}

std::string installedTool(const std::string& family) {
    std::string tool;
    if (!CEmulexCommon::GetOCMManagerInstallPath(&tool, family)) {
        throw AdapterFailure(lastFailure());
    }
    return tool;
}

}  // namespace

Steps FirmwarePlan::steps() const {
    const auto download = [this](const std::string& file) { return downloadCommand(tool, address, scratch, file); };
    Steps steps = unpackingSteps(module, scratch);
    steps.push_back({{"find the adapter in hbacmd's list"},
                     TraceEvent::kAdapterLookup,
                     "finding the adapter",
                     Change::kNothing,
                     ""});
    if (!bootCode.empty()) {
        steps.push_back({{"boot code: " + download(bootCode)},
                         TraceEvent::kUpdaterStart,
                         "writing the boot code " + bootCode,
                         Change::kBootCode,
                         resultFile()});
    }
    // Without boot code the library still traces the name of its file, and that line is the first of the firmware's.
    steps.push_back({{"firmware: " + download(firmware)},
                     bootCode.empty() ? TraceEvent::kFirmwareChoice : TraceEvent::kUpdaterStart,
                     "writing the firmware " + firmware,
                     Change::kFirmware,
                     resultFile()});
    steps.push_back(
        {{"delete " + scratch}, TraceEvent::kFolderDeletion, "removing " + scratch, Change::kFirmwareDone, ""});
    return steps;
}

int functionOf(const std::string& device) {
    int bus = -1;
    int slot = -1;
    int function = -1;
    CCommon_Information::GetPCIInfo(device, &bus, &slot, &function, kCna);
    return function;
}

FirmwarePlan planFirmwareUpdate(const FirmwareRequest& request, const AdapterInventory& inventory) {
    FirmwarePlan plan;
    plan.device = request.device;
    plan.uniqueName = request.uniqueName;
    plan.updateFamily = findUpdateFamily(request.uniqueName);
    plan.module = lookIntoModule(request.moduleDirectory);
    if (plan.updateFamily->bootCodePattern != nullptr) {
        plan.bootCode = onlyEntry(plan.module, plan.updateFamily->bootCodePattern, "boot code");
    }
    plan.firmware = onlyEntry(plan.module, plan.updateFamily->firmwarePattern, "firmware");
    plan.isJudgedByMessages = holdsEntry(plan.module, kMessageFile);
    if (!plan.bootCode.empty() && !plan.isJudgedByMessages) {
        // The library would write the boot code first, and then find that it can't judge.
        refuse(kWrongModuleContent, plan.module.archive + " holds boot code and no message.txt to judge by");
    }
    const AdapterRecord record = inventory.find(request.device, request.family.empty() ? kCna : request.family);
    plan.family = request.family.empty() ? familyOf(record) : request.family;
    plan.tool = installedTool(plan.family);
    plan.address = addressFor(*plan.updateFamily, record);
    plan.workDirectory = WorkingTree::installed().updateDirectory(plan.family);
    plan.scratch = request.scratch.empty() ? plan.workDirectory + "/unpacked" : request.scratch + kOwnScratch;
    if (!request.scratch.empty()) {
        requireOwnDirectory(request.scratch);
    }
    requireOutside(plan.module.directory, plan.scratch);
    requireCommand("unzip");
    requireRoom(request.scratch.empty() ? plan.workDirectory : request.scratch, plan.module.unpackedSize);
    requireRoom(plan.workDirectory, 0);
    return plan;
}

}  // namespace kvl::provider
