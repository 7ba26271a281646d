#include "provider/report/collection_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>
#include <sstream>

#include "host/HostFunctions.h"
#include "reference_host/trace_observer.h"

namespace {

using kvl::provider::CollectionDisplay;
using kvl::provider::CollectionSession;
using kvl::provider::FailedCommand;
using testing::ElementsAre;
using testing::HasSubstr;

// No command of this name leaves a result file, and so nothing is removed in the end.
const std::string kCommand = "/usr/sbin/no-such-command-of-a-test -x";
const std::string kRunner = "int CNetworkParameter::ExecCommand(const char*, ...)";

void runCommand(int result) {
    CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "%s [%s > /opt/tarvenn/kvl/provider/tmp/x 2> /dev/null]",
                              kRunner.c_str(), kCommand.c_str());
    CTraceUtility::WriteDebug("m", TRACE_DBG_BOUNDARY, "[LEAVE] %s, rc=%d", kRunner.c_str(), result);
}

TEST(CollectionSession, FollowsTheTraceOfTheLibrary) {
    std::ostringstream terminal;
    CollectionDisplay display(CollectionDisplay::Mode::kProgress, terminal, 80);
    const CollectionSession session(display, {});
    runCommand(-1);
    EXPECT_EQ(kCommand, session.watch().command());
    EXPECT_THAT(session.watch().failures(), ElementsAre(FailedCommand{kCommand, "printed nothing"}));
    EXPECT_THAT(terminal.str(), HasSubstr(kCommand));
}

TEST(CollectionSession, ShowsThePausesOfTheLibrary) {
    std::ostringstream terminal;
    CollectionDisplay display(CollectionDisplay::Mode::kProgress, terminal, 80);
    const CollectionSession session(display, {});
    Sleep(1);
    EXPECT_EQ("\rpausing for 1 ms", terminal.str());
}

TEST(CollectionSession, ClearsTheLineAndStopsWatchingAtItsEnd) {
    std::ostringstream terminal;
    CollectionDisplay display(CollectionDisplay::Mode::kProgress, terminal, 80);
    {
        const CollectionSession session(display, {});
        runCommand(0);
    }
    EXPECT_EQ("\r" + kCommand + "\r" + std::string(kCommand.size(), ' ') + "\r", terminal.str());
    EXPECT_FALSE(kvl::host::hasTraceObserver());
    terminal.str("");
    runCommand(0);
    Sleep(1);
    EXPECT_EQ("", terminal.str());
}

class Interrupt : public testing::TestWithParam<int> {};

TEST_P(Interrupt, WhileACommandRunsEndsCommandAndProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const int ending = GetParam();
    EXPECT_EXIT(
        {
            std::ostringstream terminal;
            CollectionDisplay display(CollectionDisplay::Mode::kNothing, terminal, 80);
            const CollectionSession session(display, {});
            const std::string line = "kill -" + std::to_string(ending) + " $PPID; exec sleep 1000";
            std::exit(std::system(line.c_str()));
        },
        testing::KilledBySignal(ending), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupt, testing::Values(SIGINT, SIGQUIT, SIGTERM, SIGHUP));

TEST(CollectionSession, GoesOnWhenASignalEndedACommandAlone) {
    std::ostringstream terminal;
    CollectionDisplay display(CollectionDisplay::Mode::kNothing, terminal, 80);
    const CollectionSession session(display, {});
    runCommand(SIGKILL);
    EXPECT_THAT(session.watch().failures(), ElementsAre(FailedCommand{kCommand, "was ended by signal 9"}));
}

}  // namespace
