#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/silent_settings.h"
#include "adapter/update_failure.h"
#include "adapter/working_tree.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

using kvl::AdapterTrace;
using kvl::Setting;
using kvl::SettingsFile;

namespace {

constexpr const char* kSignature = "static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)";

/// How one setting is traced where it is found.
struct FindingTrace {
    const char* silent;
    const char* notSilent;
    std::string subject;
};

// kept: one setting is traced by its key, and with two blanks where it is wrong.
FindingTrace findingTrace(const Setting& setting, const std::string& line) {
    if (&setting == kvl::kDiscoverySettings.data()) {
        return {"silent [%s]", "not silent  [%s]", setting.key};
    }
    return {"silent [%s]", "not silent [%s]", line};
}

std::string withoutBlanks(std::string line, const std::string& traceFormat, const AdapterTrace& trace) {
    for (auto blank = line.find(' '); blank != std::string::npos; blank = line.find(' ', blank)) {
        line.erase(blank, 1);
        trace.flow(traceFormat.c_str(), line);
    }
    return line;
}

/// Compares a line with each setting whose key it holds.
/// @param outstanding  counted down for each that is right
/// @return false at the first that isn't
bool checkLine(const std::string& line, const SettingsFile& file, std::size_t& outstanding, const AdapterTrace& trace) {
    for (const Setting& setting : file) {
        if (!kvl::holds(line, setting.key)) {
            continue;
        }
        trace.flow("find[%s] in [%s]", setting.key, line);
        const FindingTrace finding = findingTrace(setting, line);
        if (line != setting.line) {
            trace.flow(finding.notSilent, finding.subject);
            return false;
        }
        --outstanding;
        trace.flow(finding.silent, finding.subject);
    }
    return true;
}

/// Reads a file up to the last line that was outstanding, or to the first wrong one.
/// @return true if as many lines were right as there are settings, one that occurs twice counted twice
bool isSilent(std::ifstream& lines, const SettingsFile& file, const AdapterTrace& trace) {
    const std::string read = std::string(file.name) + ":[%s]";
    const std::string blankDeleted = std::string(file.name) + " space delete:[%s]";
    std::size_t outstanding = file.count;
    std::string line;
    while (outstanding > 0 && std::getline(lines, line)) {
        trace.flow(read.c_str(), line);
        if (!checkLine(withoutBlanks(line, blankDeleted, trace), file, outstanding, trace)) {
            return false;
        }
    }
    return outstanding == 0;
}

bool checkConfiguration(const SettingsFile& file, const AdapterTrace& trace) {
    std::ifstream lines(file.path);
    if (!lines.is_open()) {
        return kvl::failToOpen(file.path, trace);
    }
    if (!isSilent(lines, file, trace)) {
        trace.flow("%s", file.failure);
        return false;
    }
    return true;
}

/// Looks for the package elxocmjvm, which a silent install leaves out.
/// @return true unless `grep` tells of a hit
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
