#include "provider/machine/child_program.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/machines/outside.h"

namespace {

using kvl::machines::BubblewrapEnding;
using kvl::provider::runSandbox;
using kvl::test::ScratchDirectory;

/// A program in the place of bubblewrap: it gets "--json-status-fd", a descriptor, and the words that follow.
std::string standIn(const ScratchDirectory& scratch, const std::string& script) {
    const std::string path = scratch.write("stand-in", "#!/bin/sh\n" + script);
    EXPECT_EQ(0, chmod(path.c_str(), 0755));
    return path;
}

TEST(RunSandbox, PassesTheExitCodeOfTheProgramThrough) {
    const ScratchDirectory scratch;
    const std::string program = standIn(scratch, "eval \"echo '{ \\\"exit-code\\\": $3 }' >&$2\"\nexit $3\n");
    for (const int status : {0, 1, 3, 77}) {
        const BubblewrapEnding ending = runSandbox({program, std::to_string(status)});
        EXPECT_TRUE(ending.programRan);
        EXPECT_EQ(status, ending.status);
    }
}

TEST(RunSandbox, TellsASandboxThatCouldNotBeMadeFromAProgramThatFailed) {
    const ScratchDirectory scratch;
    const BubblewrapEnding ending =
        runSandbox({standIn(scratch, "eval \"echo '{ \\\"child-pid\\\": 1 }' >&$2\"\nexit 1\n")});
    EXPECT_FALSE(ending.programRan);
    EXPECT_EQ(1, ending.status);
}

TEST(RunSandbox, TellsASandboxThatCannotBeStarted) {
    const ScratchDirectory scratch;
    const BubblewrapEnding ending = runSandbox({scratch / "nothing"});
    EXPECT_FALSE(ending.programRan);
    EXPECT_EQ(127, ending.status);
}

class PassedSignal : public testing::TestWithParam<int> {};

// The stand-in asks its parent to end and then waits: it ends by the signal that comes back.
TEST_P(PassedSignal, ReachesTheSandboxAndDoesNotEndThisProcess) {
    signal(GetParam(), SIG_DFL);  // one that is ignored isn't passed on
    const ScratchDirectory scratch;
    const std::string number = std::to_string(GetParam());
    const BubblewrapEnding ending =
        runSandbox({standIn(scratch, "kill -" + number + " $PPID\nwhile :; do sleep 0.01; done\n")});
    EXPECT_EQ(128 + GetParam(), ending.status);
}

INSTANTIATE_TEST_SUITE_P(Signals, PassedSignal, testing::Values(SIGTERM, SIGHUP));

TEST(RunSandbox, RestoresTheHandlingOfSignals) {
    const ScratchDirectory scratch;
    const std::string program = standIn(scratch, "exit 0\n");
    runSandbox({program});
    struct sigaction action {};
    ASSERT_EQ(0, sigaction(SIGTERM, nullptr, &action));
    EXPECT_EQ(SIG_DFL, action.sa_handler);
    sigset_t blocked;
    ASSERT_EQ(0, sigprocmask(SIG_BLOCK, nullptr, &blocked));
    EXPECT_FALSE(sigismember(&blocked, SIGTERM));
}

}  // namespace
