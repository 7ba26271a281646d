#include "provider/library/collection_progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>

#include "host/HostFunctions.h"
#include "reference_host/trace_observer.h"
#include "tests/machines/outside.h"

namespace {

using kvl::provider::CollectionProgress;
using kvl::provider::Display;
using kvl::provider::FailedCommand;
using TheRun = kvl::provider::Run;
using kvl::provider::RunOptions;
using kvl::provider::Turn;
using kvl::test::ScratchDirectory;
using testing::ElementsAre;
using testing::HasSubstr;

// No command of this name leaves a result file, and so nothing is removed in the end.
const std::string kCommand = "/usr/sbin/no-such-command-of-a-test -x";
const std::string kRunner = "int CNetworkParameter::ExecCommand(const char*, ...)";

void beginCommand(const std::string& command) {
    CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "%s [%s > /opt/tarvenn/kvl/provider/tmp/x 2> /dev/null]",
                              kRunner.c_str(), command.c_str());
}

void runCommand(int result) {
    beginCommand(kCommand);
    CTraceUtility::WriteDebug("m", TRACE_DBG_BOUNDARY, "[LEAVE] %s, rc=%d", kRunner.c_str(), result);
}

TEST(CollectionProgress, FollowsTheTraceOfTheLibrary) {
    std::ostringstream terminal;
    TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kProgress, terminal, 80));
    const CollectionProgress progress(run, {});
    runCommand(-1);
    EXPECT_EQ(kCommand, progress.commands().command());
    EXPECT_THAT(progress.commands().failures(), ElementsAre(FailedCommand{kCommand, "printed nothing"}));
    EXPECT_THAT(terminal.str(), HasSubstr(kCommand));
}

TEST(CollectionProgress, ShowsThePausesOfTheLibrary) {
    std::ostringstream terminal;
    TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kProgress, terminal, 80));
    const CollectionProgress progress(run, {});
    Sleep(1);
    EXPECT_EQ("\rpausing for 1 ms", terminal.str());
}

TEST(CollectionProgress, ClearsTheLineAndStopsWatchingAtItsEnd) {
    std::ostringstream terminal;
    {
        TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kProgress, terminal, 80));
        const CollectionProgress progress(run, {});
        runCommand(0);
    }
    EXPECT_EQ("\r" + kCommand + "\r" + std::string(kCommand.size(), ' ') + "\r", terminal.str());
    EXPECT_FALSE(kvl::host::hasTraceObserver());
    terminal.str("");
    runCommand(0);
    Sleep(1);
    EXPECT_EQ("", terminal.str());
}

TEST(CollectionProgress, NamesTheCommandAndThePlaceInTheWalk) {
    std::ostringstream terminal;
    TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kProgress, terminal, 80));
    CollectionProgress progress(run, {});
    beginCommand("/usr/sbin/ethtool -i eth1");
    EXPECT_EQ("/usr/sbin/ethtool -i eth1", run.display().shown());
    progress.setInterfaces({"eth0", "eth1", "eth2"});
    beginCommand("/usr/sbin/ethtool -i eth1");
    EXPECT_EQ("eth1 (2 of 3): /usr/sbin/ethtool -i eth1", run.display().shown());
}

TEST(CollectionProgress, CountsTheSecondsOfAWaitAnewForEachCommand) {
    std::ostringstream terminal;
    TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kProgress, terminal, 100));
    const CollectionProgress progress(run, {});
    ASSERT_EQ(0, std::system("sleep 100000 &"));  // what may still print something
    beginCommand("/sbin/route");
    sleep(0);
    sleep(0);
    EXPECT_EQ("2 of 10 s  no output yet from /sbin/route", run.display().shown());
    beginCommand("/bin/uname -r");
    sleep(0);
    EXPECT_EQ("1 of 10 s  no output yet from /bin/uname -r", run.display().shown());
}

/// Runs a command as the library does, which fails with these words on standard error.
std::vector<std::string> failuresOf(const std::string& words) {
    const ScratchDirectory scratch;
    const std::string program = scratch.write("ethtool", "#!/bin/sh\necho '" + words + "' >&2\nexit 76\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    std::ostringstream terminal;
    TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kNothing, terminal, 80));
    const CollectionProgress progress(run, {});
    const std::string line = program + " -a eth0 > " + (scratch / "ethtool.result") + " 2> /dev/null";
    CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "%s [%s]", kRunner.c_str(), line.c_str());
    EXPECT_NE(0, std::system(line.c_str()));
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "%s [%s] command failed! (0)", kRunner.c_str(), line.c_str());
    return progress.failures();
}

TEST(CollectionProgress, TakesADriverThatDoesNotSupportASettingForAnAnswer) {
    EXPECT_THAT(failuresOf("netlink error: Operation not supported"), testing::IsEmpty());
    EXPECT_THAT(failuresOf("netlink error: No such device"), ElementsAre(testing::EndsWith("ethtool -a eth0 failed")));
}

class Interrupt : public testing::TestWithParam<int> {};

TEST_P(Interrupt, WhileACommandRunsEndsCommandAndProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const int ending = GetParam();
    EXPECT_EXIT(
        {
            std::ostringstream terminal;
            TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kNothing, terminal, 80));
            const CollectionProgress progress(run, {});
            const std::string line = "kill -" + std::to_string(ending) + " $PPID; exec sleep 1000";
            std::exit(std::system(line.c_str()));
        },
        testing::KilledBySignal(ending), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupt, testing::Values(SIGINT, SIGQUIT, SIGTERM, SIGHUP));

TEST(CollectionProgress, GoesOnWhenASignalEndedACommandAlone) {
    std::ostringstream terminal;
    TheRun run(RunOptions(), Turn::kHeld, std::make_unique<Display>(Display::Mode::kNothing, terminal, 80));
    const CollectionProgress progress(run, {});
    runCommand(SIGKILL);
    EXPECT_THAT(progress.commands().failures(), ElementsAre(FailedCommand{kCommand, "was ended by signal 9"}));
}

}  // namespace
