#include "provider/update/tool_update.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <list>

#include "adapter/CEmulexCommon.h"
#include "adapter/module_directories.h"
#include "foundation/CCommon_Information.h"
#include "host/CFileUtility.h"
#include "provider/library/adapter_kinds.h"
#include "provider/output/text_block.h"
#include "provider/update/requirements.h"

namespace kvl::provider {
namespace {

std::string machineDirectory() {
    const std::string machine = CCommon_Information::GetArchitectureInfo(kCna);
    if (const char* directory = findModuleDirectory(machine)) {
        return directory;
    }
    throw ProviderError("modules are for x86 and x86_64 alone, and this machine is '" + printable(machine) +
                        "', as 'uname -m' tells");
}

void requireEntry(const UpdateModule& module, const std::string& path) {
    if (!holdsEntry(module, path)) {
        Failure failure = failureOf(kWrongModuleContent);
        failure.meaning += ": " + module.archive + " holds no " + path;
        failure.next = "see whether the module is one of the management tool, and for this machine";
        throw AdapterFailure(failure);
    }
}

}  // namespace

std::string InstalledTool::shown() const {
    return !isThere ? "not installed" : version.empty() ? "version unknown" : printable(version);
}

std::string ToolUpdate::look() {
    if (!request_.again && CFileUtility::IsFileExist(installOutput())) {
        return "an update was tried before, and " + installOutput() +
               " holds what it printed; --again tries it once more";
    }
    module_ = lookIntoModule(request_.moduleDirectory);
    const std::string machine = machineDirectory();
    for (const char* name : {"/uninstall.sh", "/install.sh", "/message.txt"}) {
        requireEntry(module_, machine + name);
    }
    directory_ = tree_.temporary("tmp/") + machine;
    requireOutside(module_.directory, tree_.temporary("tmp"));
    requireCommand("unzip");
    requireRoom(tree_.temporaryDirectory(), module_.unpackedSize);
    return "";
}

/// The version comes from a dump of any adapter.
InstalledTool ToolUpdate::readTool() const {
    InstalledTool tool;
    std::string path;
    tool.isThere = CEmulexCommon::GetOCMManagerInstallPath(&path, request_.family);
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

Steps ToolUpdate::steps() const {
    Steps steps;
    if (request_.again) {
        steps.push_back({{"delete " + installOutput() + ", which would keep the update from being tried"},
                         TraceEvent::kNone,
                         "",
                         Change::kNothing,
                         ""});
    }
    const Steps unpacking = unpackingSteps(module_, tree_.temporary("tmp"));
    steps.insert(steps.end(), unpacking.begin(), unpacking.end());
    steps.push_back(
        {{"chmod 777 " + directory_ + "/*"}, TraceEvent::kScriptSearch, "finding the scripts", Change::kNothing, ""});
    steps.push_back({{directory_ + "/uninstall.sh"},
                     TraceEvent::kUpdaterStart,
                     "removing the installed tool with uninstall.sh",
                     Change::kInstalledTool,
                     tree_.temporary("temp_ocm_uninstall.txt")});
    steps.push_back({{directory_ + "/install.sh -q"},
                     TraceEvent::kUpdaterStart,
                     "installing the new tool with install.sh -q",
                     Change::kNewTool,
                     installOutput()});
    return steps;
}

Plan ToolUpdate::plan() const {
    Plan plan;
    plan.title = "Update of the management tool";
    plan.facts = {"module    " + source(),
                  "judged    by the texts of message.txt; up to 150 s are waited for an end text"};
    if (before_) {
        plan.facts.push_back("now       " + before_->shown());
    }
    plan.steps = steps();
    return plan;
}

void ToolUpdate::prepare() {
    if (request_.again && unlink(installOutput().c_str()) != 0 && errno != ENOENT) {
        throw ProviderError(installOutput() + " can't be deleted: " + std::strerror(errno));
    }
}

Ending ToolUpdate::carryOut(Execution&) {
    LibraryCall call(run_, steps());
    const bool succeeded = call.make([this] { return callLibrary(); });
    const InstalledTool after = readTool();
    if (succeeded) {
        const std::string change = before_->shown() + " -> " + after.shown();
        return Ending::done("Updated the management tool: " + change, change);
    }
    Ending ending = stateAfter(call, after);
    ending.failure = call.failure();
    return ending;
}

bool ToolUpdate::callLibrary() const {
    std::list<std::string> files = module_.files;
    return CEmulexCommon::OCMUpdate("", module_.directory, &files, false, request_.family);
}

/// The state that a failure has left.
Ending ToolUpdate::stateAfter(const LibraryCall& call, const InstalledTool& after) const {
    const std::string change = before_->shown() + " -> " + after.shown();
    if (!call.hasChanged()) {
        return Ending::unchanged("nothing was changed: the management tool is " + before_->shown());
    }
    if (call.hasBegun(Change::kNewTool)) {
        return Ending::changed("the installed tool was removed, and the new one is not known to be in place: " +
                               change + "; mend what is told above, and try it once more with --again");
    }
    if (after == *before_) {
        return Ending::unchanged(after.isThere ? "the installed tool is still there: " + after.shown()
                                               : "no tool is installed, as before");
    }
    return Ending::changed("the installed tool was to be removed, and the new one was not installed: " + change +
                           "; mend what is told above, and run the update again");
}

}  // namespace kvl::provider
