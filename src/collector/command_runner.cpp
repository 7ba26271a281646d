#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <utility>

#include "collector/CNetworkParameter.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

namespace {

constexpr const char* kResultDirectory = "/opt/tarvenn/kvl/provider/tmp";
constexpr std::string::size_type kLongestCommand = 255;
constexpr int kLooks = 10;
constexpr int kFailed = -1;

bool hasContent(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && status.st_size != 0;
}

bool exitedWithFailure(int status) {
    return status < 0 || ((status >> 8) & 0xff) != 0;
}

/// Waits for output, ten seconds at most. A command's output counts only at the first look, so a wait turns its
/// result into a failure, also where output shows up later.
int judgeOutput(const std::string& resultFile, int result) {
    for (int look = 0; look < kLooks && !hasContent(resultFile); ++look) {
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
        kvl::LineReader(result_file).read(kernel_release);
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
    if (exitedWithFailure(status)) {
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
    const std::string text = commandLine;
    const auto blank = text.find(' ');
    const auto slash = text.find('/');
    if (slash == std::string::npos) {
        name = text;
    } else if (blank == std::string::npos) {
        name = text.substr(slash + 1);
    } else {
        // kept: the length is counted from the slash and not from behind it, so the cut runs over the blank. For a
        // slash behind the blank it wraps around and takes all the rest; directly behind it, nothing is left.
        name = text.substr(slash + 1, blank + 1 - slash);
    }
}

int CNetworkParameter::RemoveResultFile() {
    return unlink(result_file.c_str());
}

bool CNetworkParameter::isFileExist(std::string path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

bool CNetworkParameter::isError() {
    return error_flag;
}

std::string CNetworkParameter::GetColonSeparatedValue(std::string text) {
    return GetColonSeparatedValue(text, 0);
}

std::string CNetworkParameter::GetColonSeparatedValue(std::string text, unsigned int start) {
    const auto colon = text.find(':', start);
    auto begin = colon == std::string::npos ? text.size() + 1 : colon + 1;
    while (begin < text.size() && text[begin] == ' ') {
        ++begin;
    }
    work_str = kvl::cut(text, begin);
    return work_str;
}

std::string CNetworkParameter::GetStr(char separator, int index, std::string text) {
    work_str.clear();
    std::string::size_type start = 1;
    for (int passed = 0; passed < index; ++passed) {
        const auto hit = text.find(separator, start);
        if (hit == std::string::npos) {
            return "";
        }
        start = hit + 1;
    }
    work_str = kvl::upTo(kvl::cut(text, start), separator);
    return work_str;
}

std::string CNetworkParameter::GetNextStr(std::string& text) {
    if (text.empty()) {
        return "";
    }
    const auto begin = text.find_first_not_of(' ');
    const auto end = text.find(' ', begin);
    work_str = begin == std::string::npos ? "" : text.substr(begin, end - begin);
    text.erase(0, text.find_first_not_of(' ', end));
    return work_str;
}

std::string CNetworkParameter::toStr(int value) {
    std::ostringstream stream;
    stream << value;
    work_str = stream.str();
    return work_str;
}
