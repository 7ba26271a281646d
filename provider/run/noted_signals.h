#ifndef KVL_PROVIDER_RUN_NOTED_SIGNALS_H
#define KVL_PROVIDER_RUN_NOTED_SIGNALS_H

#include <signal.h>

#include <array>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "reference_host/file_descriptor.h"

namespace kvl::provider {

/// Keeps the signals by which an operator or a terminal ends or stops programs away from this process and from all
/// commands that it starts, for as long as the object lives: an updater that is broken off half-way can leave an
/// adapter without firmware. They are noted instead.
///
/// They are blocked and ignored: a shell unblocks all signals for itself and its commands when it has waited for one,
/// but it leaves alone what was ignored when it began. To be made before other threads that don't block all signals. A
/// command that takes a signal itself gets it.
class NotedSignals {
public:
    /// @param told  is called with the first signal that comes, on a thread of its own or by whoever asks for it first
    explicit NotedSignals(std::function<void(int signal)> told);

    /// What came in the meantime is gone.
    ~NotedSignals();

    NotedSignals(const NotedSignals&) = delete;
    NotedSignals& operator=(const NotedSignals&) = delete;

    /// The first signal that came; 0 if none did. One that was sent before this call counts.
    int first() const;

private:
    static constexpr std::array<int, 7> kNoted = {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP, SIGTTIN, SIGTTOU};

    static sigset_t notedSet();
    void ignore();
    void watch() const;
    void readSignal() const;

    sigset_t before_{};
    std::array<struct sigaction, kNoted.size()> dispositions_{};
    struct sigaction brokenPipe_ {};
    host::FileDescriptor signals_;
    host::FileDescriptor end_;
    const std::function<void(int signal)> told_;
    mutable std::mutex mutex_;  // of the reading
    mutable int first_ = 0;
    std::thread watcher_;
};

/// The name of a signal for programs, such as SIGINT.
std::string signalName(int signal);

}  // namespace kvl::provider

#endif
