#include "provider/machine/command_runner.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>

#include "tests/machines/outside.h"

namespace {

using kvl::provider::CommandObservation;
using kvl::provider::CommandRunner;
using kvl::provider::PlainCommand;
using kvl::provider::RunnerInCharge;
using kvl::test::readFile;
using kvl::test::ScratchDirectory;
using testing::ElementsAre;

constexpr std::chrono::milliseconds kNoLimit(0);
constexpr std::chrono::milliseconds kShortLimit(50);

/// Waits for something that another process brings about.
bool comesTrue(const std::function<bool()>& condition) {
    constexpr int kLooks = 10'000;
    const struct timespec pause = {0, 1'000'000};
    for (int look = 0; look < kLooks && !condition(); ++look) {
        nanosleep(&pause, nullptr);
    }
    return condition();
}

/// @return true if the process is there and more than a remainder that nobody has asked for
bool isRunning(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string word;
    file >> word >> word >> word;
    return file && word != "Z";
}

int runInShell(const std::string& line) {
    const pid_t process = fork();
    if (process == 0) {
        execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
        _exit(127);
    }
    int status = -1;
    waitpid(process, &status, 0);
    return status;
}

class CommandRunnerTest : public testing::Test {
protected:
    std::string script(const std::string& name, const std::string& text, mode_t mode = 0755) const {
        const std::string path = scratch.write(name, text);
        chmod(path.c_str(), mode);
        return path;
    }

    /// A script that notes its process in a file and then runs for ever, as does what it starts.
    std::string hanging(const std::string& before = "") const {
        return script("hanging", "#!/bin/sh\n" + before + "sleep 100000 &\necho $! > " + child + "\necho $$ > " + own +
                                     "\nwait\n");
    }

    static pid_t processIn(const std::string& file) {
        pid_t process = 0;
        std::ifstream(file) >> process;
        return process;
    }

    const ScratchDirectory scratch;
    const std::string result = scratch / "result";
    const std::string own = scratch / "own-process";
    const std::string child = scratch / "child-process";
};

TEST_F(CommandRunnerTest, GivesWhatAShellGivesForEveryFormOfLine) {
    const std::string good = script("good", "#!/bin/sh\necho one $1; echo two; echo noise >&2\n");
    const std::string bad = script("bad", "#!/bin/sh\necho one; exit 7\n");
    const std::string killed = script("killed", "#!/bin/sh\necho one\nkill -9 $$\n");
    const std::string plain = script("plain", "echo without a first line\n");
    const std::string closed = script("closed", "#!/bin/sh\n", 0600);
    const std::string nowhere = scratch / "nowhere";
    for (const std::string& line :
         {good + " a > " + result + " 2> /dev/null", bad + " > " + result + " 2> /dev/null",
          killed + " > " + result + " 2> /dev/null", plain + " > " + result, closed + " > " + result + " 2> /dev/null",
          nowhere + " > " + result + " 2> /dev/null", scratch.path() + " > " + result + " 2> /dev/null",
          good + "/x > " + result + " 2> /dev/null", good + " > " + nowhere + "/result 2> /dev/null",
          good + " > " + scratch.path() + " 2> /dev/null", good + " | grep two > " + result + " 2> /dev/null",
          good + " | grep three > " + result + " 2> /dev/null", nowhere + " | grep two > " + result + " 2> /dev/null",
          bad + " | grep on. > " + result + " 2> /dev/null", good + " | grep two > " + nowhere + "/result 2> /dev/null",
          good + " a; exit 3", good + " 'a b' > " + result, std::string("exit 200"), std::string("kill -9 $$")}) {
        CommandRunner runner(kNoLimit, {});
        unlink(result.c_str());
        const int inShell = runInShell(line);
        const std::string shellsOutput = readFile(result);
        const bool shellMadeFile = access(result.c_str(), F_OK) == 0;
        unlink(result.c_str());
        EXPECT_EQ(inShell, runner.run(line)) << line;
        EXPECT_EQ(shellMadeFile, access(result.c_str(), F_OK) == 0) << line;
        EXPECT_EQ(shellsOutput, readFile(result)) << line;
    }
}

TEST_F(CommandRunnerTest, LeavesErrnoAsItWas) {
    CommandRunner runner(kNoLimit, {});
    errno = EXDEV;
    EXPECT_EQ(127 << 8, runner.run((scratch / "nowhere") + " > " + result + " 2> /dev/null"));
    EXPECT_EQ(EXDEV, errno);
}

TEST_F(CommandRunnerTest, GivesTheCommandAnEmptyInput) {
    CommandRunner runner(kNoLimit, {});
    EXPECT_EQ(0, runner.run("/bin/cat > " + result + " 2> /dev/null"));
    EXPECT_EQ("", readFile(result));
}

TEST_F(CommandRunnerTest, EndsACommandAtTheLimitWithAllThatItHasStarted) {
    CommandRunner runner(kShortLimit, {});
    EXPECT_EQ(124 << 8, runner.run(hanging() + " -i eth1 > " + result + " 2> /dev/null"));
    EXPECT_TRUE(runner.observations().back().reachedLimit);
    EXPECT_GE(runner.observations().back().duration, kShortLimit);
    EXPECT_FALSE(isRunning(processIn(own)));
    EXPECT_FALSE(isRunning(processIn(child)));
}

TEST_F(CommandRunnerTest, EndsACommandThatIgnoresThePoliteSignal) {
    CommandRunner runner(kShortLimit, {});
    EXPECT_EQ(124 << 8, runner.run(hanging("trap '' TERM\n") + " -i eth1 > " + result + " 2> /dev/null"));
    EXPECT_FALSE(isRunning(processIn(own)));
    EXPECT_FALSE(isRunning(processIn(child)));
}

TEST_F(CommandRunnerTest, AsksNoMoreAboutAnInterfaceThatReachedTheLimit) {
    const std::string tool = script(
        "tool", "#!/bin/sh\necho $1 $2 >> " + (scratch / "calls") + "\n[ \"$2\" != eth1 ] || exec sleep 100000\n");
    CommandRunner runner(kShortLimit, {});
    const auto run = [&](const std::string& words) { return runner.run(tool + " " + words + " > " + result); };
    EXPECT_EQ(124 << 8, run("-i eth1"));
    EXPECT_EQ(124 << 8, run("-k eth1"));
    run("-k eth10");  // on a slow machine it may reach the limit too
    ASSERT_EQ(3U, runner.observations().size());
    EXPECT_TRUE(runner.observations()[0].reachedLimit);
    EXPECT_TRUE(runner.observations()[1].wasLeftOut);
    EXPECT_FALSE(runner.observations()[1].reachedLimit);
    EXPECT_FALSE(runner.observations()[2].wasLeftOut);
    EXPECT_THAT(readFile(scratch / "calls"), testing::Not(testing::HasSubstr("-k eth1\n")));
}

TEST_F(CommandRunnerTest, NotesWhatBecameOfEachCommand) {
    const std::string tool = script("tool", "#!/bin/sh\necho first >&2\necho 'last words' >&2\nexit 3\n");
    CommandRunner runner(kNoLimit, {});
    runner.run(tool + " -a eth0 > " + result + " 2> /dev/null");
    ASSERT_EQ(1U, runner.observations().size());
    const CommandObservation& seen = runner.observations().front();
    EXPECT_EQ(tool + " -a eth0", seen.command);
    EXPECT_EQ(3 << 8, seen.status);
    EXPECT_EQ("last words", seen.lastWords);
    EXPECT_FALSE(seen.reachedLimit);
    EXPECT_FALSE(seen.wasLeftOut);
}

TEST_F(CommandRunnerTest, KnowsWhetherSomethingMayStillWrite) {
    CommandRunner runner(kNoLimit, {});
    EXPECT_FALSE(runner.mayStillWrite()) << "nothing was run yet";
    EXPECT_EQ(0, runner.run("/bin/true > " + result));
    EXPECT_FALSE(runner.mayStillWrite());
    const std::string late =
        script("late", "#!/bin/sh\n(until [ -e " + (scratch / "go") + " ]; do sleep 0.01; done; echo late) &\n");
    EXPECT_EQ(0, runner.run(late + " > " + result + " 2> /dev/null"));
    EXPECT_TRUE(runner.mayStillWrite());
    scratch.write("go", "");
    EXPECT_TRUE(comesTrue([&] { return !runner.mayStillWrite(); }));
    EXPECT_EQ("late\n", readFile(result));
}

TEST_F(CommandRunnerTest, EndsWhatTheLastCommandHasLeftRunning) {
    const std::string leaving = script("leaving", "#!/bin/sh\nsleep 100000 &\necho $! > " + child + "\n");
    {
        CommandRunner runner(kNoLimit, {});
        EXPECT_EQ(0, runner.run(leaving + " > " + result + " 2> /dev/null"));
        const pid_t first = processIn(child);
        EXPECT_TRUE(isRunning(first));
        EXPECT_EQ(0, runner.run(leaving + " > " + result + " 2> /dev/null"));
        EXPECT_FALSE(isRunning(first));
    }
    EXPECT_FALSE(isRunning(processIn(child)));
}

TEST_F(CommandRunnerTest, TranslatesTheCommandAndThenItsOutput) {
    std::vector<std::string> translated;
    CommandRunner::Hooks hooks;
    hooks.outgoing = [](PlainCommand& command) { command.words.back() = "b;c"; };
    hooks.incoming = [&](const PlainCommand& command) {
        translated.push_back(command.words.back() + ": " + readFile(command.outputFile));
    };
    CommandRunner runner(kNoLimit, hooks);
    EXPECT_EQ(0, runner.run("/bin/echo a > " + result));
    EXPECT_EQ(1 << 8, runner.run("/bin/false a > " + result));
    EXPECT_THAT(translated, ElementsAre("b;c: b;c\n")) << "a command that fails has no output that is read";
    EXPECT_EQ("/bin/echo a", runner.observations().front().command) << "as the library wrote it";
}

class EndOfTheProcess : public CommandRunnerTest, public testing::WithParamInterface<int> {};

TEST_P(EndOfTheProcess, EndsTheCommandAndThenFreesTheLock) {
    const std::string command = hanging();
    const std::string lock = scratch.write("lock", "");
    const pid_t process = fork();
    if (process == 0) {
        const int file = open(lock.c_str(), O_RDWR);  // handed to every command
        flock(file, LOCK_EX);
        CommandRunner runner(kNoLimit, {nullptr, nullptr, [](int number) {
                                            signal(number, SIG_DFL);
                                            raise(number);
                                        }});
        runner.run(command + " > " + result + " 2> /dev/null");
        _exit(0);
    }
    ASSERT_TRUE(comesTrue([&] { return processIn(own) > 0; }));
    kill(process, GetParam());
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_EQ(GetParam(), status);
    const int file = open(lock.c_str(), O_RDWR);
    EXPECT_TRUE(comesTrue([&] { return flock(file, LOCK_EX | LOCK_NB) == 0; }));
    close(file);
    EXPECT_FALSE(isRunning(processIn(own)));
    EXPECT_FALSE(isRunning(processIn(child)));
}

INSTANTIATE_TEST_SUITE_P(BySignal, EndOfTheProcess, testing::Values(SIGKILL, SIGTERM, SIGHUP, SIGINT, SIGQUIT));

TEST_F(CommandRunnerTest, TakesTheCallsOfSystemWhileItIsInCharge) {
    CommandRunner runner(kNoLimit, {});
    {
        const RunnerInCharge inCharge(runner);
        EXPECT_EQ(3 << 8, std::system("exit 3"));
        EXPECT_EQ(1U, runner.observations().size());
    }
    EXPECT_EQ(4 << 8, std::system("exit 4"));
    EXPECT_EQ(1U, runner.observations().size());
}

TEST_F(CommandRunnerTest, SparesAWaitForWhatCannotCome) {
    CommandRunner runner(kNoLimit, {});
    const RunnerInCharge inCharge(runner);
    EXPECT_EQ(0, std::system(("/bin/true > " + result).c_str()));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(0U, sleep(100'000));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::hours(1));
}

TEST_F(CommandRunnerTest, WorksWhereTheCallerIgnoresTheEndOfChildren) {
    signal(SIGCHLD, SIG_IGN);
    {
        CommandRunner runner(kNoLimit, {});
        EXPECT_EQ(7 << 8, runner.run("exit 7"));
    }
    signal(SIGCHLD, SIG_DFL);
}

}  // namespace
