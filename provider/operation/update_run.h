#ifndef KVL_PROVIDER_OPERATION_UPDATE_RUN_H
#define KVL_PROVIDER_OPERATION_UPDATE_RUN_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "provider/exit_codes.h"
#include "provider/library/adapter_failure.h"
#include "provider/run/adapter_session.h"
#include "provider/run/run_options.h"

namespace CLI {
class App;
}

namespace kvl::provider {

/// How the commands that change something are told to run. They take the machine's turn at once or not at all.
struct UpdateOptions {
    bool dryRun = false;
    bool yes = false;
    RunOptions run = {0, false, false, true};
};

/// Adds --dry-run, --yes and the options of every run.
void addUpdateOptions(CLI::App& command, UpdateOptions& options);

/// Runs such a command, with the exit codes of its kind: whatever is thrown has changed nothing, unless it says so.
/// @return the exit code
int runUpdate(const std::function<int()>& command);

/// @throws ProviderError if the operator can't be asked and hasn't said yes
void needConsent(const UpdateOptions& options);

/// Asks the operator on the terminal, unless --yes was given.
bool isWanted(const UpdateOptions& options, AdapterSession& session, const std::string& question);

/// The plan of an update as it is shown: what, and in which steps.
std::string describePlan(const std::string& title, const std::vector<std::string>& facts,
                         const std::vector<std::string>& steps);

/// An update in the trace and in the system log.
class UpdateRecord {
public:
    /// @param module   the library's module name
    /// @param subject  what is updated, as in "the firmware of 02:00.0"
    UpdateRecord(const std::string& module, const std::string& subject) : module_(module), subject_(subject) {}

    void begun(const std::string& with) const;
    void done(const std::string& how) const;
    void skipped(const std::string& why) const;
    void failed(const std::string& why) const;

    /// @param signal  that was noted meanwhile; nothing is written for 0
    void signalled(int signal) const;

private:
    std::string module_;
    std::string subject_;
};

/// What the operator is told when a signal comes meanwhile: that it is noted and doesn't break the update off.
std::function<void(int signal)> tellingSignals(AdapterSession& session);

/// How an update has ended.
struct UpdateEnding {
    ExitCode exitCode = kReportWritten;
    std::string sentence;  ///< for standard output where it succeeded, for standard error otherwise
};

/// What a dry run says in the end.
constexpr const char* kDryRunEnds = "Nothing was done: this is a dry run.\n";

/// Writes the plan to standard output. @throws ProviderError if it can't be
void showPlan(const AdapterSession& session, const std::string& plan);

/// Writes the result to standard output, or where that can't be, to standard error.
void tellResult(AdapterSession& session, const std::string& result);

/// Tells the operator something on standard error, quiet or not.
void tellError(AdapterSession& session, const std::string& sentence);

/// A tree of the library's own for a dry run, below a temporary directory that is gone in the end, so that not even a
/// list of the adapters or a trace is left.
class PassingTree {
public:
    /// @throws ProviderError if it can't be made
    PassingTree();
    ~PassingTree();

    PassingTree(const PassingTree&) = delete;
    PassingTree& operator=(const PassingTree&) = delete;

private:
    std::string directory_;
};

/// The tree for a dry run, which takes no turn either; null for a run that does something.
std::unique_ptr<PassingTree> passingTree(UpdateOptions& options);

}  // namespace kvl::provider

#endif
