#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kFourIds = "void CNetworkParameter::GetFourIds(std::string, std::string&)";
const std::string kDescription = "void CNetworkParameter::GetDeviceDescription(std::string, std::string&)";
const std::string kVendor = "void CNetworkParameter::GetVendorID(std::string, std::string&)";
const std::string kPhysicalDev = "bool CNetworkParameter::GetPhysicalDev(int, std::string&)";
const std::string kLspci = "/sbin/lspci -mns 03:00.0";
const std::string kGrep = "/sbin/lspci -m | grep 03:00.0";

class PciIdentity : public CollectorTest {
protected:
    void SetUp() override {
        CollectorTest::SetUp();
        text = "earlier";
    }

    /// Collects eth0 with this bus information.
    void collectPort(const std::string& busInfo) {
        collectInterfaces({"eth0"});
        machine.anyCommand("/usr/sbin/ethtool", "x\n");
        machine.command("/usr/sbin/ethtool -i eth0", "bus-info: " + busInfo + "\n");
        collector->GetEtherConfigurations();
        std::string name;
        collector->GetPhysicalDev(1, name);
        forget();
    }

    std::string text;
};

using GetFourIds = PciIdentity;
using GetDeviceDescription = PciIdentity;
using GetVendorID = PciIdentity;

TEST_F(GetFourIds, ReadsVendorDeviceAndSubsystem) {
    machine.command(kLspci, "03:00.0 \"0200\" \"8086\" \"10c9\" -r01 -p00 \"103c\" \"323f\"\n");
    collector->GetFourIds("03:00.0", text);
    EXPECT_EQ(text, "8086 10c9 103c 323f");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kFourIds, " 03:00.0")} + ran(kLspci) + Lines{leave(kFourIds, " 8086 10c9 103c 323f")}));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(GetFourIds, ClosesTheResultFileBeforeItRemovesIt) {
    machine.command(kLspci, "03:00.0 \"0200\" \"8086\" \"10c9\"\n");
    collector->GetFourIds("03:00.0", text);
    EXPECT_THAT(libc().deletedWhileOpen, testing::IsEmpty());
}

TEST_F(GetFourIds, LeavesTheTextIfTheCommandFails) {
    machine.command(kLspci, "x\n", {1});
    collector->GetFourIds("03:00.0", text);
    EXPECT_EQ(text, "earlier");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kFourIds, " 03:00.0")} + failed(kLspci)));
}

TEST_F(GetFourIds, WaitsForALocationThatIsNotThere) {
    machine.command(kLspci, "");
    collector->GetFourIds("03:00.0", text);
    EXPECT_EQ(text, "earlier");
    EXPECT_EQ(libc().sleeps, 10);
}

TEST_F(GetFourIds, HasExtraBlanksForFieldsThatAreNotThere) {
    const struct {
        std::string line;
        std::string ids;
    } rows[] = {
        {"03:00.0 \"0604\" \"8086\" \"0001\" -p00 \"\" \"\"\n", "8086 0001  "},
        {"03:00.0 \"0200\" \"8086\" \"10c9\"\n", "8086 10c9  "},
        {"03:00.0\n", "   "},
        {"\n", "   "},
        {"03:00.0 \"0200\" \"8086", "8086   "},  // no line feed, no closing quote
    };
    for (const auto& row : rows) {
        machine.command(kLspci, row.line);
        collector->GetFourIds("03:00.0", text);
        EXPECT_EQ(text, row.ids) << row.line;
    }
}

TEST_F(GetFourIds, ReadsTheFirstLineAlone) {
    machine.command(kLspci, "a \"0200\" \"1\" \"2\" \"3\" \"4\"\nb \"0200\" \"5\" \"6\" \"7\" \"8\"\n");
    collector->GetFourIds("03:00.0", text);
    EXPECT_EQ(text, "1 2 3 4");
}

TEST_F(GetFourIds, CutsALineThatDoesNotFitTheBuffer) {
    const std::string line = "03:00.0 \"" + std::string(240, 'c') + "\" \"8086\" \"10c9\" \"1\" \"2\"\n";
    machine.command(kLspci, line);
    collector->GetFourIds("03:00.0", text);
    EXPECT_EQ(text, "808   ");  // what stands within 255 characters
}

TEST_F(GetDeviceDescription, JoinsTheNamesOfVendorAndDevice) {
    machine.command("/sbin/lspci -m",
                    "02:03:00.0 \"Other\" \"x\" \"y\"\n"
                    "03:00.0 \"Ethernet controller\" \"Intel Corporation\" \"82576 Gigabit\" -r01 \"HP\" \"NC\"\n"
                    "03:00.0 \"Ethernet controller\" \"second\" \"line\"\n");
    collector->GetDeviceDescription("03:00.0", text);
    EXPECT_EQ(text, "Intel Corporation 82576 Gigabit");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kDescription, " 03:00.0")} + ran(kGrep) +
                                  Lines{leave(kDescription, " Intel Corporation 82576 Gigabit")}));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(GetDeviceDescription, ClosesTheResultFileBeforeItRemovesIt) {
    machine.command("/sbin/lspci -m", "03:00.0 \"a\" \"b\" \"c\"\n");
    collector->GetDeviceDescription("03:00.0", text);
    EXPECT_THAT(libc().deletedWhileOpen, testing::IsEmpty());
}

TEST_F(GetDeviceDescription, IsEmptyForALocationThatGrepDoesNotFind) {
    machine.command("/sbin/lspci -m", "04:00.0 \"Ethernet controller\" \"Intel\" \"82576\"\n");
    collector->GetDeviceDescription("03:00.0", text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kDescription, " 03:00.0")} + failed(kGrep)));
}

TEST_F(GetDeviceDescription, TakesTheLineWhoseFirstWordIsTheLocation) {
    machine.command("/sbin/lspci -m", "03:0010 \"a\" \"b\" \"c\"\n04:00.0 \"a\" \"03:00.0\" \"c\"\n");
    collector->GetDeviceDescription("03:00.0", text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kDescription, " 03:00.0")} + ran(kGrep) + Lines{leave(kDescription, " ")}));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(GetDeviceDescription, IsOneBlankForALineWithoutFields) {
    machine.command("/sbin/lspci -m", "03:00.0\n");
    collector->GetDeviceDescription("03:00.0", text);
    EXPECT_EQ(text, " ");
}

TEST_F(GetVendorID, TellsTheVendorOfAPort) {
    collectPort("0000:03:00.0");
    machine.command(kLspci, "03:00.0 \"0200\" \"8086\" \"10c9\" \"103c\" \"323f\"\n");
    collector->GetVendorID("eth0", text);
    EXPECT_EQ(text, "8086");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kVendor, " eth0"), enter(kPhysicalDev), leave(kPhysicalDev, " eth0"),
                     enter(kFourIds, " 03:00.0")} +
               ran(kLspci) + Lines{leave(kFourIds, " 8086 10c9 103c 323f"), leave(kVendor, " 8086")}));
}

TEST_F(GetVendorID, TakesSevenCharactersFromPositionFive) {
    collectPort("0000:1f:1c.7extra");
    machine.command("/sbin/lspci -mns 1f:1c.7", "x \"0200\" \"14e4\"\n");
    collector->GetVendorID("eth0", text);
    EXPECT_EQ(text, "14e4");
    collector = std::make_unique<CNetworkParameter>(kModule);
    collectPort("0000:");
    machine.command("/sbin/lspci -mns", "x \"0200\" \"ffff\"\n");
    collector->GetVendorID("eth0", text);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/lspci -mns"}));
    EXPECT_EQ(text, "ffff");
}

TEST_F(GetVendorID, KeepsTheTextForAnInterfaceOnNoBus) {
    for (const char* busInfo : {"", "0000"}) {
        collector = std::make_unique<CNetworkParameter>(kModule);
        collectPort(busInfo);
        collector->GetVendorID("eth0", text);
        EXPECT_EQ(text, "earlier");
        EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
        EXPECT_EQ(TestHost::trace().back(), leave(kVendor, " earlier"));
    }
}

TEST_F(GetVendorID, IsEmptyIfTheCommandFails) {
    collectPort("0000:03:00.0");
    collector->GetVendorID("eth0", text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(TestHost::trace().back(), leave(kVendor, " "));
}

TEST_F(GetVendorID, IsEmptyWithoutDriverData) {
    collector->GetVendorID("eth0", text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(TestHost::trace().front(), enter(kVendor, " eth0"));
    EXPECT_EQ(TestHost::trace().back(), leave(kVendor, " "));
}

TEST_F(GetVendorID, IsThatOfTheInterfaceUnderAVlan) {
    collectInterfaces({"eth0", "eth0.100", "eth1"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:03:00.0\n");
    machine.command("/usr/sbin/ethtool -i eth1", "bus-info: 0000:04:00.0\n");
    machine.file("/proc/net/vlan/config", "h\nh\neth0.100 | 100 | eth0\n");
    machine.command(kLspci, "x \"0200\" \"8086\"\n");
    collector->GetVendorID("eth0.100", text);
    EXPECT_EQ(text, "8086");
}

TEST_F(GetVendorID, CutsAnyTextOfFiveCharactersAndMore) {
    collectPort("virtio0");
    machine.command("/sbin/lspci -mns o0", "", {1});
    collector->GetVendorID("eth0", text);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/lspci -mns o0"}));
    EXPECT_EQ(text, "");
}

TEST_F(GetVendorID, IsThatOfTheLastPortForABond) {
    collectInterfaces({"bond0", "eth0", "eth1"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:03:00.0\n");
    machine.command("/usr/sbin/ethtool -i eth1", "bus-info: 0000:04:00.0\n");
    machine.file("/proc/net/bonding/bond0", "Slave Interface: eth0\nPermanent HW addr: aa\n");
    collector->GetBondingConfifurations();
    machine.command("/sbin/lspci -mns 04:00.0", "x \"0200\" \"14e4\"\n");
    collector->GetVendorID("bond0", text);
    EXPECT_EQ(text, "14e4");
}

}  // namespace
}  // namespace kvl::test
