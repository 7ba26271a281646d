#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <string>
#include <utility>

#include "provider/machine/command_runner.h"
#include "provider/machine/interrupt_observer.h"

namespace kvl::provider {
namespace {

constexpr std::array<int, 2> kInterrupts = {SIGINT, SIGQUIT};
constexpr int kNoShell = 127 << 8;

std::atomic<int> noted{0};

extern "C" void noteInterrupt(int number) {
    noted = number;
}

std::function<void(int)>& observer() {
    static std::function<void(int)> current;
    return current;
}

/// Notes interrupts that are not ignored. A command gets their usual disposition back.
class NotedInterrupts {
public:
    NotedInterrupts() {
        noted = 0;
        for (std::size_t index = 0; index < kInterrupts.size(); ++index) {
            sigaction(kInterrupts[index], nullptr, &before_[index]);
            if (before_[index].sa_handler != SIG_IGN) {
                struct sigaction action {};
                action.sa_handler = noteInterrupt;
                action.sa_flags = SA_RESTART;
                sigaction(kInterrupts[index], &action, nullptr);
            }
        }
    }
    ~NotedInterrupts() {
        for (std::size_t index = 0; index < kInterrupts.size(); ++index) {
            sigaction(kInterrupts[index], &before_[index], nullptr);
        }
    }

    NotedInterrupts(const NotedInterrupts&) = delete;
    NotedInterrupts& operator=(const NotedInterrupts&) = delete;

private:
    std::array<struct sigaction, kInterrupts.size()> before_{};
};

/// @return what `system` gives for the command
int runShell(std::string command) {
    const NotedInterrupts interrupts;
    std::string shell = "sh";
    std::string option = "-c";
    const std::array<char*, 4> words = {shell.data(), option.data(), command.data(), nullptr};
    pid_t process = 0;
    if (posix_spawn(&process, "/bin/sh", nullptr, nullptr, words.data(), environ) != 0) {
        return kNoShell;
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return status;
}

}  // namespace

void setInterruptObserver(std::function<void(int signal)> next) {
    observer() = std::move(next);
}

}  // namespace kvl::provider

/// Stands in front of libc's own, which ignores the terminal's interrupts while a command runs, so that only the
/// command would end by them. The program exports it, so the library's commands come through here. For one thread.
extern "C" int system(const char* command) {
    if (command == nullptr) {
        return 1;
    }
    if (kvl::provider::CommandRunner* runner = kvl::provider::commandRunner()) {
        return runner->run(command);
    }
    const int status = kvl::provider::runShell(command);
    const int signal = kvl::provider::noted.exchange(0);
    if (signal != 0 && kvl::provider::observer()) {
        kvl::provider::observer()(signal);
    }
    return status;
}
