#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <cstdlib>
#include <vector>

#include "provider/machine/interrupt_observer.h"

namespace {

/// Collects the reported interrupts.
class SystemInThisProgram : public testing::Test {
protected:
    SystemInThisProgram() {
        kvl::provider::setInterruptObserver([this](int signal) { told_.push_back(signal); });
    }
    ~SystemInThisProgram() override { kvl::provider::setInterruptObserver({}); }

    const std::vector<int>& told() const { return told_; }

private:
    std::vector<int> told_;
};

TEST_F(SystemInThisProgram, GivesWhatTheCommandEndedWith) {
    EXPECT_EQ(0, std::system("true"));
    EXPECT_EQ(7 << 8, std::system("exit 7"));
    EXPECT_EQ(SIGTERM, std::system("kill -TERM $$"));
    EXPECT_EQ(127 << 8, std::system("/nowhere/command 2>/dev/null"));
    EXPECT_NE(0, std::system(nullptr));
    EXPECT_TRUE(told().empty());
}

TEST_F(SystemInThisProgram, TellsAnInterruptBehindTheEndOfTheCommand) {
    EXPECT_EQ(3 << 8, std::system("kill -INT $PPID; exit 3"));
    EXPECT_EQ(std::vector<int>{SIGINT}, told());
    EXPECT_EQ(0, std::system("kill -QUIT $PPID"));
    EXPECT_EQ((std::vector<int>{SIGINT, SIGQUIT}), told());
    EXPECT_EQ(0, std::system("true"));
    EXPECT_EQ(2U, told().size());
}

TEST_F(SystemInThisProgram, PassesOverAnInterruptWithoutAnObserver) {
    kvl::provider::setInterruptObserver({});
    EXPECT_EQ(0, std::system("kill -INT $PPID"));
}

TEST_F(SystemInThisProgram, LetsTheCommandEndByAnInterruptAlone) {
    EXPECT_EQ(SIGINT, std::system("kill -INT $$"));
    EXPECT_TRUE(told().empty());
}

TEST_F(SystemInThisProgram, TellsNoInterruptThatIsIgnoredOrBlocked) {
    signal(SIGINT, SIG_IGN);
    EXPECT_EQ(0, std::system("kill -INT $PPID; kill -INT $$; exit 0")) << "the command ignores it too";
    signal(SIGINT, SIG_DFL);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGINT);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    EXPECT_EQ(0, std::system("kill -INT $PPID; kill -INT $$; exit 0")) << "it is blocked for the command too";
    const struct timespec atOnce {};
    EXPECT_EQ(SIGINT, sigtimedwait(&blocked, nullptr, &atOnce)) << "it is still there for who looks for it";
    sigprocmask(SIG_SETMASK, &before, nullptr);
    EXPECT_TRUE(told().empty());
}

TEST_F(SystemInThisProgram, LeavesTheDispositionsAsTheyWere) {
    for (const int number : {SIGINT, SIGQUIT}) {
        struct sigaction after {};
        signal(number, SIG_DFL);
        EXPECT_EQ(0, std::system("true"));
        sigaction(number, nullptr, &after);
        EXPECT_EQ(SIG_DFL, after.sa_handler);
    }
}

}  // namespace
