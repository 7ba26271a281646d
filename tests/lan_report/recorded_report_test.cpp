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

    /// The four-port server's report, with what a vendor's tools have left for one of its ports.
    std::string fourPortReport(const std::list<std::string>& vendors) {
        const std::string eth2 = std::string(kItemDirectory) + "/eth2";
        machine.file(eth2 + "2", "00:10:18:5C:A2:21\n");
        machine.file(eth2 + "3", "Port Manager\n");
        machine.file(eth2 + "4", "7.4.25\n");
        return reportOf("four-port", vendors);
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
    EXPECT_EQ(fourPortReport({"8086", "14e4"}), expected("four_port_report.xml"));
}

TEST_F(RecordedReport, OfTheFourPortServerHoldsWhatBelongsToOneVendorAlone) {
    const std::string whole = expected("four_port_report.xml");
    EXPECT_EQ(fourPortReport({"8086"}), without(whole, {"eth2", "eth3", "bond1", "eth3.100"}));
    EXPECT_EQ(fourPortReport({"14E4"}), without(whole, {"eth0", "eth1", "bond0", "bond0.200"}));
}

/// The commands that collect the driver data of an interface, by their options; only a port has settings.
Lines ethtoolCommands(const std::string& ifname, const std::string& options) {
    Lines commands;
    for (const char option : options) {
        commands.push_back(std::string("/usr/sbin/ethtool -") + option + " " + ifname);
    }
    return commands;
}

/// The commands that identify a port: for its vendor, for its identifiers, for its description.
Lines cardCommands(const std::string& location) {
    return {"/sbin/lspci -mns " + location, "/sbin/lspci -mns " + location, "/sbin/lspci -m | grep " + location};
}

TEST_F(RecordedReport, OfTheFourPortServerRunsTheseCommandsInThisOrder) {
    fourPortReport({"8086", "14e4"});
    const Lines addresses = {kReadResolvConf, kReadIpv6Routes};
    const Lines collections =
        Lines{"/bin/uname -r", "/sbin/ifconfig -a"} + ethtoolCommands("bond0", "i") +
        ethtoolCommands("bond0.200", "i") + ethtoolCommands("bond1", "i") + ethtoolCommands("bond1:1", "i") +
        ethtoolCommands("eth0", "ikagc") + ethtoolCommands("eth1", "ikagc") + ethtoolCommands("eth2", "ikagc") +
        ethtoolCommands("eth3", "ikagc") + ethtoolCommands("eth3.100", "ikagc") + ethtoolCommands("eth3:1", "ikagc") +
        ethtoolCommands("eth3:2", "ikagc") +
        Lines{kListBonds, "/bin/cat /proc/net/bonding/bond0", "/bin/cat /proc/net/bonding/bond1", "/sbin/route"};
    // The VLANs are read once, at the first port. A port under a VLAN is not looked for in the teams.
    const Lines physical = cardCommands("02:00.0") + Lines{"/bin/cat /proc/net/vlan/config", kListBonds} +
                           cardCommands("02:00.1") + Lines{kListBonds} + cardCommands("04:00.0") + Lines{kListBonds} +
                           cardCommands("04:00.1");
    // The first slave of each bond is of a target vendor. bond0 is under a VLAN.
    const Lines team = Lines{kListBonds, "/sbin/lspci -mns 02:00.0", "/sbin/lspci -mns 04:00.0"} + addresses;
    const Lines vlan = Lines{"/sbin/lspci -mns 02:00.0"} + addresses + Lines{"/sbin/lspci -mns 04:00.1"} + addresses;
    EXPECT_EQ(commandsTraced(), collections + Lines{kReadResolvConf} + physical + team + vlan);
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
