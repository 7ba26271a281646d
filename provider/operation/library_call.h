#ifndef KVL_PROVIDER_OPERATION_LIBRARY_CALL_H
#define KVL_PROVIDER_OPERATION_LIBRARY_CALL_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "provider/library/adapter_failure.h"
#include "provider/operation/step.h"
#include "provider/run/run.h"

namespace kvl::provider {

/// A call of one of the library's update procedures: follows it by its steps, shows them and their waits to the
/// operator, and keeps what went wrong.
class LibraryCall {
public:
    /// @param steps  in their order, each of which begins once; those that nothing in the trace begins are left out
    LibraryCall(Run& run, const Steps& steps);

    /// Makes the call. The commands that it starts hold the machine's lock, so one that outlives this process still
    /// locks others out.
    /// @return what the library answers; false also if it throws
    bool make(const std::function<bool()>& call);

    /// True if a step has begun that changes something.
    bool hasChanged() const;

    /// True if the step has begun that changes this.
    bool hasBegun(Change change) const;

    /// Why it failed: the step, the cause, and what the updater has printed last.
    const Failure& failure() const { return failure_; }

    /// Which command of the boot file procedures failed and how, with what it printed last, as in "'dracut' ended with
    /// 1, saying 'no space'"; empty if none did.
    std::string failedCommand() const;

    /// True if this file could not be opened.
    bool isUnopened(const std::string& path) const;

private:
    void follow(TRACE_DBG_LEVEL level, const std::string& text);
    void showPause(unsigned long milliseconds);
    void beginStep();
    Failure findFailure() const;

    Run& run_;
    Steps steps_;
    std::size_t begun_ = 0;
    unsigned looks_ = 0;  // pauses of the present step, in which an updater's output is waited for
    std::string cause_;
    std::string failedCommand_;
    std::vector<std::string> unopened_;
    Failure failure_;
};

}  // namespace kvl::provider

#endif
