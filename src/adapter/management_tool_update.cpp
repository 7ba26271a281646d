#include <cstdlib>
#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "adapter/module_directories.h"
#include "adapter/result_mode.h"
#include "adapter/update_failure.h"
#include "adapter/working_tree.h"
#include "foundation/CCommon_Information.h"
#include "foundation/CUnzip_Utility.h"
#include "foundation/boundary_trace.h"
#include "foundation/file_state.h"
#include "host/CFileUtility.h"

using kvl::AdapterTrace;

namespace {

/// A script of the module, and how the search for it fails.
struct Script {
    const char* name;
    const char* options;
    const char* resultFile;
    const char* none;
    const char* several;
};

// kept: the texts speak of other files where they were written for firmware first.
constexpr Script kUninstall = {"uninstall.sh", "", "temp/temp_ocm_uninstall.txt",
                               "Failed to find update module.There is not uninstall.sh file.",
                               "Failed to find update module.There is some ufi file."};
constexpr Script kInstall = {"install.sh", " -q", "temp/temp_ocm_install.txt",
                             "Failed to find update module.There is not ufi file.",
                             "Failed to find update module.There is some ufi file."};

/// Sets a code and informs the operator.
void report(kvl::AdapterError code, const std::string& moduleName) {
    CEmulexCommon::SetLastError(code);
    const char* const message = kvl::isCna(moduleName) ? "MSGID_EMULEX_0004_F" : "MSGID_EMULEX_FC_0004_F";
    CTraceUtility::WriteTrace(moduleName.c_str(), message, "ocm", CEmulexCommon::GetLastErrorToChractor().c_str());
}

/// Deletes what an earlier update left, and unpacks the module.
bool unpack(const std::string& moduleDir, std::list<std::string>* moduleFiles, const std::string& folder,
            const std::string& moduleName, const AdapterTrace& trace) {
    if (!CUnzip_Utility::DeleteFolder(folder, moduleName)) {
        report(kvl::kUnpackFolderNotDeleted, moduleName);
        return false;
    }
    if (!CFileUtility::CreateFolder(folder)) {
        report(kvl::kNoTemporaryDirectory, moduleName);
        trace.error("Failed to get create unzip folder");
        return false;
    }
    std::string archiveName;
    if (!CUnzip_Utility::UpdateModuleUnzip(moduleDir, moduleFiles, folder, &archiveName, moduleName)) {
        report(kvl::kNotUnpacked, moduleName);
        return false;
    }
    return true;
}

/// @return the name of the directory for this machine, null if there is none for it
const char* directoryOfMachine(const std::string& moduleName, const AdapterTrace& trace) {
    const char* const directory = kvl::findModuleDirectory(CCommon_Information::GetArchitectureInfo(moduleName));
    if (directory == nullptr) {
        trace.error("Failed to get os architecture.");
    }
    return directory;
}

/// @return the script's name; empty if the directory doesn't hold exactly one
std::string findScript(const Script& script, const std::string& directory, std::list<std::string>& found,
                       const AdapterTrace& trace) {
    CFileUtility::SearchFile(directory, script.name, &found, false);
    if (found.size() != 1) {
        kvl::fail(kvl::kWrongModuleContent, trace, found.empty() ? script.none : script.several);
        return "";
    }
    return found.front();
}

/// A failure doesn't end the update: a script that can't be run fails by itself.
void makeRunnable(const std::string& directory, const AdapterTrace& trace) {
    const std::string command = "chmod 777 " + directory + "/*";
    trace.flow("Execute command [%s]", command);
    const int status = std::system(command.c_str());
    if (status != 0) {
        trace.warning("[%s] return [%d]", command, status);
    }
}

bool runScript(const Script& script, const std::string& directory, const std::string& name,
               const std::string& moduleName, const AdapterTrace& trace) {
    const std::string resultFile = kvl::workPath(script.resultFile);
    unsigned long exitCode = 1;
    // kept: whatever failed, the trace names the result file as one that can't be opened.
    return CEmulexCommon::EmulexUpdate(directory + "/" + name + script.options, resultFile, "", &exitCode, "",
                                       directory + "/message.txt", kvl::kByOutput, moduleName) ||
           kvl::failToOpen(resultFile, trace);
}

/// Runs the uninstall script and then the install script of a module's directory.
bool replaceTool(const std::string& directory, const std::string& moduleName, const AdapterTrace& trace) {
    std::list<std::string> found;
    trace.flow("Search uninstall.sh in [%s]", directory);
    const std::string uninstall = findScript(kUninstall, directory, found, trace);
    if (uninstall.empty()) {
        return false;
    }
    trace.flow("Search uninstall.sh end");
    trace.flow("filename = [%s]", uninstall);
    makeRunnable(directory, trace);
    if (!runScript(kUninstall, directory, uninstall, moduleName, trace)) {
        return false;
    }
    // kept: a module without an install script is found out only after the old tool is gone.
    const std::string install = findScript(kInstall, directory, found, trace);
    return !install.empty() && runScript(kInstall, directory, install, moduleName, trace);
}

}  // namespace

bool CEmulexCommon::OCMUpdate(std::string /*unused*/, std::string moduleDir, std::list<std::string>* moduleFiles,
                              bool /*unused*/, std::string moduleName) {
    const kvl::BoundaryTrace boundaries(moduleName, "CEmulexCommon::OCMUpdate()");
    const AdapterTrace trace(moduleName);
    // kept: the output of an install that failed counts as well.
    if (kvl::isThere(kvl::workPath(kInstall.resultFile))) {
        trace.flow("OCM update is previously-reported.OCM Update is skipped");
        return true;
    }
    const std::string folder = kvl::workPath("temp/tmp");
    if (!unpack(moduleDir, moduleFiles, folder, moduleName, trace)) {
        return false;
    }
    const char* const directory = directoryOfMachine(moduleName, trace);
    return directory != nullptr && replaceTool(folder + "/" + directory, moduleName, trace);
}
