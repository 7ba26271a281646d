#ifndef KVL_PROVIDER_OPERATION_PROCEDURE_H
#define KVL_PROVIDER_OPERATION_PROCEDURE_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "provider/library/adapter_failure.h"
#include "provider/run/adapter_session.h"

namespace kvl::provider {

/// A step of one of the library's update procedures. The procedures tell of them in their trace alone, whose lines are
/// part of their contract.
struct ProcedureStep {
    const char* begins;  ///< How the trace line begins with which the step does.
    std::string what;    ///< As in "unpacking module.zip".
    bool changes;        ///< Whether an updater runs in it, so that things can have changed from here on.
    std::string output;  ///< File that the updater prints into; empty without one.
};

/// Follows a procedure by its steps, shows them and their waits to the operator, and keeps what went wrong.
class Procedure : public ProcedureWatch {
public:
    /// @param steps  in their order; each begins once
    Procedure(AdapterSession& session, std::vector<ProcedureStep> steps);

    /// Runs it. The commands that it starts hold the machine's lock, so that one that is left behind by a dead process
    /// keeps others away.
    /// @param call  the library's operation
    /// @return what the library answers; false also if it throws
    bool run(const std::function<bool()>& call);

    /// True if an updater was started.
    bool hasChanged() const;

    /// True if the step with this number, counted from 0, has begun.
    bool hasBegun(std::size_t step) const { return begun_ > step; }

    /// Why it failed: the step, the cause, and what the updater has printed last.
    const Failure& failure() const { return failure_; }

    void takeTrace(TRACE_DBG_LEVEL level, const std::string& text) override;
    void takePause(unsigned long milliseconds) override;

private:
    void beginStep();
    void noteCause(TRACE_DBG_LEVEL level, const std::string& text);
    Failure findFailure() const;

    AdapterSession& session_;
    std::vector<ProcedureStep> steps_;
    std::size_t begun_ = 0;
    unsigned looks_ = 0;  // pauses of the present step, in which an updater's output is waited for
    std::string cause_;
    Failure failure_;
};

}  // namespace kvl::provider

#endif
