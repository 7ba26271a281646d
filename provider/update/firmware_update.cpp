#include "provider/update/firmware_update.h"

#include <list>

#include "adapter/CEmulexCommon.h"
#include "host/CFileUtility.h"
#include "provider/library/adapter_kinds.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

std::string shown(const VersionAnswer& answer) {
    return answer.failure ? "unknown (" + answer.failure->meaning + ")" : printable(answer.version);
}

}  // namespace

std::string FirmwareUpdate::look() {
    inventory_.refreshList();
    plan_ = planFirmwareUpdate(request_, inventory_);
    const int function = functionOf(request_.device);
    if (function != 0 && !plan_.updateFamily->updatesEveryFunction) {
        return "function " + std::to_string(function) + " of an " + request_.uniqueName +
               " is updated through function 0";
    }
    return "";
}

RunningVersions FirmwareUpdate::readVersions() const {
    inventory_.setSubject("reading the versions: ");
    RunningVersions versions;
    versions.firmware = inventory_.version(plan_.device, moduleKind(EMULEX_MODULE_FIRMWARE), true, plan_.family);
    if (!plan_.bootCode.empty()) {
        // From the same dump; without a new one the cache still holds an old one.
        versions.bootCode =
            versions.firmware.failure
                ? versions.firmware
                : inventory_.version(plan_.device, moduleKind(EMULEX_MODULE_BOOT_BIOS), false, plan_.family);
    }
    return versions;
}

Plan FirmwareUpdate::plan() const {
    Plan plan;
    plan.title = "Update with " + plan_.uniqueName;
    plan.facts = {
        "adapter   " + plan_.device + ", " + plan_.address + ", family " + plan_.family,
        "module    " + plan_.module.archivePath() + ": " + plan_.firmware +
            (plan_.bootCode.empty() ? "" : " and " + plan_.bootCode),
        std::string("judged    ") + (plan_.isJudgedByMessages
                                         ? "by the texts of message.txt; up to 150 s are waited for an end text"
                                         : "by 'Download Complete' in the tool's output, in up to four runs"),
    };
    if (before_) {
        plan.facts.push_back("runs now  " + shownVersions(*before_));
    }
    plan.steps = plan_.steps();
    return plan;
}

Ending FirmwareUpdate::carryOut(Execution&) {
    LibraryCall call(run_, plan_.steps());
    const bool succeeded = call.make([this] { return callLibrary(); });
    after_ = readVersions();
    if (succeeded) {
        return Ending::done("Updated " + plan_.device + ": " + change(), change());
    }
    Ending ending = stateAfter(call);
    ending.failure = call.failure();
    return ending;
}

bool FirmwareUpdate::callLibrary() {
    if (!CFileUtility::CreateFolder(plan_.resultDirectory())) {
        CEmulexCommon::SetLastError(kNoTemporaryDirectory);
        return false;
    }
    isUnmarked_ = !CEmulexCommon::UpdateProceedingFileCreate_(plan_.workDirectory, plan_.family);
    std::list<std::string> files = plan_.module.files;
    return CEmulexCommon::FwUpdate(plan_.device, plan_.module.directory, plan_.scratch, plan_.tool, &files, false,
                                   plan_.family, plan_.uniqueName);
}

std::string FirmwareUpdate::shownVersions(const RunningVersions& versions) const {
    const std::string firmware = "firmware " + shown(versions.firmware);
    return plan_.bootCode.empty() ? firmware : firmware + ", boot code " + shown(versions.bootCode);
}

std::string FirmwareUpdate::change() const {
    const std::string firmware = "firmware " + shown(before_->firmware) + " -> " + shown(after_.firmware);
    return plan_.bootCode.empty()
               ? firmware
               : firmware + ", boot code " + shown(before_->bootCode) + " -> " + shown(after_.bootCode);
}

std::vector<std::string> FirmwareUpdate::conclude(const Ending& ending) {
    std::vector<std::string> remarks;
    if (isUnmarked_) {
        remarks.push_back(marker() + " could not be made, which marks an update that was begun: see what stands there");
    }
    if (ending.result != Result::kDone) {
        return remarks;
    }
    if (!after_.areKnown()) {
        remarks.push_back("the tool reports success, but what runs now could not be read: " +
                          describe(after_.firmware.failure ? *after_.firmware.failure : *after_.bootCode.failure));
        return remarks;
    }
    if (!CEmulexCommon::DelOperatingVersion_(plan_.workDirectory, plan_.family) && !isUnmarked_) {
        remarks.push_back(marker() + " could not be deleted: remove it by hand, since the update is done");
    }
    if (after_ == *before_) {
        remarks.emplace_back(
            "the adapter runs the version that it ran before: the module holds that one, or it needs a restart");
    }
    return remarks;
}

/// The state that a failure has left.
Ending FirmwareUpdate::stateAfter(const LibraryCall& call) const {
    const std::string versions = change();
    if (!call.hasChanged()) {
        return Ending::unchanged("nothing was changed: the adapter runs " + shownVersions(after_));
    }
    if (call.hasBegun(Change::kFirmwareDone)) {
        return Ending::changed("the adapter is updated: " + versions + "; only " + plan_.scratch + " is left over");
    }
    const std::string again = "; look at the adapter, and run the update again";
    if (!after_.areKnown()) {
        return Ending::changed("the tool was at work, and what the adapter runs now is not known: " + versions + again);
    }
    const bool isFirmwareTheSame = !before_->firmware.failure && after_.firmware.version == before_->firmware.version;
    if (!plan_.bootCode.empty() && call.hasBegun(Change::kFirmware) && isFirmwareTheSame) {
        return Ending::changed("the boot code is written, the firmware is not: " + versions + again);
    }
    if (after_ == *before_) {
        return Ending::unchanged("the adapter runs what it ran before: " + shownVersions(after_));
    }
    return Ending::changed("the tool has written to the adapter: " + versions + again);
}

}  // namespace kvl::provider
