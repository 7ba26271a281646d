#ifndef KVL_PROVIDER_MACHINE_COMMAND_RUNNER_H
#define KVL_PROVIDER_MACHINE_COMMAND_RUNNER_H

#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "provider/machine/command_guard.h"
#include "provider/machine/plain_command.h"

namespace kvl::provider {

/// What became of one command.
struct CommandObservation {
    std::string command;  ///< Without redirections.
    std::chrono::milliseconds duration{0};
    int status = 0;             ///< As the library has it.
    int signal = 0;             ///< That ended the command; 0 if none did.
    bool reachedLimit = false;  ///< It ran longer than the limit and was ended.
    bool wasLeftOut = false;    ///< It was not run: one about the same interface reached the limit.
    std::string lastWords;      ///< The last line on its standard error that was to be thrown away.
};

/// Runs the library's commands so that they end with this process, however it ends, and in the time that they have.
/// A line that needs no shell is run without one. Each command has a process group of its own and an empty standard
/// input, and it holds what this process hands to commands, such as the machine's lock.
class CommandRunner {
public:
    struct Hooks {
        /// Is given the command before it is run, and may name another interface in it.
        std::function<void(PlainCommand&)> outgoing;
        /// Is called when a command has ended well, before the library reads its result file.
        std::function<void(const PlainCommand&)> incoming;
        /// Is called when SIGINT, SIGQUIT, SIGTERM or SIGHUP came while a command ran and the command is ended.
        std::function<void(int signal)> interrupted;
    };

    /// @param limit  longest time of a command; 0: none
    CommandRunner(std::chrono::milliseconds limit, Hooks hooks) : limit_(limit), hooks_(std::move(hooks)) {}

    /// Kills what the last command has left running.
    ~CommandRunner();

    CommandRunner(const CommandRunner&) = delete;
    CommandRunner& operator=(const CommandRunner&) = delete;

    /// @return what `system` gives for the line: the status of a shell that runs it, so that a command that a signal
    ///         ends exits with 128 and the signal. One that reaches the limit, and one that is left out, exits with
    ///         124, as with timeout(1)
    int run(const std::string& line);

    /// The same for a command of the machine layer's own, which is neither translated nor left to a shell.
    int run(const PlainCommand& command);

    /// @return true if something that the last command has started still runs, and so may still write
    bool mayStillWrite();

    const std::vector<CommandObservation>& observations() const { return observations_; }

private:
    struct Ending;

    Ending runProcesses(const std::string& line, const std::optional<PlainCommand>& command);
    const CommandObservation& observe(const std::string& line, const std::optional<PlainCommand>& command,
                                      CommandObservation observation);
    void endGroup();

    const std::chrono::milliseconds limit_;
    const Hooks hooks_;
    const CommandGuard guard_;
    pid_t group_ = 0;                // of the last command, as long as something of it may run
    std::set<std::string> hanging_;  // what commands that reached the limit asked about
    std::vector<CommandObservation> observations_;
};

/// Has the library's commands go through a runner for as long as the object lives. Without one they go to a shell, and
/// only the terminal's interrupts are noted, see setInterruptObserver().
class RunnerInCharge {
public:
    explicit RunnerInCharge(CommandRunner& runner);
    ~RunnerInCharge();

    RunnerInCharge(const RunnerInCharge&) = delete;
    RunnerInCharge& operator=(const RunnerInCharge&) = delete;
};

/// @return the runner that is in charge; null if none is
CommandRunner* commandRunner();

}  // namespace kvl::provider

#endif
