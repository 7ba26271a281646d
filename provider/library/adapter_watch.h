#ifndef KVL_PROVIDER_LIBRARY_ADAPTER_WATCH_H
#define KVL_PROVIDER_LIBRARY_ADAPTER_WATCH_H

#include <string>

#include "host/CTraceUtility.h"

namespace kvl::provider {

/// Follows the adapter tool by the trace lines that the library's command runner writes, which are part of its
/// contract. The library itself has no code for a tool that fails.
class AdapterWatch {
public:
    /// What a trace line tells about commands.
    enum class Event { kNone, kCommandBegins, kCommandEnds };

    Event take(TRACE_DBG_LEVEL level, const std::string& text);

    /// The command that runs, or that ran last, without its redirection.
    const std::string& command() const { return command_; }

    /// The same for the operator's eyes, with the program's name alone instead of its path.
    std::string shownCommand() const;

    /// What became of the last command, in words; empty if it did its work, or still runs.
    const std::string& outcome() const { return outcome_; }

private:
    std::string command_;
    std::string outcome_;
};

}  // namespace kvl::provider

#endif
