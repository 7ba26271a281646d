#ifndef KVL_PROVIDER_LIBRARY_COLLECTION_WATCH_H
#define KVL_PROVIDER_LIBRARY_COLLECTION_WATCH_H

#include <string>
#include <vector>

#include "host/CTraceUtility.h"

namespace kvl::provider {

/// A command that gave the collection nothing, or perhaps not all.
struct FailedCommand {
    std::string command;
    std::string outcome;  ///< what became of it, in words

    bool operator==(const FailedCommand& other) const { return command == other.command && outcome == other.outcome; }
};

/// Follows a collection by the trace lines that the library's command runner writes, which are part of its contract.
class CollectionWatch {
public:
    /// What a trace line tells about commands.
    enum class Event { kNone, kCommandBegins, kCommandEnds };

    Event take(TRACE_DBG_LEVEL level, const std::string& text);

    /// The command that runs, or that ran last, without its redirections.
    const std::string& command() const { return command_; }

    /// The signal that ended the last command; 0 if none did.
    int signal() const { return signal_; }

    /// The commands that failed, each once, in the order of the collection.
    const std::vector<FailedCommand>& failures() const { return failures_; }

private:
    void begin(const std::string& line);
    void end(int result);
    void fail(const std::string& outcome);

    std::string command_;
    int signal_ = 0;
    std::vector<FailedCommand> failures_;
};

/// A failure for the operator, such as "eth0: coalesce settings: /usr/sbin/ethtool -c eth0 failed".
std::string describeFailure(const FailedCommand& failure);

}  // namespace kvl::provider

#endif
