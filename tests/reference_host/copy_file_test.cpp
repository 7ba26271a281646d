#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "host/HostFunctions.h"
#include "tests/reference_host/host_test.h"
#include "tests/reference_host/processes.h"

namespace {

using kvl::test::contentOf;
using kvl::test::exitCodeOf;
using kvl::test::HostTest;
using kvl::test::lay;
using kvl::test::layDirectory;
using kvl::test::permissionsOf;
using ::testing::ElementsAre;

class CopyFileTest : public HostTest {
protected:
    void SetUp() override {
        HostTest::SetUp();
        lay(source_, content_);
    }

    int copy(const std::string& target, int failIfExists = 0) const {
        return CopyFileA(source_.c_str(), target.c_str(), failIfExists);
    }

    const std::string content_ = std::string("a\0b", 3) + std::string(200000, 'x');
    const std::string source_ = scratch_ / "source";
    const std::string target_ = scratch_ / "target";
};

TEST_F(CopyFileTest, CopiesEveryByte) {
    EXPECT_NE(copy(target_), 0);
    EXPECT_EQ(contentOf(target_), content_);
    EXPECT_EQ(contentOf(source_), content_);
    EXPECT_THAT(scratch_.entries(), ElementsAre("source", "target"));
}

TEST_F(CopyFileTest, CopiesAnEmptyFile) {
    lay(source_, "");
    EXPECT_NE(copy(target_), 0);
    EXPECT_TRUE(std::filesystem::exists(target_));
}

TEST_F(CopyFileTest, ReplacesAnExistingTarget) {
    lay(target_, "old");
    EXPECT_NE(copy(target_), 0);
    EXPECT_EQ(contentOf(target_), content_);
}

TEST_F(CopyFileTest, KeepsAnExistingTargetIfToldSo) {
    EXPECT_NE(copy(target_, 1), 0);
    lay(target_, "old");
    EXPECT_EQ(copy(target_, 1), 0);
    EXPECT_EQ(contentOf(target_), "old");
    EXPECT_THAT(scratch_.entries(), ElementsAre("source", "target"));
}

TEST_F(CopyFileTest, KeepsThePermissionsOfTheSource) {
    for (const mode_t mode : {0755U, 0400U, 0666U}) {
        std::filesystem::permissions(source_, static_cast<std::filesystem::perms>(mode));
        EXPECT_NE(copy(target_), 0);
        EXPECT_EQ(permissionsOf(target_), mode);
    }
}

TEST_F(CopyFileTest, GivesNobodyTheRightsOfTheOwner) {
    ASSERT_EQ(::chmod(source_.c_str(), 06755), 0);
    EXPECT_NE(copy(target_), 0);
    EXPECT_EQ(permissionsOf(target_), 0755U);
}

TEST_F(CopyFileTest, FailsWithoutASourceOrATarget) {
    layDirectory(scratch_ / "directory");
    ASSERT_EQ(::mkfifo((scratch_ / "pipe").c_str(), 0600), 0);
    lay(target_, "old");
    for (const char* name : {"missing", "directory", "pipe"}) {
        EXPECT_EQ(CopyFileA((scratch_ / name).c_str(), target_.c_str(), 0), 0) << name;
    }
    EXPECT_EQ(CopyFileA(nullptr, target_.c_str(), 0), 0);
    EXPECT_EQ(CopyFileA(source_.c_str(), nullptr, 0), 0);
    EXPECT_EQ(copy(scratch_ / "directory"), 0);
    EXPECT_EQ(copy(scratch_ / "missing/target"), 0);
    EXPECT_EQ(contentOf(target_), "old");
    EXPECT_THAT(scratch_.entries(), ElementsAre("directory", "pipe", "source", "target"));
}

TEST_F(CopyFileTest, LeavesNoHalfWrittenTarget) {
    lay(target_, "old");
    const auto copyToAFullDisk = [this] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100000, 100000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return copy(target_) == 0 && copy(scratch_ / "new") == 0 ? 0 : 1;
    };
    EXPECT_EQ(exitCodeOf(copyToAFullDisk), 0);
    EXPECT_EQ(contentOf(target_), "old");
    EXPECT_THAT(scratch_.entries(), ElementsAre("source", "target"));
}

}  // namespace
