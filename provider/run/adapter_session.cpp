#include "provider/run/adapter_session.h"

#include <signal.h>

#include <iostream>

#include "provider/machine/interrupt_observer.h"
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
      isTraced_(options.verbose),
      width_(terminalWidth()),
      mode_(displayMode(options)),
      trace_(isTraced_ ? Mode::kTrace : Mode::kNothing, std::cerr, width_) {
    if (mode_ == Mode::kProgress) {
        display_ = std::make_unique<WaitDisplay>(std::cerr, width_);
    }
    host::setTraceObserver(
        [this](const std::string&, TRACE_DBG_LEVEL level, const std::string& text) { takeTrace(level, text); });
    host::setWaitObserver([this](unsigned long milliseconds) { tellPause(milliseconds); });
    setSleepObserver([this](unsigned) { tellSecond(); });
    setInterruptObserver([this](int signal) { takeInterrupt(signal); });
}

AdapterSession::~AdapterSession() {
    setInterruptObserver({});
    setSleepObserver({});
    host::setWaitObserver({});
    host::setTraceObserver({});
    if (isTraced_) {
        output_.show();
    }
}

void AdapterSession::shareLock() {
    if (lock_) {
        lock_->shareWithCommands();
    }
}

void AdapterSession::leaveLock() {
    if (lock_) {
        lock_->leaveToCommands();
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
    if (isTraced_) {
        output_.show();
    }
    trace_.showTrace(level, text);
    if (procedure_ != nullptr) {
        procedure_->takeTrace(level, text);
    } else {
        followCommand(level, text);
    }
}

void AdapterSession::followCommand(TRACE_DBG_LEVEL level, const std::string& text) {
    const AdapterWatch::Event event = watch_.take(level, text);
    if (event == AdapterWatch::Event::kCommandBegins) {
        output_.forget();
        waited_ = 0;
    }
    if (!display_ || event == AdapterWatch::Event::kNone) {
        return;
    }
    if (event == AdapterWatch::Event::kCommandBegins) {
        display_->begin(subject_ + watch_.shownCommand());
    } else {
        display_->clear();
    }
}

/// The interrupt came while a command ran. The operator meant the program.
void AdapterSession::takeInterrupt(int signal) {
    if (display_) {
        display_->clear();
    }
    ::signal(signal, SIG_DFL);
    raise(signal);
}

void AdapterSession::tellSecond() {
    ++waited_;
    if (display_) {
        display_->tell(std::to_string(waited_) + " of " + std::to_string(kLongestWait) + " s  " + subject_ +
                       "no output yet from " + watch_.shownCommand());
    }
}

void AdapterSession::tellPause(unsigned long milliseconds) {
    if (procedure_ != nullptr) {
        procedure_->takePause(milliseconds);
    } else if (display_) {
        display_->beginCountdown(subject_ + "no dump of this port yet, trying again",
                                 (milliseconds + kMillisecondsPerSecond - 1) / kMillisecondsPerSecond);
    }
}

}  // namespace kvl::provider
