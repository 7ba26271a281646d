#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "foundation/CCommon_Information.h"
#include "tests/foundation/descriptor_in_file.h"
#include "tests/foundation/foundation_test.h"

namespace kvl::test {
namespace {

constexpr unsigned long kNoLimit = static_cast<unsigned long>(-1);
constexpr const char* kResult = "/tmp/result";
/// Runs as long as the file /tmp/go is there.
const std::string kRunOn = "while [ -e /tmp/go ]; do sleep 0.01; done";

class ExecForeignModule : public FoundationTest {
protected:
    unsigned long run(const std::string& command, const std::string& file = kResult, const std::string& workDir = "",
                      unsigned long timeout = kNoLimit) {
        return CCommon_Information::ExecForeignModule(command, file, workDir, &exitCode, timeout);
    }

    /// Has a command of `kRunOn` come to its end and takes its process away.
    static void endCommand() {
        unlink("/tmp/go");
        EXPECT_GT(waitpid(-1, nullptr, 0), 0);
    }

    /// Waits for a change of a child, without taking note of it for anybody else. @return the child
    static pid_t awaitChild(int change) {
        siginfo_t child{};
        EXPECT_EQ(waitid(P_ALL, 0, &child, change | WNOWAIT), 0);
        return child.si_pid;
    }

    unsigned long exitCode = 1000;
};

TEST_F(ExecForeignModule, PutsTheOutputIntoTheResultFile) {
    EXPECT_EQ(run("echo one; echo two"), 0U);
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(contentOf(kResult), "one\ntwo\n");
}

TEST_F(ExecForeignModule, RunsTheCommandThroughTheShellOfThePath) {
    EXPECT_EQ(run("printf '%s' \"$0\" | cat"), 0U);
    EXPECT_EQ(contentOf(kResult), "sh");
}

TEST_F(ExecForeignModule, TracesNothing) {
    run("echo");
    run("");
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(ExecForeignModule, TakesAnyExitCodeForASuccess) {
    for (const unsigned long code : {0UL, 1UL, 3UL, 126UL, 127UL, 128UL, 137UL, 255UL}) {
        EXPECT_EQ(run("exit " + std::to_string(code)), 0U) << code;
        EXPECT_EQ(exitCode, code);
    }
}

TEST_F(ExecForeignModule, GivesTheShellsCodeForAMissingProgram) {
    EXPECT_EQ(run("/no/such/program"), 0U);
    EXPECT_EQ(exitCode, 127U);
}

TEST_F(ExecForeignModule, EmptiesAResultFileThatIsThere) {
    machine.file(kResult, "a longer text of yesterday\n");
    EXPECT_EQ(run("echo new"), 0U);
    EXPECT_EQ(contentOf(kResult), "new\n");
}

TEST_F(ExecForeignModule, LeavesAnEmptyResultFileForACommandThatPrintsNothing) {
    EXPECT_EQ(run("true"), 0U);
    EXPECT_EQ(contentOf(kResult), "");
}

TEST_F(ExecForeignModule, TakesOutputOfAnyLength) {
    EXPECT_EQ(run("head -c 1048577 /dev/zero"), 0U);
    EXPECT_EQ(contentOf(kResult), std::string(1048577, '\0'));
}

TEST_F(ExecForeignModule, MakesTheResultFileWithTheMode0666LessTheUmask) {
    const mode_t umaskBefore = umask(0);
    run("echo", "/tmp/open");
    umask(027);
    run("echo", "/tmp/masked");
    umask(umaskBefore);
    struct stat file {};
    EXPECT_EQ(stat("/tmp/open", &file), 0);
    EXPECT_EQ(file.st_mode & 07777U, 0666U);
    EXPECT_EQ(stat("/tmp/masked", &file), 0);
    EXPECT_EQ(file.st_mode & 07777U, 0640U);
}

TEST_F(ExecForeignModule, ClosesStandardErrorWithAResultFile) {
    EXPECT_EQ(run("echo out; echo err >&2; ls -l /proc/self/fd/2 >/dev/null"), 0U);
    EXPECT_NE(exitCode, 0U);
    EXPECT_EQ(contentOf(kResult), "out\n");
}

TEST_F(ExecForeignModule, LeavesTheCommandOneDescriptorOfTheResultFile) {
    EXPECT_EQ(run("exec ls -l /proc/self/fd"), 0U);
    const std::string listing = contentOf(kResult);
    EXPECT_NE(listing.find(" 1 -> /tmp/result"), std::string::npos) << listing;
    EXPECT_EQ(listing.find(kResult), listing.rfind(kResult)) << listing;
}

TEST_F(ExecForeignModule, KeepsTheCallersDescriptorsWithoutAResultFile) {
    {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        EXPECT_EQ(run("echo out; echo err >&2", ""), 0U);
    }
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(contentOf("/tmp/output"), "out\n");
    EXPECT_EQ(contentOf("/tmp/errors"), "err\n");
}

TEST_F(ExecForeignModule, RunsInTheWorkDirectory) {
    machine.directory("/tmp/place");
    EXPECT_EQ(run("pwd", kResult, "/tmp/place"), 0U);
    EXPECT_EQ(contentOf(kResult), "/tmp/place\n");
}

TEST_F(ExecForeignModule, FindsTheResultFileFromTheWorkDirectory) {
    machine.directory("/tmp/place");
    EXPECT_EQ(run("echo there", "here", "/tmp/place"), 0U);
    EXPECT_EQ(contentOf("/tmp/place/here"), "there\n");
}

TEST_F(ExecForeignModule, RefusesAnEmptyCommandWithoutAProcess) {
    libc().failingForks = 1;
    EXPECT_EQ(run(""), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(libc().failingForks, 1);
    EXPECT_EQ(contentOf(kResult), "(absent)");
}

TEST_F(ExecForeignModule, RefusesAWorkDirectoryThatIsNotThereWithoutAProcess) {
    libc().failingForks = 1;
    EXPECT_EQ(run("echo", kResult, "/tmp/absent"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(libc().failingForks, 1);
}

TEST_F(ExecForeignModule, RefusesAWorkDirectoryThatCanBeEnteredButNotRead) {
    machine.directory("/tmp/place");
    chmod("/tmp/place", 0300);
    EXPECT_EQ(access("/tmp/place", W_OK | X_OK), 0);
    libc().failingForks = 1;
    EXPECT_EQ(run("echo", kResult, "/tmp/place"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(libc().failingForks, 1);
}

TEST_F(ExecForeignModule, FailsWhereItCannotFork) {
    libc().failingForks = 1;
    EXPECT_EQ(run("echo"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(contentOf(kResult), "(absent)");
}

TEST_F(ExecForeignModule, EndsTheChildWithOneWhereItCannotChangeTheDirectory) {
    machine.file("/tmp/file", "");
    EXPECT_EQ(run("echo", kResult, "/tmp/file"), 0U);
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(contentOf(kResult), "(absent)");
}

TEST_F(ExecForeignModule, EndsTheChildWithOneWhereItCannotOpenTheResultFile) {
    for (const char* file : {"/tmp/absent/result", "/tmp"}) {
        EXPECT_EQ(run("echo > /tmp/ran", file), 0U) << file;
        EXPECT_EQ(exitCode, 1U) << file;
    }
    EXPECT_EQ(contentOf("/tmp/ran"), "(absent)");
}

TEST_F(ExecForeignModule, EndsTheChildWithOneWhereThereIsNoShell) {
    machine.directory("/tmp/empty");
    setenv("PATH", "/tmp/empty", 1);
    EXPECT_EQ(run("echo"), 0U);
    setenv("PATH", "/sbin:/usr/sbin:/bin:/usr/bin", 1);
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(contentOf(kResult), "");
}

TEST_F(ExecForeignModule, LeavesTheCallersUnwrittenBuffersToTheCaller) {
    machine.file("/tmp/file", "");
    {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen("/tmp/text", "w"), std::fclose);
        std::fputs("once\n", stream.get());
        EXPECT_EQ(run("echo", kResult, "/tmp/file"), 0U);
        EXPECT_EQ(run("echo", "/tmp/absent/result"), 0U);
    }
    EXPECT_EQ(contentOf("/tmp/text"), "once\n");
}

TEST_F(ExecForeignModule, FailsForACommandThatASignalEnds) {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGILL, SIGTRAP, SIGABRT, SIGBUS, SIGFPE, SIGKILL, SIGUSR1,
                             SIGSEGV, SIGUSR2, SIGPIPE, SIGALRM, SIGTERM, SIGXCPU, SIGXFSZ, SIGSYS}) {
        EXPECT_EQ(run("ulimit -c 0; kill -" + std::to_string(number) + " $$; echo survived"), 1U) << number;
        EXPECT_EQ(exitCode, 255U) << number;
        EXPECT_EQ(contentOf(kResult), "") << number;
    }
}

TEST_F(ExecForeignModule, TakesTheExitCodeOfACommandThatCatchesItsSignal) {
    EXPECT_EQ(run("trap 'exit 9' TERM; kill -TERM $$; sleep 60"), 0U);
    EXPECT_EQ(exitCode, 9U);
}

TEST_F(ExecForeignModule, TakesTheShellsCodeForAProgramThatASignalEnds) {
    EXPECT_EQ(run("sh -c 'kill -9 $$'; exit $?"), 0U);
    EXPECT_EQ(exitCode, 137U);
}

TEST_F(ExecForeignModule, FailsForACommandThatIsStopped) {
    for (const unsigned long timeout : {kNoLimit, 600000UL}) {
        machine.file("/tmp/go", "");
        // With a limit of time it stops when the first look is over.
        TestHost::onSleep([] {
            unlink("/tmp/go");
            awaitChild(WSTOPPED);
        });
        const std::string start = timeout == kNoLimit ? "" : kRunOn + "; ";
        EXPECT_EQ(run(start + "echo $$; kill -STOP $$", kResult, "", timeout), 1U);
        EXPECT_EQ(exitCode, 255U);
        const pid_t stopped = std::stoi(contentOf(kResult));
        EXPECT_EQ(waitpid(stopped, nullptr, WNOHANG), 0) << "it has ended";
        kill(stopped, SIGCONT);
        EXPECT_EQ(waitpid(stopped, nullptr, 0), stopped);
    }
}

TEST_F(ExecForeignModule, FailsForACommandThatIsContinued) {
    machine.file("/tmp/go", "");
    machine.file("/tmp/stay", "");
    TestHost::onSleep([] {
        unlink("/tmp/go");
        kill(awaitChild(WSTOPPED), SIGCONT);
        awaitChild(WCONTINUED);
    });
    EXPECT_EQ(run(kRunOn + "; kill -STOP $$; while [ -e /tmp/stay ]; do sleep 0.01; done", kResult, "", 600000), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000}));
    unlink("/tmp/stay");
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
}

TEST_F(ExecForeignModule, FailsWhereASignalInterruptsTheWait) {
    struct sigaction caught {};
    struct sigaction before {};
    caught.sa_handler = [](int) {};
    sigaction(SIGUSR1, &caught, &before);
    machine.file("/tmp/go", "");
    EXPECT_EQ(run("while [ -e /tmp/go ]; do kill -USR1 $PPID; sleep 0.01; done"), 1U);
    EXPECT_EQ(exitCode, 255U);
    unlink("/tmp/go");
    while (waitpid(-1, nullptr, 0) == -1 && errno == EINTR) {
    }
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(ExecForeignModule, FailsWhereThereIsNoChildToWaitFor) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(run("echo done"), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(contentOf(kResult), "done\n");
    std::signal(SIGCHLD, before);
}

TEST_F(ExecForeignModule, FailsWhereThereIsNoChildToWaitForWithALimitOfTimeEither) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    machine.file("/tmp/go", "");
    TestHost::onSleep([] {
        unlink("/tmp/go");
        EXPECT_EQ(waitpid(-1, nullptr, 0), -1);
    });
    EXPECT_EQ(run(kRunOn, kResult, "", 600000), 1U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000}));
    std::signal(SIGCHLD, before);
}

TEST_F(ExecForeignModule, LeavesATimedOutCommandRunning) {
    machine.file("/tmp/go", "");
    EXPECT_EQ(run(kRunOn + "; echo ended", kResult, "", 2500), 255U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 1000, 500}));
    endCommand();
    EXPECT_EQ(contentOf(kResult), "ended\n");
}

TEST_F(ExecForeignModule, PollsOnceASecondAndSleepsTheRestOfTheTimeout) {
    const std::vector<std::pair<unsigned long, std::vector<unsigned long>>> rows = {
        {0, {0}}, {1, {1}}, {999, {999}}, {1000, {1000, 0}}, {1001, {1000, 1}}, {3000, {1000, 1000, 1000, 0}}};
    for (const auto& [timeout, sleeps] : rows) {
        machine.file("/tmp/go", "");
        TestHost::forget();
        EXPECT_EQ(run(kRunOn, kResult, "", timeout), 255U) << timeout;
        EXPECT_EQ(TestHost::sleeps(), sleeps) << timeout;
        endCommand();
    }
}

TEST_F(ExecForeignModule, TakesTheExitCodeOfACommandThatEndsInTime) {
    machine.file("/tmp/go", "");
    TestHost::onSleep([] {
        unlink("/tmp/go");
        awaitChild(WEXITED);
    });
    EXPECT_EQ(run(kRunOn + "; exit 4", kResult, "", 600000), 0U);
    EXPECT_EQ(exitCode, 4U);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000}));
}

TEST_F(ExecForeignModule, LooksNoMoreBehindTheLastSleep) {
    machine.file("/tmp/go", "");
    TestHost::onSleep([] {
        unlink("/tmp/go");
        awaitChild(WEXITED);
    });
    EXPECT_EQ(run(kRunOn, kResult, "", 500), 255U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
}

TEST_F(ExecForeignModule, LeavesAnEmptyFileBehindACommandThatIgnoresIt) {
    EXPECT_EQ(run("exec > /tmp/elsewhere; echo text"), 0U);
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(contentOf(kResult), "");
    EXPECT_EQ(contentOf("/tmp/elsewhere"), "text\n");
}

TEST_F(ExecForeignModule, TakesTheExitCodeOfACommandThatClosesItsOutput) {
    EXPECT_EQ(run("echo before; exec >&-; exit 4"), 0U);
    EXPECT_EQ(exitCode, 4U);
    EXPECT_EQ(contentOf(kResult), "before\n");
}

TEST_F(ExecForeignModule, DoesNotWaitForAGrandchild) {
    machine.file("/tmp/go", "");
    EXPECT_EQ(run("(" + kRunOn + "; echo late) & echo early"), 0U);
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(contentOf(kResult), "early\n");
    unlink("/tmp/go");
    while (contentOf(kResult) != "early\nlate\n") {
        usleep(1000);
    }
}

TEST_F(ExecForeignModule, TakesTheOutputAlsoWithStandardDescriptorsClosed) {
    for (int closed = 1; closed < 8; ++closed) {
        unlink(kResult);
        const pid_t child = ::fork();
        if (child == 0) {
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                if ((closed & (1 << descriptor)) != 0) {
                    close(descriptor);
                }
            }
            _exit(run("echo through") == 0 && exitCode == 0 ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << "descriptors closed: " << closed;
        EXPECT_EQ(contentOf(kResult), "through\n") << "descriptors closed: " << closed;
    }
}

TEST_F(ExecForeignModule, LeavesDescriptorsAndChildrenAsTheyWereAfterAThousandCalls) {
    // The fixture counts both when this test ends.
    for (int call = 0; call < 1000; ++call) {
        ASSERT_EQ(run("exit 2"), 0U);
        ASSERT_EQ(exitCode, 2U);
    }
}

}  // namespace
}  // namespace kvl::test
