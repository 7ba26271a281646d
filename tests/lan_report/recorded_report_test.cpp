#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

/// Whole reports of recorded servers, with everything collected first.
class RecordedReport : public PrivateMachineTest {
protected:
    std::string reportOf(const std::string& recording, const std::list<std::string>& vendors) {
        machine.load(std::string(KVL_SOURCE_DIRECTORY "/machines/") + recording);
        CNetworkParameter collector(kModule);
        EXPECT_TRUE(collector.GetNetworkConfigurations());
        EXPECT_TRUE(collector.GetEtherConfigurations());
        EXPECT_TRUE(collector.GetBondingConfifurations());
        EXPECT_TRUE(collector.GetRoutingConfigurations());
        CLanXmlWriter writer(vendors, &collector, kModule);
        writer.SetCommonInfo();
        writer.SetPhysicalInfo();
        writer.SetTeamInfo();
        writer.SetVirtualInfo();
        EXPECT_TRUE(writer.Write("/tmp/report.xml"));
        EXPECT_THAT(machine.commandsMissing(), testing::IsEmpty());
        EXPECT_EQ(libc().sleeps, 0);
        return contentOf("/tmp/report.xml");
    }

    static std::string expected(const std::string& name) {
        return contentOf(KVL_SOURCE_DIRECTORY "/tests/lan_report/" + name);
    }

    /// A document without the nodes of some interfaces in its sections.
    static std::string without(std::string text, const Lines& ifnames) {
        for (const std::string& ifname : ifnames) {
            for (const std::string tag : {"physical_port", "team_port", "vlan_port"}) {
                const auto begin = text.find("    <" + named(tag, ifname) + ">\n");
                const std::string closing = "    </" + tag + ">\n";
                if (begin != std::string::npos) {
                    text.erase(begin, text.find(closing, begin) + closing.size() - begin);
                }
            }
        }
        return text;
    }
};

TEST_F(RecordedReport, OfTheFourPortServerIsTheWholeDocument) {
    EXPECT_EQ(reportOf("four-port", {"8086", "14e4"}), expected("four_port_report.xml"));
}

TEST_F(RecordedReport, OfTheFourPortServerHoldsWhatBelongsToOneVendorAlone) {
    const std::string whole = expected("four_port_report.xml");
    EXPECT_EQ(reportOf("four-port", {"8086"}), without(whole, {"eth2", "eth3", "bond1", "eth3.100"}));
    EXPECT_EQ(reportOf("four-port", {"14E4"}), without(whole, {"eth0", "eth1", "bond0", "bond0.200"}));
}

TEST_F(RecordedReport, OfTheOnePortServerIsTheWholeDocument) {
    EXPECT_EQ(reportOf("one-port", {"14e4"}), expected("one_port_report.xml"));
}

TEST_F(RecordedReport, OfTheOnePortServerRunsTheseCommandsInThisOrder) {
    reportOf("one-port", {"14e4"});
    EXPECT_EQ(
        commandsTraced(),
        (Lines{"/bin/uname -r",
               // the four collections; there are no bonds
               "/sbin/ifconfig -a", "/usr/sbin/ethtool -i eth0", "/usr/sbin/ethtool -k eth0",
               "/usr/sbin/ethtool -a eth0", "/usr/sbin/ethtool -g eth0", "/usr/sbin/ethtool -c eth0", "/sbin/route",
               // Common
               "/bin/cat /etc/resolv.conf",
               // Physical: the vendor, the port, its addresses; no question for VLANs and teams runs a command
               "/sbin/lspci -mns 01:00.0", "/sbin/lspci -mns 01:00.0", "/sbin/lspci -m | grep 01:00.0",
               "/bin/cat /etc/resolv.conf", "/bin/netstat -A inet6 -nr"}));
}

}  // namespace
}  // namespace kvl::test
