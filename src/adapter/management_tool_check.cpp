#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/silent_settings_parser.h"
#include "adapter/update_failure.h"
#include "adapter/working_tree.h"
#include "foundation/operation_trace.h"

using kvl::AdapterTrace;
using kvl::Setting;
using kvl::SettingsFile;

namespace {

constexpr const char* kSignature = "static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)";

// kept: one setting is traced by its key, and with two blanks where it is wrong.
void traceComparison(const Setting& setting, const std::string& line, bool isSilent, const AdapterTrace& trace) {
    if (&setting == kvl::kDiscoverySettings.data()) {
        trace.flow(isSilent ? "silent [%s]" : "not silent  [%s]", setting.key);
    } else {
        trace.flow(isSilent ? "silent [%s]" : "not silent [%s]", line);
    }
}

/// The trace lines of a walk through a settings file.
/// @param trace  must outlive them
kvl::SilentSettingsEvents traced(const SettingsFile& file, const AdapterTrace& trace) {
    const std::string read = std::string(file.name) + ":[%s]";
    const std::string blankDeleted = std::string(file.name) + " space delete:[%s]";
    kvl::SilentSettingsEvents events;
    events.line = [&trace, read](const std::string& line) { trace.flow(read.c_str(), line); };
    events.blankDeleted = [&trace, blankDeleted](const std::string& line) { trace.flow(blankDeleted.c_str(), line); };
    events.found = [&trace](const Setting& setting, const std::string& line) {
        trace.flow("find[%s] in [%s]", setting.key, line);
    };
    events.compared = [&trace](const Setting& setting, const std::string& line, bool isSilent) {
        traceComparison(setting, line, isSilent, trace);
    };
    return events;
}

bool checkConfiguration(const SettingsFile& file, const AdapterTrace& trace) {
    std::ifstream lines(file.path);
    if (!lines.is_open()) {
        return kvl::failToOpen(file.path, trace);
    }
    if (!kvl::isSilentInstall(lines, file, traced(file, trace))) {
        trace.flow("%s", file.failure);
        return false;
    }
    return true;
}

/// Looks for the package elxocmjvm, which a silent install leaves out.
/// @return true unless `grep` reports a hit
bool isPackageMissing(const AdapterTrace& trace) {
    const std::string answer = kvl::workPath("temp/rpm_grep_result.txt");
    // kept: the names that rpm prints have no ending, so the pattern hardly ever matches.
    const int status = std::system(("rpm -qa | grep elxocmjvm-..........rpm;echo $? > " + answer).c_str());
    if (status != 0) {
        trace.error("_tsystem error (rpm grep). (%d)", status);
        return false;
    }
    std::ifstream lines(answer);
    if (!lines.is_open()) {
        trace.error("Failed to open file(%s).", answer);  // kept: without a code
        return false;
    }
    std::string grepStatus;
    std::getline(lines, grepStatus);
    if (grepStatus == "0") {
        trace.flow("I found elxocmjvm-xxxx.xxxx.rpm. ");
        return false;
    }
    return true;
}

}  // namespace

bool CEmulexCommon::OCMInstallCheck(std::string /*unused*/, std::string ModuleKind, std::string moduleName) {
    const kvl::OperationTrace operation(moduleName, kSignature);
    const AdapterTrace trace(moduleName);
    trace.flow("CEmulexCommon::OCMInstallCheck() [START]");
    operation.enter();
    operation.detail("ARG Check ModuleKind=%s", ModuleKind.c_str());
    operation.leave();
    trace.boundary("ARG Check ModuleKind=%s", ModuleKind);
    const bool isSilentInstall =
        std::all_of(kvl::kSettingsFiles.begin(), kvl::kSettingsFiles.end(),
                    [&trace](const SettingsFile& file) { return checkConfiguration(file, trace); }) &&
        isPackageMissing(trace);
    trace.flow("CEmulexCommon::OCMInstallCheck() [END]");  // kept: no boundary line
    return isSilentInstall;
}
