#include "provider/library/command_follower.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "provider/library/collected_command.h"

namespace {

using kvl::provider::CommandFollower;
using kvl::provider::describeCommand;
using kvl::provider::describeFailure;
using kvl::provider::FailedCommand;
using testing::ElementsAre;
using testing::IsEmpty;
using Event = CommandFollower::Event;

const std::string kRunner = "int CNetworkParameter::ExecCommand(const char*, ...)";

const std::string kToolRunner = "static int CEmulexCommon::ExecCommand_(std::string, std::string)";

std::string line(const std::string& command, const std::string& result) {
    return "[" + command + " > /opt/tarvenn/kvl/provider/tmp/" + result + " 2> /dev/null]";
}

void begin(CommandFollower& commands, const std::string& command) {
    commands.follow(TRACE_DBG_FLOW, kRunner + " " + line(command, "x"));
}

void fail(CommandFollower& commands, const std::string& command) {
    begin(commands, command);
    commands.follow(TRACE_DBG_ERROR, kRunner + " " + line(command, "x") + " command failed! (2)");
}

void leave(CommandFollower& commands, const std::string& command, int result) {
    begin(commands, command);
    commands.follow(TRACE_DBG_BOUNDARY, "[LEAVE] " + kRunner + ", rc=" + std::to_string(result));
}

TEST(CommandFollower, KnowsTheCommandUnderWayWithoutItsRedirections) {
    CommandFollower commands;
    EXPECT_EQ(Event::kCommandBegins, commands.follow(TRACE_DBG_FLOW, kRunner + " " + line("/bin/uname -r", "uname")));
    EXPECT_EQ("/bin/uname -r", commands.command());
    begin(commands, "/sbin/lspci -m | grep 02:00.0");
    EXPECT_EQ("/sbin/lspci -m | grep 02:00.0", commands.command());
}

TEST(CommandFollower, TakesNoOtherLineForACommand) {
    CommandFollower commands;
    for (const std::string& text : std::vector<std::string>{
             "", "[ENTER] " + kRunner, "bool CNetworkParameter::GetResolvConf(ResolvConf&) nameserver.push_back(x)",
             "void CNetworkParameter::LogIfconfig(std::string, IfconfigResult) ifname=[eth0]"}) {
        for (const TRACE_DBG_LEVEL level : {TRACE_DBG_FLOW, TRACE_DBG_ERROR, TRACE_DBG_BOUNDARY}) {
            EXPECT_EQ(Event::kNone, commands.follow(level, text)) << text;
        }
    }
    EXPECT_EQ(Event::kNone, commands.follow(TRACE_DBG_NOTICE, kRunner + " " + line("/bin/uname -r", "uname")));
    EXPECT_EQ("", commands.command());
    EXPECT_THAT(commands.failures(), IsEmpty());
}

TEST(CommandFollower, NotesACommandThatFailed) {
    CommandFollower commands;
    fail(commands, "/usr/sbin/ethtool -c eth0");
    EXPECT_THAT(commands.failures(), ElementsAre(FailedCommand{"/usr/sbin/ethtool -c eth0", "failed"}));
}

TEST(CommandFollower, NotesACommandThatWasTooLongToBegin) {
    CommandFollower commands;
    const std::string command = "/usr/sbin/ethtool -i " + std::string(300, 'x');
    EXPECT_EQ(Event::kCommandEnds,
              commands.follow(TRACE_DBG_ERROR, kRunner + " [" + command + "] command failed! (7)"));
    EXPECT_THAT(commands.failures(), ElementsAre(FailedCommand{command, "failed"}));
}

TEST(CommandFollower, NotesACommandThatPrintedNothing) {
    CommandFollower commands;
    leave(commands, "/usr/sbin/ethtool -g eth0", -1);
    EXPECT_THAT(commands.failures(), ElementsAre(FailedCommand{"/usr/sbin/ethtool -g eth0", "printed nothing"}));
}

TEST(CommandFollower, NotesACommandThatASignalEnded) {
    CommandFollower commands;
    leave(commands, "/sbin/route", 11);
    EXPECT_EQ(11, commands.signal());
    EXPECT_THAT(commands.failures(), ElementsAre(FailedCommand{"/sbin/route", "was ended by signal 11"}));
    leave(commands, "/sbin/route", 128 + 6);  // with a core file
    EXPECT_EQ(6, commands.signal());
    leave(commands, "/sbin/route", 0);
    EXPECT_EQ(0, commands.signal());
}

TEST(CommandFollower, NotesTheSameFailureOnce) {
    CommandFollower commands;
    fail(commands, "/bin/cat /etc/resolv.conf");
    fail(commands, "/bin/cat /etc/resolv.conf");
    leave(commands, "/bin/cat /etc/resolv.conf", -1);
    EXPECT_THAT(commands.failures(), ElementsAre(FailedCommand{"/bin/cat /etc/resolv.conf", "failed"},
                                                 FailedCommand{"/bin/cat /etc/resolv.conf", "printed nothing"}));
}

struct CommandCase {
    const char* command;
    const char* subject;
    const char* what;
    bool isReported;
};

void PrintTo(const CommandCase& row, std::ostream* stream) {
    *stream << row.command;
}

class DescribedCommand : public testing::TestWithParam<CommandCase> {};

TEST_P(DescribedCommand, HasItsSubjectAndMeaning) {
    const auto described = describeCommand(GetParam().command);
    EXPECT_EQ(GetParam().subject, described.subject);
    EXPECT_EQ(GetParam().what, described.what);
    EXPECT_EQ(GetParam().isReported, described.isReported);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, DescribedCommand,
    testing::Values(CommandCase{"/bin/uname -r", "", "kernel release", true},
                    CommandCase{"/sbin/ifconfig -a", "", "interfaces and addresses", true},
                    CommandCase{"/usr/sbin/ethtool -i bond0", "bond0", "driver", true},
                    CommandCase{"/usr/sbin/ethtool -i eth0.100", "eth0.100", "driver", true},
                    CommandCase{"/usr/sbin/ethtool -k eth0", "eth0", "offload settings", true},
                    CommandCase{"/usr/sbin/ethtool -a eth0", "eth0", "pause settings", true},
                    CommandCase{"/usr/sbin/ethtool -g eth0", "eth0", "ring sizes", true},
                    CommandCase{"/usr/sbin/ethtool -c eth0", "eth0", "coalesce settings", true},
                    // The report has these settings for ports alone.
                    CommandCase{"/usr/sbin/ethtool -c eth0.100", "eth0.100", "coalesce settings", false},
                    CommandCase{"/usr/sbin/ethtool -k eth0:1", "eth0:1", "offload settings", false},
                    CommandCase{"/sbin/lspci -mns 02:00.0", "02:00.0", "PCI identifiers", true},
                    CommandCase{"/sbin/lspci -m | grep 02:00.0", "02:00.0", "PCI description", true},
                    CommandCase{"/bin/cat /proc/net/bonding/bond1", "bond1", "bond settings", true},
                    CommandCase{"/bin/cat /proc/net/vlan/config", "", "VLANs", true},
                    CommandCase{"/bin/cat /etc/resolv.conf", "", "name servers and DNS suffixes", true},
                    CommandCase{"/sbin/route", "", "IPv4 default routes", true},
                    // A machine without bonds or without IPv6 has no answer to give.
                    CommandCase{"/bin/ls /proc/net/bonding", "", "bonds", false},
                    CommandCase{"/bin/netstat -A inet6 -nr", "", "IPv6 routes", false},
                    CommandCase{"/sbin/somethingnew -x", "", "", true}));

TEST(CommandFollower, DoesNotNoteWhatTheReportDoesNotMiss) {
    CommandFollower commands;
    fail(commands, "/bin/ls /proc/net/bonding");
    leave(commands, "/bin/netstat -A inet6 -nr", -1);
    fail(commands, "/usr/sbin/ethtool -a eth0:1");
    EXPECT_THAT(commands.failures(), IsEmpty());
}

TEST(DescribeFailure, NamesSubjectMeaningCommandAndOutcome) {
    EXPECT_EQ("eth0: coalesce settings: /usr/sbin/ethtool -c eth0 failed",
              describeFailure({"/usr/sbin/ethtool -c eth0", "failed"}));
    EXPECT_EQ("kernel release: /bin/uname -r printed nothing", describeFailure({"/bin/uname -r", "printed nothing"}));
    EXPECT_EQ("/sbin/other failed", describeFailure({"/sbin/other", "failed"}));
}

TEST(CommandFollowerOfTheTool, FollowsACommandToItsEnd) {
    CommandFollower commands;
    EXPECT_EQ(Event::kCommandBegins,
              commands.follow(TRACE_DBG_FLOW, kToolRunner + " ExecCommand_(/bin/tool list > /tmp/list)"));
    EXPECT_EQ("/bin/tool list", commands.command());
    EXPECT_EQ("", commands.outcome());
    EXPECT_EQ(Event::kCommandEnds, commands.follow(TRACE_DBG_BOUNDARY, "[LEAVE] " + kToolRunner + ", rc=0"));
    EXPECT_EQ("", commands.outcome());
}

TEST(CommandFollowerOfTheTool, TellsAFailureASilenceAndASignal) {
    CommandFollower commands;
    commands.follow(TRACE_DBG_FLOW, kToolRunner + " ExecCommand_(/bin/tool dump (x))");
    EXPECT_EQ("/bin/tool dump (x)", commands.command());
    EXPECT_EQ(Event::kCommandEnds,
              commands.follow(TRACE_DBG_ERROR, kToolRunner + " [/bin/tool dump (x)] command failed! (2)"));
    EXPECT_EQ("failed", commands.outcome());
    EXPECT_EQ(Event::kCommandEnds, commands.follow(TRACE_DBG_BOUNDARY, "[LEAVE] " + kToolRunner + ", rc=-1"));
    EXPECT_EQ("printed nothing in 10 s", commands.outcome());
    commands.follow(TRACE_DBG_BOUNDARY, "[LEAVE] " + kToolRunner + ", rc=2");
    EXPECT_EQ("was ended by signal 2", commands.outcome());
    commands.follow(TRACE_DBG_FLOW, kToolRunner + " ExecCommand_(/bin/tool next)");
    EXPECT_EQ("", commands.outcome());
}

TEST(CommandFollowerOfTheTool, ShowsTheCommandWithoutTheToolsDirectory) {
    CommandFollower commands;
    EXPECT_EQ("", commands.shownCommand());
    for (const char* command : {"/usr/sbin/tool dump /a/b", "tool dump /a/b"}) {
        commands.follow(TRACE_DBG_FLOW, kToolRunner + " ExecCommand_(" + command + ")");
        EXPECT_EQ("tool dump /a/b", commands.shownCommand());
    }
    commands.follow(TRACE_DBG_FLOW, kToolRunner + " ExecCommand_(/bin/tool)");
    EXPECT_EQ("tool", commands.shownCommand());
}

TEST(CommandFollowerOfTheTool, PassesOverOtherLines) {
    CommandFollower commands;
    EXPECT_EQ(Event::kNone, commands.follow(TRACE_DBG_FLOW, "CEmulexCommon::ExecCommand_() [START]"));
    EXPECT_EQ(Event::kNone, commands.follow(TRACE_DBG_BOUNDARY, kToolRunner + " ExecCommand_(/bin/tool)"));
    EXPECT_EQ(Event::kNone, commands.follow(TRACE_DBG_FLOW, ""));
    EXPECT_EQ("", commands.command());
}

}  // namespace
