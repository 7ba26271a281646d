#include "tests/reference_host/processes.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace kvl::test {

pid_t startChild(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        int code = 125;
        try {
            code = work();
        } catch (...) {
        }
        ::_exit(code);
    }
    return child;
}

bool isRunning(pid_t child) {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == 0;
}

int exitCodeOf(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int exitCodeOf(const std::function<int()>& work) {
    return exitCodeOf(startChild(work));
}

bool becomeAnotherUser() {
    constexpr unsigned kNobody = 65534;
    return ::setgroups(0, nullptr) == 0 && ::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0;
}

}  // namespace kvl::test
