#include "provider/library/collection_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "provider/library/collected_command.h"

namespace {

using kvl::provider::CollectionWatch;
using kvl::provider::describeCommand;
using kvl::provider::describeFailure;
using kvl::provider::FailedCommand;
using testing::ElementsAre;
using testing::IsEmpty;
using Event = CollectionWatch::Event;

const std::string kRunner = "int CNetworkParameter::ExecCommand(const char*, ...)";

std::string line(const std::string& command, const std::string& result) {
    return "[" + command + " > /opt/tarvenn/kvl/provider/tmp/" + result + " 2> /dev/null]";
}

void begin(CollectionWatch& watch, const std::string& command) {
    watch.take(TRACE_DBG_FLOW, kRunner + " " + line(command, "x"));
}

void fail(CollectionWatch& watch, const std::string& command) {
    begin(watch, command);
    watch.take(TRACE_DBG_ERROR, kRunner + " " + line(command, "x") + " command failed! (2)");
}

void leave(CollectionWatch& watch, const std::string& command, int result) {
    begin(watch, command);
    watch.take(TRACE_DBG_BOUNDARY, "[LEAVE] " + kRunner + ", rc=" + std::to_string(result));
}

TEST(CollectionWatch, KnowsTheCommandUnderWayWithoutItsRedirections) {
    CollectionWatch watch;
    EXPECT_EQ(Event::kCommandBegins, watch.take(TRACE_DBG_FLOW, kRunner + " " + line("/bin/uname -r", "uname")));
    EXPECT_EQ("/bin/uname -r", watch.command());
    begin(watch, "/sbin/lspci -m | grep 02:00.0");
    EXPECT_EQ("/sbin/lspci -m | grep 02:00.0", watch.command());
}

TEST(CollectionWatch, TakesNoOtherLineForACommand) {
    CollectionWatch watch;
    for (const std::string& text : std::vector<std::string>{
             "", "[ENTER] " + kRunner, "bool CNetworkParameter::GetResolvConf(ResolvConf&) nameserver.push_back(x)",
             "void CNetworkParameter::LogIfconfig(std::string, IfconfigResult) ifname=[eth0]"}) {
        for (const TRACE_DBG_LEVEL level : {TRACE_DBG_FLOW, TRACE_DBG_ERROR, TRACE_DBG_BOUNDARY}) {
            EXPECT_EQ(Event::kNone, watch.take(level, text)) << text;
        }
    }
    EXPECT_EQ(Event::kNone, watch.take(TRACE_DBG_NOTICE, kRunner + " " + line("/bin/uname -r", "uname")));
    EXPECT_EQ("", watch.command());
    EXPECT_THAT(watch.failures(), IsEmpty());
}

TEST(CollectionWatch, NotesACommandThatFailed) {
    CollectionWatch watch;
    fail(watch, "/usr/sbin/ethtool -c eth0");
    EXPECT_THAT(watch.failures(), ElementsAre(FailedCommand{"/usr/sbin/ethtool -c eth0", "failed"}));
}

TEST(CollectionWatch, NotesACommandThatWasTooLongToBegin) {
    CollectionWatch watch;
    const std::string command = "/usr/sbin/ethtool -i " + std::string(300, 'x');
    EXPECT_EQ(Event::kCommandEnds, watch.take(TRACE_DBG_ERROR, kRunner + " [" + command + "] command failed! (7)"));
    EXPECT_THAT(watch.failures(), ElementsAre(FailedCommand{command, "failed"}));
}

TEST(CollectionWatch, NotesACommandThatPrintedNothing) {
    CollectionWatch watch;
    leave(watch, "/usr/sbin/ethtool -g eth0", -1);
    EXPECT_THAT(watch.failures(), ElementsAre(FailedCommand{"/usr/sbin/ethtool -g eth0", "printed nothing"}));
}

TEST(CollectionWatch, NotesACommandThatASignalEnded) {
    CollectionWatch watch;
    leave(watch, "/sbin/route", 11);
    EXPECT_EQ(11, watch.signal());
    EXPECT_THAT(watch.failures(), ElementsAre(FailedCommand{"/sbin/route", "was ended by signal 11"}));
    leave(watch, "/sbin/route", 128 + 6);  // with a core file
    EXPECT_EQ(6, watch.signal());
    leave(watch, "/sbin/route", 0);
    EXPECT_EQ(0, watch.signal());
}

TEST(CollectionWatch, NotesTheSameFailureOnce) {
    CollectionWatch watch;
    fail(watch, "/bin/cat /etc/resolv.conf");
    fail(watch, "/bin/cat /etc/resolv.conf");
    leave(watch, "/bin/cat /etc/resolv.conf", -1);
    EXPECT_THAT(watch.failures(), ElementsAre(FailedCommand{"/bin/cat /etc/resolv.conf", "failed"},
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

TEST(CollectionWatch, DoesNotNoteWhatTheReportDoesNotMiss) {
    CollectionWatch watch;
    fail(watch, "/bin/ls /proc/net/bonding");
    leave(watch, "/bin/netstat -A inet6 -nr", -1);
    fail(watch, "/usr/sbin/ethtool -a eth0:1");
    EXPECT_THAT(watch.failures(), IsEmpty());
}

TEST(DescribeFailure, NamesSubjectMeaningCommandAndOutcome) {
    EXPECT_EQ("eth0: coalesce settings: /usr/sbin/ethtool -c eth0 failed",
              describeFailure({"/usr/sbin/ethtool -c eth0", "failed"}));
    EXPECT_EQ("kernel release: /bin/uname -r printed nothing", describeFailure({"/bin/uname -r", "printed nothing"}));
    EXPECT_EQ("/sbin/other failed", describeFailure({"/sbin/other", "failed"}));
}

}  // namespace
