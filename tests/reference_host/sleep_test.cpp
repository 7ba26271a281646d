#include <sys/time.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <vector>

#include "host/HostFunctions.h"
#include "reference_host/wait_observer.h"
#include "tests/reference_host/host_test.h"

namespace {

using Clock = std::chrono::steady_clock;

class SleepTest : public kvl::test::HostTest {};

volatile std::sig_atomic_t alarms = 0;

// Interrupts this thread every half millisecond.
class Alarms {
public:
    Alarms() {
        struct sigaction action {};
        action.sa_handler = [](int) { alarms = alarms + 1; };
        ::sigaction(SIGALRM, &action, &before_);
        const itimerval interval{{0, 500}, {0, 500}};
        ::setitimer(ITIMER_REAL, &interval, nullptr);
    }
    ~Alarms() {
        const itimerval off{};
        ::setitimer(ITIMER_REAL, &off, nullptr);
        ::sigaction(SIGALRM, &before_, nullptr);
    }

    Alarms(const Alarms&) = delete;
    Alarms& operator=(const Alarms&) = delete;

private:
    struct sigaction before_ {};
};

TEST_F(SleepTest, LastsTheWholeTime) {
    const auto start = Clock::now();
    Sleep(2);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(2));
}

TEST_F(SleepTest, LastsTheWholeTimeWhenSignalsInterruptIt) {
    alarms = 0;
    const Alarms interruptions;
    const auto start = Clock::now();
    Sleep(5);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(5));
    EXPECT_GT(alarms, 0);
}

TEST_F(SleepTest, TellsTheObserverBeforeItSleeps) {
    std::vector<unsigned long> waits;
    Clock::time_point told;
    kvl::host::setWaitObserver([&](unsigned long milliseconds) {
        waits.push_back(milliseconds);
        told = Clock::now();
    });
    Sleep(0);
    Sleep(2);
    EXPECT_GE(Clock::now() - told, std::chrono::milliseconds(2));
    kvl::host::setWaitObserver({});
    Sleep(0);
    EXPECT_EQ(waits, (std::vector<unsigned long>{0, 2}));
}

TEST_F(SleepTest, DropsWhatTheObserverThrows) {
    kvl::host::setWaitObserver([](unsigned long) { throw std::runtime_error("observer"); });
    EXPECT_NO_THROW(Sleep(0));
}

}  // namespace
