#ifndef KVL_PROVIDER_RUN_WAIT_DISPLAY_H
#define KVL_PROVIDER_RUN_WAIT_DISPLAY_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

#include "provider/run/progress_line.h"

namespace kvl::provider {

/// Shows on a terminal what the program waits for and for how long. The program itself is blocked meanwhile, so a
/// thread of its own counts the seconds.
class WaitDisplay {
public:
    /// @param width  columns of the terminal
    /// @param tick   what counts as a second
    WaitDisplay(std::ostream& terminal, std::size_t width,
                std::chrono::milliseconds tick = std::chrono::milliseconds(1000));
    ~WaitDisplay();

    WaitDisplay(const WaitDisplay&) = delete;
    WaitDisplay& operator=(const WaitDisplay&) = delete;

    /// Shows what is waited for from now on, and each second how long that has been.
    void begin(const std::string& what);

    /// Shows what is waited for from now on, and each second how long it will still be.
    void beginCountdown(const std::string& what, unsigned long seconds);

    /// Shows a text as it is; nothing is counted any more.
    void tell(const std::string& text);

    /// Takes the line away; nothing is counted any more.
    void clear();

    /// The text that is on the line.
    std::string shown() const;

private:
    using Clock = std::chrono::steady_clock;

    void count();
    std::string counted() const;
    void show(const std::string& text);

    const std::chrono::milliseconds tick_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    ProgressLine line_;
    std::string shown_;
    std::string what_;  // empty: nothing is counted
    Clock::time_point next_;
    unsigned long seconds_ = 0;
    unsigned long limit_ = 0;  // 0: it is counted up
    bool ends_ = false;
    std::thread counter_;
};

}  // namespace kvl::provider

#endif
