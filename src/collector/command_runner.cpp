#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <fstream>
#include <utility>

#include "collector/CNetworkParameter.h"
#include "collector/cutters.h"
#include "foundation/exit_status.h"
#include "foundation/file_state.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

namespace {

constexpr const char* kResultDirectory = "/opt/tarvenn/kvl/provider/tmp";
constexpr std::string::size_type kLongestCommand = 255;
constexpr int kLooks = 10;
constexpr int kFailed = -1;

/// Waits for output, ten seconds at most. A command's output counts only at the first look, so a wait turns its
/// result into a failure, also where output shows up later.
int judgeOutput(const std::string& resultFile, int result) {
    for (int look = 0; look < kLooks && !kvl::hasContent(resultFile); ++look) {
        sleep(1);
        result = kFailed;
    }
    return result;
}

}  // namespace

CNetworkParameter::CNetworkParameter(std::string moduleName) : module_name(std::move(moduleName)) {
    const kvl::OperationTrace trace(module_name, "CNetworkParameter::CNetworkParameter(std::string)");
    trace.enter();
    ethtool_option.fill(true);
    if (ExecCommand("/bin/uname -r") >= 0) {
        std::ifstream output(result_file);
        kvl::LineReader(output).read(kernel_release);
        output.close();
        RemoveResultFile();
    }
    trace.leave(kernel_release);
}

CNetworkParameter::~CNetworkParameter() = default;

int CNetworkParameter::ExecCommand(const char* format, ...) {
    const kvl::OperationTrace trace(module_name, "int CNetworkParameter::ExecCommand(const char*, ...)");
    trace.enter();
    std::va_list arguments;
    va_start(arguments, format);
    const std::string commandLine = kvl::formatTextV(format, arguments);
    va_end(arguments);
    if (commandLine.size() > kLongestCommand) {
        trace.error("[%s] command failed! (%d)", commandLine.c_str(), E2BIG);
        return kFailed;
    }

    std::string command;
    GetResultFileName(commandLine.c_str(), command, result_file);
    const std::string line = commandLine + " > " + result_file + " 2> /dev/null";
    trace.detail("[%s]", line.c_str());
    const int status = std::system(line.c_str());
    if (kvl::exitedWithFailure(status)) {
        trace.error("[%s] command failed! (%d)", line.c_str(), errno);
        RemoveResultFile();
        return kFailed;
    }

    const int result = judgeOutput(result_file, status);
    trace.leaveResult(result);
    return result;
}

void CNetworkParameter::GetResultFileName(const char* commandLine, std::string& command, std::string& resultFile) {
    command = kvl::upTo(commandLine, ' ');
    resultFile = std::string(kResultDirectory) + "/" + command.substr(command.rfind('/') + 1);
}

void CNetworkParameter::GetCommandName(const char* commandLine, std::string& name) {
    name = kvl::commandName(commandLine);
}

int CNetworkParameter::RemoveResultFile() {
    return unlink(result_file.c_str());
}

bool CNetworkParameter::isFileExist(std::string path) {
    return kvl::isThere(path);
}

bool CNetworkParameter::isError() {
    return error_flag;
}

std::string CNetworkParameter::GetColonSeparatedValue(std::string text) {
    return GetColonSeparatedValue(text, 0);
}

std::string CNetworkParameter::GetColonSeparatedValue(std::string text, unsigned int start) {
    work_str = kvl::colonSeparatedValue(text, start);
    return work_str;
}

std::string CNetworkParameter::GetStr(char separator, int index, std::string text) {
    work_str.clear();
    work_str = kvl::fieldAfter(separator, index, text);
    return work_str;
}

std::string CNetworkParameter::GetNextStr(std::string& text) {
    if (text.empty()) {
        return "";
    }
    work_str = kvl::takeWord(text);
    return work_str;
}

std::string CNetworkParameter::toStr(int value) {
    work_str = kvl::decimalText(value);
    return work_str;
}
