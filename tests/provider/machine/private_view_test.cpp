#include "provider/machine/private_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "provider/machine/legacy_commands.h"
#include "provider/machine/provider_environment.h"
#include "tests/provider/kvl_program.h"

namespace {

namespace fs = std::filesystem;
using kvl::provider::findProgram;
using kvl::provider::kResultDirectory;
using kvl::provider::outputOptions;
using kvl::provider::placeInView;
using kvl::provider::privateViewOptions;
using kvl::test::Outcome;
using kvl::test::quoted;
using kvl::test::runOutside;
using kvl::test::ScratchDirectory;

/// True if these words stand in the options, one after the other.
bool hasWords(const std::vector<std::string>& options, const std::vector<std::string>& words) {
    return std::search(options.begin(), options.end(), words.begin(), words.end()) != options.end();
}

TEST(PrivateViewOptions, ShowTheMachineAtItsOwnPlaces) {
    const auto options = privateViewOptions({});
    for (const fs::directory_entry& entry : fs::directory_iterator("/")) {
        const std::string path = entry.path().string();
        if (path == "/sbin" || path == "/opt") {
            continue;
        }
        const bool shown = entry.is_symlink() ? hasWords(options, {"--symlink", fs::read_symlink(path).string(), path})
                                              : hasWords(options, {"--dev-bind-try", path, path});
        EXPECT_TRUE(shown) << path;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator("/opt")) {
        const std::string path = entry.path().string();
        EXPECT_TRUE(path == "/opt/tarvenn" || entry.is_symlink() || hasWords(options, {"--dev-bind-try", path, path}))
            << path;
    }
}

TEST(PrivateViewOptions, PutTheSuppliedCommandsIntoSbinAndLeaveTheOthersThere) {
    const auto options = privateViewOptions({{"ifconfig", "/x/busybox"}, {"no-such-command", "/x/other"}});
    EXPECT_TRUE(hasWords(options, {"--symlink", "/x/busybox", "/sbin/ifconfig"}));
    EXPECT_TRUE(hasWords(options, {"--symlink", "/x/other", "/sbin/no-such-command"}));
    for (const fs::directory_entry& entry : fs::directory_iterator("/sbin")) {
        const std::string path = "/sbin/" + entry.path().filename().string();
        EXPECT_EQ(1, std::count(options.begin(), options.end(), path)) << path;
    }
}

TEST(PrivateViewOptions, MakeAResultDirectoryForTheUserAlone) {
    EXPECT_TRUE(hasWords(privateViewOptions({}), {"--perms", "0700", "--dir", kResultDirectory}));
}

TEST(OutputOptions, ShowTheDirectoryOfTheFileAtAPlaceOfItsOwn) {
    const ScratchDirectory scratch;
    EXPECT_TRUE(outputOptions("").empty());
    EXPECT_EQ((std::vector<std::string>{"--bind", scratch.path(), "/.kvl-output"}),
              outputOptions(scratch / "report.xml"));
    EXPECT_TRUE(hasWords(outputOptions("/report.xml"), {"--bind", "/", "/.kvl-output"}));
    scratch.write("elsewhere/real.xml", "");
    fs::create_symlink("elsewhere/real.xml", scratch / "link.xml");
    EXPECT_TRUE(hasWords(outputOptions(scratch / "link.xml"), {"--bind", scratch / "elsewhere", "/.kvl-output"}));
}

TEST(PlaceInView, IsTheRealNameOfTheFileInThatDirectory) {
    const ScratchDirectory scratch;
    EXPECT_EQ("", placeInView(""));
    EXPECT_EQ("/.kvl-output/report.xml", placeInView("report.xml"));
    scratch.write("elsewhere/real.xml", "");
    fs::create_symlink("elsewhere/real.xml", scratch / "link.xml");
    EXPECT_EQ("/.kvl-output/real.xml", placeInView(scratch / "link.xml"));
}

/// Runs a script in a private view of this machine.
class PrivateView : public testing::Test {
protected:
    void SetUp() override {
        bubblewrap_ = findProgram("bwrap");
        if (bubblewrap_.empty()) {
            GTEST_SKIP() << "bubblewrap isn't installed";
        }
        if (run("true").status != 0) {
            GTEST_SKIP() << "bubblewrap can't make a view here: " << run("true").errors;
        }
    }

    Outcome run(const std::string& script, const std::string& outputFile = "") const {
        std::vector<std::string> words = {bubblewrap_};
        for (const auto& options :
             {privateViewOptions({{"ifconfig", findProgram("echo")}}), outputOptions(outputFile)}) {
            words.insert(words.end(), options.begin(), options.end());
        }
        words.insert(words.end(), {"--", "/bin/sh", "-c", script});
        return runOutside(quoted(words));
    }

private:
    std::string bubblewrap_;
};

TEST_F(PrivateView, RunsTheSuppliedCommand) {
    EXPECT_EQ("in the view\n", run("/sbin/ifconfig in the view").output);
}

TEST_F(PrivateView, HasAnEmptyResultDirectoryThatItsUserCanUse) {
    const std::string directory = kResultDirectory;
    const Outcome outcome = run("ls -A " + directory + " && stat -c %a,%u " + directory + " && echo x > " + directory +
                                "/in-the-view-only && cat " + directory + "/in-the-view-only");
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("700," + std::to_string(geteuid()) + "\nx\n", outcome.output);
    std::error_code hidden;
    EXPECT_FALSE(fs::exists(directory + "/in-the-view-only", hidden));
}

TEST_F(PrivateView, SeesTheNetworkOfTheMachine) {
    const std::string names = "ls /sys/class/net && cut -d: -f1 /proc/net/dev && readlink /proc/self/ns/net";
    EXPECT_EQ(runOutside(names).output, run(names).output);
}

TEST_F(PrivateView, SeesTheFilesOfTheMachine) {
    const ScratchDirectory scratch;
    scratch.write("file", "content");
    const std::string file = scratch / "file";
    EXPECT_EQ("content", run("cat " + file + " && echo changed > " + file).output);
    EXPECT_EQ("changed\n", kvl::test::readFile(file));
}

TEST_F(PrivateView, WritesTheOutputFileToTheMachine) {
    const ScratchDirectory scratch;
    EXPECT_EQ(0, run("echo report > " + placeInView(scratch / "report.txt"), scratch / "report.txt").status);
    EXPECT_EQ("report\n", kvl::test::readFile(scratch / "report.txt"));
}

TEST_F(PrivateView, FindsTheOtherCommandsOfSbin) {
    const std::string commands = "ls /sbin/ | grep -vx ifconfig";
    EXPECT_EQ(runOutside(commands).output, run(commands).output);
}

}  // namespace
