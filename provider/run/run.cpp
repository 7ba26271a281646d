#include "provider/run/run.h"

#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <iostream>
#include <utility>

#include "provider/machine/interrupt_observer.h"
#include "provider/machine/provider_environment.h"
#include "provider/machine/sleep_observer.h"
#include "reference_host/install_path.h"
#include "reference_host/trace_observer.h"
#include "reference_host/wait_observer.h"

namespace kvl::provider {
namespace {

constexpr std::size_t kUsualWidth = 80;

std::optional<CollectionLock> enter(const RunOptions& options, Turn turn) {
    if (turn == Turn::kHeld) {
        return std::nullopt;
    }
    enterProviderEnvironment();
    makeParents(host::installPath() + "/log");  // in which the host keeps the trace
    return turn == Turn::kTake ? std::optional(takeTurn(options.waitSeconds)) : std::nullopt;
}

/// What the operator is to see: progress on a terminal alone.
Display::Mode displayMode(const RunOptions& options) {
    if (options.verbose) {
        return Display::Mode::kTrace;
    }
    const bool isWatched = !options.quiet && isatty(STDERR_FILENO) == 1;
    return isWatched ? Display::Mode::kProgress : Display::Mode::kNothing;
}

/// Columns of the terminal that standard error is.
std::size_t terminalWidth() {
    struct winsize size {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualWidth;
}

}  // namespace

Run::Run(const RunOptions& options, Turn turn)
    : lock_(enter(options, turn)),
      isQuiet_(options.quiet),
      isTraced_(options.verbose),
      display_(std::make_unique<Display>(displayMode(options), std::cerr, terminalWidth())) {
    startObserving();
}

Run::Run(const RunOptions& options, Turn turn, std::unique_ptr<Display> display)
    : lock_(enter(options, turn)), isQuiet_(options.quiet), isTraced_(options.verbose), display_(std::move(display)) {
    startObserving();
}

void Run::startObserving() {
    host::setTraceObserver(
        [this](const std::string&, TRACE_DBG_LEVEL level, const std::string& text) { traced(level, text); });
    host::setWaitObserver([this](unsigned long milliseconds) {
        if (listener_ != nullptr && listener_->pauseBegins) {
            listener_->pauseBegins(milliseconds);
        }
    });
    setSleepObserver([this](unsigned) {
        if (listener_ != nullptr && listener_->secondPassed) {
            listener_->secondPassed();
        }
    });
    setInterruptObserver([this](int signal) { endBySignal(signal); });
}

Run::~Run() {
    setInterruptObserver({});
    setSleepObserver({});
    host::setWaitObserver({});
    host::setTraceObserver({});
    if (isTraced_) {
        output_.show();
    }
    display_.reset();  // it clears its line while standard error still is what the display knows
}

void Run::shareLock() {
    if (lock_) {
        lock_->shareWithCommands();
    }
}

void Run::leaveLock() {
    if (lock_) {
        lock_->leaveToCommands();
    }
}

void Run::announce(const std::string& line) {
    display_->clear();
    if (!isQuiet_) {
        std::cerr << line << std::endl;
    }
}

void Run::reportError(const std::string& sentence) {
    display_->clear();
    std::cerr << "kvl: " << sentence << std::endl;
}

void Run::endBySignal(int signal) {
    display_->clear();
    if (listener_ != nullptr && listener_->interrupted) {
        listener_->interrupted();
    }
    ::signal(signal, SIG_DFL);
    raise(signal);
}

void Run::traced(TRACE_DBG_LEVEL level, const std::string& text) {
    if (isTraced_) {
        output_.show();
    }
    display_->showTrace(level, shownTrace_ ? shownTrace_(text) : text);
    if (listener_ != nullptr && listener_->traced) {
        listener_->traced(level, text);
    }
}

}  // namespace kvl::provider
