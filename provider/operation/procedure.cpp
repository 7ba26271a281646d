#include "provider/operation/procedure.h"

#include <array>
#include <exception>
#include <fstream>
#include <string_view>

#include "adapter/CEmulexCommon.h"
#include "provider/library/trace_text.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

constexpr unsigned long kMillisecondsPerSecond = 1000;
constexpr unsigned long kPauseForEnd = 30;  // seconds between two looks at an updater's output
constexpr unsigned kLooksForEnd = 5;
constexpr std::size_t kLongestWords = 200;

/// What a trace line of the library tells of a failure, in words.
struct Cause {
    std::string_view begins;
    const char* words;
};

// Kept are the lines that tell most; those that follow them in the same procedure tell less.
constexpr std::array<Cause, 13> kCauses = {{
    {"No such end message.", "its output did not come to its end in 150 s"},
    {"No such success message.", "its output does not report success"},
    {"no successMessage", "the module's message.txt holds no text of success"},
    {"File open error ", "the module's message.txt can't be read"},
    {"File Open Error", "its output can't be read"},
    {"Failed to update execute(", "it could not be started, or a signal ended it"},
    {"Failed to execute command:", "it did not report 'Download Complete' in four runs"},
    {"Failed to get create unzip folder", "the directory can't be made"},
    {"CUnzip_Utility::Unzip() unzip() failed", "'unzip' failed"},
    {"CUnzip_Utility::Unzip() ExecForeignModule() failed", "'unzip' could not be run, or a signal ended it"},
    {"Failed to get delete update module folder(", "the directory can't be removed"},
    {"Failed to get os architecture.", "what kind of machine this is can't be told"},
    {"Failed to find update module.There is not ufi file.", "no install.sh was unpacked to follow it"},
}};

/// The last line of a file with something on it; of a long one the end.
std::string lastWordsIn(const std::string& path) {
    std::ifstream file(path, std::ios::ate | std::ios::binary);
    constexpr std::streamoff kLastBytes = 4096;
    const std::streamoff size = file.tellg();
    file.seekg(size > kLastBytes ? size - kLastBytes : 0);
    std::string words;
    for (std::string line; std::getline(file, line);) {
        line.erase(line.find_last_not_of(" \r\n") + 1);
        words = line.empty() ? words : line;
    }
    return printable(words.size() > kLongestWords ? words.substr(words.size() - kLongestWords) : words);
}

}  // namespace

Procedure::Procedure(AdapterSession& session, std::vector<ProcedureStep> steps)
    : session_(session), steps_(std::move(steps)) {}

bool Procedure::run(const std::function<bool()>& call) {
    session_.shareLock();
    session_.watchProcedure(this);
    CEmulexCommon::SetLastError(0);
    bool succeeded = false;
    try {
        succeeded = call();
        failure_ = succeeded ? Failure() : findFailure();
    } catch (const std::exception&) {
        failure_ = formFailure("hbacmd's list of the adapters does not have the expected form");
    }
    session_.watchProcedure(nullptr);
    if (!succeeded) {
        session_.leaveLock();  // an updater that has failed can still be at work
    }
    if (session_.display() != nullptr) {
        session_.display()->clear();
    }
    return succeeded;
}

bool Procedure::hasChanged() const {
    for (std::size_t step = 0; step < begun_; ++step) {
        if (steps_[step].changes) {
            return true;
        }
    }
    return false;
}

Failure Procedure::findFailure() const {
    Failure failure = lastFailure();
    if (begun_ == 0) {
        return failure;
    }
    const ProcedureStep& step = steps_[begun_ - 1];
    failure.meaning = step.what + " failed: " + (cause_.empty() ? failure.meaning : cause_);
    if (!step.output.empty()) {
        const std::string words = lastWordsIn(step.output);
        failure.next = words.empty() ? "nothing was printed into " + step.output
                                     : "it said last '" + words + "'; " + step.output + " holds the rest";
    }
    return failure;
}

void Procedure::takeTrace(TRACE_DBG_LEVEL level, const std::string& text) {
    noteCause(level, text);
    if (begun_ < steps_.size() && beginsWith(text, steps_[begun_].begins)) {
        ++begun_;
        beginStep();
    }
}

void Procedure::takePause(unsigned long milliseconds) {
    if (session_.display() == nullptr) {
        return;
    }
    const unsigned long seconds = milliseconds / kMillisecondsPerSecond;
    if (seconds == kPauseForEnd) {
        ++looks_;
        const unsigned left = kLooksForEnd - std::min(looks_, kLooksForEnd);
        session_.display()->beginCountdown(
            "waiting for the end of its output, " + std::to_string(left) + " more looks behind this one", seconds);
    } else {
        session_.display()->beginCountdown("not done yet, trying again", seconds);
    }
}

void Procedure::beginStep() {
    looks_ = 0;
    cause_.clear();
    const ProcedureStep& step = steps_[begun_ - 1];
    session_.note("[" + std::to_string(begun_) + "/" + std::to_string(steps_.size()) + "] " + step.what);
    if (session_.display() != nullptr) {
        session_.display()->begin(step.what);
    }
}

void Procedure::noteCause(TRACE_DBG_LEVEL level, const std::string& text) {
    if (level != TRACE_DBG_ERROR || !cause_.empty()) {
        return;
    }
    for (const Cause& cause : kCauses) {
        if (beginsWith(text, cause.begins)) {
            cause_ = cause.words;
            return;
        }
    }
}

}  // namespace kvl::provider
