#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <memory>

#include "adapter/CEmulexCommon.h"
#include "adapter/module_directories.h"
#include "foundation/CCommon_Information.h"
#include "host/CFileUtility.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/plain_words.h"
#include "provider/commands/update_commands.h"
#include "provider/library/adapter_inventory.h"
#include "provider/library/working_tree.h"
#include "provider/operation/needs.h"
#include "provider/operation/procedure.h"
#include "provider/operation/update_run.h"
#include "provider/output/text_block.h"
#include "provider/run/noted_signals.h"
#include "provider/update/module_archive.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl update tool --module /var/tmp/tool-module --dry-run\n"
    "  kvl update tool --module /var/tmp/tool-module --again --yes\n"
    "\n"
    "The module's uninstall.sh removes the installed tool, and its install.sh -q brings the new\n"
    "one. An update that was tried is not tried again, whatever its outcome, without --again.\n"
    "\n";

constexpr std::size_t kInstallStep = 4;

struct ToolOptions {
    std::string moduleDirectory;
    std::string family = kCna;
    bool again = false;
    std::string tree;  ///< the working tree of the update itself, which isn't that of a dry run
    UpdateOptions update;

    std::string temporary(const char* name) const { return tree + "/temp/" + name; }

    /// The output of the install script, whose mere existence keeps the library from updating.
    std::string installOutput() const { return temporary("temp_ocm_install.txt"); }
};

std::string machineDirectory() {
    const std::string machine = CCommon_Information::GetArchitectureInfo(kCna);
    if (const char* directory = findModuleDirectory(machine)) {
        return directory;
    }
    throw ProviderError(kNothingChanged, "modules are for x86 and x86_64 alone, and this machine is '" +
                                             printable(machine) + "', as 'uname -m' tells");
}

void needEntry(const UpdateModule& module, const std::string& path) {
    if (!holdsEntry(module, path)) {
        Failure failure = failureOf(kWrongModuleContent);
        failure.meaning += ": " + module.archive + " holds no " + path;
        failure.next = "see whether the module is one of the management tool, and for this machine";
        throw AdapterFailure(failure);
    }
}

/// The tool as it is installed.
struct InstalledTool {
    bool isThere = false;
    std::string version;  ///< empty if it can't be told, as without an adapter

    bool operator==(const InstalledTool& other) const {
        return isThere == other.isThere && version == other.version && !(isThere && version.empty());
    }
    std::string shown() const {
        return !isThere ? "not installed" : version.empty() ? "version unknown" : printable(version);
    }
};

/// One update of the tool, from the look to the last reading.
class ToolUpdate {
public:
    ToolUpdate(const ToolOptions& options, AdapterSession& session)
        : options_(options), session_(session), inventory_(session) {}

    ExitCode run();

private:
    void look();
    InstalledTool readTool() const;
    std::string plan() const;
    std::vector<ProcedureStep> steps() const;
    ExitCode carryOut();
    bool callLibrary() const;
    void clearMarker() const;
    UpdateEnding judge(const Procedure& procedure, const InstalledTool& after) const;
    ExitCode skip(const std::string& why) const;

    const ToolOptions& options_;
    AdapterSession& session_;
    const AdapterInventory inventory_;
    UpdateModule module_;
    std::string directory_;  ///< of the module, unpacked, for this machine
    InstalledTool before_;
};

ExitCode ToolUpdate::run() {
    if (!options_.again && CFileUtility::IsFileExist(options_.installOutput())) {
        return skip("an update was tried before, and " + options_.installOutput() +
                    " holds what it printed; --again tries it once more");
    }
    look();
    if (!options_.update.dryRun) {
        before_ = readTool();
    }
    showPlan(session_, plan() + (options_.update.dryRun ? kDryRunEnds : ""));
    if (options_.update.dryRun) {
        return kReportWritten;
    }
    if (!isWanted(options_.update, session_, "Update the tool now?")) {
        return skip("the operator said no");
    }
    return carryOut();
}

ExitCode ToolUpdate::skip(const std::string& why) const {
    UpdateRecord(options_.family, "the management tool").skipped(why);
    tellError(session_, "skipped: " + why);
    return kSkipped;
}

void ToolUpdate::look() {
    module_ = lookIntoModule(options_.moduleDirectory);
    const std::string machine = machineDirectory();
    for (const char* name : {"/uninstall.sh", "/install.sh", "/message.txt"}) {
        needEntry(module_, machine + name);
    }
    directory_ = options_.temporary("tmp/") + machine;
    needOutside(module_.directory, options_.temporary("tmp"));
    needCommand("unzip");
    needRoom(options_.tree + "/temp", module_.unpackedSize);
}

/// The version comes from a dump of any adapter.
InstalledTool ToolUpdate::readTool() const {
    InstalledTool tool;
    std::string path;
    tool.isThere = CEmulexCommon::GetOCMManagerInstallPath(&path, options_.family);
    if (!tool.isThere) {
        return tool;
    }
    try {
        inventory_.refreshList();
        const std::vector<Adapter> ports = inventory_.ports();
        const VersionAnswer answer =
            inventory_.version(ports.front().device, moduleKind(EMULEX_MODULE_OCM), true, ports.front().family);
        tool.version = answer.version;
    } catch (const AdapterFailure&) {
        // A machine without adapters has a tool all the same.
    }
    return tool;
}

std::vector<ProcedureStep> ToolUpdate::steps() const {
    constexpr const char* kScript = "CEmulexCommon::EmulexUpdate() Resultmode";
    return {
        {"CUnzip_Utility::DeleteFolder [START]", "making " + options_.temporary("tmp") + " anew", false, ""},
        {"CUnzip_Utility::Unzip [START]", "unpacking " + module_.archive, false, ""},
        {"Search uninstall.sh in [", "finding the scripts", false, ""},
        {kScript, "removing the installed tool with uninstall.sh", true, options_.temporary("temp_ocm_uninstall.txt")},
        {kScript, "installing the new tool with install.sh -q", true, options_.installOutput()},
    };
}

std::string ToolUpdate::plan() const {
    std::vector<std::string> facts = {"module    " + module_.directory + "/" + module_.archive,
                                      "judged    by the texts of message.txt; up to 150 s are waited for an end text"};
    if (!options_.update.dryRun) {
        facts.push_back("now       " + before_.shown());
    }
    std::vector<std::string> steps = {
        "delete " + options_.temporary("tmp") + " and make it anew",
        "unzip -o \"" + module_.directory + "/" + module_.archive + "\" -d \"" + options_.temporary("tmp") + "\"",
        "chmod 777 " + directory_ + "/*",
        directory_ + "/uninstall.sh",
        directory_ + "/install.sh -q",
    };
    if (options_.again) {
        steps.insert(steps.begin(),
                     "delete " + options_.installOutput() + ", which would keep the update from being tried");
    }
    return describePlan("Update of the management tool", facts, steps);
}

ExitCode ToolUpdate::carryOut() {
    const NotedSignals signals(tellingSignals(session_));
    const UpdateRecord record(options_.family, "the management tool");
    clearMarker();
    record.begun(module_.directory + "/" + module_.archive);
    Procedure procedure(session_, steps());
    const bool succeeded = procedure.run([this] { return callLibrary(); });
    const InstalledTool after = readTool();
    const std::string change = before_.shown() + " -> " + after.shown();
    record.signalled(signals.first());
    if (succeeded) {
        record.done(change);
        tellResult(session_, "Updated the management tool: " + change);
        return signals.first() != 0 ? kInterrupted : kReportWritten;
    }
    const UpdateEnding ending = judge(procedure, after);
    record.failed(describe(procedure.failure()) + "; " + ending.sentence);
    tellError(session_, describe(procedure.failure()));
    tellError(session_, ending.sentence);
    return signals.first() != 0 ? kInterrupted : ending.exitCode;
}

void ToolUpdate::clearMarker() const {
    if (options_.again && unlink(options_.installOutput().c_str()) != 0 && errno != ENOENT) {
        throw ProviderError(kNothingChanged, options_.installOutput() + " can't be deleted: " + std::strerror(errno));
    }
}

bool ToolUpdate::callLibrary() const {
    std::list<std::string> files = module_.files;
    return CEmulexCommon::OCMUpdate("", module_.directory, &files, false, options_.family);
}

/// Tells the state that a failure has left.
UpdateEnding ToolUpdate::judge(const Procedure& procedure, const InstalledTool& after) const {
    const std::string change = before_.shown() + " -> " + after.shown();
    if (!procedure.hasChanged()) {
        return {kNothingChanged, "nothing was changed: the management tool is " + before_.shown()};
    }
    if (procedure.hasBegun(kInstallStep)) {
        return {kChanged, "the installed tool was removed, and the new one is not known to be in place: " + change +
                              "; mend what is told above, and try it once more with --again"};
    }
    if (after == before_) {
        return {kNothingChanged, after.isThere ? "the installed tool is still there: " + after.shown()
                                               : "no tool is installed, as before"};
    }
    return {kChanged, "the installed tool was to be removed, and the new one was not installed: " + change +
                          "; mend what is told above, and run the update again"};
}

int updateTool(ToolOptions& options) {
    needConsent(options.update);
    options.tree = adapterTree();
    const auto tree = passingTree(options.update);
    AdapterSession session(options.update.run);
    return ToolUpdate(options, session).run();
}

}  // namespace

void addToolUpdateCommand(CLI::App& update, Request& request) {
    CLI::App* command = update.add_subcommand("tool", "Replace the management tool");
    command->footer(std::string(kExamples) + kUpdateExitCodesHelp);
    const auto options = std::make_shared<ToolOptions>();
    addModule(*command, options->moduleDirectory);
    command->add_flag("--again", options->again, "Try it also if it was tried before");
    addFamily(*command, options->family, "The family whose operator messages are sent (default: cna)");
    addUpdateOptions(*command, options->update);
    command->callback([options, &request] {
        request.run = [options] { return runUpdate([options] { return updateTool(*options); }); };
    });
}

}  // namespace kvl::provider
