#include "provider/library/command_follower.h"

#include <algorithm>
#include <cstdlib>

#include "provider/library/collected_command.h"
#include "provider/library/trace_table.h"

namespace kvl::provider {
namespace {

constexpr const char* kRedirection = " > ";
constexpr int kSignalBits = 0x7f;
constexpr unsigned kLongestOutputWait = 10;  // seconds that the library gives a command's output, one at a time

}  // namespace

CommandFollower::Event CommandFollower::follow(TRACE_DBG_LEVEL level, const std::string& text) {
    const TracedEvent traced = readTraceLine(level, text);
    switch (traced.event) {
        case TraceEvent::kCommandBegins:
            begin(traced.value);
            return Event::kCommandBegins;
        case TraceEvent::kCommandFails:
            begin(traced.value);  // a command line that is too long is traced here alone, as it never begins
            fail("failed");
            return Event::kCommandEnds;
        case TraceEvent::kCommandEnds: {
            const int result = std::atoi(traced.value.c_str());
            signal_ = result > 0 ? result & kSignalBits : 0;
            if (result < 0) {
                fail(std::string(traced.detail));
            } else if (result > 0) {
                // The library takes what a killed command had printed for its whole answer.
                fail("was ended by signal " + std::to_string(signal_));
            }
            return Event::kCommandEnds;
        }
        default:
            return Event::kNone;
    }
}

std::string CommandFollower::shownCommand() const {
    return command_.substr(command_.rfind('/', command_.find(' ')) + 1);
}

std::string CommandFollower::countSecond(const std::string& subject, const std::string& command) {
    return std::to_string(++waited_) + " of " + std::to_string(kLongestOutputWait) + " s  " + subject +
           "no output yet from " + command;
}

void CommandFollower::begin(const std::string& line) {
    command_ = line.substr(0, line.find(kRedirection));
    outcome_.clear();
    signal_ = 0;
    waited_ = 0;
}

void CommandFollower::fail(const std::string& outcome) {
    outcome_ = outcome;
    const FailedCommand failure = {command_, outcome};
    if (describeCommand(command_).isReported &&
        std::find(failures_.begin(), failures_.end(), failure) == failures_.end()) {
        failures_.push_back(failure);
    }
}

std::string describeFailure(const FailedCommand& failure) {
    const CollectedCommand command = describeCommand(failure.command);
    const auto part = [](const std::string& text) { return text.empty() ? text : text + ": "; };
    return part(command.subject) + part(command.what) + failure.command + " " + failure.outcome;
}

}  // namespace kvl::provider
