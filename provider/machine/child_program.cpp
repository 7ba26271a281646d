#include "provider/machine/child_program.h"

#include <signal.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <optional>

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

/// Holds the ending signals back until there is a process to pass them on to.
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

}  // namespace

machines::BubblewrapEnding runSandbox(const std::vector<std::string>& words) {
    const HeldSignals held;
    std::optional<PassedSignals> passed;
    return machines::runBubblewrap(words, {[&held] { held.release(); },
                                           [&held, &passed](pid_t process) {
                                               passed.emplace(process);
                                               held.release();
                                           }});
}

}  // namespace kvl::provider
