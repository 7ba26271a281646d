#ifndef KVL_PROVIDER_COMMANDS_PERFORMED_UPDATE_H
#define KVL_PROVIDER_COMMANDS_PERFORMED_UPDATE_H

#include "provider/commands/answer.h"
#include "provider/commands/command_line.h"
#include "provider/operation/operation.h"

namespace kvl::provider {

/// The exit codes of the commands that change something. A signal that came meanwhile doesn't change them.
enum UpdateExit : int {
    kUpdated = 0,           ///< Done, or a dry run shows that it could begin.
    kFailedUnchanged = 1,   ///< It failed, and nothing was changed.
    kSkippedOnPurpose = 3,  ///< There was nothing to do, or the operator said no.
    kFailedChanged = 4,     ///< It failed when something was changed already; standard error says which state that is.
};

/// The same for the help texts.
constexpr const char* kUpdateExitHelp =
    "Exit codes:\n"
    "  0    updated\n"
    "  1    failed, and nothing was changed\n"
    "  2    wrong usage\n"
    "  3    skipped on purpose (standard error says why)\n"
    "  4    failed after something was changed (standard error says what)\n"
    "  130  Ctrl-C ended it before it began, and nothing was changed\n";

/// The options of the commands that change something. They take the machine's turn at once or not at all.
struct UpdateOptions {
    bool isDry = false;
    bool isAgreedTo = false;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run = {0, false, false};
};

/// Whether an operation asks before it changes anything.
enum class Agreement { kNeeded, kNotNeeded };

/// Adds --dry-run, --yes where the operation asks, --format, and the options of every run.
void addUpdateOptions(CLI::App& command, UpdateOptions& options, Agreement agreement);

/// Refuses the run if the operation would have to ask and can't.
/// @throws WrongUsage
void requireAgreement(const UpdateOptions& options);

/// Performs an operation, and prints its outcome.
/// @return the exit code
int performUpdate(const UpdateOptions& options, const MakeOperation& make);

}  // namespace kvl::provider

#endif
