#include "provider/machine/collection_lock.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "provider/provider_error.h"
#include "tests/machines/outside.h"

namespace {

using kvl::provider::CollectionLock;
using kvl::provider::ProviderError;
using kvl::test::readFile;
using kvl::test::ScratchDirectory;
using testing::AnyOf;
using testing::HasSubstr;

/// Counts what a lock reports while it waits.
struct RecordedWaiting {
    CollectionLock::Waiting waiting() {
        return {[this](pid_t holder) { holders.push_back(holder); },
                [this] {
                    ++pauses;
                    if (duringPause) {
                        duringPause();
                    }
                }};
    }

    std::vector<pid_t> holders;
    unsigned pauses = 0;
    std::function<void()> duringPause;
};

std::string refusal(const std::string& file, unsigned long longestPauses = 0) {
    RecordedWaiting recorded;
    try {
        CollectionLock::take(file, longestPauses, recorded.waiting());
    } catch (const ProviderError& error) {
        return error.what();
    }
    return "taken";
}

TEST(CollectionLock, IsTakenAtOnceWhereNobodyHoldsIt) {
    const ScratchDirectory scratch;
    RecordedWaiting recorded;
    CollectionLock::take(scratch / "lock", 5, recorded.waiting());
    CollectionLock::take(scratch / "lock", 5, recorded.waiting());
    EXPECT_EQ(0U, recorded.pauses);
    EXPECT_TRUE(recorded.holders.empty());
}

TEST(CollectionLock, TellsItsHolderAndGivesUpAfterThePauses) {
    const ScratchDirectory scratch;
    RecordedWaiting recorded;
    const CollectionLock held = CollectionLock::take(scratch / "lock", 0, recorded.waiting());
    EXPECT_EQ(std::to_string(getpid()) + "\n", readFile(scratch / "lock"));
    EXPECT_THROW(CollectionLock::take(scratch / "lock", 3, recorded.waiting()), ProviderError);
    EXPECT_EQ(std::vector<pid_t>{getpid()}, recorded.holders);
    EXPECT_EQ(3U, recorded.pauses);
    EXPECT_EQ("another kvl (process " + std::to_string(getpid()) +
                  ") still works on this machine: try again when it has ended, or wait longer with --wait SECONDS",
              refusal(scratch / "lock"));
}

TEST(CollectionLock, StaysWithACommandThatADeadHolderHasLeftBehind) {
    const ScratchDirectory scratch;
    std::array<int, 2> ends{};
    ASSERT_EQ(0, pipe(ends.data()));
    const pid_t holder = fork();
    if (holder == 0) {
        RecordedWaiting recorded;
        CollectionLock held = CollectionLock::take(scratch / "lock", 0, recorded.waiting());
        held.shareWithCommands();
        if (fork() == 0) {
            close(ends[1]);
            char byte = 0;
            const char* const shell = "/bin/sh";
            // The command ends when the test closes its end of the pipe.
            dup2(ends[0], STDIN_FILENO);
            execl(shell, shell, "-c", "read -r line", nullptr);
            _exit(static_cast<int>(read(ends[0], &byte, 1)));
        }
        raise(SIGKILL);
    }
    close(ends[0]);
    ASSERT_EQ(holder, waitpid(holder, nullptr, 0));
    EXPECT_EQ(
        "another kvl, or a command that one has left behind, still works on this machine: try again when it has ended, "
        "or wait longer with --wait SECONDS",
        refusal(scratch / "lock"));
    close(ends[1]);
    EXPECT_EQ("taken", refusal(scratch / "lock", 1'000'000));
}

TEST(CollectionLock, IsFreeWhenItsHolderGoesWhateverCommandStillRuns) {
    const ScratchDirectory scratch;
    RecordedWaiting recorded;
    auto held = std::make_unique<CollectionLock>(CollectionLock::take(scratch / "lock", 0, recorded.waiting()));
    held->shareWithCommands();
    const pid_t command = fork();
    if (command == 0) {
        execl("/bin/sh", "sh", "-c", "sleep 60", nullptr);
        _exit(127);
    }
    held.reset();
    EXPECT_EQ("taken", refusal(scratch / "lock"));
    kill(command, SIGKILL);
    waitpid(command, nullptr, 0);
}

TEST(CollectionLock, IsTakenWhenTheHolderEnds) {
    const ScratchDirectory scratch;
    RecordedWaiting recorded;
    auto held = std::make_unique<CollectionLock>(CollectionLock::take(scratch / "lock", 0, recorded.waiting()));
    recorded.duringPause = [&] {
        if (recorded.pauses == 2) {
            held.reset();
        }
    };
    CollectionLock::take(scratch / "lock", 5, recorded.waiting());
    EXPECT_EQ(2U, recorded.pauses);
    EXPECT_EQ("", readFile(scratch / "lock")) << "a holder takes its number away";
}

TEST(CollectionLock, TellsNoHolderThatIsDead) {
    const ScratchDirectory scratch;
    const pid_t dead = fork();
    if (dead == 0) {
        _exit(0);
    }
    ASSERT_EQ(dead, waitpid(dead, nullptr, 0));
    scratch.write("lock", std::to_string(dead) + "\n");
    const kvl::host::FileDescriptor other(open((scratch / "lock").c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(0, flock(other.number(), LOCK_EX));
    RecordedWaiting recorded;
    EXPECT_THROW(CollectionLock::take(scratch / "lock", 1, recorded.waiting()), ProviderError);
    EXPECT_EQ(std::vector<pid_t>{0}, recorded.holders);
}

TEST(CollectionLock, IsFreeWhenItsHolderWasKilled) {
    const ScratchDirectory scratch;
    const pid_t holder = fork();
    if (holder == 0) {
        RecordedWaiting recorded;
        const CollectionLock held = CollectionLock::take(scratch / "lock", 0, recorded.waiting());
        raise(SIGKILL);
    }
    ASSERT_EQ(holder, waitpid(holder, nullptr, 0));
    EXPECT_EQ("taken", refusal(scratch / "lock"));
}

TEST(CollectionLock, LiesWhereNobodyElseCanHoldIt) {
    const ScratchDirectory scratch;
    const mode_t before = umask(0);
    RecordedWaiting recorded;
    CollectionLock::take(scratch / "kvl/lock", 0, recorded.waiting());
    umask(before);
    struct stat status {};
    ASSERT_EQ(0, stat((scratch / "kvl").c_str(), &status));
    EXPECT_EQ(0700U, status.st_mode & 07777U);
    ASSERT_EQ(0, stat((scratch / "kvl/lock").c_str(), &status));
    EXPECT_EQ(0600U, status.st_mode & 07777U);
    const std::string file = kvl::provider::collectionLockFile();
    const std::string ofUser = std::to_string(geteuid());
    EXPECT_THAT(file, AnyOf("/run/kvl/lock", "/run/user/" + ofUser + "/kvl/lock", "/tmp/kvl-" + ofUser + "/lock"));
}

TEST(CollectionLock, IsRefusedWhereAnotherUserHasPutSomethingInItsPlace) {
    const ScratchDirectory scratch;
    scratch.write("kvl", "");
    EXPECT_EQ("the lock directory " + (scratch / "kvl") + " is no directory: remove it, and kvl makes one",
              refusal(scratch / "kvl/lock"));
    std::filesystem::create_directory(scratch / "open");
    std::filesystem::permissions(scratch / "open", std::filesystem::perms::all);
    EXPECT_THAT(refusal(scratch / "open/lock"), HasSubstr("is open to other users"));
    std::filesystem::create_directory_symlink(scratch / "open", scratch / "link");
    EXPECT_THAT(refusal(scratch / "link/lock"), HasSubstr("is a link"));
}

TEST(CollectionLock, FollowsNoLinkAndTakesNothingButARegularFile) {
    const ScratchDirectory scratch;
    scratch.write("target", "content");
    std::filesystem::create_symlink(scratch / "target", scratch / "link");
    std::filesystem::create_directory(scratch / "directory");
    ASSERT_EQ(0, mkfifo((scratch / "fifo").c_str(), 0600));
    EXPECT_THAT(refusal(scratch / "link"), HasSubstr("can't be opened"));
    EXPECT_THAT(refusal(scratch / "directory"), HasSubstr("can't be opened"));
    EXPECT_THAT(refusal(scratch / "fifo"), HasSubstr("is no regular file"));
    EXPECT_EQ("content", readFile(scratch / "target"));
}

TEST(CollectionLock, LeavesTheContentOfAFileWithSeveralNamesAlone) {
    const ScratchDirectory scratch;
    scratch.write("valuable", "content");
    std::filesystem::create_hard_link(scratch / "valuable", scratch / "lock");
    EXPECT_EQ("taken", refusal(scratch / "lock"));
    EXPECT_EQ("content", readFile(scratch / "valuable"));
}

TEST(CollectionLock, IsNoLockOnAFileThatWasRemovedMeanwhile) {
    const ScratchDirectory scratch;
    RecordedWaiting recorded;
    auto held = std::make_unique<CollectionLock>(CollectionLock::take(scratch / "lock", 0, recorded.waiting()));
    recorded.duringPause = [&] {
        std::filesystem::remove(scratch / "lock");
        held.reset();
    };
    const CollectionLock taken = CollectionLock::take(scratch / "lock", 5, recorded.waiting());
    EXPECT_NE("taken", refusal(scratch / "lock"));
}

TEST(CollectionLock, IsHandedDownToAProgramThatIsStarted) {
    const ScratchDirectory scratch;
    RecordedWaiting recorded;
    const CollectionLock held = CollectionLock::take(scratch / "lock", 0, recorded.waiting());
    const std::string number = std::to_string(held.handDown());
    const std::string asks = "test \"$(readlink /proc/self/fd/" + number + ")\" = '" + scratch / "lock" + "'";
    EXPECT_EQ(0, kvl::test::runOutside(asks).status);
    EXPECT_TRUE(CollectionLock::handedDown(scratch / "lock", dup(held.handDown())).has_value());
}

TEST(CollectionLock, IsNotBelievedToBeHandedDownOnAnotherFile) {
    const ScratchDirectory scratch;
    scratch.write("lock", "");
    const kvl::host::FileDescriptor other(open((scratch.write("other", "")).c_str(), O_RDONLY));
    for (const int number : {other.number(), 0, 999, -1}) {
        EXPECT_FALSE(CollectionLock::handedDown(scratch / "lock", number).has_value()) << number;
    }
}

}  // namespace
