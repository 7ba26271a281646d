#include "foundation/shell_child.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/file_state.h"
#include "host/HostFunctions.h"

namespace kvl {

namespace {

constexpr int kWaitOptions = WUNTRACED | WCONTINUED;
constexpr unsigned long kPollMilliseconds = 1000;

unsigned long judge(int status, unsigned long* exitCode) {
    // kept: a child that was stopped or continued ends the wait like one that a signal ended.
    if ((status & 0x7f) != 0) {
        return kFailed;
    }
    *exitCode = static_cast<unsigned long>(status >> 8) & 0xff;
    return kRan;
}

}  // namespace

bool canRun(const std::string& command, const std::string& workDir) {
    return !command.empty() && (workDir.empty() || canOpen(workDir));
}

bool becomeStandardOutput(int descriptor) {
    if (descriptor <= STDERR_FILENO) {
        const int clear = fcntl(descriptor, F_DUPFD, STDERR_FILENO + 1);
        close(descriptor);
        descriptor = clear;
    }
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    const bool done = dup2(descriptor, STDOUT_FILENO) == STDOUT_FILENO;
    close(descriptor);
    return done;
}

void becomeShell(const std::string& command) {
    execlp("sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
    _exit(1);
}

unsigned long waitForChild(pid_t child, unsigned long timeout, unsigned long* exitCode) {
    int status = -1;  // reads as "not exited by itself" where waitpid reports nothing
    if (timeout == kNoTimeout) {
        return waitpid(child, &status, kWaitOptions) == -1 ? kFailed : judge(status, exitCode);
    }
    for (unsigned long polls = 0; waitpid(child, &status, kWaitOptions | WNOHANG) == 0; ++polls) {
        if (polls == timeout / kPollMilliseconds) {
            Sleep(timeout % kPollMilliseconds);
            return kTimedOut;
        }
        Sleep(kPollMilliseconds);
    }
    return judge(status, exitCode);
}

}  // namespace kvl
