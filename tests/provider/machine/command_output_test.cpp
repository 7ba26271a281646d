#include "provider/machine/command_output.h"

#include <gtest/gtest.h>

namespace {

using kvl::provider::interfaceNamesIn;
using kvl::provider::namesInterfaces;
using kvl::provider::PlainCommand;
using kvl::provider::readPlainCommand;
using kvl::provider::withholdForeignBusInfo;
using Names = std::set<std::string>;

PlainCommand command(const std::string& line) {
    return *readPlainCommand(line + " > /tmp/x 2> /dev/null");
}

TEST(CommandOutput, NamesInterfacesAtTheBeginningOfTheirLines) {
    EXPECT_EQ((Names{"eth0", "eth0:;id", "$(x)"}),
              interfaceNamesIn(command("/sbin/ifconfig -a"),
                               "eth0      Link encap:Ethernet  HWaddr 00\n          inet addr:1\n\n"
                               "eth0:;id  Link encap:Ethernet\n\n$(x) Link encap:Ethernet\n"));
}

TEST(CommandOutput, NamesBondsByTheFilesOfTheirDirectory) {
    EXPECT_EQ((Names{"bond0", "b;1"}), interfaceNamesIn(command("/bin/ls /proc/net/bonding"), "bond0\nb;1\n"));
}

TEST(CommandOutput, NamesNothingElsewhere) {
    EXPECT_EQ(Names{}, interfaceNamesIn(command("/bin/uname -r"), "a;b\n"));
    EXPECT_EQ(Names{}, interfaceNamesIn(command("/sbin/route"), "default 1.2.3.4 0.0.0.0 UG 0 0 0 a;b\n"));
    EXPECT_FALSE(namesInterfaces(command("/bin/uname -r")));
    EXPECT_FALSE(namesInterfaces(command("/usr/sbin/ethtool -k eth0")));
    for (const char* line : {"/sbin/ifconfig -a", "/bin/ls /proc/net/bonding", "/bin/cat /proc/net/bonding/bond0",
                             "/bin/cat /proc/net/vlan/config", "/sbin/route", "/bin/netstat -A inet6 -nr"}) {
        EXPECT_TRUE(namesInterfaces(command(line))) << line;
    }
}

struct BusInfo {
    std::string value;
    bool isHandedOn;
};

class BusInfoLine : public testing::TestWithParam<BusInfo> {};

TEST_P(BusInfoLine, IsHandedOnIfItIsTheAddressOfAPciDevice) {
    const auto [value, isHandedOn] = GetParam();
    const std::string before = "driver: e1000\nbus-info: " + value + "\nsupports-test: yes\n";
    std::string output = before;
    EXPECT_EQ(isHandedOn ? "" : value, withholdForeignBusInfo(command("/usr/sbin/ethtool -i eth0"), "", output));
    EXPECT_EQ(isHandedOn ? before : "driver: e1000\nsupports-test: yes\n", output);
}

INSTANTIATE_TEST_SUITE_P(Forms, BusInfoLine,
                         testing::Values(BusInfo{"0000:03:00.0", true}, BusInfo{"10000:e1:00.1", true},
                                         BusInfo{"0000:AF:1f.7", true}, BusInfo{"", true}, BusInfo{"virtio0", false},
                                         BusInfo{"vif-0", false}, BusInfo{"usb-0000:00:1d.7-2", false},
                                         BusInfo{"0000:$(id)", false}, BusInfo{"0000:03:00.0;id", false},
                                         BusInfo{"000:03:00.0", false}, BusInfo{"0000:03:00.", false},
                                         BusInfo{"0000:03-00.0", false}, BusInfo{"0000:03:00;0", false},
                                         BusInfo{"N/A", false}, BusInfo{"0000:-1:00.0", false}));

TEST(CommandOutput, HasTheAddressOfThePciDeviceInPlaceOfOtherBusInformation) {
    std::string output = "driver: virtio_net\nbus-info: virtio0\nsupports-test: no\n";
    EXPECT_EQ("", withholdForeignBusInfo(command("/usr/sbin/ethtool -i eth0"), "0000:00:03.0", output));
    EXPECT_EQ("driver: virtio_net\nbus-info: 0000:00:03.0\nsupports-test: no\n", output);
    EXPECT_EQ("0000:00:03.0", kvl::provider::busInfoIn(output));
}

TEST(CommandOutput, LeavesTheLinesOfOtherCommandsAlone) {
    std::string output = "bus-info: virtio0\n";
    EXPECT_EQ("", withholdForeignBusInfo(command("/usr/sbin/ethtool -k eth0"), "", output));
    EXPECT_EQ("bus-info: virtio0\n", output);
}

TEST(CommandOutput, KeepsALastLineWithoutAnEnd) {
    std::string output = "bus-info: virtio0\ndriver: x";
    EXPECT_EQ("virtio0", withholdForeignBusInfo(command("/usr/sbin/ethtool -i eth0"), "", output));
    EXPECT_EQ("driver: x", output);
}

}  // namespace
