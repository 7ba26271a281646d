#ifndef KVL_PROVIDER_RUN_ADAPTER_SESSION_H
#define KVL_PROVIDER_RUN_ADAPTER_SESSION_H

#include <memory>
#include <optional>
#include <string>

#include "provider/library/adapter_watch.h"
#include "provider/machine/collection_lock.h"
#include "provider/run/collection_display.h"
#include "provider/run/quiet_output.h"
#include "provider/run/run_options.h"
#include "provider/run/wait_display.h"

namespace kvl::provider {

/// Watches a longer procedure of the library in a session's stead: its steps and its waits.
class ProcedureWatch {
public:
    virtual ~ProcedureWatch() = default;
    virtual void takeTrace(TRACE_DBG_LEVEL level, const std::string& text) = 0;
    virtual void takePause(unsigned long milliseconds) = 0;
};

/// A turn at the machine's adapters, for as long as the object lives: the process has what the library's commands need,
/// nobody else collects, the operator sees what is waited for, what the commands print reaches nobody but who asks for
/// the trace, and an interrupt ends the program also while a command runs. One at a time.
class AdapterSession {
public:
    /// @throws ProviderError if the turn isn't had in time
    explicit AdapterSession(const RunOptions& options);
    ~AdapterSession();

    AdapterSession(const AdapterSession&) = delete;
    AdapterSession& operator=(const AdapterSession&) = delete;

    const AdapterWatch& watch() const { return watch_; }

    /// Forgets the command that ran last, so that what is told of a command is about the next one.
    void forgetCommand() { watch_ = AdapterWatch(); }

    /// Writes to standard output, which what the commands print doesn't reach. @return false if that failed
    bool print(const std::string& text) const { return output_.write(text); }

    /// Writes a line about the run to standard error, below whatever is shown there, unless the operator wants quiet.
    void note(const std::string& line);

    /// What the last command said last, on either stream; empty if it said nothing.
    std::string toolsWords() const { return output_.lastLine(); }

    /// Forgets what was said so far.
    void forgetWords() { output_.forget(); }

    /// Lets a procedure be watched as long as it runs.
    /// @param procedure  null when it has ended
    void watchProcedure(ProcedureWatch* procedure) { procedure_ = procedure; }

    /// Has the commands that the library runs from now on hold the machine's lock, so that one that outlives this
    /// process keeps others away.
    void shareLock();

    /// Has the commands that still run keep that lock also when this session ends properly.
    void leaveLock();

    /// The line on the operator's terminal; null without one.
    WaitDisplay* display() { return display_.get(); }

    /// Names what the next commands are about, for the progress line.
    void setSubject(const std::string& subject) { subject_ = subject; }

private:
    void takeTrace(TRACE_DBG_LEVEL level, const std::string& text);
    void followCommand(TRACE_DBG_LEVEL level, const std::string& text);
    void takeInterrupt(int signal);
    void tellSecond();
    void tellPause(unsigned long milliseconds);

    std::optional<CollectionLock> lock_;  // none where nothing of the machine is changed
    const bool isQuiet_;
    const bool isTraced_;
    const std::size_t width_;
    const CollectionDisplay::Mode mode_;  // of the operator's own standard error, as the width is
    QuietOutput output_;
    CollectionDisplay trace_;
    std::unique_ptr<WaitDisplay> display_;  // only on a terminal
    AdapterWatch watch_;
    ProcedureWatch* procedure_ = nullptr;
    std::string subject_;
    unsigned waited_ = 0;
};

}  // namespace kvl::provider

#endif
