#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>

#include "foundation/CCommon_Information.h"
#include "tests/foundation/foundation_test.h"

namespace kvl::test {
namespace {

constexpr unsigned long kNoLimit = static_cast<unsigned long>(-1);

class ForeignProcess : public FoundationTest {
protected:
    unsigned long run(const std::string& command, const std::string& workDir = "", unsigned long timeout = kNoLimit) {
        return CCommon_Information::POpenForeignModule(command, &pipeFd, workDir, &exitCode, timeout);
    }

    /// Runs a command while the next pipes fail. They are set here, since the sanitizer's first look at this object
    /// opens a pipe itself.
    unsigned long runWithFailingPipes(int count, const std::string& command) {
        libc().failingPipes = count;
        return run(command);
    }

    std::string takeOutput() {
        std::string output;
        char buffer[4096];
        for (ssize_t count = read(pipeFd, buffer, sizeof buffer); count > 0;
             count = read(pipeFd, buffer, sizeof buffer)) {
            output.append(buffer, static_cast<std::size_t>(count));
        }
        close(pipeFd);
        return output;
    }

    /// How many bytes a pipe holds.
    static std::size_t pipeSize() {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const int size = fcntl(ends[0], F_GETPIPE_SZ);
        close(ends[0]);
        close(ends[1]);
        return static_cast<std::size_t>(size);
    }

    /// Waits for something that another process brings about, half a minute at most.
    static bool await(const std::function<bool()>& condition) {
        for (int attempt = 0; attempt < 15000; ++attempt) {
            if (condition()) {
                return true;
            }
            usleep(2000);
        }
        return false;
    }

    static bool aChildHasEnded() {
        siginfo_t child{};
        return waitid(P_ALL, 0, &child, WEXITED | WNOWAIT | WNOHANG) == 0 && child.si_pid != 0;
    }

    /// As the kernel reports it: 'R' runs, 'S' waits, 'Z' has ended.
    static char stateOf(const std::string& process) {
        const std::string stat = contentOf("/.proc/" + process + "/stat");
        const auto name = stat.rfind(") ");
        return name == std::string::npos ? '?' : stat[name + 2];
    }

    int pipeFd = -7;
    unsigned long exitCode = 1000;
};

using POpenForeignModule = ForeignProcess;
using GetResultLine = ForeignProcess;
using MyStrTok = ForeignProcess;
using MyPathFileExists = ForeignProcess;
using RetryDeleteFile = ForeignProcess;

TEST_F(POpenForeignModule, HandsBackTheOutputAndTheExitCode) {
    EXPECT_EQ(run("echo one; echo two; exit 3"), 0U);
    EXPECT_EQ(exitCode, 3U);
    EXPECT_EQ(takeOutput(), "one\ntwo\n");
}

TEST_F(POpenForeignModule, RunsTheCommandThroughTheShellOfThePath) {
    EXPECT_EQ(run("printf '%s' \"$0\" | cat"), 0U);
    EXPECT_EQ(takeOutput(), "sh");
}

TEST_F(POpenForeignModule, ClosesStandardError) {
    EXPECT_EQ(run("echo out; echo err >&2; ls -l /proc/self/fd/2 >/dev/null"), 0U);
    EXPECT_NE(exitCode, 0U);
    EXPECT_EQ(takeOutput(), "out\n");
}

TEST_F(POpenForeignModule, RunsInTheWorkDirectory) {
    machine.directory("/tmp/place");
    EXPECT_EQ(run("pwd", "/tmp/place"), 0U);
    EXPECT_EQ(takeOutput(), "/tmp/place\n");
}

TEST_F(POpenForeignModule, RefusesAnEmptyCommand) {
    EXPECT_EQ(run(""), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
}

TEST_F(POpenForeignModule, RefusesAWorkDirectoryThatIsNotThere) {
    EXPECT_EQ(run("echo", "/tmp/absent"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
}

TEST_F(POpenForeignModule, EndsTheChildWithOneWhereItCannotChangeTheDirectory) {
    machine.file("/tmp/file", "");
    EXPECT_EQ(run("echo", "/tmp/file"), 0U);
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(takeOutput(), "");
}

TEST_F(POpenForeignModule, EndsTheChildWithOneWhereThereIsNoShell) {
    machine.directory("/tmp/empty");
    setenv("PATH", "/tmp/empty", 1);
    EXPECT_EQ(run("echo"), 0U);
    setenv("PATH", "/sbin:/usr/sbin:/bin:/usr/bin", 1);
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(takeOutput(), "");
}

TEST_F(POpenForeignModule, RefusesAWorkDirectoryThatCanBeEnteredButNotRead) {
    machine.directory("/tmp/place");
    chmod("/tmp/place", 0300);
    EXPECT_EQ(access("/tmp/place", W_OK | X_OK), 0);
    libc().failingForks = 1;
    EXPECT_EQ(run("echo", "/tmp/place"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
    EXPECT_EQ(libc().failingForks, 1);
}

TEST_F(POpenForeignModule, FailsForACommandThatASignalEnds) {
    EXPECT_EQ(run("kill -9 $$"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
}

TEST_F(POpenForeignModule, FailsForACommandThatIsStopped) {
    EXPECT_EQ(run("echo $$ > /tmp/pid; kill -STOP $$"), 1U);
    EXPECT_EQ(exitCode, 255U);
    const int child = std::stoi(contentOf("/tmp/pid"));
    kill(child, SIGKILL);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

TEST_F(POpenForeignModule, TriesFiveTimesForAPipe) {
    EXPECT_EQ(runWithFailingPipes(4, "echo late"), 0U);
    EXPECT_EQ(takeOutput(), "late\n");
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 1000, 1000, 1000}));
}

TEST_F(POpenForeignModule, GivesUpAfterTheFifthPipe) {
    EXPECT_EQ(runWithFailingPipes(5, "echo never"), 1U);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 1000, 1000, 1000}));
    EXPECT_EQ(libc().failingPipes, 0);
}

TEST_F(POpenForeignModule, ClosesBothEndsWhereItCannotFork) {
    libc().failingForks = 1;
    EXPECT_EQ(run("echo never"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
}

TEST_F(POpenForeignModule, LeavesATimedOutCommandRunningAndClosesThePipe) {
    machine.file("/tmp/go", "");
    EXPECT_EQ(run("while [ -e /tmp/go ]; do sleep 0.01; done; echo ended > /tmp/ended", "", 0), 255U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{0}));
    unlink("/tmp/go");
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
    EXPECT_EQ(contentOf("/tmp/ended"), "ended\n");
}

TEST_F(POpenForeignModule, PollsOnceASecondUpToTheTimeout) {
    machine.file("/tmp/go", "");
    EXPECT_EQ(run("while [ -e /tmp/go ]; do sleep 0.01; done", "", 2500), 255U);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 1000, 500}));
    unlink("/tmp/go");
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
}

TEST_F(POpenForeignModule, TakesTheOutputAlsoWithStandardDescriptorsClosed) {
    for (int closed = 1; closed < 8; ++closed) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                if ((closed & (1 << descriptor)) != 0) {
                    close(descriptor);
                }
            }
            const bool good = run("echo through") == 0 && exitCode == 0 && takeOutput() == "through\n";
            _exit(good ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << "descriptors closed: " << closed;
    }
}

TEST_F(POpenForeignModule, RefusesWithoutAPipeAndAProcess) {
    libc().failingForks = 1;
    EXPECT_EQ(runWithFailingPipes(1, ""), 1U);
    EXPECT_EQ(run("echo", "/tmp/absent"), 1U);
    EXPECT_EQ(libc().failingPipes, 1);
    EXPECT_EQ(libc().failingForks, 1);
    libc().failingPipes = 0;  // the next test may need one before it starts
}

TEST_F(POpenForeignModule, FailsForACommandThatDiesByAnySignal) {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGILL, SIGABRT, SIGBUS, SIGFPE, SIGSEGV, SIGPIPE, SIGALRM,
                             SIGTERM, SIGUSR1, SIGUSR2}) {
        EXPECT_EQ(run("ulimit -c 0; echo text; kill -" + std::to_string(number) + " $$; echo survived"), 1U) << number;
        EXPECT_EQ(exitCode, 255U) << number;
        EXPECT_EQ(pipeFd, -7) << number;
    }
}

TEST_F(POpenForeignModule, FailsWhereThereIsNoChildToWaitFor) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(run("echo"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
    std::signal(SIGCHLD, before);
}

TEST_F(POpenForeignModule, TakesTheExitCodeOfACommandThatEndsInTime) {
    machine.file("/tmp/go", "");
    TestHost::onSleep([] {
        unlink("/tmp/go");
        siginfo_t child{};
        waitid(P_ALL, 0, &child, WEXITED | WNOWAIT);
    });
    EXPECT_EQ(run("while [ -e /tmp/go ]; do sleep 0.01; done; echo late; exit 4", "", 600000), 0U);
    EXPECT_EQ(exitCode, 4U);
    EXPECT_EQ(takeOutput(), "late\n");
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000}));
}

TEST_F(POpenForeignModule, TakesOutputThatJustFitsThePipe) {
    for (const std::size_t size : {pipeSize() - 1, pipeSize()}) {
        EXPECT_EQ(run("exec head -c " + std::to_string(size) + " /dev/zero"), 0U) << size;
        EXPECT_EQ(exitCode, 0U) << size;
        EXPECT_EQ(takeOutput(), std::string(size, '\0')) << size;
    }
}

TEST_F(POpenForeignModule, TakesOutputThatJustFitsThePipeAlsoWithALimitOfTime) {
    const std::size_t size = pipeSize();
    TestHost::onSleep([] { EXPECT_TRUE(await(aChildHasEnded)); });
    EXPECT_EQ(run("head -c " + std::to_string(size) + " /dev/zero; : > /tmp/full", "", 2500), 0U);
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(takeOutput(), std::string(size, '\0'));
    EXPECT_EQ(contentOf("/tmp/full"), "");
}

TEST_F(POpenForeignModule, RunsOutOfTimeWithOutputThatDoesNotFitThePipe) {
    // The shell itself writes the byte that is too much, so it is the shell that waits then.
    const auto hasWaited = [] {
        const char state = contentOf("/tmp/full").empty() ? stateOf(contentOf("/tmp/pid")) : '?';
        return state == 'S' || state == 'Z';
    };
    bool cameThatFar = true;
    TestHost::onSleep([&] {
        cameThatFar = cameThatFar && await(hasWaited);
        EXPECT_EQ(contentOf("/tmp/over"), "(absent)");
    });
    EXPECT_EQ(run("printf $$ > /tmp/pid; head -c " + std::to_string(pipeSize()) +
                      " /dev/zero; : > /tmp/full; printf x && : > /tmp/over",
                  "", 2500),
              255U);
    EXPECT_TRUE(cameThatFar) << "the output that fits did not fit";
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(pipeFd, -7);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 1000, 500}));
    // Nobody can read the output any more, and so it ends.
    EXPECT_TRUE(await(aChildHasEnded));
    kill(std::stoi(contentOf("/tmp/pid")), SIGKILL);
    int status = -1;
    EXPECT_GT(waitpid(-1, &status, 0), 0);
    EXPECT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(contentOf("/tmp/over"), "(absent)");
}

TEST_F(POpenForeignModule, HandsBackAnEmptyPipeOfACommandThatClosesOrTurnsItsOutput) {
    EXPECT_EQ(run("exec >&-; exit 4"), 0U);
    EXPECT_EQ(exitCode, 4U);
    EXPECT_EQ(takeOutput(), "");
    EXPECT_EQ(run("exec > /tmp/elsewhere; echo text"), 0U);
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(takeOutput(), "");
    EXPECT_EQ(contentOf("/tmp/elsewhere"), "text\n");
}

TEST_F(POpenForeignModule, DoesNotWaitForAGrandchild) {
    machine.file("/tmp/go", "");
    EXPECT_EQ(run("(while [ -e /tmp/go ]; do sleep 0.01; done; echo late) & echo early"), 0U);
    EXPECT_EQ(exitCode, 0U);
    unlink("/tmp/go");
    EXPECT_EQ(takeOutput(), "early\nlate\n");
}

TEST_F(POpenForeignModule, LeavesTheCallersUnwrittenBuffersToTheCaller) {
    machine.file("/tmp/file", "");
    {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen("/tmp/text", "w"), std::fclose);
        std::fputs("once\n", stream.get());
        EXPECT_EQ(run("echo", "/tmp/file"), 0U);
        takeOutput();
    }
    EXPECT_EQ(contentOf("/tmp/text"), "once\n");
}

TEST_F(GetResultLine, GivesTheFirstLineWithoutItsLineFeed) {
    EXPECT_EQ(CCommon_Information::GetResultLine("echo first; echo second"), "first");
    EXPECT_EQ(CCommon_Information::GetResultLine("printf unended"), "unended");
}

TEST_F(GetResultLine, IsEmptyForAnEmptyFirstLine) {
    EXPECT_EQ(CCommon_Information::GetResultLine("echo; echo second"), "");
}

TEST_F(GetResultLine, IsEmptyForEveryFailure) {
    for (const char* command : {"", "true", "echo text; exit 1", "echo text; kill -9 $$", "/no/such/program"}) {
        EXPECT_EQ(CCommon_Information::GetResultLine(command), "") << command;
    }
}

TEST_F(GetResultLine, IsEmptyWithoutAPipeAProcessOrAStream) {
    libc().failingPipes = 5;
    EXPECT_EQ(CCommon_Information::GetResultLine("echo line"), "");
    EXPECT_EQ(libc().failingPipes, 0);
    libc().failingForks = 1;
    EXPECT_EQ(CCommon_Information::GetResultLine("echo line"), "");
    EXPECT_EQ(libc().failingForks, 0);
    libc().failingStreams = 1;
    EXPECT_EQ(CCommon_Information::GetResultLine("echo line > /tmp/ran; echo line"), "");
    EXPECT_EQ(libc().failingStreams, 0);
    EXPECT_EQ(contentOf("/tmp/ran"), "line\n");
}

TEST_F(GetResultLine, CutsALongLineTo255Characters) {
    machine.file("/tmp/long", std::string(256, 'x') + "\n");
    EXPECT_EQ(CCommon_Information::GetResultLine("cat /tmp/long"), std::string(255, 'x'));
    machine.file("/tmp/fits", std::string(255, 'x') + "\n");
    EXPECT_EQ(CCommon_Information::GetResultLine("cat /tmp/fits"), std::string(255, 'x'));
}

TEST_F(GetResultLine, LeavesDescriptorsAndChildrenAsTheyWereAfterAThousandCalls) {
    // The fixture counts both when this test ends.
    for (int call = 0; call < 500; ++call) {
        EXPECT_EQ(CCommon_Information::GetResultLine("echo line"), "line");
        EXPECT_EQ(CCommon_Information::GetResultLine("echo line; exit 1"), "");
    }
}

TEST_F(MyStrTok, TakesTokensOffTheFront) {
    std::string text = ";one;;two";
    EXPECT_EQ(CCommon_Information::MyStrTok(&text, ';'), "");
    EXPECT_EQ(text, "one;;two");
    EXPECT_EQ(CCommon_Information::MyStrTok(&text, ';'), "one");
    EXPECT_EQ(CCommon_Information::MyStrTok(&text, ';'), "");
    EXPECT_EQ(text, "two");
    EXPECT_EQ(CCommon_Information::MyStrTok(&text, ';'), "two");
    EXPECT_EQ(text, "");
    EXPECT_EQ(CCommon_Information::MyStrTok(&text, ';'), "");
}

TEST_F(MyStrTok, LeavesAnEmptyTextBehindATrailingSeparator) {
    std::string text = "one;";
    EXPECT_EQ(CCommon_Information::MyStrTok(&text, ';'), "one");
    EXPECT_EQ(text, "");
}

TEST_F(MyPathFileExists, CountsWhatCanBeOpenedForReading) {
    machine.file("/tmp/file", "");
    machine.file("/tmp/closed", "");
    chmod("/tmp/closed", 0);
    machine.directory("/tmp/directory");
    EXPECT_TRUE(CCommon_Information::MyPathFileExists("/tmp/file"));
    EXPECT_TRUE(CCommon_Information::MyPathFileExists("/tmp/directory"));
    EXPECT_FALSE(CCommon_Information::MyPathFileExists("/tmp/absent"));
    EXPECT_FALSE(CCommon_Information::MyPathFileExists("/tmp/closed"));
}

TEST_F(RetryDeleteFile, DeletesAFileAtOnce) {
    machine.file("/tmp/file", "text");
    EXPECT_TRUE(CCommon_Information::RetryDeleteFile("/tmp/file"));
    EXPECT_EQ(contentOf("/tmp/file"), "(absent)");
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(RetryDeleteFile, IsDoneWithAMissingPath) {
    EXPECT_TRUE(CCommon_Information::RetryDeleteFile("/tmp/absent"));
    EXPECT_THAT(TestHost::deletions(), testing::IsEmpty());
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(RetryDeleteFile, TriesFiveTimesWithGrowingPauses) {
    machine.directory("/tmp/directory");
    machine.file("/tmp/directory/file", "");
    EXPECT_FALSE(CCommon_Information::RetryDeleteFile("/tmp/directory"));
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 6000, 11000, 16000, 21000}));
    EXPECT_EQ(TestHost::deletions(), Lines(5, "/tmp/directory"));
    EXPECT_EQ(namesIn("/tmp/directory"), (Lines{"file"}));
}

TEST_F(RetryDeleteFile, CountsADeletionBySomebodyElse) {
    machine.directory("/tmp/directory");
    machine.file("/tmp/directory/file", "");
    TestHost::onSleep([] {
        unlink("/tmp/directory/file");
        rmdir("/tmp/directory");
    });
    EXPECT_TRUE(CCommon_Information::RetryDeleteFile("/tmp/directory"));
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000}));
}

TEST_F(RetryDeleteFile, CountsADeletionDuringTheLastPause) {
    machine.directory("/tmp/directory");
    machine.file("/tmp/directory/file", "");
    TestHost::onSleep([] {
        if (TestHost::sleeps().size() == 5) {
            unlink("/tmp/directory/file");
            rmdir("/tmp/directory");
        }
    });
    EXPECT_TRUE(CCommon_Information::RetryDeleteFile("/tmp/directory"));
    EXPECT_EQ(TestHost::deletions().size(), 5U);
}

TEST_F(RetryDeleteFile, TakesAFileThatCannotBeReadAsAbsent) {
    machine.file("/tmp/closed", "");
    chmod("/tmp/closed", 0);
    EXPECT_TRUE(CCommon_Information::RetryDeleteFile("/tmp/closed"));
    EXPECT_THAT(TestHost::deletions(), testing::IsEmpty());
    EXPECT_EQ(access("/tmp/closed", F_OK), 0);
}

TEST_F(RetryDeleteFile, IsFalseForAFileThatIsThereAgainBehindItsDeletion) {
    machine.file("/tmp/file", "old");
    TestHost::onDeletion([this](const char* path) { machine.file(path, "new"); });
    EXPECT_FALSE(CCommon_Information::RetryDeleteFile("/tmp/file"));
    EXPECT_EQ(TestHost::deletions(), (Lines{"/tmp/file"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(POpenForeignModule, HandsItsPipeToTheChildOnceAlone) {
    EXPECT_EQ(run("exec ls -l /proc/self/fd/"), 0U);
    const std::string output = takeOutput();
    const auto start = output.find("1 -> pipe:[");
    ASSERT_NE(start, std::string::npos) << output;
    const std::string pipe = output.substr(start + 5, output.find(']', start) - start - 4);
    EXPECT_EQ(output.find(pipe), output.rfind(pipe)) << output;
}

TEST_F(GetResultLine, WorksAlsoWithStandardDescriptorsClosed) {
    for (int closed = 1; closed < 8; ++closed) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                if ((closed & (1 << descriptor)) != 0) {
                    close(descriptor);
                }
            }
            const std::size_t before = namesIn("/proc/self/fd").size();
            const bool good = CCommon_Information::GetResultLine("echo through") == "through" &&
                              CCommon_Information::GetResultLine("echo text; exit 1").empty() &&
                              namesIn("/proc/self/fd").size() == before;
            _exit(good ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << "descriptors closed: " << closed;
    }
}

/// Calls both operations over and over, each call with a text and an exit code of its own.
/// @return the calls that another text or code came back from
Lines wrongAnswers(int thread) {
    const std::string file = "/tmp/result-" + std::to_string(thread);
    Lines wrong;
    for (int call = 0; call < 25; ++call) {
        const std::string text = std::to_string(thread) + "-" + std::to_string(call);
        if (CCommon_Information::GetResultLine("echo " + text) != text) {
            wrong.push_back("line " + text);
        }
        unsigned long code = 1000;
        const std::string command = "echo " + text + "; exit " + std::to_string(10 * thread + call);
        if (CCommon_Information::ExecForeignModule(command, file, "", &code, kNoLimit) != 0 ||
            code != static_cast<unsigned long>(10 * thread + call) || contentOf(file) != text + "\n") {
            wrong.push_back("file " + text);
        }
    }
    return wrong;
}

TEST_F(ForeignProcess, ServesSeveralThreadsAtOnce) {
    std::array<Lines, 4> wrong;
    std::atomic<std::size_t> ready = 0;
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < wrong.size(); ++number) {
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < wrong.size()) {
                std::this_thread::yield();
            }
            wrong[number] = wrongAnswers(static_cast<int>(number));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(wrong, testing::Each(testing::IsEmpty()));
}

TEST_F(ForeignProcess, TracesNothing) {
    run("exit 3");
    close(pipeFd);
    run("");
    CCommon_Information::GetResultLine("echo text; kill -9 $$");
    CCommon_Information::GetResultLine("echo text");
    CCommon_Information::RetryDeleteFile("/tmp/absent");
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

}  // namespace
}  // namespace kvl::test
