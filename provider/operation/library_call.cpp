#include "provider/operation/library_call.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <iterator>

#include "adapter/CEmulexCommon.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

constexpr unsigned long kMillisecondsPerSecond = 1000;
constexpr unsigned long kPauseForEnd = 30;  // seconds between two looks at an updater's output
constexpr unsigned kLooksForEnd = 5;
constexpr std::size_t kLongestQuotation = 200;

/// The last line of a file with something on it; of a long one the end.
std::string lastLineIn(const std::string& path) {
    std::ifstream file(path, std::ios::ate | std::ios::binary);
    constexpr std::streamoff kLastBytes = 4096;
    const std::streamoff size = file.tellg();
    file.seekg(size > kLastBytes ? size - kLastBytes : 0);
    std::string last;
    for (std::string line; std::getline(file, line);) {
        line.erase(line.find_last_not_of(" \r\n") + 1);
        last = line.empty() ? last : line;
    }
    return printable(last.size() > kLongestQuotation ? last.substr(last.size() - kLongestQuotation) : last);
}

}  // namespace

LibraryCall::LibraryCall(Run& run, const Steps& steps) : run_(run) {
    std::copy_if(steps.begin(), steps.end(), std::back_inserter(steps_),
                 [](const Step& step) { return step.begins != TraceEvent::kNone; });
}

bool LibraryCall::make(const std::function<bool()>& call) {
    run_.forgetPrinted();
    run_.shareLock();
    CEmulexCommon::SetLastError(0);
    bool succeeded = false;
    {
        const Listening listening(run_,
                                  {[this](TRACE_DBG_LEVEL level, const std::string& text) { follow(level, text); },
                                   {},
                                   [this](unsigned long milliseconds) { showPause(milliseconds); },
                                   {}});
        try {
            succeeded = call();
            failure_ = succeeded ? Failure() : findFailure();
        } catch (const std::exception&) {
            failure_ = formFailure("hbacmd's list of the adapters does not have the expected form");
        }
    }
    if (!succeeded) {
        run_.leaveLock();  // an updater that has failed can still be at work
    }
    run_.display().clear();
    return succeeded;
}

bool LibraryCall::hasChanged() const {
    return std::any_of(steps_.begin(), steps_.begin() + static_cast<std::ptrdiff_t>(begun_),
                       [](const Step& step) { return step.changes != Change::kNothing; });
}

bool LibraryCall::hasBegun(Change change) const {
    return std::any_of(steps_.begin(), steps_.begin() + static_cast<std::ptrdiff_t>(begun_),
                       [change](const Step& step) { return step.changes == change; });
}

std::string LibraryCall::failedCommand() const {
    const std::string printed = printable(run_.lastPrintedLine());
    return failedCommand_.empty() || printed.empty() ? failedCommand_ : failedCommand_ + ", saying '" + printed + "'";
}

bool LibraryCall::isUnopened(const std::string& path) const {
    return std::find(unopened_.begin(), unopened_.end(), path) != unopened_.end();
}

Failure LibraryCall::findFailure() const {
    Failure failure = lastFailure();
    if (begun_ == 0) {
        return failure;
    }
    const Step& step = steps_[begun_ - 1];
    failure.meaning = step.shown + " failed: " + (cause_.empty() ? failure.meaning : cause_);
    if (!step.output.empty()) {
        const std::string last = lastLineIn(step.output);
        failure.next = last.empty() ? "nothing was printed into " + step.output
                                    : "it said last '" + last + "'; " + step.output + " holds the rest";
    }
    return failure;
}

void LibraryCall::follow(TRACE_DBG_LEVEL level, const std::string& text) {
    const TracedEvent traced = readTraceLine(level, text);
    switch (traced.event) {
        case TraceEvent::kCause:
            cause_ = cause_.empty() ? traced.detail : cause_;  // what follows in the same step says less
            break;
        case TraceEvent::kFileNotOpened:
            unopened_.push_back(traced.value);
            break;
        case TraceEvent::kDepmodFailure:
        case TraceEvent::kMoveFailure:
        case TraceEvent::kDracutFailure:
            failedCommand_ = describeBootFailure(traced);
            break;
        default:
            break;
    }
    if (begun_ < steps_.size() && traced.event == steps_[begun_].begins) {
        ++begun_;
        beginStep();
    }
}

void LibraryCall::showPause(unsigned long milliseconds) {
    const unsigned long seconds = milliseconds / kMillisecondsPerSecond;
    if (seconds == kPauseForEnd) {
        ++looks_;
        const unsigned left = kLooksForEnd - std::min(looks_, kLooksForEnd);
        run_.display().countDown(
            "waiting for the end of its output, " + std::to_string(left) + " more looks behind this one", seconds);
    } else {
        run_.display().countDown("not done yet, trying again", seconds);
    }
}

void LibraryCall::beginStep() {
    looks_ = 0;
    cause_.clear();
    const Step& step = steps_[begun_ - 1];
    run_.announce("[" + std::to_string(begun_) + "/" + std::to_string(steps_.size()) + "] " + step.shown);
    run_.display().countUp(step.shown);
}

}  // namespace kvl::provider
