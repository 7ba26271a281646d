#include "provider/run/display.h"

#include <signal.h>

#include <algorithm>
#include <array>

namespace kvl::provider {
namespace {

struct LevelName {
    TRACE_DBG_LEVEL level;
    const char* name;
};

// Padded to one width.
constexpr std::array<LevelName, 5> kLevelNames = {{
    {TRACE_DBG_FLOW, "flow    "},
    {TRACE_DBG_ERROR, "error   "},
    {TRACE_DBG_BOUNDARY, "boundary"},
    {TRACE_DBG_WARNING, "warning "},
    {TRACE_DBG_NOTICE, "notice  "},
}};

std::string nameOf(TRACE_DBG_LEVEL level) {
    for (const LevelName& row : kLevelNames) {
        if (row.level == level) {
            return row.name;
        }
    }
    return std::to_string(static_cast<int>(level));
}

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

Display::Display(Mode mode, std::ostream& output, std::size_t width, std::chrono::milliseconds tick)
    : mode_(mode), output_(output), tick_(tick), line_(output, width) {
    if (mode_ == Mode::kProgress) {
        const BlockedSignals inherited;
        counter_ = std::thread([this] { count(); });
    }
}

Display::~Display() {
    clear();
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ends_ = true;
    }
    changed_.notify_one();
    if (counter_.joinable()) {
        counter_.join();
    }
}

void Display::showTrace(TRACE_DBG_LEVEL level, const std::string& text) {
    if (mode_ == Mode::kTrace) {
        output_ << nameOf(level) << "  " << text << '\n';
    }
}

void Display::show(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    what_.clear();
    put(text);
}

void Display::countUp(const std::string& what) {
    beginCounting(what, 0);
}

void Display::countDown(const std::string& what, unsigned long seconds) {
    beginCounting(what, seconds);
}

void Display::clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    what_.clear();
    shown_.clear();
    line_.clear();
}

std::string Display::shown() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return shown_;
}

void Display::beginCounting(const std::string& what, unsigned long limit) {
    const std::lock_guard<std::mutex> lock(mutex_);
    what_ = what;
    seconds_ = 0;
    limit_ = limit;
    next_ = Clock::now() + tick_;
    put(limit == 0 ? what : counted());
    changed_.notify_one();
}

void Display::count() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!ends_) {
        if (what_.empty()) {
            changed_.wait(lock);
        } else if (changed_.wait_until(lock, next_) == std::cv_status::timeout && !what_.empty() &&
                   Clock::now() >= next_) {
            next_ += tick_;
            ++seconds_;
            put(counted());
        }
    }
}

std::string Display::counted() const {
    // In front, since a line of the terminal can end before the text does.
    if (limit_ == 0) {
        return std::to_string(seconds_) + " s  " + what_;
    }
    return std::to_string(limit_ - std::min(limit_, seconds_)) + " s left  " + what_;
}

void Display::put(const std::string& text) {
    if (mode_ == Mode::kProgress) {
        shown_ = text;
        line_.show(text);
    }
}

}  // namespace kvl::provider
