#include "provider/adapters/adapter_session.h"

#include <signal.h>

#include <iostream>

#include "provider/machine/provider_environment.h"
#include "provider/machine/sleep_observer.h"
#include "reference_host/install_path.h"
#include "reference_host/trace_observer.h"
#include "reference_host/wait_observer.h"

namespace kvl::provider {
namespace {

constexpr unsigned long kMillisecondsPerSecond = 1000;
constexpr int kLongestWait = 10;  // seconds that the library gives a command's output

using Mode = CollectionDisplay::Mode;

std::optional<CollectionLock> enterAndTakeTurn(const RunOptions& options) {
    enterProviderEnvironment();
    makeParents(host::installPath() + "/log");  // in which the host keeps the trace
    if (!options.takesTurn) {
        return std::nullopt;
    }
    return takeTurn(options.waitSeconds);
}

}  // namespace

AdapterSession::AdapterSession(const RunOptions& options)
    : lock_(enterAndTakeTurn(options)),
      isQuiet_(options.quiet),
      trace_(options.verbose ? Mode::kTrace : Mode::kNothing, std::cerr, terminalWidth()) {
    if (displayMode(options) == Mode::kProgress) {
        display_ = std::make_unique<WaitDisplay>(std::cerr, terminalWidth());
    }
    host::setTraceObserver(
        [this](const std::string&, TRACE_DBG_LEVEL level, const std::string& text) { takeTrace(level, text); });
    host::setWaitObserver([this](unsigned long milliseconds) { tellPause(milliseconds); });
    setSleepObserver([this](unsigned) { tellSecond(); });
}

AdapterSession::~AdapterSession() {
    setSleepObserver({});
    host::setWaitObserver({});
    host::setTraceObserver({});
}

void AdapterSession::shareLock() {
    if (lock_) {
        lock_->shareWithCommands();
    }
}

void AdapterSession::note(const std::string& line) {
    if (display_) {
        display_->clear();
    }
    if (!isQuiet_) {
        std::cerr << line << std::endl;
    }
}

void AdapterSession::takeTrace(TRACE_DBG_LEVEL level, const std::string& text) {
    trace_.showTrace(level, text);
    if (procedure_ != nullptr) {
        procedure_->takeTrace(level, text);
        return;
    }
    switch (watch_.take(level, text)) {
        case AdapterWatch::Event::kCommandBegins:
            output_.forget();
            waited_ = 0;
            if (display_) {
                display_->begin(subject_ + watch_.command());
            }
            break;
        case AdapterWatch::Event::kCommandEnds:
            takeEnd();
            break;
        case AdapterWatch::Event::kNone:
            break;
    }
}

void AdapterSession::takeEnd() {
    if (display_) {
        display_->clear();
    }
    // While a command runs, the terminal's interrupt ends the command alone. The operator meant the program.
    if (watch_.signal() == SIGINT || watch_.signal() == SIGQUIT) {
        signal(watch_.signal(), SIG_DFL);
        raise(watch_.signal());
    }
}

void AdapterSession::show(const std::string& text) {
    if (display_) {
        display_->tell(subject_ + text);
    }
}

void AdapterSession::tellSecond() {
    ++waited_;
    show("no output yet from " + watch_.command() + ": waiting " + std::to_string(waited_) + " of " +
         std::to_string(kLongestWait) + " s");
}

void AdapterSession::tellPause(unsigned long milliseconds) {
    if (procedure_ != nullptr) {
        procedure_->takePause(milliseconds);
        return;
    }
    show("no dump of this port yet: trying again in " +
         std::to_string((milliseconds + kMillisecondsPerSecond - 1) / kMillisecondsPerSecond) + " s");
}

}  // namespace kvl::provider
