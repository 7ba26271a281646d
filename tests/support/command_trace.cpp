#include "tests/support/command_trace.h"

namespace kvl::test {

namespace {

const std::string kExecCommand = "int CNetworkParameter::ExecCommand(const char*, ...)";
const std::string kGetItem = "std::string CNetworkParameter::GetVendorDependInfo(std::string, int)";

Lines started(const std::string& commandLine) {
    return {enter(kExecCommand), detail(kExecCommand, "[" + shellLine(commandLine) + "]")};
}

}  // namespace

Lines operator+(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

std::string shellLine(const std::string& commandLine) {
    const std::string command = commandLine.substr(0, commandLine.find(' '));
    return commandLine + " > /opt/tarvenn/kvl/provider/tmp/" + command.substr(command.rfind('/') + 1) + " 2> /dev/null";
}

Lines ran(const std::string& commandLine) {
    return started(commandLine) + Lines{leave(kExecCommand, ", rc=0")};
}

Lines failed(const std::string& commandLine) {
    return started(commandLine) +
           Lines{error(kExecCommand, "[" + shellLine(commandLine) + "] command failed! (errno)")};
}

Lines printedNothing(const std::string& commandLine) {
    return started(commandLine) + Lines{leave(kExecCommand, ", rc=-1")};
}

std::string enter(const std::string& signature, const std::string& tail) {
    return "4 [ENTER] " + signature + tail;
}
std::string leave(const std::string& signature, const std::string& tail) {
    return "4 [LEAVE] " + signature + tail;
}
std::string detail(const std::string& signature, const std::string& text) {
    return "1 " + signature + " " + text;
}
std::string error(const std::string& signature, const std::string& text) {
    return "2 " + signature + " " + text;
}

Lines itemMissing(const std::string& path) {
    return {enter(kGetItem), detail(kGetItem, "[" + path + "] is not exist")};
}

}  // namespace kvl::test
