#include "machines/private_root.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "tests/machines/outside.h"

namespace kvl::test {
namespace {

using machines::PrivateRoot;
using machines::PrivateRootError;
using machines::PrivateRootOptions;
using testing::HasSubstr;

namespace fs = std::filesystem;

constexpr int kNoNamespaces = 77;

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const PrivateRootError& error) {
        return error.what();
    }
    return "nothing was thrown";
}

int inChild(const std::function<int()>& action) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(action());
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Sets a variable of this process for one test.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value) : name_(name) {
        const char* before = std::getenv(name);
        before_ = before != nullptr ? before : "";
        setenv(name, value.c_str(), 1);
    }
    ~ScopedVariable() { setenv(name_, before_.c_str(), 1); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* name_;
    std::string before_;
};

TEST(PrivateRoot, GivesTheExitStatusOfTheProgram) {
    EXPECT_EQ(PrivateRoot({}).run({"/bin/sh", "-c", "exit 42"}), 42);
    EXPECT_EQ(PrivateRoot({}).run({"/bin/true"}), 0);
}

TEST(PrivateRoot, Gives128AndTheSignalOfAProgramThatWasKilled) {
    EXPECT_EQ(PrivateRoot({}).run({"/bin/sh", "-c", "kill -15 $$"}), 128 + 15);
}

TEST(PrivateRoot, RunsAsOftenAsOneLikes) {
    const PrivateRoot root({});
    for (int run = 0; run < 3; ++run) {
        EXPECT_EQ(root.run({"/bin/grep", "-q", "Stands in", "/.machine/stand-in"}), 0);
    }
}

TEST(PrivateRoot, ReplacesTheCallingProcess) {
    EXPECT_EQ(inChild([]() -> int {
                  PrivateRoot({}).exec({"/bin/sh", "-c", "[ -x /.machine/stand-in ] && exit 9"});
              }),
              9);
}

TEST(PrivateRoot, NamesTheProgramBehindBubblewrapsOptions) {
    const auto words = PrivateRoot({}).commandLine({"/bin/echo", "--version"});
    ASSERT_GT(words.size(), 3U);
    EXPECT_THAT(words.front(), testing::EndsWith("/bwrap"));
    EXPECT_EQ(std::vector<std::string>(words.end() - 3, words.end()),
              (std::vector<std::string>{"--", "/bin/echo", "--version"}));
}

TEST(PrivateRoot, WritesNothingOutside) {
    const ScratchDirectory scratch;
    const std::string probe = "/kvl-probe-" + std::to_string(getpid());
    const Outcome outcome =
        runInside({}, "for directory in /etc /usr/bin /usr/lib /bin /tmp /root /opt /run '" + scratch.path() +
                          "'; do echo x >\"$directory" + probe + "\"; done; echo x >/bin/sh; rm -f /bin/busybox; true");
    EXPECT_EQ(outcome.status, 0);
    for (const std::string directory : {"/etc", "/usr/bin", "/usr/lib", "/bin", "/tmp", "/root", "/opt", "/run"}) {
        EXPECT_NE(access((directory + probe).c_str(), F_OK), 0) << directory;
    }
    EXPECT_TRUE(fs::is_empty(scratch.path()));
    EXPECT_THAT(outcome.errors, HasSubstr("cannot create /usr/lib" + probe));
    EXPECT_THAT(outcome.errors, HasSubstr("cannot create /bin/sh"));
}

TEST(PrivateRoot, ShowsNothingOfTheOuterMachineButItsBinds) {
    const ScratchDirectory seen;
    const ScratchDirectory unseen;
    seen.write("file", "text\n");
    unseen.write("file", "text\n");
    PrivateRootOptions options;
    options.binds = {{seen.path()}};
    const Outcome outcome = runInside(options, "cat '" + seen / "file" + "'; [ ! -e '" + unseen / "file" +
                                                   "' ] && echo hidden; echo x >'" + seen / "file" + "'");
    EXPECT_EQ(outcome.output, "text\nhidden\n");
    EXPECT_EQ(readFile(seen / "file"), "text\n");
}

TEST(PrivateRoot, WritesIntoAWritableBind) {
    const ScratchDirectory scratch;
    PrivateRootOptions options;
    options.binds = {{scratch.path(), true}};
    EXPECT_EQ(PrivateRoot(options).run({"/bin/sh", "-c", "echo x >'" + scratch / "file" + "'"}), 0);
    EXPECT_EQ(readFile(scratch / "file"), "x\n");
}

TEST(PrivateRoot, LacksTheCommandsOfAServer) {
    const Outcome outcome = runInside(
        {}, "for name in uname ifconfig ethtool route netstat lspci rpm modinfo ip perl bash; do $name; echo $?; done");
    EXPECT_EQ(outcome.output, "127\n127\n127\n127\n127\n127\n127\n127\n127\n127\n127\n");
    EXPECT_THAT(outcome.errors, HasSubstr("ethtool: not found"));
}

TEST(PrivateRoot, HasTheOrdinaryTools) {
    const Outcome outcome = runInside(
        {},
        "for name in cat ls grep cp rm mv mkdir rmdir ln chmod sleep kill sed tr cut head tail sort wc printf "
        "touch true false stat find; do [ -x /bin/$name ] || echo $name; done");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(PrivateRoot, HasProgramDirectoriesOfTheirOwn) {
    const Outcome outcome =
        runInside({},
                  "for directory in /bin /sbin /usr/bin /usr/sbin; do [ -L $directory ] && echo $directory; done; "
                  "ls /sbin /usr/bin /usr/sbin | grep -v '^/' | grep .");
    EXPECT_EQ(outcome.output, "");
}

TEST(PrivateRoot, HasAProcThatCanBeWrittenTo) {
    const Outcome outcome =
        runInside({},
                  "mkdir /proc/net/bonding && echo mode >/proc/net/bonding/bond0 && cat /proc/net/bonding/bond0; "
                  "grep -c MemTotal /proc/meminfo; [ -e /proc/self/maps ] && echo maps");
    EXPECT_EQ(outcome.output, "mode\n1\nmaps\n");
}

TEST(PrivateRoot, HasTheProvidersTemporaryDirectoryForItsUserAlone) {
    const Outcome outcome = runInside({}, "stat -c '%a %u' /opt/tarvenn/kvl/provider/tmp; stat -c %a /tmp");
    EXPECT_EQ(outcome.output, "700 " + std::to_string(getuid()) + "\n1777\n");
}

TEST(PrivateRoot, HasNoNetworkButItsOwnLoopback) {
    const Outcome outcome = runInside({}, "cut -d: -f1 /.proc/self/net/dev | sed -n '3,$p' | tr -d ' '");
    EXPECT_EQ(outcome.output, "lo\n");
}

TEST(PrivateRoot, HasOnlyTheVariablesAskedFor) {
    const ScopedVariable leak("KVL_LEAK", "1");
    PrivateRootOptions options;
    options.environment = {{"KVL_WANTED", "a b"}};
    const Outcome outcome = runInside(options, "/bin/busybox env | sort");
    EXPECT_EQ(outcome.output, "HOME=/root\nKVL_WANTED=a b\nLC_ALL=C\nPATH=/sbin:/usr/sbin:/bin:/usr/bin\nPWD=/\n");
}

TEST(PrivateRoot, StartsInTheWorkingDirectoryAskedFor) {
    PrivateRootOptions options;
    options.workingDirectory = "/opt/tarvenn";
    EXPECT_EQ(runInside(options, "pwd").output, "/opt/tarvenn\n");
}

TEST(PrivateRoot, GivesNoCapabilityToRootEither) {
    EXPECT_EQ(runInside({}, "sed -n 's/^CapEff:[^0-9a-f]*//p' /proc/self/status").output, "0000000000000000\n");
}

TEST(PrivateRoot, IsNewEachTimeUnlessItIsKept) {
    const std::string script = "[ -e /etc/mark ] && echo again; echo x >/etc/mark";
    EXPECT_EQ(runInside({}, script).output, "");
    EXPECT_EQ(runInside({}, script).output, "");

    const ScratchDirectory scratch;
    PrivateRootOptions kept;
    kept.keptRoot = scratch / "root";
    EXPECT_EQ(runInside(kept, script).output, "");
    EXPECT_EQ(runInside(kept, script).output, "again\n");
    EXPECT_EQ(readFile(scratch / "root/etc/mark"), "x\n");
}

TEST(PrivateRoot, LaysARecordingDownOnAKeptRootOnlyOnce) {
    const ScratchDirectory scratch;
    scratch.write("recording/files/etc/resolv.conf", "nameserver 10.0.0.1\n");
    PrivateRootOptions kept;
    kept.keptRoot = scratch / "root";
    kept.recording = scratch / "recording";
    EXPECT_EQ(runInside(kept, "cat /etc/resolv.conf; echo changed >/etc/resolv.conf").output, "nameserver 10.0.0.1\n");
    EXPECT_EQ(runInside(kept, "cat /etc/resolv.conf").output, "changed\n");
}

TEST(PrivateRoot, LetsAKeptRootsOwnFilesAlone) {
    const ScratchDirectory scratch;
    PrivateRootOptions kept;
    kept.keptRoot = scratch / "root";
    runInside(kept, "echo 'hosts: files dns' >/etc/nsswitch.conf; rm /bin/touch; echo mine >/bin/touch");
    EXPECT_EQ(runInside(kept, "cat /etc/nsswitch.conf /bin/touch").output, "hosts: files dns\nmine\n");
}

TEST(PrivateRoot, WorksForAnOrdinaryUser) {
    if (getuid() != 0) {
        GTEST_SKIP() << "every other test here is that test already";
    }
    const int status = inChild([] {
        constexpr unsigned kNobody = 65534;
        if (setresgid(kNobody, kNobody, kNobody) != 0 || setresuid(kNobody, kNobody, kNobody) != 0) {
            return 2;
        }
        if (inChild([] { return unshare(CLONE_NEWUSER) == 0 ? 0 : 1; }) != 0) {
            return kNoNamespaces;
        }
        return PrivateRoot({}).run({"/bin/sh", "-c",
                                    "[ \"$(/bin/busybox id -u)\" = 65534 ] && echo x >/etc/file && "
                                    "echo x >/opt/tarvenn/kvl/provider/tmp/file && exit 23"});
    });
    if (status == kNoNamespaces) {
        GTEST_SKIP() << "this machine allows user namespaces to root alone";
    }
    EXPECT_EQ(status, 23);
}

TEST(PrivateRoot, SaysWhichPackageIsMissing) {
    const ScopedVariable path("PATH", "/nowhere");
    EXPECT_EQ(messageOf([] { PrivateRoot({}); }), "bwrap is not installed: install the package bubblewrap.");
}

TEST(PrivateRoot, SaysWhatToDoWhenBubblewrapFails) {
    const ScratchDirectory scratch;
    fs::permissions(scratch.write("bwrap", "#!/bin/sh\nexit 1\n"), fs::perms::owner_all);
    const ScopedVariable path("PATH", scratch.path());
    EXPECT_THAT(messageOf([] { PrivateRoot({}).run({"/bin/true"}); }), HasSubstr("user namespaces"));
}

TEST(PrivateRoot, RefusesABindOrRecordingThatIsNotThere) {
    PrivateRootOptions bind;
    bind.binds = {{"/nowhere/at/all"}};
    EXPECT_EQ(messageOf([&] { PrivateRoot{bind}; }), "the bind /nowhere/at/all: No such file or directory");
    PrivateRootOptions recording;
    recording.recording = "/nowhere/at/all";
    EXPECT_EQ(messageOf([&] { PrivateRoot{recording}; }), "the recording /nowhere/at/all: No such file or directory");
}

TEST(PrivateRoot, RefusesToKeepTheRootInTheOuterRoot) {
    PrivateRootOptions options;
    options.keptRoot = "/";
    EXPECT_EQ(messageOf([&] { PrivateRoot{options}; }), "the kept root / must be a directory of its own.");
}

TEST(InsidePrivateRoot, IsFalseOutside) {
    EXPECT_FALSE(machines::insidePrivateRoot());
}

TEST(LinkOwnProcess, RefusesToWorkOutside) {
    EXPECT_THROW(machines::linkOwnProcess(), PrivateRootError);
}

}  // namespace
}  // namespace kvl::test
