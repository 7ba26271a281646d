#include "provider/run/wait_display.h"

#include <signal.h>

#include <algorithm>

namespace kvl::provider {
namespace {

/// Signals are for the program's first thread, whose waits they end.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t before_{};
};

}  // namespace

WaitDisplay::WaitDisplay(std::ostream& terminal, std::size_t width, std::chrono::milliseconds tick)
    : tick_(tick), line_(terminal, width) {
    const BlockedSignals inherited;
    counter_ = std::thread([this] { count(); });
}

WaitDisplay::~WaitDisplay() {
    clear();
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ends_ = true;
    }
    changed_.notify_one();
    counter_.join();
}

void WaitDisplay::begin(const std::string& what) {
    const std::lock_guard<std::mutex> lock(mutex_);
    what_ = what;
    seconds_ = 0;
    limit_ = 0;
    next_ = Clock::now() + tick_;
    show(what);
    changed_.notify_one();
}

void WaitDisplay::beginCountdown(const std::string& what, unsigned long seconds) {
    const std::lock_guard<std::mutex> lock(mutex_);
    what_ = what;
    seconds_ = 0;
    limit_ = seconds;
    next_ = Clock::now() + tick_;
    show(counted());
    changed_.notify_one();
}

void WaitDisplay::tell(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    what_.clear();
    show(text);
}

void WaitDisplay::clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    what_.clear();
    shown_.clear();
    line_.clear();
}

std::string WaitDisplay::shown() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return shown_;
}

void WaitDisplay::count() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!ends_) {
        if (what_.empty()) {
            changed_.wait(lock);
        } else if (changed_.wait_until(lock, next_) == std::cv_status::timeout && !what_.empty() &&
                   Clock::now() >= next_) {
            next_ += tick_;
            ++seconds_;
            show(counted());
        }
    }
}

std::string WaitDisplay::counted() const {
    // In front, since a line of the terminal can end before the text does.
    if (limit_ == 0) {
        return std::to_string(seconds_) + " s  " + what_;
    }
    return std::to_string(limit_ - std::min(limit_, seconds_)) + " s left  " + what_;
}

void WaitDisplay::show(const std::string& text) {
    shown_ = text;
    line_.show(text);
}

}  // namespace kvl::provider
