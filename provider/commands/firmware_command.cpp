#include <CLI/CLI.hpp>
#include <memory>

#include "adapter/CEmulexCommon.h"
#include "host/CFileUtility.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/plain_words.h"
#include "provider/commands/update_commands.h"
#include "provider/library/adapter_inventory.h"
#include "provider/library/working_tree.h"
#include "provider/operation/procedure.h"
#include "provider/operation/update_run.h"
#include "provider/output/text_block.h"
#include "provider/run/noted_signals.h"
#include "provider/update/firmware_plan.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl update firmware 0b:00.0 --module /var/tmp/module --unique-name OCe11102 --dry-run\n"
    "  kvl update firmware 15:00.1 --module /var/tmp/fc --unique-name fcelx_8g2p --yes\n"
    "\n"
    "The module is a directory with an archive, as the adapter's maker ships it. Everything is\n"
    "looked at first, then the plan is shown, then you are asked. Once the adapter's tool writes,\n"
    "nothing breaks it off: a signal is noted and told in the end.\n"
    "\n";

struct FirmwareOptions {
    FirmwareRequest request;
    UpdateOptions update;
};

/// What runs on the adapter, as a new dump tells it.
struct RunningVersions {
    VersionAnswer firmware;
    VersionAnswer bootCode;

    bool areKnown() const { return !firmware.failure && !bootCode.failure; }
    bool operator==(const RunningVersions& other) const {
        return areKnown() && other.areKnown() && firmware.version == other.firmware.version &&
               bootCode.version == other.bootCode.version;
    }
};

std::string shown(const VersionAnswer& answer) {
    return answer.failure ? "unknown (" + answer.failure->meaning + ")" : printable(answer.version);
}

/// One update, from the look to the last reading.
class FirmwareUpdate {
public:
    FirmwareUpdate(const FirmwareOptions& options, AdapterSession& session)
        : options_(options), session_(session), inventory_(session) {}

    ExitCode run();

private:
    bool isForFunctionZero() const;
    ExitCode skip(const std::string& why) const;
    RunningVersions readVersions() const;
    std::string plan() const;
    ExitCode carryOut();
    bool callLibrary() const;
    std::string shownVersions(const RunningVersions& versions) const;
    std::string change(const RunningVersions& after) const;
    UpdateEnding judge(const Procedure& procedure, const RunningVersions& after) const;
    ExitCode succeed(const RunningVersions& after) const;

    const FirmwareOptions& options_;
    AdapterSession& session_;
    const AdapterInventory inventory_;
    FirmwarePlan plan_;
    RunningVersions before_;
};

ExitCode FirmwareUpdate::run() {
    inventory_.refreshList();
    plan_ = planFirmwareUpdate(options_.request, inventory_);
    if (isForFunctionZero()) {
        return skip("function " + std::to_string(functionOf(options_.request.device)) + " of an " +
                    options_.request.uniqueName + " is updated through function 0");
    }
    if (!options_.update.dryRun) {
        before_ = readVersions();
    }
    showPlan(session_, plan() + (options_.update.dryRun ? kDryRunEnds : ""));
    if (options_.update.dryRun) {
        return kReportWritten;
    }
    if (!isWanted(options_.update, session_, "Update it now?")) {
        return skip("the operator said no");
    }
    return carryOut();
}

bool FirmwareUpdate::isForFunctionZero() const {
    return functionOf(options_.request.device) != 0 &&
           !findUpdateFamily(options_.request.uniqueName)->updatesEveryFunction;
}

ExitCode FirmwareUpdate::skip(const std::string& why) const {
    UpdateRecord(plan_.family, "the firmware of " + plan_.device).skipped(why);
    tellError(session_, "skipped: " + why);
    return kSkipped;
}

RunningVersions FirmwareUpdate::readVersions() const {
    session_.setSubject("reading the versions: ");
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

std::string FirmwareUpdate::plan() const {
    std::vector<std::string> facts = {
        "adapter   " + plan_.device + ", " + plan_.address + ", family " + plan_.family,
        "module    " + plan_.module.directory + "/" + plan_.module.archive + ": " + plan_.firmware +
            (plan_.bootCode.empty() ? "" : " and " + plan_.bootCode),
        std::string("judged    ") + (plan_.isJudgedByMessages
                                         ? "by the texts of message.txt; up to 150 s are waited for an end text"
                                         : "by 'Download Complete' in the tool's output, in up to four runs"),
    };
    if (!options_.update.dryRun) {
        facts.push_back("runs now  " + shownVersions(before_));
    }
    return describePlan("Update with " + plan_.uniqueName, facts, plan_.description());
}

ExitCode FirmwareUpdate::carryOut() {
    const NotedSignals signals(tellingSignals(session_));
    const UpdateRecord record(plan_.family, "the firmware of " + plan_.device);
    record.begun(plan_.uniqueName + " from " + plan_.module.directory + "/" + plan_.module.archive);
    Procedure procedure(session_, plan_.steps());
    const bool succeeded = procedure.run([this] { return callLibrary(); });
    const RunningVersions after = readVersions();
    record.signalled(signals.first());
    if (succeeded) {
        record.done(change(after));
        const ExitCode exitCode = succeed(after);
        return signals.first() != 0 ? kInterrupted : exitCode;
    }
    const UpdateEnding ending = judge(procedure, after);
    record.failed(describe(procedure.failure()) + "; " + ending.sentence);
    tellError(session_, describe(procedure.failure()));
    tellError(session_, ending.sentence);
    return signals.first() != 0 ? kInterrupted : ending.exitCode;
}

bool FirmwareUpdate::callLibrary() const {
    if (!CFileUtility::CreateFolder(plan_.resultDirectory())) {
        CEmulexCommon::SetLastError(kNoTemporaryDirectory);
        return false;
    }
    CEmulexCommon::UpdateProceedingFileCreate_(plan_.workDirectory, plan_.family);
    std::list<std::string> files = plan_.module.files;
    return CEmulexCommon::FwUpdate(plan_.device, plan_.module.directory, plan_.scratch, plan_.tool, &files, false,
                                   plan_.family, plan_.uniqueName);
}

std::string FirmwareUpdate::shownVersions(const RunningVersions& versions) const {
    const std::string firmware = "firmware " + shown(versions.firmware);
    return plan_.bootCode.empty() ? firmware : firmware + ", boot code " + shown(versions.bootCode);
}

std::string FirmwareUpdate::change(const RunningVersions& after) const {
    const std::string firmware = "firmware " + shown(before_.firmware) + " -> " + shown(after.firmware);
    return plan_.bootCode.empty()
               ? firmware
               : firmware + ", boot code " + shown(before_.bootCode) + " -> " + shown(after.bootCode);
}

ExitCode FirmwareUpdate::succeed(const RunningVersions& after) const {
    tellResult(session_, "Updated " + plan_.device + ": " + change(after));
    if (!after.areKnown()) {
        tellError(session_, "the tool reports success, but what runs now could not be read: " +
                                describe(after.firmware.failure ? *after.firmware.failure : *after.bootCode.failure));
        return kReportWritten;
    }
    CEmulexCommon::DelOperatingVersion_(plan_.workDirectory, plan_.family);
    if (after == before_) {
        tellError(session_,
                  "the adapter runs the version that it ran before: the module holds that one, or it needs a "
                  "restart");
    }
    return kReportWritten;
}

/// Tells the state that a failure has left.
UpdateEnding FirmwareUpdate::judge(const Procedure& procedure, const RunningVersions& after) const {
    const std::string versions = change(after);
    if (!procedure.hasChanged()) {
        return {kNothingChanged, "nothing was changed: the adapter runs " + shownVersions(after)};
    }
    const std::size_t steps = plan_.steps().size();
    if (procedure.hasBegun(steps - 1)) {
        return {kChanged, "the adapter is updated: " + versions + "; only " + plan_.scratch + " is left over"};
    }
    const std::string again = "; look at the adapter, and run the update again";
    if (!after.areKnown()) {
        return {kChanged, "the tool was at work, and what the adapter runs now is not known: " + versions + again};
    }
    const bool isFirmwareTheSame = !before_.firmware.failure && after.firmware.version == before_.firmware.version;
    if (!plan_.bootCode.empty() && procedure.hasBegun(steps - 2) && isFirmwareTheSame) {
        return {kChanged, "the boot code is written, the firmware is not: " + versions + again};
    }
    if (after == before_) {
        return {kNothingChanged, "the adapter runs what it ran before: " + shownVersions(after)};
    }
    return {kChanged, "the tool has written to the adapter: " + versions + again};
}

int updateFirmware(FirmwareOptions& options) {
    needConsent(options.update);
    options.request.tree = adapterTree();
    const auto tree = passingTree(options.update);
    AdapterSession session(options.update.run);
    return FirmwareUpdate(options, session).run();
}

}  // namespace

void addFirmwareUpdateCommand(CLI::App& update, Request& request) {
    CLI::App* command = update.add_subcommand("firmware", "Update the firmware and boot code of an adapter");
    command->footer(std::string(kExamples) + kUpdateExitCodesHelp);
    const auto options = std::make_shared<FirmwareOptions>();
    addDevice(*command, options->request.device);
    addModule(*command, options->request.moduleDirectory);
    addUniqueName(*command, options->request.uniqueName);
    addFamily(*command, options->request.family, "The adapter's family (default: by the port's type)");
    addScratch(*command, options->request.scratch);
    addUpdateOptions(*command, options->update);
    command->callback([options, &request] {
        request.run = [options] { return runUpdate([options] { return updateFirmware(*options); }); };
    });
}

}  // namespace kvl::provider
