#include "reference_host/lock_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "tests/reference_host/host_test.h"
#include "tests/reference_host/processes.h"

namespace {

using kvl::host::FileDescriptor;
using kvl::host::lockFile;
using kvl::host::openLockFile;
using kvl::host::unlockFile;
using kvl::test::becomeAnotherUser;
using kvl::test::exitCodeOf;
using kvl::test::HostTest;
using kvl::test::lay;
using kvl::test::layDirectory;
using kvl::test::permissionsOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LockFile : public HostTest {
protected:
    const std::string impossible_ = "/proc/kvl/lock/kvl.mutex";
    const std::string common_ = scratch_ / "common.mutex";
};

// The umask of this process, set for as long as it lives.
class Umask {
public:
    explicit Umask(mode_t mask) : previous_(::umask(mask)) {}
    ~Umask() { ::umask(previous_); }

    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

private:
    const mode_t previous_;
};

kvl::host::Deadline now() {
    return std::chrono::steady_clock::now();
}

TEST_F(LockFile, IsMadeWithItsDirectory) {
    EXPECT_TRUE(openLockFile(scratch_ / "a/lock/kvl.mutex", common_).isOpen());
    EXPECT_TRUE(std::filesystem::is_regular_file(scratch_ / "a/lock/kvl.mutex"));
    EXPECT_FALSE(std::filesystem::exists(common_));
}

TEST_F(LockFile, IsTheCommonOneWhereTheProductsCannotBeMade) {
    EXPECT_TRUE(openLockFile(impossible_, common_).isOpen());
    EXPECT_THAT(scratch_.entries(), ElementsAre("common.mutex"));
    EXPECT_TRUE(openLockFile(impossible_, common_).isOpen());
}

TEST_F(LockFile, IsNotReachedThroughALink) {
    std::filesystem::create_symlink("victim", common_);
    EXPECT_FALSE(openLockFile(impossible_, common_).isOpen());
    EXPECT_THAT(scratch_.entries(), ElementsAre("common.mutex"));
}

TEST_F(LockFile, IsNoPipe) {
    ASSERT_EQ(::mkfifo(common_.c_str(), 0600), 0);
    EXPECT_FALSE(openLockFile(impossible_, common_).isOpen());
}

TEST_F(LockFile, IsMadeForEveryUserWhateverTheUmask) {
    layDirectory(scratch_ / "a");
    std::filesystem::permissions(scratch_ / "a", std::filesystem::perms(0750));
    const Umask umask(077);
    EXPECT_TRUE(openLockFile(scratch_ / "a/b/lock/kvl.mutex", common_).isOpen());
    EXPECT_EQ(permissionsOf(scratch_ / "a/b/lock/kvl.mutex"), 0644U);
    EXPECT_EQ(permissionsOf(scratch_ / "a/b/lock"), 0755U);
    EXPECT_EQ(permissionsOf(scratch_ / "a/b"), 0755U);
    EXPECT_EQ(permissionsOf(scratch_ / "a"), 0750U);
    EXPECT_TRUE(openLockFile(impossible_, common_).isOpen());
    EXPECT_EQ(permissionsOf(common_), 0644U);
}

TEST_F(LockFile, KeepsThePermissionsThatItHas) {
    layDirectory(scratch_ / "lock");
    lay(scratch_ / "lock/kvl.mutex", "");
    std::filesystem::permissions(scratch_ / "lock", std::filesystem::perms(0700));
    std::filesystem::permissions(scratch_ / "lock/kvl.mutex", std::filesystem::perms(0600));
    EXPECT_TRUE(openLockFile(scratch_ / "lock/kvl.mutex", common_).isOpen());
    EXPECT_EQ(permissionsOf(scratch_ / "lock"), 0700U);
    EXPECT_EQ(permissionsOf(scratch_ / "lock/kvl.mutex"), 0600U);
    EXPECT_FALSE(std::filesystem::exists(common_));
}

// Whether a second user, with nothing but the right to look, is excluded from what the first one opened and locked.
TEST_F(LockFile, ExcludesOtherUsers) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    const auto excludesFrom = [this](const std::string& productFile) {
        return exitCodeOf([&] {
            std::filesystem::current_path(scratch_.path());  // which the other user may not reach from the top
            ::umask(077);
            const FileDescriptor first = openLockFile(productFile, "common.mutex");
            if (!first.isOpen() || !becomeAnotherUser()) {
                return 2;
            }
            const FileDescriptor second = openLockFile(productFile, "common.mutex");
            const bool isLocked = lockFile(first.number(), now());
            return isLocked && second.isOpen() && !lockFile(second.number(), now()) ? 0 : 1;
        });
    };
    EXPECT_EQ(excludesFrom("a/lock/kvl.mutex"), 0);
    EXPECT_THAT(scratch_.entries(), ElementsAre("a"));
    EXPECT_EQ(excludesFrom(impossible_), 0);
    EXPECT_THAT(scratch_.entries(), ElementsAre("a", "common.mutex"));
}

TEST_F(LockFile, MayBeMissing) {
    EXPECT_FALSE(openLockFile(impossible_, impossible_).isOpen());
    EXPECT_THAT(scratch_.entries(), IsEmpty());
}

TEST_F(LockFile, IsClosedInStartedPrograms) {
    const FileDescriptor file = openLockFile(common_, common_);
    EXPECT_NE(::fcntl(file.number(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(LockFile, ExcludesOtherDescriptions) {
    const FileDescriptor first = openLockFile(common_, common_);
    const FileDescriptor second = openLockFile(common_, common_);
    EXPECT_TRUE(lockFile(first.number(), {}));
    EXPECT_FALSE(lockFile(second.number(), now()));
    unlockFile(first.number());
    EXPECT_TRUE(lockFile(second.number(), now()));
}

TEST_F(LockFile, CountsAsLockedWhereNothingCanBeLocked) {
    const FileDescriptor file(::open(scratch_.path().c_str(), O_PATH | O_DIRECTORY));
    ASSERT_TRUE(file.isOpen());
    EXPECT_TRUE(lockFile(file.number(), {}));
    EXPECT_TRUE(lockFile(file.number(), now()));
}

}  // namespace
