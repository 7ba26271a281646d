#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/update_failure.h"
#include "adapter/working_tree.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

using kvl::AdapterTrace;

namespace {

/// A setting that a silent install leaves.
struct Setting {
    const char* key;
    const char* line;
};

constexpr std::array<Setting, 4> kDiscoverySettings = {{
    {"ClientRemoteOperation", "ClientRemoteOperation:disabled"},
    {"ClientOperationMode", "ClientOperationMode:enabled"},
    {"ClientReadOnlyOperation", "ClientReadOnlyOperation:disabled"},
    {"TcpSocketPortNumber", "TcpSocketPortNumber:23333"},
}};

constexpr std::array<Setting, 5> kManagementSettings = {{
    {"ServerRemoteOperation", "ServerRemoteOperation:enabled"},
    {"ManagementHost", "ManagementHost:false"},
    {"SecureManagement", "SecureManagement:disabled"},
    {"MngmtHostIpAddress", "MngmtHostIpAddress:0"},
    {"ExclusiveHostMgmnt", "ExclusiveHostMgmnt:false"},
}};

constexpr const char* kSignature = "static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)";

/// A configuration file of the management tool.
struct ConfigurationFile {
    const char* path;
    const char* name;  ///< What its trace lines begin with.
    const Setting* first;
    std::size_t count;
    const char* failure;

    const Setting* begin() const { return first; }
    const Setting* end() const { return first + count; }
};

// kept: the first failure's text has a bracket of its own.
constexpr std::array<ConfigurationFile, 2> kConfigurationFiles = {{
    {"/etc/emulexDiscConfig", "emulexDiscConfig", kDiscoverySettings.data(), kDiscoverySettings.size(),
     "0 < iDiskKeyWordCount ) || ( iRet != true )"},
    {"/etc/emulexRMConfig", "emulexRMConfig", kManagementSettings.data(), kManagementSettings.size(),
     "( 0 < iRmKeyWordCount ) || ( iRet != true )"},
}};

/// How one setting is traced where it is found.
struct FindingTrace {
    const char* silent;
    const char* notSilent;
    std::string subject;
};

// kept: one setting is traced by its key, and with two blanks where it is wrong.
FindingTrace findingTrace(const Setting& setting, const std::string& line) {
    if (&setting == kDiscoverySettings.data()) {
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
bool checkLine(const std::string& line, const ConfigurationFile& file, std::size_t& outstanding,
               const AdapterTrace& trace) {
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
bool isSilent(std::ifstream& lines, const ConfigurationFile& file, const AdapterTrace& trace) {
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

bool checkConfiguration(const ConfigurationFile& file, const AdapterTrace& trace) {
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
        std::all_of(kConfigurationFiles.begin(), kConfigurationFiles.end(),
                    [&trace](const ConfigurationFile& file) { return checkConfiguration(file, trace); }) &&
        isPackageMissing(trace);
    trace.flow("CEmulexCommon::OCMInstallCheck() [END]");  // kept: no boundary line
    return isSilentInstall;
}
