#include "tests/support/test_host.h"

#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "host/CTraceUtility.h"
#include "host/HostFunctions.h"

namespace kvl::test {

namespace {

Lines tracedLines;
Lines tracedModules;
Lines moduleOfLine;
Lines messages;
std::vector<unsigned long> sleptMilliseconds;
Lines deletedPaths;
Lines removedDirectories;
std::function<void(const char*)> deletionCall;
std::function<void()> sleepCall;
std::function<void(const std::string&)> traceCall;

// How many texts fill in a message.
struct MessageKind {
    const char* id;
    int arguments;
};
constexpr MessageKind kMessageKinds[] = {
    {"MSGID_EMULEX_0004_F", 2},
    {"MSGID_EMULEX_FC_0004_F", 2},
    {"MSGID_EMULEX_0020_F", 1},
    {"MSGID_EMULEX_FC_0019_F", 1},
};

int argumentsOf(const std::string& messageId) {
    const auto kind = std::find_if(std::begin(kMessageKinds), std::end(kMessageKinds),
                                   [&](const MessageKind& candidate) { return candidate.id == messageId; });
    return kind != std::end(kMessageKinds) ? kind->arguments : 0;
}

std::string withoutErrorNumber(std::string line) {
    const std::string marker = "] command failed! (";
    const auto found = line.rfind(marker);
    if (found != std::string::npos && line.back() == ')') {
        line = line.substr(0, found + marker.size()) + "errno)";
    }
    return line;
}

}  // namespace

void TestHost::forget() {
    tracedLines.clear();
    tracedModules.clear();
    moduleOfLine.clear();
    messages.clear();
    sleptMilliseconds.clear();
    deletedPaths.clear();
    removedDirectories.clear();
    deletionCall = nullptr;
    sleepCall = nullptr;
    traceCall = nullptr;
}

Lines TestHost::trace() {
    Lines lines;
    std::transform(tracedLines.begin(), tracedLines.end(), std::back_inserter(lines), withoutErrorNumber);
    return lines;
}

Lines TestHost::exactTrace() {
    return tracedLines;
}

Lines TestHost::moduleTrace() {
    Lines lines = trace();
    for (std::size_t line = 0; line < lines.size(); ++line) {
        lines[line] = moduleOfLine[line] + " " + lines[line];
    }
    return lines;
}

Lines TestHost::operatorMessages() {
    return messages;
}

Lines TestHost::modules() {
    return tracedModules;
}

std::vector<unsigned long> TestHost::sleeps() {
    return sleptMilliseconds;
}

void TestHost::onDeletion(std::function<void(const char*)> call) {
    deletionCall = std::move(call);
}
Lines TestHost::deletions() {
    return deletedPaths;
}
Lines TestHost::removals() {
    return removedDirectories;
}
void TestHost::onSleep(std::function<void()> call) {
    sleepCall = std::move(call);
}

void TestHost::onTrace(std::function<void(const std::string&)> call) {
    traceCall = std::move(call);
}

}  // namespace kvl::test

void CTraceUtility::WriteDebug(const char* module, TRACE_DBG_LEVEL level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    std::vector<char> text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)) + 1);
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    va_end(arguments);
    kvl::test::tracedLines.push_back(std::to_string(level) + " " + text.data());
    kvl::test::moduleOfLine.emplace_back(module);
    auto& modules = kvl::test::tracedModules;
    if (std::find(modules.begin(), modules.end(), module) == modules.end()) {
        modules.emplace_back(module);
    }
    if (kvl::test::traceCall) {
        kvl::test::traceCall(std::string(kvl::test::tracedLines.back()));
    }
}

void CTraceUtility::WriteTrace(const char* module, const char* messageId, ...) {
    std::string message = std::string(module) + " " + messageId;
    std::va_list arguments;
    va_start(arguments, messageId);
    for (int count = kvl::test::argumentsOf(messageId); count > 0; --count) {
        message += std::string(" ") + va_arg(arguments, const char*);
    }
    va_end(arguments);
    kvl::test::messages.push_back(message);
}

int DeleteFileA(const char* path) {
    kvl::test::deletedPaths.emplace_back(path);
    const int result = unlink(path) == 0 ? 1 : 0;
    if (kvl::test::deletionCall) {
        kvl::test::deletionCall(path);
    }
    return result;
}

int RemoveDirectoryA(const char* path) {
    kvl::test::removedDirectories.emplace_back(path);
    return rmdir(path) == 0 ? 1 : 0;
}

void Sleep(unsigned long milliseconds) {
    kvl::test::sleptMilliseconds.push_back(milliseconds);
    if (kvl::test::sleepCall) {
        kvl::test::sleepCall();
    }
}
