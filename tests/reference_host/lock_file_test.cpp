#include "reference_host/lock_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "tests/reference_host/host_test.h"

namespace {

using kvl::host::FileDescriptor;
using kvl::host::lockFile;
using kvl::host::openLockFile;
using kvl::host::unlockFile;
using kvl::test::HostTest;
using kvl::test::lay;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LockFile : public HostTest {
protected:
    const std::string impossible_ = "/proc/kvl/lock/kvl.mutex";
    const std::string user_ = scratch_ / "user.mutex";
};

kvl::host::Deadline now() {
    return std::chrono::steady_clock::now();
}

TEST_F(LockFile, IsMadeWithItsDirectory) {
    EXPECT_TRUE(openLockFile(scratch_ / "a/lock/kvl.mutex", user_).isOpen());
    EXPECT_TRUE(std::filesystem::is_regular_file(scratch_ / "a/lock/kvl.mutex"));
    EXPECT_FALSE(std::filesystem::exists(user_));
}

TEST_F(LockFile, IsTheUsersWhereTheProductsCannotBeMade) {
    EXPECT_TRUE(openLockFile(impossible_, user_).isOpen());
    EXPECT_THAT(scratch_.entries(), ElementsAre("user.mutex"));
    EXPECT_TRUE(openLockFile(impossible_, user_).isOpen());
}

TEST_F(LockFile, IsNotReachedThroughALink) {
    std::filesystem::create_symlink("victim", user_);
    EXPECT_FALSE(openLockFile(impossible_, user_).isOpen());
    EXPECT_THAT(scratch_.entries(), ElementsAre("user.mutex"));
}

TEST_F(LockFile, IsNoPipe) {
    ASSERT_EQ(::mkfifo(user_.c_str(), 0600), 0);
    EXPECT_FALSE(openLockFile(impossible_, user_).isOpen());
}

TEST_F(LockFile, IsNotAnotherUsers) {
    lay(user_, "");
    if (::chown(user_.c_str(), ::geteuid() + 1, static_cast<gid_t>(-1)) != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    EXPECT_FALSE(openLockFile(impossible_, user_).isOpen());
}

TEST_F(LockFile, MayBeMissing) {
    EXPECT_FALSE(openLockFile(impossible_, impossible_).isOpen());
    EXPECT_THAT(scratch_.entries(), IsEmpty());
}

TEST_F(LockFile, IsClosedInStartedPrograms) {
    const FileDescriptor file = openLockFile(user_, user_);
    EXPECT_NE(::fcntl(file.number(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(LockFile, ExcludesOtherDescriptions) {
    const FileDescriptor first = openLockFile(user_, user_);
    const FileDescriptor second = openLockFile(user_, user_);
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
