#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "machines/replay.h"
#include "tests/machines/outside.h"
#include "tests/machines/recording_check.h"

namespace kvl::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ShippedRecording : public testing::TestWithParam<std::string> {};

TEST_P(ShippedRecording, HasNoFault) {
    EXPECT_THAT(faultsOf(machines::findRecording(GetParam())), IsEmpty());
}

TEST_P(ShippedRecording, IsLaidDownWhole) {
    machines::PrivateRootOptions options;
    options.recording = machines::findRecording(GetParam());
    // Not one of these may be among the commands that the recording has.
    const Outcome outcome =
        runInside(options,
                  "recording=/.machine/recording; [ -d $recording/files ] || exit 0; cd $recording/files\n"
                  "/bin/busybox find . -type f | while read -r file; do\n"
                  "    /bin/busybox cmp \"$file\" \"/$file\" || echo \"$file\"\ndone");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
}

std::string parameterName(const testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Machines, ShippedRecording,
                         testing::Values("adapters-fc", "adapters-mixed", "adapters-none", "bond-modes",
                                         "debian-12-guest", "every-command-fails", "four-port", "odd-names", "one-port",
                                         "sixty-four-port"),
                         parameterName);

TEST(ShippedRecordings, AreThoseThatAreChecked) {
    EXPECT_THAT(machines::knownMachines(),
                ElementsAre("adapters-fc", "adapters-mixed", "adapters-none", "bond-modes", "debian-12-guest",
                            "every-command-fails", "four-port", "odd-names", "one-port", "sixty-four-port"));
}

TEST(ShippedRecordings, HoldTheSurprisesOfTheirNames) {
    const std::string vlans = readFile(machines::findRecording("odd-names") + "/files/proc/net/vlan/config");
    EXPECT_NE(vlans.find("\naverylongname15| 4094"), std::string::npos);
    const std::string bonding = machines::findRecording("bond-modes") + "/files/proc/net/bonding/";
    EXPECT_NE(readFile(bonding + "bond1").find("IEEE 802.3ad Dynamic link aggregation"), std::string::npos);
    const std::string targets = readFile(bonding + "bond2");
    const std::size_t line = targets.find("ARP IP target/s");
    EXPECT_EQ(targets.find('\n', line) - line, 302U);
}

// A recording with one port that has no fault, to be broken by each test in its own way.
class BrokenRecording : public testing::Test {
protected:
    BrokenRecording() {
        scratch_.write("README.md", "# Server\nOne port.\n");
        scratch_.write("commands/bin/uname/-r", "2.6.32\n");
        scratch_.write("commands/sbin/ifconfig/-a", "eth0      Link encap:Ethernet\n          UP\n\n");
        scratch_.write("commands/sbin/route/(none)", "Kernel IP routing table\n");
        scratch_.write("commands/bin/netstat/(any).status", "1\n");
        scratch_.write("commands/sbin/lspci/-m", "02:00.0 \"Ethernet controller\"\n");
        scratch_.write("commands/sbin/lspci/-mns 02:00.0", "02:00.0 \"0200\"\n");
        scratch_.write("commands/usr/sbin/ethtool/-i eth0", "bus-info: 0000:02:00.0\n");
        for (const char* option : {"-k", "-a", "-g", "-c"}) {
            scratch_.write("commands/usr/sbin/ethtool/" + std::string(option) + " eth0.status", "76\n");
        }
    }

    void remove(const std::string& name) { std::filesystem::remove(scratch_ / name); }

    std::vector<std::string> faults() const { return faultsOf(scratch_.path()); }

    ScratchDirectory scratch_;
};

TEST_F(BrokenRecording, IsSoundAsLongAsNothingIsBroken) {
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(BrokenRecording, MissesTheEthtoolEntryOfAPort) {
    remove("commands/usr/sbin/ethtool/-g eth0.status");
    EXPECT_THAT(faults(), ElementsAre("no entry usr/sbin/ethtool/-g eth0"));
}

TEST_F(BrokenRecording, MissesACard) {
    remove("commands/sbin/lspci/-mns 02:00.0");
    scratch_.write("commands/sbin/lspci/-m", "12:00.0 \"Ethernet controller\"\n");
    EXPECT_THAT(faults(), ElementsAre("no entry sbin/lspci/-mns 02:00.0", "lspci -m does not list 02:00.0 of eth0"));
}

TEST_F(BrokenRecording, MissesTheInterfacesOfABond) {
    scratch_.write("files/proc/net/bonding/bond0", "Bonding Mode: x\nSlave Interface: eth0\nSlave Interface: eth1\n");
    EXPECT_THAT(faults(),
                ElementsAre("ifconfig does not know bond0, a bond", "ifconfig does not know eth1, a slave of bond0"));
}

TEST_F(BrokenRecording, MissesTheInterfaceOfAVlan) {
    scratch_.write("files/proc/net/vlan/config", "1\n2\neth0.7         | 7  | eth0\nnonsense\n");
    EXPECT_THAT(faults(), ElementsAre("ifconfig does not know eth0.7, a VLAN", "VLAN table: nonsense"));
}

TEST_F(BrokenRecording, HasAnEntryOfAnUnknownCommand) {
    scratch_.write("commands/sbin/ifconfg/-a", "x\n");
    EXPECT_THAT(faults(), ElementsAre("commands/sbin/ifconfg/-a belongs to no command and is no file of a server"));
}

TEST_F(BrokenRecording, HasAnEndingThatIsNone) {
    scratch_.write("commands/sbin/route/(none).status", "0\n");
    EXPECT_THAT(faults(), ElementsAre("commands/sbin/route/(none).status is no ending"));
}

TEST_F(BrokenRecording, HasBrokenLines) {
    scratch_.write("commands/bin/uname/-r", "2.6.32");
    scratch_.write("commands/sbin/route/(none)", "a\tb\r\n");
    EXPECT_THAT(faults(), ElementsAre("commands/bin/uname/-r lacks its last line feed",
                                      "commands/sbin/route/(none) holds a carriage return or a zero byte",
                                      "commands/sbin/route/(none) holds a tab"));
}

TEST_F(BrokenRecording, HasAnOpenLastBlock) {
    scratch_.write("commands/sbin/ifconfig/-a", "eth0      Link encap:Ethernet\n          UP\n");
    EXPECT_THAT(faults(), ElementsAre("ifconfig: the last block is not closed by an empty line"));
}

TEST_F(BrokenRecording, HasNoTitle) {
    scratch_.write("README.md", "Server\n");
    EXPECT_THAT(faults(), Contains("README.md is not a title and one line"));
}

}  // namespace
}  // namespace kvl::test
