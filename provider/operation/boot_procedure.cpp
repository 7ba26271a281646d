#include "provider/operation/boot_procedure.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "provider/library/trace_text.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

/// A command of the procedures, and how the trace line of its failure begins. Behind it stands how it ended: as
/// `system` tells it, or as the result of the library's own command runner and the exit status.
struct Command {
    std::string_view begins;
    const char* name;
    bool isEndingOfSystem;
};

constexpr std::array<Command, 3> kCommands = {{
    {"depmod -a error.(", "depmod -a", true},
    {"mv -f command error.(", "mv -f", false},
    {"dracut command error.(", "dracut", false},
}};

constexpr std::string_view kUnopenedBegins = "Failed to open file(";
constexpr std::string_view kUnopenedEnds = ").";

constexpr const char* kNotRun = "could not be run, or a signal ended it";
constexpr int kShellsSignal = 128;  // and the signal: how a shell tells that one ended its command

std::string endingOfShell(int status) {
    return status > kShellsSignal ? "was ended by signal " + std::to_string(status - kShellsSignal)
                                  : "ended with " + std::to_string(status);
}

std::string endingOfSystem(int ending) {
    return ending != -1 && WIFEXITED(ending) ? endingOfShell(WEXITSTATUS(ending)) : kNotRun;
}

std::string endingOfRunner(const std::string& numbers) {
    const bool hasExited = std::atoi(numbers.c_str()) == 0;
    return hasExited ? endingOfShell(std::atoi(numbers.c_str() + numbers.find(',') + 1)) : kNotRun;
}

}  // namespace

BootProcedure::BootProcedure(AdapterSession& session, std::vector<ProcedureStep> steps)
    : Procedure(session, std::move(steps)), session_(session) {
    session_.forgetWords();
}

std::string BootProcedure::failedCommand() const {
    const std::string words = printable(session_.toolsWords());
    return failed_.empty() || words.empty() ? failed_ : failed_ + ", saying '" + words + "'";
}

bool BootProcedure::isUnopened(const std::string& path) const {
    return std::find(unopened_.begin(), unopened_.end(), path) != unopened_.end();
}

void BootProcedure::takeTrace(TRACE_DBG_LEVEL level, const std::string& text) {
    Procedure::takeTrace(level, text);
    for (const Command& command : kCommands) {
        if (beginsWith(text, command.begins)) {
            const std::string numbers = text.substr(command.begins.size(), text.size() - command.begins.size() - 1);
            failed_ = "'" + std::string(command.name) + "' " +
                      (command.isEndingOfSystem ? endingOfSystem(std::atoi(numbers.c_str())) : endingOfRunner(numbers));
        }
    }
    if (beginsWith(text, kUnopenedBegins)) {
        unopened_.push_back(
            text.substr(kUnopenedBegins.size(), text.size() - kUnopenedBegins.size() - kUnopenedEnds.size()));
    }
}

}  // namespace kvl::provider
