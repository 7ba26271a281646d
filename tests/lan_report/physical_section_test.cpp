#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

Lines description(const std::string& location, const std::string& text) {
    return Lines{enter(kGetDescription, " " + location)} + ran("/sbin/lspci -m | grep " + location) +
           Lines{leave(kGetDescription, " " + text)};
}

/// eth0 of vendor 8086, the target, up to its addresses.
Lines eth0Identified() {
    return physicalDev("eth0") + targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086") +
           fourIds("03:00.0", "8086 10c9 8086 a03c") + description("03:00.0", "Maker of 8086 Network card");
}

/// eth1 of another vendor, and the end of the section.
Lines eth1PassedOver() {
    return physicalDev("eth1") + targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "8086") + physicalDev("-") +
           Lines{leave(kPhysicalSection)};
}

class PhysicalSection : public WriterTest {
protected:
    void SetUp() override {
        WriterTest::SetUp();
        for (int option = 0; option <= 3; ++option) {
            collector->DisableEthtoolOption(option);
        }
        forget();
    }

    /// The section as it stands in the document.
    std::string section() {
        writer->SetPhysicalInfo();
        return nodesOf(report(), "Physical").back();
    }

    /// The values of an element in the section of a machine whose one port is eth0.
    Lines valuesInSection(const std::string& name) { return valuesOf(section(), name); }

    /// The names of the ports in the section.
    Lines ports() {
        Lines names;
        for (const std::string& port : nodesOf(section(), "physical_port")) {
            const std::string head = "<physical_port interface_name=\"";
            names.push_back(port.substr(head.size(), port.find("\">") - head.size()));
        }
        return names;
    }
};

TEST_F(PhysicalSection, ReportsAPortOfATargetVendorWhole) {
    layTwoPorts();
    machine.file("/etc/sysconfig/network-scripts/ifcfg-eth0", "ONBOOT=yes\n");
    collect({"8086"});
    ethtool("eth0").PhysicalMacAddr = "00:00:00:00:00:02";
    const std::string generalInf =
        element("general-inf", value("PCI Bus/Dev/Func", "3/0/0") + value("Vendor ID", "0x8086") +
                                   value("Device ID", "0x10c9") + value("Subsystem Vendor ID", "0x8086") +
                                   value("Subsystem ID", "0xa03c") +
                                   value("description", "Maker of 8086 Network card") + value("port_state", "Enabled") +
                                   value("onboot", "yes") + value("mac_address", "00:00:00:00:00:01") +
                                   value("physical_mac_address", "00:00:00:00:00:02"));
    const std::string versionInf =
        element("version-inf", value("OS Build Version", kKernelRelease) + value("Firmware Version", "1.7") +
                                   value("Driver Version", "4.0"));
    EXPECT_EQ(section(), element("Physical", element(named("physical_port", "eth0"),
                                                     generalInf + versionInf + plainTcpIpNode() +
                                                         element("driver_parameter_lin", value("mtu", "1500")))));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kPhysicalSection)} + eth0Identified() + vlansWithoutACommand() +
               Lines{enter(kCheckTeamMember, " eth0")} + noBonds() +
               Lines{leave(kCheckTeamMember, " Not team member")} + plainTcpIpBlock("eth0", {"eth0", "eth1"}) +
               vlansWithoutACommand() + Lines{enter(kDriverBlock)} + eth1PassedOver()));
}

TEST_F(PhysicalSection, IsEmptyOnAMachineWithoutAPhysicalInterface) {
    layInterface("bond0");
    collect();
    EXPECT_EQ(section(), element("Physical"));
    EXPECT_EQ(TestHost::trace(), Lines{enter(kPhysicalSection)} + physicalDev("-") + Lines{leave(kPhysicalSection)});
}

TEST_F(PhysicalSection, WalksPhysicalNamesInByteOrder) {
    for (const char* name : {"eth2", "eth10", "eth0.5", "eth0:1", "bond0", "veth1"}) {
        layInterface(name);
    }
    collect({""});
    for (const char* name : {"eth2", "eth10", "veth1"}) {
        ethtool(name).driver_info.bus_info = "0000:03:00.0";
    }
    EXPECT_EQ(ports(), (Lines{"eth10", "eth2", "veth1"}));
}

TEST_F(PhysicalSection, PassesOverAPortOfAnotherVendorWithoutATraceOfItsOwn) {
    layTwoPorts();
    layPort("eth2", "05:00.0", "8086");
    collect({"8086"});
    EXPECT_EQ(ports(), (Lines{"eth0", "eth2"}));
    forget();
    collect({"1111"});
    EXPECT_EQ(section(), element("Physical"));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kPhysicalSection)} + physicalDev("eth0") +
               targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "1111") + physicalDev("eth1") +
               targetVendor("eth1", {"eth0", "eth1"}, "04:00.0", "14e4", "1111") + physicalDev("eth2") +
               targetVendor("eth2", {"eth0", "eth1", "eth2"}, "05:00.0", "8086", "1111") + physicalDev("-") +
               Lines{leave(kPhysicalSection)}));
}

TEST_F(PhysicalSection, LeavesOutAPortWithoutIfconfigDataWithOneLine) {
    layTwoPorts();
    collect({"8086", "14e4"});
    machine.command("/sbin/ifconfig -a", "eth1 Link encap:Ethernet\n\n");
    collector->GetNetworkConfigurations();  // the list of names still has eth0
    forget();
    EXPECT_EQ(ports(), (Lines{"eth1"}));
    const Lines begin =
        Lines{enter(kPhysicalSection)} + physicalDev("eth0") +
        targetVendor("eth0", {"eth0"}, "03:00.0", "8086", "8086") +
        Lines{noIfconfigData("eth0"), detail(kPhysicalSection, "** (eth0) Network configuration failure! **")} +
        physicalDev("eth1");
    EXPECT_EQ(firstOf(TestHost::trace(), begin.size()), begin);
}

TEST_F(PhysicalSection, LeavesOutAPortWithoutEthtoolDataWithOneLine) {
    layInterface("eth1");
    collect({""});
    machine.command("/sbin/ifconfig -a", "eth0 Link encap:Ethernet\n\n");
    collector->GetNetworkConfigurations();  // the driver data still are those of eth1
    strarray_t names;
    collector->GetInterfaceNameList(names);
    forget();
    EXPECT_EQ(section(), element("Physical"));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kPhysicalSection)} + physicalDev("eth0") +
               Lines{enter(kIsTarget, " eth0"), enter(kGetVendorId, " eth0")} + physicalDev("eth0") +
               Lines{noEthtoolData("eth0"), leave(kGetVendorId, " "), leave(kIsTarget, "  "), noEthtoolData("eth0"),
                     detail(kPhysicalSection, "** (eth0) Network configuration failure! **")} +
               physicalDev("-") + Lines{leave(kPhysicalSection)}));
}

TEST_F(PhysicalSection, AppendsASecondSectionOnTheSameDataAtASecondCall) {
    layTwoPorts();
    collect();
    writer->SetPhysicalInfo();
    writer->SetPhysicalInfo();
    const Lines sections = nodesOf(report(), "Physical");
    ASSERT_EQ(sections.size(), 2U);
    EXPECT_EQ(sections[0], sections[1]);
    EXPECT_THAT(sections[0], testing::HasSubstr("interface_name=\"eth0\""));
}

// ---- general-inf ----

TEST_F(PhysicalSection, LeavesOutAnIdThatTheCardDoesNotHave) {
    layTwoPorts();
    const struct {
        std::string fields;
        std::string elements;
    } rows[] = {
        {"\"8086\" \"10c9\" -r01 \"15d9\" \"\"",
         value("Vendor ID", "0x8086") + value("Device ID", "0x10c9") + value("Subsystem Vendor ID", "0x15d9")},
        {"\"8086\" \"10c9\" -r01", value("Vendor ID", "0x8086") + value("Device ID", "0x10c9")},
        {"\"8086\"", value("Vendor ID", "0x8086")},
    };
    for (const auto& row : rows) {
        machine.command("/sbin/lspci -mns 03:00.0", "03:00.0 \"0200\" " + row.fields + "\n");
        collect();
        EXPECT_THAT(section(), testing::HasSubstr(
                                   indented(indented(indented(value("PCI Bus/Dev/Func", "3/0/0") + row.elements +
                                                              value("description", "Maker of 8086 Network card"))))));
    }
}

TEST_F(PhysicalSection, MovesTheIdsBehindAnEmptyOneUp) {
    layTwoPorts();
    const struct {
        std::string fields;
        std::string elements;
    } rows[] = {
        {"\"8086\" \"10c9\" -r01 \"\" \"a03c\"",
         value("Vendor ID", "0x8086") + value("Device ID", "0x10c9") + value("Subsystem Vendor ID", "0xa03c")},
        {"\"8086\" \"\" -r01 \"15d9\" \"a03c\"",
         value("Vendor ID", "0x8086") + value("Device ID", "0x15d9") + value("Subsystem Vendor ID", "0xa03c")},
        // The text of the ids begins with a blank: the first column is empty, the second one is the second word.
        {"\"\" \"10c9\" -r01 \"15d9\" \"a03c\"", value("Device ID", "0x15d9") + value("Subsystem Vendor ID", "0xa03c")},
        {"\"\" \"10c9\"", ""},
    };
    for (const auto& row : rows) {
        machine.command("/sbin/lspci -mns 03:00.0", "03:00.0 \"0200\" " + row.fields + "\n");
        collect({"8086", ""});
        EXPECT_THAT(section(), testing::HasSubstr(
                                   indented(indented(indented(value("PCI Bus/Dev/Func", "3/0/0") + row.elements +
                                                              value("description", "Maker of 8086 Network card"))))))
            << row.fields;
    }
}

TEST_F(PhysicalSection, WritesNoIdsAndAnEmptyDescriptionIfTheCardCannotBeLookedUp) {
    layInterface("eth0");
    layBusInfo("eth0", "0000:03:00.0");
    collect({""});
    EXPECT_THAT(section(),
                testing::HasSubstr(indented(indented(indented(
                    value("PCI Bus/Dev/Func", "3/0/0") + value("description", "") + value("port_state", "Enabled"))))));
}

TEST_F(PhysicalSection, CutsTheSlotOutOfTheBusInformation) {
    layInterface("eth0");
    collect({""});
    const struct {
        std::string busInfo;
        std::string slot;
    } rows[] = {
        {"0000:03:00.0", "03:00.0"},
        {"0001:0a:1f.7 and more", "0a:1f.7"},
        {"00000:03:00.0", ":03:00."},
        {"0000:03:0", "03:0"},
        {"0000:", ""},
    };
    for (const auto& row : rows) {
        ethtool("eth0").driver_info.bus_info = row.busInfo;
        forget();
        section();
        EXPECT_THAT(commandsTraced(),
                    testing::ElementsAre("/sbin/lspci -mns " + row.slot,  // for the vendor
                                         "/sbin/lspci -mns " + row.slot, "/sbin/lspci -m | grep " + row.slot,
                                         testing::_, testing::_));
    }
}

TEST_F(PhysicalSection, EndsTheReportForABusInformationOfUnderFiveCharacters) {
    layInterface("eth0");
    layPort("eth1", "04:00.0", "14e4");
    collect({"14e4", ""});
    for (const char* busInfo : {"", "0000"}) {
        ethtool("eth0").driver_info.bus_info = busInfo;
        forget();
        EXPECT_EQ(outOfRangeOf([this] { writer->SetPhysicalInfo(); }), "basic_string::substr");
        EXPECT_EQ(report(), document(element("data")));
        EXPECT_EQ(TestHost::trace(), (Lines{enter(kPhysicalSection)} + physicalDev("eth0") +
                                      Lines{enter(kIsTarget, " eth0"), enter(kGetVendorId, " eth0")} +
                                      physicalDev("eth0") + Lines{leave(kGetVendorId, " "), leave(kIsTarget, "  ")}));
    }
}

TEST_F(PhysicalSection, PassesOverAPortOfNoVendorWithAShortBusInformation) {
    layInterface("eth0");
    layPort("eth1", "04:00.0", "14e4");
    collect({"14e4"});
    EXPECT_EQ(ports(), (Lines{"eth1"}));
}

TEST_F(PhysicalSection, WritesThePciTextOfTheCollector) {
    layTwoPorts();
    collect();
    ethtool("eth0").driver_info.businfo = "text";
    EXPECT_EQ(valuesInSection("PCI Bus/Dev/Func"), (Lines{"text"}));
}

TEST_F(PhysicalSection, WritesThePortStateFromTheFlagUp) {
    layTwoPorts();
    collect();
    EXPECT_EQ(valuesInSection("port_state"), (Lines{"Enabled"}));
    ifconfig("eth0").up = false;
    EXPECT_EQ(valuesInSection("port_state"), (Lines{"Disabled"}));
}

TEST_F(PhysicalSection, WritesAnUnknownOnbootAsOneBlank) {
    layTwoPorts();
    collect();
    const struct {
        int onboot;
        std::string text;
    } rows[] = {{-1, " "}, {0, "no"}, {1, "yes"}, {2, "yes"}, {-2, "yes"}};
    for (const auto& row : rows) {
        ifconfig("eth0").ONBOOT = row.onboot;
        EXPECT_EQ(valuesInSection("onboot"), (Lines{row.text})) << row.onboot;
    }
}

TEST_F(PhysicalSection, WritesBothAddressesAlsoIfTheyAreEmpty) {
    layTwoPorts();
    collect();
    ifconfig("eth0").HWaddr = "";
    EXPECT_EQ(valuesInSection("mac_address"), (Lines{""}));
    EXPECT_EQ(valuesInSection("physical_mac_address"), (Lines{""}));
}

// ---- version-inf ----

TEST_F(PhysicalSection, WritesTheVersionsAlsoIfTheyAreEmpty) {
    layTwoPorts();
    collect();
    ifconfig("eth0").kernel_release = "";
    ethtool("eth0").driver_info.firmver = "";
    ethtool("eth0").driver_info.version = "";
    EXPECT_EQ(nodesOf(section(), "version-inf"),
              (Lines{element("version-inf", value("OS Build Version", "") + value("Firmware Version", "") +
                                                value("Driver Version", ""))}));
}

TEST_F(PhysicalSection, WritesTheFirstUtilityAlone) {
    layTwoPorts();
    collector->SetVendorDependInfo("eth0", 3, "first tool");
    collector->SetVendorDependInfo("eth0", 4, "1.0");
    collector->SetVendorDependInfo("eth0", 5, "second tool");
    collector->SetVendorDependInfo("eth0", 6, "2.0");
    collect();
    EXPECT_EQ(nodesOf(section(), "version-inf"),
              (Lines{element("version-inf", value("OS Build Version", kKernelRelease) +
                                                value("Firmware Version", "1.7") + value("Driver Version", "4.0") +
                                                element("Utility", value("Utility Name", "first tool") +
                                                                       value("Utility Version", "1.0")))}));
}

TEST_F(PhysicalSection, WritesAUtilityWithoutAVersion) {
    layTwoPorts();
    collect();
    ethtool("eth0").driver_info.utility = {{"tool", ""}};
    EXPECT_EQ(nodesOf(section(), "Utility"),
              (Lines{element("Utility", value("Utility Name", "tool") + value("Utility Version", ""))}));
}

// ---- Addresses, VLANs and driver settings ----

TEST_F(PhysicalSection, LeavesTheAddressesOfATeamMemberToTheTeam) {
    layTwoPorts();
    layBond("bond0", {"eth0"});
    collect();
    EXPECT_EQ(nodesOf(section(), "tcp_ip_parameter"), (Lines{element("tcp_ip_parameter")}));
    EXPECT_EQ(nodesOf(report(), "driver_parameter_lin"),
              (Lines{element("driver_parameter_lin", value("mtu", "1500"))}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kPhysicalSection)} + eth0Identified() + vlansWithoutACommand() +
                                  Lines{enter(kCheckTeamMember, " eth0")} + bondingIfList({"bond0"}) +
                                  Lines{leave(kCheckTeamMember, " Team member")} + vlansWithoutACommand() +
                                  Lines{enter(kDriverBlock)} + eth1PassedOver()));
}

TEST_F(PhysicalSection, LeavesTheAddressesOfAPortUnderAVlanToTheVlan) {
    layTwoPorts();
    layVlan("eth0.9", "9", "eth0");
    layVlan("eth0.10", "10", "eth0");
    layVlan("eth1.5", "5", "eth1");
    collect();
    const std::string port = nodesOf(section(), "physical_port").front();
    EXPECT_THAT(port, testing::EndsWith(indented(element("tcp_ip_parameter") +
                                                 element("vlan_parameter", value("interface_name", "eth0.10")) +
                                                 element("vlan_parameter", value("interface_name", "eth0.9")) +
                                                 element("driver_parameter_lin", value("mtu", "1500"))) +
                                        "</physical_port>\n"));
}

TEST_F(PhysicalSection, DoesNotAskForTheTeamsOfAPortUnderAVlan) {
    layTwoPorts();
    layBond("bond0", {"eth0"});
    layVlan("eth0.9", "9", "eth0");
    collect({"8086"});
    section();
    EXPECT_EQ(commandsTraced(), (Lines{"/sbin/lspci -mns 03:00.0", "/sbin/lspci -mns 03:00.0",
                                       "/sbin/lspci -m | grep 03:00.0", "/sbin/lspci -mns 04:00.0"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kPhysicalSection)} + eth0Identified() + vlansWithoutACommand() +
                                  vlansWithoutACommand() + Lines{enter(kDriverBlock)} + eth1PassedOver()));
}

TEST_F(PhysicalSection, AsksForTheTeamsOfAPortWithoutAVlan) {
    layTwoPorts();
    layBond("bond0", {"eth0"});
    layVlan("eth1.9", "9", "eth1");
    collect({"8086"});
    section();
    EXPECT_EQ(commandsTraced(), (Lines{"/sbin/lspci -mns 03:00.0", "/sbin/lspci -mns 03:00.0",
                                       "/sbin/lspci -m | grep 03:00.0", kListBonds, "/sbin/lspci -mns 04:00.0"}));
}

TEST_F(PhysicalSection, GivesEachPortItsOwnBlocks) {
    layPort("eth0", "03:00.0", "8086");
    layPort("eth1", "04:00.0", "8086");
    layBond("bond0", {"eth1"});
    collect();
    ifconfig("eth1").MTU = "9000";
    const std::string text = section();
    EXPECT_EQ(nodesOf(text, "tcp_ip_parameter"), (Lines{plainTcpIpNode(), element("tcp_ip_parameter")}));
    EXPECT_EQ(valuesOf(text, "mtu"), (Lines{"1500", "9000"}));
    EXPECT_EQ(valuesOf(text, "PCI Bus/Dev/Func"), (Lines{"3/0/0", "4/0/0"}));
}

}  // namespace
}  // namespace kvl::test
