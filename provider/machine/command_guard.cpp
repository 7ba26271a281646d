#include "provider/machine/command_guard.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace kvl::provider {
namespace {

constexpr int kHighestDescriptor = 1023;
constexpr const char* kName = "command-guard";  // killing all processes named kvl must not hit it
constexpr std::array<int, 4> kEndingSignals = {SIGINT, SIGQUIT, SIGTERM, SIGHUP};

/// Keeps what commands inherit, and lets go of everything else.
void closeOwnDescriptors(int kept) {
    const int null = open("/dev/null", O_RDWR);
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
        dup2(null, number);
    }
    for (int number = STDERR_FILENO + 1; number <= kHighestDescriptor; ++number) {
        const int flags = fcntl(number, F_GETFD);
        if (number != kept && flags >= 0 && (number == null || (flags & FD_CLOEXEC) != 0)) {
            close(number);
        }
    }
}

[[noreturn]] void guard(int groups) {
    setsid();
    prctl(PR_SET_NAME, kName);
    for (const int number : kEndingSignals) {
        signal(number, SIG_IGN);  // the end of the other process is what ends this one
    }
    closeOwnDescriptors(groups);
    pid_t watched = 0;
    pid_t next = 0;
    for (;;) {
        const ssize_t count = read(groups, &next, sizeof next);
        if (count == static_cast<ssize_t>(sizeof next)) {
            watched = next;
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    if (watched > 0) {
        kill(-watched, SIGKILL);
    }
    _exit(0);
}

}  // namespace

CommandGuard::CommandGuard() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return;
    }
    const host::FileDescriptor readEnd(ends[0]);
    groups_ = host::FileDescriptor(ends[1]);
    process_ = fork();
    if (process_ == 0) {
        groups_.close();
        guard(readEnd.number());
    }
    if (process_ < 0) {
        groups_.close();
    }
}

CommandGuard::~CommandGuard() {
    groups_.close();
    if (process_ > 0) {
        while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

void CommandGuard::watch(pid_t group) const {
    if (groups_.isOpen()) {
        while (send(groups_.number(), &group, sizeof group, MSG_NOSIGNAL) < 0 && errno == EINTR) {
        }
    }
}

}  // namespace kvl::provider
