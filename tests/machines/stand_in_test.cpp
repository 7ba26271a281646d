#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/machines/outside.h"

namespace kvl::test {
namespace {

using testing::HasSubstr;

class StandIn : public testing::Test {
protected:
    void record(const std::string& entry, const std::string& output) { recording_.write("commands/" + entry, output); }

    Outcome run(const std::string& script) {
        machines::PrivateRootOptions options;
        options.recording = recording_.path();
        return runInside(options, script);
    }

    ScratchDirectory recording_;
};

TEST_F(StandIn, PrintsWhatWasRecordedForItsExactArguments) {
    record("sbin/ifconfig/-a", "all\n");
    record("sbin/ifconfig/-a eth0", "one\n");
    const Outcome outcome = run("/sbin/ifconfig -a; /sbin/ifconfig -a eth0");
    EXPECT_EQ(outcome.output, "all\none\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(StandIn, FindsArgumentsWithSlashes) {
    record("bin/cat/%proc%net%bonding%bond0", "mode\n");
    EXPECT_EQ(run("/bin/cat /proc/net/bonding/bond0").output, "mode\n");
}

TEST_F(StandIn, FindsTheCallWithoutArguments) {
    record("sbin/route/(none)", "table\n");
    EXPECT_EQ(run("/sbin/route").output, "table\n");
}

TEST_F(StandIn, KnowsItsNameWhenItIsFoundThroughThePath) {
    record("usr/sbin/ethtool/-i eth0", "driver: igb\n");
    EXPECT_EQ(run("ethtool -i eth0 | grep driver").output, "driver: igb\n");
}

TEST_F(StandIn, EndsWithTheRecordedStatusBehindItsOutput) {
    record("usr/sbin/ethtool/-c eth0", "Coalesce parameters for eth0:\n");
    record("usr/sbin/ethtool/-c eth0.status", "82\n");
    const Outcome outcome = run("/usr/sbin/ethtool -c eth0");
    EXPECT_EQ(outcome.output, "Coalesce parameters for eth0:\n");
    EXPECT_EQ(outcome.status, 82);
}

TEST_F(StandIn, PrintsNothingWhenOnlyTheStatusIsRecorded) {
    record("sbin/lspci/-m.status", "1");
    const Outcome outcome = run("/sbin/lspci -m");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(StandIn, SucceedsWithoutOutputWhenTheRecordedOutputIsEmpty) {
    record("sbin/lspci/-mns 00:1f.7", "");
    const Outcome outcome = run("/sbin/lspci -mns 00:1f.7");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(StandIn, DiesOfTheRecordedSignal) {
    record("bin/uname/-r", "2.6\n");
    record("bin/uname/-r.status", "signal 9\n");
    const Outcome outcome = run("exec /bin/uname -r");
    EXPECT_EQ(outcome.output, "2.6\n");
    EXPECT_EQ(outcome.status, 128 + 9);
}

TEST_F(StandIn, PrintsEveryByteAsItIs) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    record("bin/uname/-r", bytes + bytes);
    EXPECT_EQ(run("/bin/uname -r").output, bytes + bytes);
}

TEST_F(StandIn, AddsNoLineFeed) {
    record("bin/uname/-r", "no line feed");
    EXPECT_EQ(run("/bin/uname -r").output, "no line feed");
}

TEST_F(StandIn, IsAMissingProgramForArgumentsThatWereNotRecorded) {
    record("sbin/ifconfig/-a", "all\n");
    const Outcome outcome = run("/sbin/ifconfig eth7; echo $?; cat /.machine/missing");
    EXPECT_EQ(outcome.output, "127\n/sbin/ifconfig eth7\n");
    EXPECT_EQ(outcome.errors, "/sbin/ifconfig: not found\n");
}

TEST_F(StandIn, StandsInForEveryOrdinaryCommandOfAServerRecordedOrNot) {
    const Outcome outcome =
        run("/bin/uname -r; /sbin/ifconfig -a; /usr/sbin/ethtool -i eth0; /sbin/route; /bin/netstat -A inet6 -nr; "
            "/sbin/lspci -m; cat /.machine/missing");
    EXPECT_EQ(outcome.output,
              "/bin/uname -r\n/sbin/ifconfig -a\n/usr/sbin/ethtool -i eth0\n/sbin/route\n/bin/netstat -A inet6 -nr\n"
              "/sbin/lspci -m\n");
}

TEST_F(StandIn, TakesTheEntryForAnyArgumentsIfThereIsNoneOfItsOwn) {
    record("bin/ls/(any).status", "2\n");
    record("bin/ls/%proc", "net\n");
    const Outcome outcome = run("/bin/ls; echo $?; /bin/ls /etc; echo $?; /bin/ls /proc; echo $?");
    EXPECT_EQ(outcome.output, "2\n2\nnet\n0\n");
}

TEST_F(StandIn, NotesEveryCallWithItsAbsolutePath) {
    record("sbin/ifconfig/-a", "all\n");
    const Outcome outcome = run("ifconfig -a >/dev/null; /sbin/ifconfig x 2>/dev/null; ifconfig; cat /.machine/log");
    EXPECT_EQ(outcome.output, "/sbin/ifconfig -a\n/sbin/ifconfig x\n/sbin/ifconfig\n");
}

TEST_F(StandIn, LeavesTheToolsAloneThatTheRecordingDoesNotHave) {
    recording_.write("files/etc/resolv.conf", "nameserver 10.0.0.1\n");
    const Outcome outcome = run("/bin/cat /etc/resolv.conf; /bin/ls /etc/resolv.conf; cat /.machine/log");
    EXPECT_EQ(outcome.output, "nameserver 10.0.0.1\n/etc/resolv.conf\n");
    EXPECT_THAT(outcome.errors, HasSubstr("/.machine/log"));
}

}  // namespace
}  // namespace kvl::test
