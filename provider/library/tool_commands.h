#ifndef KVL_PROVIDER_LIBRARY_TOOL_COMMANDS_H
#define KVL_PROVIDER_LIBRARY_TOOL_COMMANDS_H

#include <string>

#include "provider/library/adapter_failure.h"
#include "provider/library/command_follower.h"
#include "provider/run/run.h"

namespace kvl::provider {

/// The commands of the adapter tool that the library runs, for as long as the object lives: shows them on the display,
/// and explains the last one's failure.
class ToolCommands {
public:
    explicit ToolCommands(Run& run);

    ToolCommands(const ToolCommands&) = delete;
    ToolCommands& operator=(const ToolCommands&) = delete;

    /// Names what the next commands are about, for the display.
    void setSubject(const std::string& subject) { subject_ = subject; }

    /// Forgets the command that ran last, so that a failure is about the next one.
    void forgetLast() { follower_ = CommandFollower(); }

    /// Why the last call of the library failed. A failure of the tool comes first: a code of the library that is there
    /// as well belongs to an earlier try.
    Failure lastCallFailure() const;

private:
    void follow(TRACE_DBG_LEVEL level, const std::string& text);
    void showPause(unsigned long milliseconds);

    Run& run_;
    CommandFollower follower_;
    std::string subject_;
    const Listening listening_;
};

}  // namespace kvl::provider

#endif
