#include <cerrno>
#include <ctime>

#include "host/HostFunctions.h"
#include "reference_host/wait_observer.h"

namespace {

constexpr unsigned long kMillisecondsPerSecond = 1000;
constexpr long kNanosecondsPerMillisecond = 1000000;
constexpr long kNanosecondsPerSecond = 1000000000;

timespec timeAfter(unsigned long milliseconds) {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_sec += static_cast<std::time_t>(milliseconds / kMillisecondsPerSecond);
    time.tv_nsec += static_cast<long>(milliseconds % kMillisecondsPerSecond) * kNanosecondsPerMillisecond;
    if (time.tv_nsec >= kNanosecondsPerSecond) {
        time.tv_nsec -= kNanosecondsPerSecond;
        ++time.tv_sec;
    }
    return time;
}

}  // namespace

void Sleep(unsigned long milliseconds) {
    kvl::host::notifyWaitObserver(milliseconds);
    const timespec end = timeAfter(milliseconds);
    while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
}
