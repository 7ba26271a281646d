#ifndef KVL_PROVIDER_ADAPTERS_ADAPTER_WATCH_H
#define KVL_PROVIDER_ADAPTERS_ADAPTER_WATCH_H

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

    /// What became of the last command, in words; empty if it did its work, or still runs.
    const std::string& outcome() const { return outcome_; }

    /// The signal that ended the last command, as far as the library tells it; 0 if none did.
    int signal() const { return signal_; }

private:
    std::string command_;
    std::string outcome_;
    int signal_ = 0;
};

}  // namespace kvl::provider

#endif
