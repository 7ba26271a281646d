#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/provider/adapter_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::runOnServer;
using kvl::test::typeOnceShown;
using kvl::test::typeOnServer;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kControlC = "\x03";

/// Each command has the terminal's interrupts for itself, as from an operator's shell.
constexpr const char* kJobs = "set -m; trap : INT\n";

struct Interrupted {
    const char* script;
    const char* waits;
};

void PrintTo(const Interrupted& row, std::ostream* stream) {
    *stream << row.script;
}

class AdapterInterrupt : public testing::TestWithParam<Interrupted> {};

TEST_P(AdapterInterrupt, EndsTheProgramWhileACommandRuns) {
    const std::string shown =
        typeOnceShown({GetParam().waits, kControlC}, std::string(kJobs) + GetParam().script + "; exec 2>/dev/null");
    EXPECT_THAT(shown, HasSubstr(GetParam().waits)) << "each second it is told how long that has been";
    EXPECT_THAT(shown, EndsWith(" \rended with 130\n")) << "nothing more is tried, and nothing told";
    EXPECT_THAT(shown, Not(HasSubstr("kvl:")));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, AdapterInterrupt,
    testing::Values(Interrupted{"fault slow 60; run kvl adapters", "\r1 s  hbacmd listhbas"},
                    Interrupted{"fault slow.dump 60; run kvl adapters --versions --family fc",
                                "\r1 s  0a:00.0 (1 of 3): hbacmd dump 10:00:00:90:fa:5e:41:0a"},
                    Interrupted{"fault slow.GetDumpDirectory 60; run kvl adapters --versions --family fc --format json",
                                "\r1 s  0a:00.0 (1 of 3): hbacmd GetDumpDirectory 10:00:00:90:fa:5e:41:0a"}));

TEST(AdapterSession, CountsTheSecondsOfAToolThatPrintsNothing) {
    const std::string shown = typeOnServer("", "fault silent.GetDumpDirectory; run kvl version 15:00.0 --kind boot");
    std::string expected;
    for (int second = 1; second <= 10; ++second) {
        expected += "\r" + std::to_string(second) +
                    " of 10 s  no output yet from hbacmd GetDumpDirectory 10:00:00:00:c9:d4:7e:30";
    }
    EXPECT_THAT(shown, HasSubstr(expected));
    EXPECT_THAT(typeOnServer("", "fault silent.GetDumpDirectory; kvl adapters --versions --family fc"),
                HasSubstr("\r10 of 10 s  15:00.1 (3 of 3): no output yet from hbacmd GetDumpDirectory "));
}

TEST(AdapterSession, CountsThePausesBetweenTwoDumpsDown) {
    const std::string shown =
        typeOnServer("",
                     "fault other-port-first; kvl version 15:00.0 --kind boot; fault other-port-first\n"
                     "kvl adapters --versions --refresh --family fc");
    EXPECT_THAT(shown, HasSubstr("\r1 s left  no dump of this port yet, trying again"));
    EXPECT_THAT(shown, HasSubstr("\r1 s left  0a:00.0 (1 of 3): no dump of this port yet, trying again"));
}

TEST(AdapterSession, KeepsTheCommandsErrorsFromTheOperator) {
    const Outcome outcome = runOnServer(
        "echo 'echo busy >&2; exec /.machine/hbacmd \"$@\"' >/tmp/busy; chmod 755 /tmp/busy; rm $tool; "
        "ln -s /tmp/busy $tool\n"
        "run kvl version 15:00.0 --kind boot; run kvl version 15:00.0 --kind boot --quiet --refresh");
    EXPECT_EQ("5.03a4\nended with 0\n5.03a4\nended with 0\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(AdapterSession, ShowsTheCommandsErrorsWithTheTrace) {
    const Outcome outcome = runOnServer("fault failing; run kvl adapters -v");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_THAT(outcome.errors, HasSubstr("ExecCommand_(/usr/sbin/ocmanager/hbacmd listhbas > "));
    EXPECT_THAT(outcome.errors, HasSubstr("\nhbacmd: the adapters do not answer\nerror     "));
    EXPECT_THAT(outcome.errors, HasSubstr("\nkvl: /usr/sbin/ocmanager/hbacmd listhbas failed, saying 'hbacmd: the "
                                          "adapters do not answer' (error 0): "));
}

TEST(AdapterSession, QuotesWhatTheShellSaysOfAToolThatDoesNotBegin) {
    const Outcome outcome =
        runOnServer("rm $tool; echo '#!/nowhere/sh' >$tool; chmod 755 $tool; run kvl adapters --quiet");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_EQ(
        "kvl: /usr/sbin/ocmanager/hbacmd listhbas failed, saying 'sh: 1: /usr/sbin/ocmanager/hbacmd: not "
        "found' (error 0): run that command by hand, and see whether its services run and the adapters answer\n",
        outcome.errors);
}

TEST(AdapterSession, QuotesNothingThatAnEarlierCommandSaid) {
    const Outcome outcome = runOnServer(
        "rm $tool; echo '#!/bin/sh\ncase $1 in listhbas) echo busy >&2; exec /.machine/hbacmd \"$@\" ;; esac; exit 1' "
        ">$tool; chmod 755 $tool; run kvl version 15:00.0 --kind boot");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_THAT(outcome.errors, HasSubstr(" failed (error 0): "));
    EXPECT_THAT(outcome.errors, Not(HasSubstr("busy")));
}

TEST(AdapterSession, NeedsNoStandardStreams) {
    const Outcome outcome = runOnServer(
        "fault failing; run kvl adapters 2>&-; cure; kvl adapters --family fc >&- 2>&-; echo \"ended with $?\"; "
        "run kvl adapters --family fc 2>&- | grep -c fc");
    EXPECT_EQ("ended with 3\nended with 3\n3\n", outcome.output);
}

}  // namespace
