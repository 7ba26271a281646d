#ifndef KVL_PROVIDER_MACHINE_COMMAND_SIGNALS_H
#define KVL_PROVIDER_MACHINE_COMMAND_SIGNALS_H

#include <signal.h>

#include <array>
#include <chrono>

namespace kvl::provider {

/// Notes, for as long as the object lives, the signals that end programs and the end of child processes. A signal that
/// this process ignores stays ignored. One object at a time.
class CommandSignals {
public:
    CommandSignals();
    ~CommandSignals();

    CommandSignals(const CommandSignals&) = delete;
    CommandSignals& operator=(const CommandSignals&) = delete;

    /// Waits for the next of these signals, or for something to read from a descriptor.
    /// @param descriptor  -1: none
    /// @param longest     negative: for ever
    void wait(int descriptor, std::chrono::milliseconds longest) const;

    /// @return the first ending signal that came; 0 if none did
    int ending() const;

private:
    static constexpr std::array<int, 5> kNoted = {SIGCHLD, SIGINT, SIGQUIT, SIGTERM, SIGHUP};

    std::array<struct sigaction, kNoted.size()> before_{};
};

}  // namespace kvl::provider

#endif
