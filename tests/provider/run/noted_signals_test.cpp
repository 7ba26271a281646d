#include "provider/run/noted_signals.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <future>
#include <memory>
#include <vector>

namespace {

using kvl::provider::NotedSignals;

/// Keeps the signals away and waits for their reports.
class Listener {
public:
    Listener() : noted_([this](int number) { take(number); }) {}

    int waitForFirst() { return told_.get_future().get(); }
    int calls() const { return calls_; }
    const NotedSignals& noted() const { return noted_; }

private:
    void take(int number) {
        if (++calls_ == 1) {
            told_.set_value(number);
        }
    }

    std::promise<int> told_;
    std::atomic<int> calls_{0};
    NotedSignals noted_;
};

class NotedSignal : public testing::TestWithParam<int> {};

TEST_P(NotedSignal, IsToldAndEndsNothing) {
    Listener listener;
    EXPECT_EQ(0, listener.noted().first());
    kill(getpid(), GetParam());
    EXPECT_EQ(GetParam(), listener.waitForFirst());
    EXPECT_EQ(GetParam(), listener.noted().first());
}

INSTANTIATE_TEST_SUITE_P(OfAnOperatorOrATerminal, NotedSignal,
                         testing::Values(SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP, SIGTTIN, SIGTTOU));

TEST(NotedSignals, TellTheFirstOneAlone) {
    auto listener = std::make_unique<Listener>();
    kill(getpid(), SIGTERM);
    EXPECT_EQ(SIGTERM, listener->waitForFirst());
    for (int more = 0; more < 3; ++more) {
        kill(getpid(), SIGINT);
    }
    EXPECT_EQ(SIGTERM, listener->noted().first());
    EXPECT_EQ(1, listener->calls());
    listener.reset();  // what is still there must not end the test
}

TEST(NotedSignals, CountAsSoonAsTheyAreSent) {
    for (int round = 0; round < 100; ++round) {
        const NotedSignals noted([](int) {});
        kill(getpid(), SIGTERM);
        ASSERT_EQ(SIGTERM, noted.first());
    }
}

TEST(NotedSignals, SpareTheCommandsThatAreStarted) {
    const Listener listener;
    for (const char* name : {"INT", "QUIT", "TERM", "HUP", "TSTP", "TTIN", "TTOU"}) {
        // A shell has another mask when a command of its own has ended.
        const std::string kills = std::string("kill -") + name + " $$; ";
        EXPECT_EQ(0, std::system((kills + "/bin/true; " + kills + "/bin/sh -c '" + kills + "/bin/true; " + kills +
                                  "exit 0' && exit 0")
                                     .c_str()))
            << name;
    }
}

TEST(NotedSignals, LeaveTheMaskAndTheDispositionsAsTheyWere) {
    sigset_t before;
    sigset_t after;
    signal(SIGPIPE, SIG_DFL);
    signal(SIGHUP, SIG_IGN);
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    {
        const Listener listener;
        sigset_t during;
        pthread_sigmask(SIG_SETMASK, nullptr, &during);
        EXPECT_EQ(1, sigismember(&during, SIGTERM));
        EXPECT_EQ(0, sigismember(&during, SIGCHLD));
    }
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (int number = 1; number < SIGRTMIN; ++number) {
        EXPECT_EQ(sigismember(&before, number), sigismember(&after, number)) << number;
    }
    const auto dispositionOf = [](int number) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        return action.sa_handler;
    };
    EXPECT_EQ(SIG_IGN, dispositionOf(SIGHUP));
    signal(SIGHUP, SIG_DFL);
    for (const int number : {SIGPIPE, SIGINT, SIGQUIT, SIGTERM, SIGTSTP, SIGTTIN, SIGTTOU}) {
        EXPECT_EQ(SIG_DFL, dispositionOf(number)) << number;
    }
}

TEST(NotedSignals, MakeAReaderThatGoesAwayAnErrorOfTheWrite) {
    const Listener listener;
    std::array<int, 2> ends{};
    ASSERT_EQ(0, pipe(ends.data()));
    close(ends[0]);
    EXPECT_EQ(-1, write(ends[1], "x", 1));
    EXPECT_EQ(EPIPE, errno);
    close(ends[1]);
    EXPECT_NE(0, std::system("kill -PIPE $$; exit 0")) << "a command has the usual disposition";
}

}  // namespace
