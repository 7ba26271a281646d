#include "provider/update/firmware_plan.h"

#include "adapter/CEmulexCommon.h"
#include "foundation/CCommon_Information.h"
#include "provider/commands/adapter_words.h"
#include "provider/operation/needs.h"
#include "provider/output/text_block.h"

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

std::string addressFor(const UpdateFamily& family, const AdapterInventory::Record& record) {
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

std::string FirmwarePlan::downloadCommand(const std::string& file) const {
    return kvl::downloadCommand(tool, address, scratch, file);
}

std::vector<std::string> FirmwarePlan::description() const {
    std::vector<std::string> steps = {
        "delete " + scratch + " and make it anew",
        "unzip -o \"" + module.directory + "/" + module.archive + "\" -d \"" + scratch + "\"",
        "find the adapter in hbacmd's list",
    };
    if (!bootCode.empty()) {
        steps.push_back("boot code: " + downloadCommand(bootCode));
    }
    steps.push_back("firmware: " + downloadCommand(firmware));
    steps.push_back("delete " + scratch);
    return steps;
}

std::vector<ProcedureStep> FirmwarePlan::steps() const {
    constexpr const char* kUpdater = "CEmulexCommon::EmulexUpdate() Resultmode";
    std::vector<ProcedureStep> steps = {
        {"CUnzip_Utility::DeleteFolder [START]", "making " + scratch + " anew", false, ""},
        {"CUnzip_Utility::Unzip [START]", "unpacking " + module.archive, false, ""},
        {"CEmulexCommon::GetHBAInfo() [START]", "finding the adapter", false, ""},
    };
    if (!bootCode.empty()) {
        steps.push_back({kUpdater, "writing the boot code " + bootCode, true, resultFile()});
    }
    steps.push_back({bootCode.empty() ? "bios update file name(" : kUpdater, "writing the firmware " + firmware, true,
                     resultFile()});
    steps.push_back({"CUnzip_Utility::DeleteFolder [START]", "removing " + scratch, false, ""});
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
    plan.family = request.family.empty() ? inventory.familyOf(request.device) : request.family;
    plan.tool = installedTool(plan.family);
    plan.address = addressFor(*plan.updateFamily, inventory.find(request.device, plan.family));
    plan.workDirectory = request.tree + "/temp/" + (plan.family == kCna ? "CNA" : "FC");
    plan.scratch = request.scratch.empty() ? plan.workDirectory + "/unpacked" : request.scratch + kOwnScratch;
    if (!request.scratch.empty()) {
        needOwnDirectory(request.scratch);
    }
    needOutside(plan.module.directory, plan.scratch);
    needCommand("unzip");
    needRoom(request.scratch.empty() ? plan.workDirectory : request.scratch, plan.module.unpackedSize);
    needRoom(plan.workDirectory, 0);
    return plan;
}

}  // namespace kvl::provider
