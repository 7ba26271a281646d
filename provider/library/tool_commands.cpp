#include "provider/library/tool_commands.h"

#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

constexpr unsigned long kMillisecondsPerSecond = 1000;

}  // namespace

ToolCommands::ToolCommands(Run& run)
    : run_(run),
      listening_(run, {[this](TRACE_DBG_LEVEL level, const std::string& text) { follow(level, text); },
                       [this] { run_.display().show(follower_.countSecond(subject_, follower_.shownCommand())); },
                       [this](unsigned long milliseconds) { showPause(milliseconds); },
                       {}}) {}

Failure ToolCommands::lastCallFailure() const {
    if (follower_.outcome().empty()) {
        return lastFailure();
    }
    const std::string printed = printable(run_.lastPrintedLine());
    return toolFailure(follower_.command() + " " + follower_.outcome() +
                       (printed.empty() ? "" : ", saying '" + printed + "'"));
}

void ToolCommands::follow(TRACE_DBG_LEVEL level, const std::string& text) {
    switch (follower_.follow(level, text)) {
        case CommandFollower::Event::kCommandBegins:
            run_.forgetPrinted();
            run_.display().countUp(subject_ + follower_.shownCommand());
            break;
        case CommandFollower::Event::kCommandEnds:
            run_.display().clear();
            break;
        case CommandFollower::Event::kNone:
            break;
    }
}

void ToolCommands::showPause(unsigned long milliseconds) {
    run_.display().countDown(subject_ + "no dump of this port yet, trying again",
                             milliseconds / kMillisecondsPerSecond);
}

}  // namespace kvl::provider
