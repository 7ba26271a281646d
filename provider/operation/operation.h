#ifndef KVL_PROVIDER_OPERATION_OPERATION_H
#define KVL_PROVIDER_OPERATION_OPERATION_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "provider/library/adapter_failure.h"
#include "provider/operation/record.h"
#include "provider/operation/step.h"
#include "provider/run/run.h"

namespace kvl::provider {

/// What an operation is going to do.
struct Plan {
    std::string title;
    std::vector<std::string> facts;
    Steps steps;
    std::string skipped;  ///< why a part that was asked for is left out; empty if none is
};

/// The result of an operation.
enum class Result {
    kPlanned,    ///< It could begin: this was a dry run.
    kDone,       ///< What was asked for is done.
    kSkipped,    ///< There was nothing to do, or the operator said no, or a part was left out on purpose.
    kUnchanged,  ///< It failed, and nothing was changed.
    kChanged,    ///< It failed when something was changed already.
};

/// How carrying out a plan has ended.
struct Ending {
    static Ending done(const std::string& sentence, const std::string& record) {
        return {Result::kDone, sentence, record, std::nullopt};
    }
    static Ending unchanged(const std::string& sentence) { return {Result::kUnchanged, sentence, "", std::nullopt}; }
    static Ending changed(const std::string& sentence) { return {Result::kChanged, sentence, "", std::nullopt}; }

    Result result = Result::kDone;
    std::string sentence;            ///< what was done, or which state a failure has left
    std::string record;              ///< what was done, for the system log
    std::optional<Failure> failure;  ///< why it failed, where the sentence doesn't say it
};

/// What an operation sees of the run while it carries its plan out.
class Execution {
public:
    virtual ~Execution() = default;

    /// The first signal that came meanwhile; 0 if none did.
    virtual int signal() const = 0;

    /// Reports something that is done while more is to come.
    virtual void reportDone(const std::string& sentence) = 0;
};

/// Something that kvl does to the machine. One driver takes each of them through the same stages: look, plan, ask, do,
/// check. Until the plan is carried out nothing is changed. What throws before that has changed nothing.
class Operation {
public:
    virtual ~Operation() = default;

    virtual Subject subject() const = 0;

    /// Looks whether everything is there that it needs.
    /// @return why there is nothing to do; empty if it can begin
    /// @throws ProviderError, AdapterFailure with what is missing
    virtual std::string look() = 0;

    /// Reads what the operation is to change, for the plan and for the check. Not done in a dry run.
    virtual void readState() {}

    virtual Plan plan() const = 0;

    /// What the operator is asked before it is carried out; empty if nothing is asked.
    virtual std::string question() const { return ""; }

    /// What it begins with, for the system log.
    virtual std::string source() const = 0;

    /// Does what can still refuse.
    virtual void prepare() {}

    /// Carries the plan out, and checks the result.
    virtual Ending carryOut(Execution& execution) = 0;

    /// Cleans up after the end is recorded.
    /// @return what else the operator must know, a sentence each
    virtual std::vector<std::string> conclude(const Ending& /*ending*/) { return {}; }
};

/// How an operation is to be performed.
struct OperationOptions {
    bool isDry = false;       ///< Looks and plans alone, in an installation of its own, and leaves nothing behind.
    bool isAgreedTo = false;  ///< The operator isn't asked.
    bool printsPlan = true;   ///< The plan and the results go to standard output.
    RunOptions run;
};

/// The outcome of an operation.
struct OperationReport {
    Result result = Result::kDone;
    std::optional<Plan> plan;
    std::vector<std::string> done;    ///< what was done, a sentence each
    std::vector<std::string> errors;  ///< what was printed to standard error
    std::optional<Failure> failure;
    int signal = 0;  ///< that came meanwhile and was kept away; 0 for none
};

/// Makes the operation, which uses the run as long as it lives.
using MakeOperation = std::function<std::unique_ptr<Operation>(Run& run)>;

/// Takes an operation through its stages. From the moment at which the plan is carried out, signals are noted and kept
/// away from it.
/// @throws ProviderError, AdapterFailure if it can't begin; nothing is changed then
OperationReport perform(const OperationOptions& options, const MakeOperation& make);

/// The plan as it is shown.
std::string describe(const Plan& plan);

/// The lines of the plan's steps.
std::vector<std::string> stepLines(const Plan& plan);

}  // namespace kvl::provider

#endif
