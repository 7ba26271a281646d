#include "provider/update/requirements.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "provider/provider_error.h"
#include "tests/machines/outside.h"

namespace {

namespace fs = std::filesystem;
using kvl::provider::findCommand;
using kvl::provider::ProviderError;
using kvl::provider::requireCommand;
using kvl::provider::requireOwnDirectory;
using kvl::provider::requireRoom;
using kvl::test::ScratchDirectory;
using testing::MatchesRegex;

/// @return why a requirement isn't met; "met" if it is
template <typename Require>
std::string refusal(const Require& require) {
    try {
        require();
    } catch (const ProviderError& error) {
        return error.what();
    }
    return "met";
}

TEST(Requirements, FindACommandInTheDirectoriesOfThePath) {
    const ScratchDirectory scratch;
    scratch.write("one/listed", "");
    const std::string runnable = scratch.write("two/listed", "");
    chmod(runnable.c_str(), 0700);
    setenv("PATH", (scratch / "none" + ":" + (scratch / "one") + ":" + (scratch / "two")).c_str(), 1);
    EXPECT_EQ(runnable, findCommand("listed"));
    EXPECT_EQ("", findCommand("other"));
    EXPECT_EQ("met", refusal([] { requireCommand("listed"); }));
    EXPECT_EQ("'other' isn't installed: install the package that brings it", refusal([] { requireCommand("other"); }));
    unsetenv("PATH");
    EXPECT_EQ("", findCommand("listed"));
}

TEST(Requirements, LookForRoomWhereTheDirectoryWillBe) {
    const ScratchDirectory scratch;
    EXPECT_EQ("met", refusal([&] { requireRoom(scratch.path(), 0); }));
    EXPECT_EQ("met", refusal([&] { requireRoom(scratch / "not/yet/there", 0); }));
    constexpr std::uint64_t kExbibyte = std::uint64_t{1} << 60U;
    EXPECT_THAT(refusal([&] { requireRoom(scratch / "not/yet/there", kExbibyte); }),
                MatchesRegex("the disk of " + scratch.path() +
                             " has too little room: 1099511627777 MiB are needed, [0-9]+ MiB are free"));
}

TEST(Requirements, CountAMarginOfAMebibyteAndRoundUp) {
    // A disk of kernel's own without any room.
    const auto room = [](std::uint64_t bytes) { return refusal([bytes] { requireRoom("/proc/self", bytes); }); };
    const std::string end = " MiB are needed, 0 MiB are free";
    EXPECT_EQ("the disk of /proc/self has too little room: 1" + end, room(0));
    EXPECT_EQ("the disk of /proc/self has too little room: 2" + end, room(1));
    EXPECT_EQ("the disk of /proc/self has too little room: 2" + end, room(1024 * 1024));
}

TEST(Requirements, TakeADirectoryOfOnesOwnAlone) {
    const ScratchDirectory scratch;
    const auto own = [&](const std::string& name) { return refusal([&] { requireOwnDirectory(scratch / name); }); };
    fs::create_directory(scratch / "mine");
    EXPECT_EQ("met", own("mine"));
    const std::string open = " belongs to another user, or others can write there: choose a directory of your own";
    for (const mode_t mode : {0720U, 0702U, 01777U}) {
        chmod((scratch / "mine").c_str(), mode);
        EXPECT_EQ(scratch / "mine" + open, own("mine"));
    }
    chmod((scratch / "mine").c_str(), 0755);
    EXPECT_EQ("met", own("mine"));
    EXPECT_EQ(scratch / "none can't be looked at: No such file or directory", own("none"));
    scratch.write("file", "");
    EXPECT_EQ(scratch / "file is no directory", own("file"));
    fs::create_directory_symlink(scratch / "mine", scratch / "link");
    EXPECT_EQ(scratch / "link is no directory", own("link"));
}

}  // namespace
