#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "provider/machine/provider_environment.h"
#include "provider/provider_error.h"
#include "tests/machines/outside.h"

namespace {

namespace fs = std::filesystem;
using kvl::provider::needResultDirectory;
using kvl::provider::ProviderError;
using kvl::test::ScratchDirectory;
using testing::HasSubstr;

std::string refusal(const std::string& directory) {
    try {
        needResultDirectory(directory);
    } catch (const ProviderError& error) {
        EXPECT_THAT(error.what(), HasSubstr(directory));
        return error.what();
    }
    return "accepted";
}

unsigned modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(0, lstat(path.c_str(), &status));
    return status.st_mode & 07777U;
}

TEST(ResultDirectory, IsMadeWithItsParents) {
    const ScratchDirectory scratch;
    const mode_t before = umask(077);
    EXPECT_EQ("accepted", refusal(scratch / "product/provider/tmp"));
    umask(before);
    EXPECT_EQ(0755U, modeOf(scratch / "product"));
    EXPECT_EQ(0755U, modeOf(scratch / "product/provider"));
    EXPECT_EQ(0700U, modeOf(scratch / "product/provider/tmp"));
}

TEST(ResultDirectory, IsTakenAsItIsWithAllThatItHolds) {
    const ScratchDirectory scratch;
    scratch.write("tmp/file", "content");
    fs::permissions(scratch / "tmp", fs::perms::owner_all);
    EXPECT_EQ("accepted", refusal(scratch / "tmp"));
    EXPECT_EQ("content", kvl::test::readFile(scratch / "tmp/file"));
}

TEST(ResultDirectory, IsRefusedWhenOthersCanUseIt) {
    const ScratchDirectory scratch;
    fs::create_directory(scratch / "tmp");
    for (const auto open : {fs::perms::group_read, fs::perms::group_exec, fs::perms::others_write, fs::perms::all}) {
        fs::permissions(scratch / "tmp", fs::perms::owner_all | open);
        EXPECT_THAT(refusal(scratch / "tmp"), HasSubstr("is open to other users: 'chmod 700"));
    }
    EXPECT_EQ(0777U, modeOf(scratch / "tmp")) << "nothing is changed behind the operator's back";
}

TEST(ResultDirectory, IsRefusedWhenItIsNoDirectory) {
    const ScratchDirectory scratch;
    fs::create_directory(scratch / "real");
    fs::create_symlink(scratch / "real", scratch / "link");
    scratch.write("file", "");
    EXPECT_THAT(refusal(scratch / "link"), HasSubstr("is a link"));
    EXPECT_THAT(refusal(scratch / "file"), HasSubstr("is no directory"));
    EXPECT_THAT(refusal(scratch / "file/tmp"), HasSubstr("can't be made"));
}

TEST(ResultDirectory, IsRefusedWhenItBelongsToAnother) {
    if (geteuid() != 0) {
        EXPECT_THAT(refusal("/"), HasSubstr("belongs to another user (0)"));
        return;
    }
    const ScratchDirectory scratch;
    fs::create_directory(scratch / "tmp");
    ASSERT_EQ(0, chown((scratch / "tmp").c_str(), 65534, 65534));
    EXPECT_THAT(refusal(scratch / "tmp"), HasSubstr("belongs to another user (65534)"));
}

TEST(ResultDirectory, IsRefusedBelowADirectoryThatOthersCanChange) {
    const ScratchDirectory scratch;
    fs::create_directories(scratch / "open/safe");
    fs::permissions(scratch / "open", fs::perms::all);
    EXPECT_EQ("the result directory " + (scratch / "open/safe/tmp") + " lies in " + (scratch / "open") +
                  ", where other users can write: 'chmod go-w " + (scratch / "open") + "'",
              refusal(scratch / "open/safe/tmp"));
    EXPECT_FALSE(fs::exists(scratch / "open/safe/tmp")) << "nothing is made there";
    fs::create_directory_symlink(scratch / "open", scratch / "link");
    EXPECT_THAT(refusal(scratch / "link/safe/tmp"), HasSubstr("lies in " + fs::canonical(scratch / "open").string()));
    fs::permissions(scratch / "open", fs::perms::all | fs::perms::sticky_bit);
    EXPECT_EQ("accepted", refusal(scratch / "open/safe/tmp"));
}

TEST(ResultDirectory, IsRefusedBelowADirectoryOfAnotherUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give directories away";
    }
    const ScratchDirectory scratch;
    fs::create_directories(scratch / "theirs/product");
    ASSERT_EQ(0, chown((scratch / "theirs").c_str(), 65534, 65534));
    EXPECT_EQ("the result directory " + (scratch / "theirs/product/tmp") + " lies in " + (scratch / "theirs") +
                  ", which belongs to another user (65534): as root, 'chown -h root " + (scratch / "theirs") +
                  "', or move it",
              refusal(scratch / "theirs/product/tmp"));
}

TEST(ProviderEnvironment, IsTheOneThatTheCommandsNeed) {
    const pid_t child = fork();
    if (child == 0) {
        setenv("LC_ALL", "de_DE.UTF-8", 1);
        setenv("PATH", "/somewhere", 1);
        kvl::provider::enterProviderEnvironment();
        const bool good = std::string(std::getenv("LC_ALL")) == "C" &&
                          std::string(std::getenv("PATH")) == "/sbin:/usr/sbin:/bin:/usr/bin" && umask(0) == 077;
        _exit(good ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
}

}  // namespace
