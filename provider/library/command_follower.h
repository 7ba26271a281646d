#ifndef KVL_PROVIDER_LIBRARY_COMMAND_FOLLOWER_H
#define KVL_PROVIDER_LIBRARY_COMMAND_FOLLOWER_H

#include <string>
#include <vector>

#include "host/CTraceUtility.h"

namespace kvl::provider {

/// A command that gave the library nothing, or perhaps not all.
struct FailedCommand {
    std::string command;
    std::string outcome;  ///< what became of it, in words

    bool operator==(const FailedCommand& other) const { return command == other.command && outcome == other.outcome; }
};

/// Follows the commands that the library runs, by the trace lines of its command runners. The library itself has no
/// code for a command that fails.
class CommandFollower {
public:
    /// What a trace line reports about commands.
    enum class Event { kNone, kCommandBegins, kCommandEnds };

    Event follow(TRACE_DBG_LEVEL level, const std::string& text);

    /// The command that runs, or that ran last, without its redirections.
    const std::string& command() const { return command_; }

    /// The same for the operator's eyes, with the program's name alone instead of its path.
    std::string shownCommand() const;

    /// What became of the last command, in words; empty if it did its work, or still runs.
    const std::string& outcome() const { return outcome_; }

    /// The signal that ended the last command; 0 if none did.
    int signal() const { return signal_; }

    /// Counts another second in which the command has printed nothing.
    /// @param subject  what the command is about, followed by ": "; empty if it isn't shown
    /// @param command  as it is shown
    /// @return what the display shows of the wait for its output
    std::string countSecond(const std::string& subject, const std::string& command);

    /// The commands that failed and that a LAN report misses, each once, in their order.
    const std::vector<FailedCommand>& failures() const { return failures_; }

private:
    void begin(const std::string& line);
    void fail(const std::string& outcome);

    std::string command_;
    std::string outcome_;
    int signal_ = 0;
    unsigned waited_ = 0;  // seconds without output
    std::vector<FailedCommand> failures_;
};

/// A failure for the operator, such as "eth0: coalesce settings: /usr/sbin/ethtool -c eth0 failed".
std::string describeFailure(const FailedCommand& failure);

}  // namespace kvl::provider

#endif
