#include "machines/replay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "tests/machines/outside.h"

namespace kvl::test {
namespace {

using machines::findRecording;
using machines::ReplayRequest;
using machines::UnknownMachine;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

std::string messageOf(const std::string& machine) {
    try {
        findRecording(machine);
    } catch (const UnknownMachine& error) {
        return error.what();
    }
    return "nothing was thrown";
}

class Replay : public testing::Test {
protected:
    // Runs this executable on a machine; what the script prints to standard output lands in output().
    int replay(const std::string& machine, const std::string& script, const std::string& keptRoot = "") {
        ReplayRequest request;
        request.machine = machine;
        request.arguments = {"--as-provider", "exec >>'" + scratch_ / "output" + "'; " + script};
        request.keptRoot = keptRoot;
        request.binds = {{scratch_.path(), true}};
        request.environment = {{"KVL_WORD", "word"}};

        std::ostringstream told;
        std::streambuf* const before = std::cerr.rdbuf(told.rdbuf());
        const int status = machines::replay(request);
        std::cerr.rdbuf(before);
        told_ = told.str();
        return status;
    }

    std::string output() const { return readFile(scratch_ / "output"); }

    ScratchDirectory scratch_;
    std::string told_;
};

TEST_F(Replay, RunsThisExecutableOnTheRecordedServer) {
    EXPECT_EQ(replay("four-port", "/bin/uname -r; /bin/ls /proc/net/bonding; echo $KVL_WORD; exit 5"), 5);
    EXPECT_EQ(output(), "2.6.32-358.el6.x86_64\nbond0\nbond1\nword\n");
    EXPECT_EQ(told_, "");
}

TEST_F(Replay, NamesOnceWhatTheRecordingLacks) {
    EXPECT_EQ(replay("one-port",
                     "exec 2>/dev/null; /usr/sbin/ethtool -i eth9; /sbin/ifconfig; ethtool -i eth9; /sbin/ifconfig -a"),
              0);
    EXPECT_EQ(told_,
              "the recording one-port has nothing for: /usr/sbin/ethtool -i eth9\n"
              "the recording one-port has nothing for: /sbin/ifconfig\n");
}

TEST_F(Replay, KeepsTheServerWhenAskedTo) {
    const std::string root = scratch_ / "root";
    EXPECT_EQ(replay("one-port", "echo x >/etc/mark; /sbin/ifconfig x 2>/dev/null", root), 127);
    EXPECT_EQ(told_, "the recording one-port has nothing for: /sbin/ifconfig x\n");
    EXPECT_EQ(replay("one-port", "cat /etc/mark", root), 0);
    EXPECT_EQ(output(), "x\n");
    EXPECT_EQ(told_, "");
}

TEST_F(Replay, IsNewEachTimeOtherwise) {
    EXPECT_EQ(replay("one-port", "echo x >/etc/mark"), 0);
    EXPECT_EQ(replay("one-port", "[ ! -e /etc/mark ]"), 0);
}

TEST_F(Replay, LetsEveryCommandFail) {
    EXPECT_EQ(replay("every-command-fails",
                     "for call in 'uname -r' 'ifconfig -a' 'ethtool -i eth0' route 'netstat -A inet6 -nr' 'lspci -m' "
                     "'cat /etc/passwd' 'ls /'; do $call; echo $?; done"),
              0);
    EXPECT_EQ(output(), "1\n1\n1\n1\n1\n1\n1\n1\n");
}

TEST_F(Replay, TellsOfASignal) {
    EXPECT_EQ(replay("one-port", "kill -9 $PPID"), 128 + 9);
}

TEST(FindRecording, TakesADirectoryByItsPath) {
    const ScratchDirectory scratch;
    scratch.write("server/files/etc/resolv.conf", "");
    EXPECT_EQ(findRecording(scratch / "server/../server"), std::filesystem::canonical(scratch / "server"));
}

TEST(FindRecording, LooksFirstWhereTheUserSays) {
    const ScratchDirectory scratch;
    scratch.write("four-port/files/etc/resolv.conf", "");
    scratch.write("of-mine/commands/bin/uname/-r", "1\n");
    scratch.write("no-recording/text", "");
    setenv("KVL_MACHINES", scratch.path().c_str(), 1);
    EXPECT_EQ(findRecording("four-port"), std::filesystem::canonical(scratch / "four-port"));
    EXPECT_EQ(findRecording("of-mine"), std::filesystem::canonical(scratch / "of-mine"));
    EXPECT_THAT(machines::knownMachines(), Contains("of-mine"));
    EXPECT_THAT(machines::knownMachines(), Not(Contains("no-recording")));
    unsetenv("KVL_MACHINES");
    EXPECT_NE(findRecording("four-port"), std::filesystem::canonical(scratch / "four-port"));
}

TEST(FindRecording, ListsTheKnownNamesForAnUnknownOne) {
    EXPECT_EQ(messageOf("five-port"),
              "there is no recorded machine five-port. Known are: adapters-fc, adapters-mixed, adapters-none, "
              "bond-modes, debian-12-guest, every-command-fails, "
              "four-port, odd-names, one-port, sixty-four-port");
    EXPECT_THAT(messageOf(""), HasSubstr("there is no recorded machine ."));
}

TEST(FindRecording, RefusesADirectoryThatIsNoRecording) {
    const ScratchDirectory scratch;
    EXPECT_EQ(messageOf(scratch.path()),
              scratch.path() + " is no recording: it has neither a directory commands nor a directory files.");
}

}  // namespace
}  // namespace kvl::test
