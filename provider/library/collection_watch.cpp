#include "provider/library/collection_watch.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "provider/library/collected_command.h"

namespace kvl::provider {
namespace {

constexpr std::string_view kLineBegins = "int CNetworkParameter::ExecCommand(const char*, ...) [";
constexpr std::string_view kLineEnds = "]";
constexpr std::string_view kFailed = "] command failed! (";
constexpr std::string_view kLeaves = "[LEAVE] int CNetworkParameter::ExecCommand(const char*, ...), rc=";
constexpr std::string_view kRedirections = " > /opt/tarvenn/kvl/provider/tmp/";
constexpr int kSignalBits = 0x7f;

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

CollectionWatch::Event CollectionWatch::take(TRACE_DBG_LEVEL level, const std::string& text) {
    if (level == TRACE_DBG_FLOW && beginsWith(text, kLineBegins) && endsWith(text, kLineEnds)) {
        begin(text.substr(kLineBegins.size(), text.size() - kLineBegins.size() - kLineEnds.size()));
        return Event::kCommandBegins;
    }
    const auto failed = text.rfind(kFailed);
    if (level == TRACE_DBG_ERROR && beginsWith(text, kLineBegins) && failed != std::string::npos) {
        // A command line that is too long is told here alone, as it never begins.
        begin(text.substr(kLineBegins.size(), failed - kLineBegins.size()));
        fail("failed");
        return Event::kCommandEnds;
    }
    if (level == TRACE_DBG_BOUNDARY && beginsWith(text, kLeaves)) {
        end(std::atoi(text.c_str() + kLeaves.size()));
        return Event::kCommandEnds;
    }
    return Event::kNone;
}

void CollectionWatch::begin(const std::string& line) {
    command_ = line.substr(0, line.rfind(kRedirections));
    signal_ = 0;
}

/// The library takes what a killed command had printed for its whole answer; the operator is told better.
void CollectionWatch::end(int result) {
    if (result < 0) {
        fail("printed nothing");
    } else if (result > 0) {
        signal_ = result & kSignalBits;
        fail("was ended by signal " + std::to_string(signal_));
    }
}

void CollectionWatch::fail(const std::string& outcome) {
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
