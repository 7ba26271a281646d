#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "adapter/message_file_parser.h"
#include "adapter/result_mode.h"
#include "adapter/update_failure.h"
#include "foundation/CCommon_Information.h"
#include "foundation/boundary_trace.h"
#include "foundation/shell_child.h"
#include "host/CFileUtility.h"
#include "host/HostFunctions.h"

using kvl::AdapterTrace;

namespace {

constexpr unsigned long kPauseSeconds = 30;
constexpr unsigned long kLongestWaitSeconds = 150;
constexpr unsigned long kMillisecondsPerSecond = 1000;

/// How the search for texts of one kind is traced.
struct SearchTrace {
    const char* line;
    const char* hit;
};

constexpr SearchTrace kSuccessSearch = {"Result file check success msg [%s]", "Find SuccessMsg[%s] in [%s]"};
constexpr SearchTrace kEndSearch = {"Result file check endmsg [%s]", "Find endmsg[%s] in [%s]"};

using Texts = std::vector<std::string>;

/// @return false if the file can't be opened
bool readMessages(const std::string& path, kvl::Messages& messages, const AdapterTrace& trace) {
    std::ifstream file(path);
    if (!file.is_open()) {
        return kvl::fail(kvl::kFileNotOpened, trace, "File open error %s", path);
    }
    kvl::MessageFileEvents events;
    events.line = [&trace](const std::string& line) { trace.flow("log_mes_ifs. buf=[%s]", line); };
    events.success = [&trace](std::size_t number, const std::string& text) {
        trace.flow("successMessage[%d]=[%s]", static_cast<int>(number), text);
    };
    events.end = [&trace](std::size_t number, const std::string& text) {
        trace.flow("endMessage[%d]=[%s]", static_cast<int>(number), text);
    };
    messages = kvl::parseMessageFile(file, events);
    return true;
}

enum class Search { kFound, kNotFound, kNoFile };

/// Looks through an updater's output, from its start to the first line that holds one of the texts.
Search search(const std::string& path, const Texts& texts, const SearchTrace& formats, const AdapterTrace& trace) {
    std::ifstream file(path);
    if (!file.is_open()) {
        kvl::fail(kvl::kFileNotOpened, trace, "File Open Error");
        return Search::kNoFile;
    }
    const std::optional<std::string> hit =
        kvl::findMessage(file, texts, [&](const std::string& line) { trace.flow(formats.line, line); });
    if (!hit) {
        return Search::kNotFound;
    }
    // kept: prints not the text that was found but the place after the last text, which is empty.
    trace.flow(formats.hit, "", *hit);
    return Search::kFound;
}

/// Waits for the updater to finish writing.
bool waitForEnd(const std::string& resultFile, const Texts& endTexts, const AdapterTrace& trace) {
    for (unsigned long waited = kPauseSeconds;; waited += kPauseSeconds) {
        Sleep(kPauseSeconds * kMillisecondsPerSecond);
        const Search outcome = search(resultFile, endTexts, kEndSearch, trace);
        if (outcome != Search::kNotFound) {
            return outcome == Search::kFound;
        }
        if (waited == kLongestWaitSeconds) {
            return kvl::fail(kvl::kNoEndMessage, trace, "No such end message.");
        }
    }
}

/// One run of an updater, and what is to be judged of it.
struct UpdaterRun {
    const std::string& command;
    const std::string& resultFile;
    unsigned long exitCode;
    const std::string& reportDir;
    const std::string& messageFile;
    const std::string& moduleName;
};

bool judgeExitCode(const UpdaterRun& run, const AdapterTrace& trace) {
    return run.exitCode == 0 || kvl::fail(kvl::kUpdateFailed, trace, "Failed to update(%s)(ReturnCode=%#x).",
                                          run.command, static_cast<int>(run.exitCode));
}

bool failUpdate(const std::string& subject, const AdapterTrace& trace) {
    return kvl::fail(kvl::kUpdateFailed, trace, "Failed to update(%s).", subject);
}

bool judgeFirstLine(std::ifstream& output, const UpdaterRun& run, const AdapterTrace& trace) {
    std::string line;
    std::getline(output, line);
    return line == "0" || failUpdate(run.command, trace);
}

bool judgeOutput(const UpdaterRun& run, const AdapterTrace& trace) {
    if (run.messageFile.empty()) {
        return kvl::failToOpen(run.resultFile, trace);  // kept: it is the message file that has no name
    }
    return CEmulexCommon::CheckUpdateResult_(run.resultFile, run.messageFile, run.moduleName) ||
           failUpdate(run.command, trace);
}

bool judgeReport(const UpdaterRun& run, const AdapterTrace& trace) {
    if (run.messageFile.empty()) {
        return kvl::failToOpen(run.messageFile, trace);
    }
    std::list<std::string> reports;
    CFileUtility::SearchFile(run.reportDir, "*.txt", &reports, false);
    if (reports.empty()) {
        trace.flow("After to find reports file.There is not APInstall update file.");
        return false;
    }
    if (reports.size() == 1) {
        trace.flow("After to find reports file.There is one update file.");
    } else {
        // kept: the first one is looked for below although it is gone, so that this fails.
        CFileUtility::DeleteAllFileByExtendName(run.reportDir, "txt");
        trace.flow("After to find reports file.There is some update file.");
    }
    const std::string report = run.reportDir + "/" + reports.front();
    return CEmulexCommon::CheckUpdateResult_(report, run.messageFile, run.moduleName) ||
           failUpdate(run.reportDir, trace);
}

}  // namespace

bool CEmulexCommon::EmulexUpdate(std::string command, std::string resultFile, std::string workDir,
                                 unsigned long* returnCode, std::string reportDir, std::string messageFile,
                                 int Resultmode, std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.boundary("CEmulexCommon::EmulexUpdate() Resultmode = %d [START]", Resultmode);
    const auto end = [&trace](bool result) {
        trace.boundary("CEmulexCommon::EmulexUpdate() [END]");
        return result;
    };
    CFileUtility::DeleteAllFileByExtendName(reportDir, "txt");
    const unsigned long result =
        CCommon_Information::ExecForeignModule(command, resultFile, workDir, returnCode, kvl::kNoTimeout);
    if (result == kvl::kFailed) {
        SetLastError(kvl::kFileNotOpened);
        const int code = static_cast<int>(GetLastError());
        trace.error("Failed to update execute(%s)(%x)(Windows Error code:%d).", command, code, code);
        return end(false);
    }
    const UpdaterRun run = {command, resultFile, *returnCode, reportDir, messageFile, moduleName};
    switch (Resultmode) {
        case kvl::kByExitCode:
            return end(judgeExitCode(run, trace));
        case kvl::kByFirstLine: {
            std::ifstream output(resultFile);
            if (!output.is_open()) {
                return kvl::failToOpen(resultFile, trace);  // kept: without an end line
            }
            return end(judgeFirstLine(output, run, trace));
        }
        case kvl::kByOutput:
            return end(judgeOutput(run, trace));
        case kvl::kByReport:
            return end(judgeReport(run, trace));
        default:
            return end(false);
    }
}

bool CEmulexCommon::CheckUpdateResult_(std::string resultFile, std::string messageFile, std::string moduleName) {
    const kvl::BoundaryTrace boundaries(moduleName, "CEmulexCommon::CheckUpdateResult_()");
    const AdapterTrace trace(moduleName);
    kvl::Messages messages;
    if (!readMessages(messageFile, messages, trace)) {
        return false;
    }
    if (messages.success.empty()) {
        trace.error("no successMessage");
        return false;
    }
    if (messages.end.empty()) {
        trace.flow("no endMessage");
    } else if (!waitForEnd(resultFile, messages.end, trace)) {
        return false;
    }
    switch (search(resultFile, messages.success, kSuccessSearch, trace)) {
        case Search::kFound:
            trace.flow("Update Result Check OK");
            return true;
        case Search::kNotFound:
            return kvl::fail(kvl::kNoSuccessMessage, trace, "No such success message.");
        case Search::kNoFile:
            break;
    }
    return false;
}

bool CEmulexCommon::UpdateProceedingFileCreate_(std::string directory, std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.boundary("CEmulexCommon::UpdateProceedingFileCreate_() [Start]");
    const std::string marker = directory + "/UpdateProceeding.txt";
    const bool isMarked =
        std::fstream(marker, std::ios::in | std::ios::out).is_open() || std::ofstream(marker, std::ios::app).is_open();
    if (!isMarked) {
        kvl::fail(kvl::kFileNotOpened, trace, "Update faile name(%s)", marker);
    }
    trace.boundary("CEmulexCommon::UpdateProceedingFileCreate_() [END]");
    return isMarked;
}
