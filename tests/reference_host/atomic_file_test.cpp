#include "reference_host/atomic_file.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/reference_host/host_test.h"
#include "tests/reference_host/processes.h"

namespace {

using kvl::host::AtomicFile;
using kvl::test::contentOf;
using kvl::test::exitCodeOf;
using kvl::test::HostTest;
using kvl::test::lay;
using kvl::test::layDirectory;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AtomicFileTest : public HostTest {
protected:
    const std::string target_ = scratch_ / "target";
};

bool put(AtomicFile& file, const std::string& text) {
    return file.write(text.data(), text.size());
}

bool replace(const std::string& path, const std::string& text) {
    AtomicFile file(path);
    return put(file, text) && file.commit();
}

TEST_F(AtomicFileTest, KeepsTheOldContentUntilTheCommit) {
    lay(target_, "old");
    AtomicFile file(target_);
    ASSERT_TRUE(put(file, "ne"));
    ASSERT_TRUE(put(file, "w"));
    EXPECT_EQ(contentOf(target_), "old");
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(contentOf(target_), "new");
    EXPECT_THAT(scratch_.entries(), ElementsAre("target"));
}

TEST_F(AtomicFileTest, HidesItsTemporaryFile) {
    const AtomicFile file(target_);
    ASSERT_THAT(scratch_.entries(), SizeIs(1));
    EXPECT_EQ(scratch_.entries().front().front(), '.');
}

TEST_F(AtomicFileTest, LeavesNothingWithoutACommit) {
    {
        AtomicFile file(target_);
        ASSERT_TRUE(put(file, "new"));
    }
    EXPECT_THAT(scratch_.entries(), IsEmpty());
}

TEST_F(AtomicFileTest, EndsWithItsCommit) {
    AtomicFile file(target_);
    EXPECT_TRUE(file.commit());
    EXPECT_FALSE(put(file, "more"));
    EXPECT_FALSE(file.commit());
    EXPECT_EQ(contentOf(target_), "");
}

TEST_F(AtomicFileTest, GivesANewFileThePermissionsThatTheUmaskLeaves) {
    const mode_t before = ::umask(027);
    EXPECT_TRUE(replace(target_, ""));
    ::umask(before);
    EXPECT_EQ(kvl::test::permissionsOf(target_), 0640U);
}

TEST_F(AtomicFileTest, KeepsThePermissionsOfTheFileThatItReplaces) {
    for (const mode_t mode : {0644U, 0600U, 0664U}) {
        lay(target_, "old");
        ASSERT_EQ(::chmod(target_.c_str(), mode), 0);
        const mode_t before = ::umask(077);
        EXPECT_TRUE(replace(target_, "new"));
        ::umask(before);
        EXPECT_EQ(kvl::test::permissionsOf(target_), mode);
        EXPECT_EQ(contentOf(target_), "new");
    }
}

TEST_F(AtomicFileTest, KeepsTheOwnerOfTheFileThatItReplaces) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    lay(target_, "old");
    ASSERT_EQ(::chown(target_.c_str(), 65534, 65533), 0);
    EXPECT_TRUE(replace(target_, "new"));
    struct stat status {};
    ASSERT_EQ(::stat(target_.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 65534U);
    EXPECT_EQ(status.st_gid, 65533U);
}

TEST_F(AtomicFileTest, SetsPermissionsWhateverTheUmask) {
    AtomicFile file(target_, 0600);
    EXPECT_TRUE(file.setPermissions(0777));
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(kvl::test::permissionsOf(target_), 0777U);
}

TEST_F(AtomicFileTest, KeepsAnExistingTargetIfToldSo) {
    for (const bool exists : {false, true}) {
        AtomicFile file(target_);
        ASSERT_TRUE(put(file, exists ? "second" : "first"));
        EXPECT_EQ(file.commit(AtomicFile::Existing::kKeep), !exists);
        EXPECT_EQ(contentOf(target_), "first");
        EXPECT_THAT(scratch_.entries(), ElementsAre("target"));
    }
}

TEST_F(AtomicFileTest, ReplacesTheFileBehindALink) {
    layDirectory(scratch_ / "real");
    lay(scratch_ / "real/file", "old");
    std::filesystem::create_symlink("real/file", target_);
    EXPECT_TRUE(replace(target_, "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(target_));
    EXPECT_EQ(contentOf(scratch_ / "real/file"), "new");
}

TEST_F(AtomicFileTest, RefusesWhatIsNoRegularFile) {
    layDirectory(scratch_ / "directory");
    ASSERT_EQ(::mkfifo((scratch_ / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("missing", scratch_ / "dangling");
    std::filesystem::create_symlink("pipe", scratch_ / "link");
    const auto before = scratch_.entries();
    for (const char* name : {"directory", "pipe", "dangling", "link", "directory/", "new/", "missing/file"}) {
        AtomicFile file(scratch_ / name);
        EXPECT_FALSE(file.isGood()) << name;
        EXPECT_FALSE(put(file, "new")) << name;
        EXPECT_FALSE(file.commit()) << name;
    }
    EXPECT_FALSE(AtomicFile("").isGood());
    EXPECT_EQ(scratch_.entries(), before);
}

TEST_F(AtomicFileTest, WritesANameWithoutADirectory) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(scratch_.path());
    EXPECT_TRUE(replace("target", "new"));
    std::filesystem::current_path(before);
    EXPECT_EQ(contentOf(target_), "new");
}

TEST_F(AtomicFileTest, WritesTheLongestNames) {
    const std::string longest = scratch_ / std::string(255, 'n');
    EXPECT_TRUE(replace(longest, "new"));
    EXPECT_EQ(contentOf(longest), "new");
}

TEST_F(AtomicFileTest, PassesTemporaryFilesOfKilledProcessesBy) {
    const auto makeAll = [this] {
        for (int number = 0; number < 100; ++number) {
            lay(scratch_ / (".kvl-" + std::to_string(::getpid()) + "-" + std::to_string(number) + ".tmp"), "stale");
        }
        return replace(target_, "new") ? 0 : 1;
    };
    EXPECT_EQ(exitCodeOf(makeAll), 0);
    EXPECT_EQ(contentOf(target_), "new");
    EXPECT_THAT(scratch_.entries(), SizeIs(101));
}

TEST_F(AtomicFileTest, LeavesTheOldContentWhenTheDiskIsFull) {
    lay(target_, "old");
    const auto writeMoreThanFits = [this] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        AtomicFile file(target_);
        const bool first = put(file, std::string(900, 'a'));
        const bool second = put(file, std::string(900, 'b'));
        const bool later = put(file, "c");
        return first && !second && !later && !file.commit() ? 0 : 1;
    };
    EXPECT_EQ(exitCodeOf(writeMoreThanFits), 0);
    EXPECT_EQ(contentOf(target_), "old");
    EXPECT_THAT(scratch_.entries(), ElementsAre("target"));
}

TEST_F(AtomicFileTest, LeavesTheOldContentInAReadOnlyDirectory) {
    layDirectory(scratch_ / "closed");
    lay(scratch_ / "closed/target", "old");
    std::filesystem::permissions(scratch_ / "closed", static_cast<std::filesystem::perms>(0555));
    const auto writeAsOrdinaryUser = [this] {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::seteuid(kNobody) != 0) {
            return 2;
        }
        return replace(scratch_ / "closed/target", "new") ? 1 : 0;
    };
    EXPECT_EQ(exitCodeOf(writeAsOrdinaryUser), 0);
    std::filesystem::permissions(scratch_ / "closed", static_cast<std::filesystem::perms>(0755));
    EXPECT_EQ(contentOf(scratch_ / "closed/target"), "old");
}

}  // namespace
