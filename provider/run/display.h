#ifndef KVL_PROVIDER_RUN_DISPLAY_H
#define KVL_PROVIDER_RUN_DISPLAY_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

#include "host/CTraceUtility.h"
#include "provider/run/progress_line.h"

namespace kvl::provider {

/// What the operator sees on standard error while the program works: one line of progress on a terminal, or the trace,
/// or nothing. What doesn't belong to the mode is not shown. The program itself is blocked while a command runs, so a
/// thread of the display counts the seconds.
class Display {
public:
    enum class Mode { kNothing, kProgress, kTrace };

    /// @param width  columns of the terminal
    /// @param tick   what counts as a second
    Display(Mode mode, std::ostream& output, std::size_t width,
            std::chrono::milliseconds tick = std::chrono::milliseconds(1000));
    ~Display();

    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    /// Shows a line of the trace.
    void showTrace(TRACE_DBG_LEVEL level, const std::string& text);

    /// Shows a text as it is; nothing is counted any more.
    void show(const std::string& text);

    /// Shows what the program waits for from now on, and each second how long that has been.
    void countUp(const std::string& what);

    /// Shows what the program waits for from now on, and each second how long it will still be.
    void countDown(const std::string& what, unsigned long seconds);

    /// Takes the line away; nothing is counted any more.
    void clear();

    /// The text that is on the line.
    std::string shown() const;

private:
    using Clock = std::chrono::steady_clock;

    void beginCounting(const std::string& what, unsigned long limit);
    void count();
    std::string counted() const;
    void put(const std::string& text);

    const Mode mode_;
    std::ostream& output_;
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
    std::thread counter_;  // where something can be counted
};

/// Shows on a display what the program itself is busy with, for as long as the object lives.
class Counting {
public:
    Counting(Display& display, const std::string& what) : display_(display) { display_.countUp(what); }
    ~Counting() { display_.clear(); }

    Counting(const Counting&) = delete;
    Counting& operator=(const Counting&) = delete;

private:
    Display& display_;
};

}  // namespace kvl::provider

#endif
