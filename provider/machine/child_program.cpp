#include "provider/machine/child_program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <system_error>

#include "machines/descriptor.h"
#include "reference_host/file_descriptor.h"

namespace kvl::provider {
namespace {

constexpr std::array<int, 4> kEndingSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

std::atomic<pid_t> receiver{0};

extern "C" void passOn(int number) {
    const int savedErrno = errno;
    kill(receiver.load(), number);
    errno = savedErrno;
}

sigset_t endingSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kEndingSignals) {
        sigaddset(&set, number);
    }
    return set;
}

/// Holds the ending signals back for as long as there is nobody to pass them on to.
class HeldSignals {
public:
    HeldSignals() {
        const sigset_t set = endingSignals();
        sigprocmask(SIG_BLOCK, &set, &before_);
    }
    ~HeldSignals() { release(); }

    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    void release() const { sigprocmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

/// Passes the ending signals on to a process, but for those that this one ignores.
class PassedSignals {
public:
    explicit PassedSignals(pid_t process) {
        receiver = process;
        for (std::size_t index = 0; index < kEndingSignals.size(); ++index) {
            sigaction(kEndingSignals[index], nullptr, &before_[index]);
            if (before_[index].sa_handler != SIG_IGN) {
                struct sigaction action {};
                action.sa_handler = passOn;
                action.sa_flags = SA_RESTART;
                sigaction(kEndingSignals[index], &action, nullptr);
            }
        }
    }
    ~PassedSignals() {
        for (std::size_t index = 0; index < kEndingSignals.size(); ++index) {
            sigaction(kEndingSignals[index], &before_[index], nullptr);
        }
    }

    PassedSignals(const PassedSignals&) = delete;
    PassedSignals& operator=(const PassedSignals&) = delete;

private:
    std::array<struct sigaction, kEndingSignals.size()> before_{};
};

std::vector<char*> pointers(std::vector<std::string>& words) {
    std::vector<char*> list;
    list.reserve(words.size() + 1);
    for (std::string& word : words) {
        list.push_back(word.data());
    }
    list.push_back(nullptr);
    return list;
}

int waitFor(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "waiting for bubblewrap");
        }
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

SandboxEnding runSandbox(std::vector<std::string> words) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    const host::FileDescriptor statusIn(ends[0]);
    host::FileDescriptor statusOut(ends[1]);
    words.insert(words.begin() + 1, {"--json-status-fd", std::to_string(statusOut.number())});
    std::vector<char*> list = pointers(words);

    const HeldSignals held;
    const pid_t process = fork();
    if (process < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (process == 0) {
        fcntl(statusOut.number(), F_SETFD, 0);
        held.release();
        execv(list.front(), list.data());
        _exit(127);
    }
    const PassedSignals passed(process);
    held.release();
    statusOut.close();
    // bubblewrap tells an exit code only if it has started the program.
    const bool ran = machines::readAll(statusIn.number()).find("exit-code") != std::string::npos;
    return {ran, waitFor(process)};
}

}  // namespace kvl::provider
