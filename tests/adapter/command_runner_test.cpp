#include <cerrno>
#include <csignal>

#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

class AdapterCommand : public AdapterTest {
protected:
    int run(const std::string& command) { return CEmulexCommon::ExecCommand_(command, module); }

    /// Takes the place of the shell.
    void answer(int status) {
        libc().system = [this, status](const char* line) {
            lines.emplace_back(line);
            errno = ENOMEM;
            return status;
        };
    }

    void TearDown() override {
        EXPECT_EQ(CEmulexCommon::GetLastError(), 0U) << "no command sets a code";
        AdapterTest::TearDown();
    }

    Lines lines;
};

TEST_F(AdapterCommand, SucceedsAtOnceWithoutARedirection) {
    machine.command("/sbin/tool -a b", "");
    EXPECT_EQ(run("/sbin/tool -a b"), 0);
    EXPECT_EQ(TestHost::trace(), execTrace("/sbin/tool -a b"));
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/tool -a b"}));
    EXPECT_EQ(libc().sleeps, 0);
}

TEST_F(AdapterCommand, FailsForAnExitStatus) {
    machine.command("/sbin/tool", "", {1});
    EXPECT_EQ(run("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::trace(), failedExecTrace("/sbin/tool"));
    machine.command("/sbin/tool", "", {255});
    EXPECT_EQ(run("/sbin/tool"), -1);
}

TEST_F(AdapterCommand, FailsForAMissingProgram) {
    EXPECT_EQ(run("/sbin/absent > /tmp/out"), -1);
    EXPECT_EQ(TestHost::trace(), failedExecTrace("/sbin/absent > /tmp/out"));
    EXPECT_EQ(libc().sleeps, 0);
}

TEST_F(AdapterCommand, FailsForANegativeResultOfSystemWithTheErrorNumber) {
    answer(-1);
    EXPECT_EQ(run("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::exactTrace(),
              (Lines{"1 CEmulexCommon::ExecCommand_() [START]",
                     "1 static int CEmulexCommon::ExecCommand_(std::string, std::string) ExecCommand_(/sbin/tool)",
                     "2 static int CEmulexCommon::ExecCommand_(std::string, std::string) [/sbin/tool] command failed! "
                     "(12)",
                     "1 CEmulexCommon::ExecCommand_() [END]"}));
}

TEST_F(AdapterCommand, FailsForANegativeResultThatHoldsNoExitStatus) {
    answer(-65536);
    EXPECT_EQ(run("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::trace(), failedExecTrace("/sbin/tool"));
}

TEST_F(AdapterCommand, GivesWhatSystemGaveForASignalWithoutARedirection) {
    answer(SIGTERM);
    EXPECT_EQ(run("/sbin/tool"), SIGTERM);
    EXPECT_EQ(TestHost::trace(), execTrace("/sbin/tool", SIGTERM));
}

TEST_F(AdapterCommand, RunsTheLineWithoutAnyDoubleQuote) {
    answer(0);
    EXPECT_EQ(run("\"/sbin/a tool\" \"x\"y\"\" 'z'"), 0);
    EXPECT_EQ(lines, (Lines{"/sbin/a tool xy 'z'"}));
    EXPECT_EQ(TestHost::trace(), execTrace("/sbin/a tool xy 'z'"));
}

TEST_F(AdapterCommand, TakesPercentSignsAsTheyAre) {
    answer(0);
    EXPECT_EQ(run("/sbin/tool %s %n %d"), 0);
    EXPECT_EQ(TestHost::trace(), execTrace("/sbin/tool %s %n %d"));
}

TEST_F(AdapterCommand, RunsALineOfAnyLength) {
    answer(0);
    const std::string line = "/sbin/tool " + std::string(5000, 'x');
    EXPECT_EQ(run(line), 0);
    EXPECT_EQ(lines, (Lines{line}));
}

TEST_F(AdapterCommand, RunsAnEmptyLine) {
    answer(0);
    EXPECT_EQ(run(""), 0);
    EXPECT_EQ(lines, (Lines{""}));
}

// ---- Result files ----

TEST_F(AdapterCommand, SucceedsWithContentInTheResultFile) {
    machine.command("/sbin/tool", "text\n");
    EXPECT_EQ(run("\"/sbin/tool\" > \"/tmp/result\""), 0);
    EXPECT_EQ(contentOf("/tmp/result"), "text\n");
    EXPECT_EQ(TestHost::trace(), execTrace("/sbin/tool > /tmp/result"));
    EXPECT_EQ(libc().sleeps, 0);
}

TEST_F(AdapterCommand, LeavesTheResultFileInPlace) {
    machine.command("/sbin/tool", "text\n", {3});
    EXPECT_EQ(run("/sbin/tool > /tmp/result"), -1);
    EXPECT_EQ(contentOf("/tmp/result"), "text\n");
}

TEST_F(AdapterCommand, FailsAfterTenSecondsWithAnEmptyResultFile) {
    machine.command("/sbin/tool", "");
    EXPECT_EQ(run("/sbin/tool > /tmp/result"), -1);
    EXPECT_EQ(libc().sleeps, 10);
    EXPECT_EQ(TestHost::trace(), execTrace("/sbin/tool > /tmp/result", -1));
}

TEST_F(AdapterCommand, FailsAfterTenSecondsWithoutAResultFile) {
    answer(0);
    EXPECT_EQ(run("/sbin/tool > /tmp/result"), -1);
    EXPECT_EQ(libc().sleeps, 10);
}

TEST_F(AdapterCommand, SucceedsWithContentThatComesWhileItWaits) {
    answer(0);
    for (const int second : {1, 9}) {
        libc().sleeps = 0;
        libc().onSleep = [this, second](int count) {
            if (count == second) {
                machine.file("/tmp/late" + std::to_string(second), "text");
            }
        };
        EXPECT_EQ(run("/sbin/tool > /tmp/late" + std::to_string(second)), 0);
        EXPECT_EQ(libc().sleeps, second);
    }
}

TEST_F(AdapterCommand, DoesNotLookAgainBehindTheTenthWait) {
    answer(0);
    libc().onSleep = [this](int count) {
        if (count == 10) {
            machine.file("/tmp/late", "text");
        }
    };
    EXPECT_EQ(run("/sbin/tool > /tmp/late"), -1);
}

TEST_F(AdapterCommand, SucceedsWithContentThoughASignalEndedTheCommand) {
    answer(SIGKILL);
    machine.file("/tmp/result", "text");
    EXPECT_EQ(run("/sbin/tool > /tmp/result"), 0);
    EXPECT_EQ(TestHost::trace(), execTrace("/sbin/tool > /tmp/result"));
}

TEST_F(AdapterCommand, WaitsForNothingBehindTwoAngleBrackets) {
    machine.command("/sbin/tool", "");
    EXPECT_EQ(run("/sbin/tool >> /tmp/result"), 0);
    EXPECT_EQ(run("/sbin/tool >/tmp/result"), 0);
    EXPECT_EQ(libc().sleeps, 0);
}

TEST_F(AdapterCommand, TakesAllTextBehindTheFirstRedirectionAsTheName) {
    answer(0);
    machine.file("/tmp/result", "text");
    EXPECT_EQ(run("/sbin/tool > /tmp/result 2>&1"), -1);
    EXPECT_EQ(run("/sbin/tool > /tmp/absent > /tmp/result"), -1);
    EXPECT_EQ(libc().sleeps, 20);
    machine.file("/tmp/result 2>&1", "text");
    machine.file("/tmp/absent > /tmp/result", "text");
    EXPECT_EQ(run("/sbin/tool > /tmp/result 2>&1"), 0);
    EXPECT_EQ(run("/sbin/tool > /tmp/absent > /tmp/result"), 0);
    EXPECT_EQ(libc().sleeps, 20);
}

}  // namespace
}  // namespace kvl::test
