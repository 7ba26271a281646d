// What the machines of today print reaches the report: each test changes a recorded server to one of these forms.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/provider/kvl_program.h"

namespace {

namespace fs = std::filesystem;
using kvl::test::copyRecording;
using kvl::test::Outcome;
using kvl::test::readFile;
using kvl::test::replayKvl;
using kvl::test::ScratchDirectory;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class TranslatedReport : public testing::Test {
protected:
    void print(const std::string& command, const std::string& output) const {
        scratch.write("one-port/commands/" + command, output);
    }
    void file(const std::string& path, const std::string& content) const {
        scratch.write("one-port/files" + path, content);
    }
    void removeSettings() const { fs::remove(recording + "/files/etc/sysconfig/network-scripts/ifcfg-eth0"); }
    Outcome report() const { return replayKvl(recording, {"report"}); }

    const ScratchDirectory scratch;
    const std::string recording = copyRecording("one-port", scratch);
    const std::string before = replayKvl("one-port", {"report"}).output;
};

TEST_F(TranslatedReport, ReadsTheIfconfigOfNetTools2) {
    print("sbin/ifconfig/-a",
          "eth0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"
          "        inet 192.168.1.50  netmask 255.255.255.0  broadcast 192.168.1.255\n"
          "        ether d4:ae:52:c1:07:3a  txqueuelen 1000  (Ethernet)\n"
          "        RX packets 52018  bytes 9120334 (8.6 MiB)\n"
          "        RX errors 0  dropped 0  overruns 0  frame 0\n"
          "        TX packets 30120  bytes 4012211 (3.8 MiB)\n"
          "        TX errors 0  dropped 0 overruns 0  carrier 0  collisions 0\n\n"
          "lo: flags=73<UP,LOOPBACK,RUNNING>  mtu 65536\n"
          "        inet 127.0.0.1  netmask 255.0.0.0\n"
          "        loop  txqueuelen 1000  (Local Loopback)\n\n");
    const Outcome outcome = report();
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(before, outcome.output);
}

TEST_F(TranslatedReport, HasNoValueForWhatADriverDoesNotSupport) {
    print("usr/sbin/ethtool/-g eth0",
          "Ring parameters for eth0:\nPre-set maximums:\nRX:\t\t2047\nRX Mini:\tn/a\nRX Jumbo:\tn/a\nTX:\t\t511\n"
          "Current hardware settings:\nRX:\t\t200\nRX Mini:\tn/a\nRX Jumbo:\tn/a\nTX:\t\t511\n\n");
    EXPECT_THAT(report().output, HasSubstr("  Ring              RX 200 of 2047, TX 511 of 511\n"));
}

TEST_F(TranslatedReport, ReadsTheOffloadNamesOfOldRedHat) {
    print("usr/sbin/ethtool/-k eth0",
          "Offload parameters for eth0:\nrx-checksumming: on\ntx-checksumming: on\nscatter-gather: on\n"
          "tcp segmentation offload: on\nudp fragmentation offload: off\ngeneric segmentation offload: off\n");
    EXPECT_THAT(report().output, HasSubstr("tcp-segmentation-offload\n"));
}

TEST_F(TranslatedReport, ReadsSettingsAsTheShellDoes) {
    file("/etc/sysconfig/network-scripts/ifcfg-eth0",
         "#ONBOOT=no\nDEVICE=\"eth0\"\nONBOOT='yes' # x\nBOOTPROTO=\"dhcp\"\n");
    EXPECT_EQ(before, report().output);
    file("/etc/sysconfig/network-scripts/ifcfg-eth0", "#ONBOOT=yes\nDEVICE=eth0\nONBOOT=no\nBOOTPROTO=none\n");
    EXPECT_THAT(report().output, AllOf(HasSubstr("  State             Enabled, on boot: no\n"),
                                       HasSubstr("IPv4 DHCP         Disabled\n")));
}

TEST_F(TranslatedReport, FindsSettingsByTheirDevice) {
    removeSettings();
    file("/etc/sysconfig/network-scripts/ifcfg-office", "DEVICE=eth0\nONBOOT=yes\nBOOTPROTO=dhcp\n");
    EXPECT_EQ(before, report().output);
    file("/etc/sysconfig/network-scripts/ifcfg-eth0", "DEVICE=eth7\nONBOOT=no\nBOOTPROTO=none\n");
    EXPECT_EQ(before, report().output) << "the file of another interface";
}

TEST_F(TranslatedReport, ReadsNetworkManagersKeyfilesWhereThereIsNoIfcfgFile) {
    removeSettings();
    file("/etc/NetworkManager/system-connections/office.nmconnection",
         "[connection]\nid=office\ntype=ethernet\ninterface-name=eth0\n\n[ipv4]\nmethod=auto\n");
    EXPECT_EQ(before, report().output);
}

TEST_F(TranslatedReport, NamesAGatewayThatHasNoAddress) {
    print("sbin/route/(none)",
          "Kernel IP routing table\n"
          "Destination     Gateway         Genmask         Flags Metric Ref    Use Iface\n"
          "default         _gateway        0.0.0.0         UG    100    0        0 eth0\n");
    const Outcome outcome = report();
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("kvl: eth0: IPv4 gateway: /sbin/route prints its name '_gateway', and no address\n", outcome.errors);
    EXPECT_THAT(outcome.output, Not(HasSubstr("gateway")));
}

TEST_F(TranslatedReport, AsksForRoutesByNumberWhereItCan) {
    print("sbin/route/-n",
          "Kernel IP routing table\n"
          "Destination     Gateway         Genmask         Flags Metric Ref    Use Iface\n"
          "0.0.0.0         192.168.1.1     0.0.0.0         UG    0      0        0 eth0\n"
          "0.0.0.0         0.0.0.0         0.0.0.0         U     0      0        0 ppp0\n");
    print("sbin/route/(none)", "default _gateway 0.0.0.0 UG 0 0 0 eth0\n");
    const Outcome outcome = report();
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(before, outcome.output);
}

TEST_F(TranslatedReport, PassesOverCarriageReturns) {
    for (const char* command : {"sbin/ifconfig/-a", "sbin/route/(none)", "usr/sbin/ethtool/-i eth0"}) {
        std::string output = readFile(recording + "/commands/" + command);
        for (auto end = output.find('\n'); end != std::string::npos; end = output.find('\n', end + 2)) {
            output.insert(end, "\r");
        }
        print(command, output);
    }
    const Outcome outcome = report();
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(before, outcome.output);
}

}  // namespace
