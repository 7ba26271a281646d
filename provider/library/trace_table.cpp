#include "provider/library/trace_table.h"

#include <sys/wait.h>

#include <cstdlib>
#include <iterator>

namespace kvl::provider {
namespace {

using Event = TraceEvent;

constexpr const char* kDiscoverySettings = "/etc/emulexDiscConfig";
constexpr const char* kManagementSettings = "/etc/emulexRMConfig";

// Of the causes, the table has the lines that say most; later lines of the same procedure say less.
constexpr TraceRow kRows[] = {
    {Event::kCommandBegins, TRACE_DBG_FLOW, "int CNetworkParameter::ExecCommand(const char*, ...) [", "]", ""},
    {Event::kCommandFails, TRACE_DBG_ERROR, "int CNetworkParameter::ExecCommand(const char*, ...) [",
     "] command failed! (", ""},
    {Event::kCommandEnds, TRACE_DBG_BOUNDARY, "[LEAVE] int CNetworkParameter::ExecCommand(const char*, ...), rc=", "",
     "printed nothing"},
    {Event::kCommandBegins, TRACE_DBG_FLOW,
     "static int CEmulexCommon::ExecCommand_(std::string, std::string) ExecCommand_(", ")", ""},
    {Event::kCommandFails, TRACE_DBG_ERROR, "static int CEmulexCommon::ExecCommand_(std::string, std::string) [",
     "] command failed! (", ""},
    {Event::kCommandEnds, TRACE_DBG_BOUNDARY,
     "[LEAVE] static int CEmulexCommon::ExecCommand_(std::string, std::string), rc=", "", "printed nothing in 10 s"},

    {Event::kFolderDeletion, TRACE_DBG_BOUNDARY, "CUnzip_Utility::DeleteFolder [START]", "", ""},
    {Event::kUnpacking, TRACE_DBG_BOUNDARY, "CUnzip_Utility::Unzip [START]", "", ""},
    {Event::kAdapterLookup, TRACE_DBG_FLOW, "CEmulexCommon::GetHBAInfo() [START]", "", ""},
    {Event::kFirmwareChoice, TRACE_DBG_FLOW, "bios update file name(", ").", ""},
    {Event::kScriptSearch, TRACE_DBG_FLOW, "Search uninstall.sh in [", "]", ""},
    {Event::kUpdaterStart, TRACE_DBG_BOUNDARY, "CEmulexCommon::EmulexUpdate() Resultmode = ", " [START]", ""},
    {Event::kOverrideLines, TRACE_DBG_BOUNDARY, "CEmulexCommon::DepmodExecute() [START]", "", ""},
    {Event::kDepmodStart, TRACE_DBG_FLOW, "Execute depmod command by _tsystem method [", "]", ""},
    {Event::kImageRebuild, TRACE_DBG_BOUNDARY, "CEmulexCommon::DracutExcute() [START]", "", ""},

    {Event::kCause, TRACE_DBG_ERROR, "No such end message.", "", "its output did not come to its end in 150 s"},
    {Event::kCause, TRACE_DBG_ERROR, "No such success message.", "", "its output does not report success"},
    {Event::kCause, TRACE_DBG_ERROR, "no successMessage", "", "the module's message.txt holds no text of success"},
    {Event::kCause, TRACE_DBG_ERROR, "File open error ", "", "the module's message.txt can't be read"},
    {Event::kCause, TRACE_DBG_ERROR, "File Open Error", "", "its output can't be read"},
    {Event::kCause, TRACE_DBG_ERROR, "Failed to update execute(", "", "it could not be started, or a signal ended it"},
    {Event::kCause, TRACE_DBG_ERROR, "Failed to execute command:", "",
     "it did not report 'Download Complete' in four runs"},
    {Event::kCause, TRACE_DBG_ERROR, "Failed to get create unzip folder", "", "the directory can't be made"},
    {Event::kCause, TRACE_DBG_ERROR, "CUnzip_Utility::Unzip() unzip() failed", "", "'unzip' failed"},
    {Event::kCause, TRACE_DBG_ERROR, "CUnzip_Utility::Unzip() ExecForeignModule() failed", "",
     "'unzip' could not be run, or a signal ended it"},
    {Event::kCause, TRACE_DBG_ERROR, "Failed to get delete update module folder(", "",
     "the directory can't be removed"},
    {Event::kCause, TRACE_DBG_ERROR, "Failed to get os architecture.", "",
     "what kind of machine this is can't be told"},
    {Event::kCause, TRACE_DBG_ERROR, "Failed to find update module.There is not ufi file.", "",
     "no install.sh was unpacked to follow it"},

    {Event::kFileNotOpened, TRACE_DBG_ERROR, "Failed to open file(", ").", ""},
    {Event::kDepmodFailure, TRACE_DBG_ERROR, "depmod -a error.(", ")", "depmod -a"},
    {Event::kMoveFailure, TRACE_DBG_FLOW, "mv -f command error.(", ")", "mv -f"},
    {Event::kDracutFailure, TRACE_DBG_FLOW, "dracut command error.(", ")", "dracut"},

    {Event::kSettingsLine, TRACE_DBG_FLOW, "emulexDiscConfig:[", "]", kDiscoverySettings},
    {Event::kSettingsLine, TRACE_DBG_FLOW, "emulexRMConfig:[", "]", kManagementSettings},
    {Event::kSettingFound, TRACE_DBG_FLOW, "find[", "]", ""},
    {Event::kSettingRight, TRACE_DBG_FLOW, "silent [", "]", ""},
    {Event::kSettingWrong, TRACE_DBG_FLOW, "not silent ", "]", ""},
    {Event::kSettingsFailure, TRACE_DBG_FLOW, "0 < iDiskKeyWordCount ) || ( iRet != true )", "", kDiscoverySettings},
    {Event::kSettingsFailure, TRACE_DBG_FLOW, "( 0 < iRmKeyWordCount ) || ( iRet != true )", "", kManagementSettings},
    {Event::kPackageFound, TRACE_DBG_FLOW, "I found elxocmjvm", "", ""},
    {Event::kPackagesUnknown, TRACE_DBG_ERROR, "_tsystem error (rpm grep).", "", ""},
};

constexpr const char* kNotRun = "could not be run, or a signal ended it";
constexpr int kShellsSignal = 128;  // and the signal: how a shell reports that one ended its command

std::string endingOfShell(int status) {
    return status > kShellsSignal ? "was ended by signal " + std::to_string(status - kShellsSignal)
                                  : "ended with " + std::to_string(status);
}

/// @param ending  what `system` has returned
std::string endingOfSystem(int ending) {
    return ending != -1 && WIFEXITED(ending) ? endingOfShell(WEXITSTATUS(ending)) : kNotRun;
}

/// @param numbers  the result of the library's own command runner, a comma, and the exit status
std::string endingOfRunner(const std::string& numbers) {
    const bool hasExited = std::atoi(numbers.c_str()) == 0;
    return hasExited ? endingOfShell(std::atoi(numbers.c_str() + numbers.find(',') + 1)) : kNotRun;
}

}  // namespace

TraceTable traceTable() {
    return {std::begin(kRows), std::end(kRows)};
}

TracedEvent readTraceLine(TRACE_DBG_LEVEL level, std::string_view text) {
    for (const TraceRow& row : kRows) {
        if (row.level != level || text.substr(0, row.begins.size()) != row.begins) {
            continue;
        }
        const std::string_view rest = text.substr(row.begins.size());
        const auto end = row.ends.empty() ? rest.size() : rest.rfind(row.ends);
        if (end != rest.npos) {
            return {row.event, std::string(rest.substr(0, end)), row.detail};
        }
    }
    return {};
}

std::string describeBootFailure(const TracedEvent& failure) {
    const std::string ending = failure.event == TraceEvent::kDepmodFailure
                                   ? endingOfSystem(std::atoi(failure.value.c_str()))
                                   : endingOfRunner(failure.value);
    return "'" + std::string(failure.detail) + "' " + ending;
}

}  // namespace kvl::provider
