#ifndef KVL_PROVIDER_RUN_RUN_H
#define KVL_PROVIDER_RUN_RUN_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/CTraceUtility.h"
#include "provider/machine/collection_lock.h"
#include "provider/run/display.h"
#include "provider/run/quiet_output.h"
#include "provider/run/run_options.h"

namespace kvl::provider {

/// What is done when something happens in a run. An empty function does nothing.
struct RunListener {
    std::function<void(TRACE_DBG_LEVEL, const std::string& text)> traced;  ///< A line of the library's trace.
    std::function<void()> secondPassed;  ///< Another second in which a command of the library has printed nothing.
    std::function<void(unsigned long milliseconds)> pauseBegins;  ///< A pause that the library makes.
    std::function<void()> interrupted;  ///< The operator ends the program: nothing of the run must be left.
};

/// The turn at the machine that a run needs.
enum class Turn {
    kTake,      ///< Its own: it works on the machine.
    kHeld,      ///< Its caller has it.
    kNotNeeded  ///< None: it changes nothing.
};

/// A run of the library, for as long as the object lives: the process has what the library's commands need, nobody else
/// works on the machine, the operator sees what the library waits for, the commands' output is shown only to an
/// operator who asks for the trace, and an interrupt ends the program also while a command runs. One at a time.
class Run {
public:
    /// @throws ProviderError if the turn doesn't come in time
    Run(const RunOptions& options, Turn turn);

    /// The same with a display of the caller's.
    Run(const RunOptions& options, Turn turn, std::unique_ptr<Display> display);

    ~Run();

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    /// What the operator sees while it runs.
    Display& display() { return *display_; }

    /// Writes to standard output, which the commands' output doesn't reach. @return false if that failed
    bool print(const std::string& text) const { return output_.write(text); }

    /// Writes a line about the run to standard error, below whatever is shown there, unless the operator wants quiet.
    void announce(const std::string& line);

    /// Writes "kvl: " and a sentence to standard error, quiet or not.
    void reportError(const std::string& sentence);

    /// The last line that the commands have printed, on either stream; empty if they printed nothing.
    std::string lastPrintedLine() const { return output_.lastLine(); }

    /// Forgets what the commands have printed so far.
    void forgetPrinted() { output_.forget(); }

    /// Shows lines of the trace in another form than the library has written them.
    /// @param shown  empty: as they are
    void setShownTrace(std::function<std::string(const std::string& text)> shown) { shownTrace_ = std::move(shown); }

    /// Ends the program by a signal, as if there were no run.
    void endBySignal(int signal);

    /// Has the commands that the library runs from now on hold the machine's lock, so that one that outlives this
    /// process keeps others away.
    void shareLock();

    /// Has the commands that still run keep that lock also when this run ends properly.
    void leaveLock();

private:
    friend class Listening;

    void traced(TRACE_DBG_LEVEL level, const std::string& text);
    void startObserving();

    std::optional<CollectionLock> lock_;  // the run's own
    const bool isQuiet_;
    const bool isTraced_;
    std::unique_ptr<Display> display_;  // knows the operator's own standard error, and so stands before the next
    QuietOutput output_;
    const RunListener* listener_ = nullptr;
    std::function<std::string(const std::string& text)> shownTrace_;
};

/// Reports what happens in a run to a listener, for as long as the object lives, in place of the one before.
class Listening {
public:
    Listening(Run& run, RunListener listener) : run_(run), listener_(std::move(listener)), before_(run.listener_) {
        run_.listener_ = &listener_;
    }
    ~Listening() { run_.listener_ = before_; }

    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

private:
    Run& run_;
    const RunListener listener_;
    const RunListener* const before_;
};

}  // namespace kvl::provider

#endif
