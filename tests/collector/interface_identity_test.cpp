#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kKernelList =
    "bool CNetworkParameter::GetInterfaceNameList(std::list<std::basic_string<char, std::char_traits<char>, "
    "std::allocator<char> >, std::allocator<std::basic_string<char, std::char_traits<char>, std::allocator<char> > > "
    ">&)";
const std::string kNames = "void CNetworkParameter::GetInterfaceNameList(strarray_t&)";
const std::string kPhysicalDev = "bool CNetworkParameter::GetPhysicalDev(int, std::string&)";
const std::string kIfName = "std::string CNetworkParameter::GetIfName(std::string)";
const std::string kMac = "std::string CNetworkParameter::GetMacAddress(std::string)";
const std::string kCommonMac = "std::string CNetworkParameter::GetCommonMac(std::string&, macset_t&)";
const std::string kNoBond = "1 BondingConfig* CNetworkParameter::GetBondingData(std::string) -- ";

const std::string kIfcfg = "/etc/sysconfig/network-scripts/ifcfg-eth0";
const std::string kRelease64 = "Red Hat Enterprise Linux Server release 6.4 (Santiago)\n";
const std::string kPersistentRules = "/etc/udev/rules.d/70-persistent-net.rules";
const std::string kNetRules = "/etc/udev/rule.d/60-net.rules";

class InterfaceIdentity : public CollectorTest {
protected:
    std::string physicalName(const std::string& ifname) {
        std::string result = "given";
        collector->GetPhysicalInterfaceName(ifname, result);
        return result;
    }

    /// The physical interfaces by their index.
    Lines physicalDevs() {
        Lines names;
        std::string name;
        for (int index = 1; collector->GetPhysicalDev(index, name); ++index) {
            names.push_back(name);
        }
        return names;
    }

    std::string commonMac(const std::string& ifname) {
        std::string name = ifname;
        macs.clear();
        return collector->GetCommonMac(name, macs);
    }

    macset_t macs;
};

using KernelNameList = InterfaceIdentity;
using CollectedNameList = InterfaceIdentity;
using GetPhysicalDev = InterfaceIdentity;
using GetPhysicalInterfaceName = InterfaceIdentity;
using GetIfName = InterfaceIdentity;
using GetMacAddress = InterfaceIdentity;
using GetCommonMac = InterfaceIdentity;

// ---- Lists ----

TEST_F(KernelNameList, HoldsEveryNameButTheLoopbackInTheKernelsOrder) {
    libc().interfaces = {"lo", "sit0", "eth1", "eth0", "lo1"};
    std::list<std::string> names = {"earlier"};
    EXPECT_TRUE(collector->GetInterfaceNameList(names));
    EXPECT_EQ(names, (std::list<std::string>{"sit0", "eth1", "eth0", "lo1"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kKernelList), leave(kKernelList)}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(KernelNameList, IsFalseOnAMachineWithTheLoopbackAlone) {
    libc().interfaces = {"lo"};
    std::list<std::string> names = {"earlier"};
    EXPECT_FALSE(collector->GetInterfaceNameList(names));
    EXPECT_THAT(names, testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kKernelList)}));
}

TEST_F(KernelNameList, IsFalseIfTheKernelDoesNotAnswer) {
    libc().noInterfaceIndex = true;
    std::list<std::string> names;
    EXPECT_FALSE(collector->GetInterfaceNameList(names));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kKernelList)}));
}

TEST_F(CollectedNameList, HoldsTheCollectedNamesInByteOrder) {
    collectInterfaces({"eth2", "bond0", "eth10"});
    strarray_t names = {"earlier"};
    collector->GetInterfaceNameList(names);
    EXPECT_EQ(names, (strarray_t{"bond0", "eth10", "eth2"}));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kNames), "32 ifname_list.push_back(bond0)", "32 ifname_list.push_back(eth10)",
                     "32 ifname_list.push_back(eth2)", leave(kNames)}));
}

TEST_F(CollectedNameList, CollectsNothingByItself) {
    machine.command("/sbin/ifconfig -a", "eth0 Link encap:Ethernet\n\n");
    strarray_t names = {"earlier"};
    collector->GetInterfaceNameList(names);
    EXPECT_THAT(names, testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kNames), leave(kNames)}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

// ---- Physical interfaces ----

TEST_F(GetPhysicalDev, TakesNamesThatHoldEthAndNeitherDotNorColon) {
    collectInterfaces({"eth0", "eth0.100", "eth0:1", "veth0", "seth1", "bond0", "ib0", "eth10", "eth2"});
    EXPECT_EQ(physicalDevs(), (Lines{"eth0", "eth10", "eth2", "seth1", "veth0"}));
}

TEST_F(GetPhysicalDev, FillsTheListOfNamesFirst) {
    collectInterfaces({"bond0", "eth0"});
    std::string name = "given";
    EXPECT_TRUE(collector->GetPhysicalDev(1, name));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kPhysicalDev), enter(kNames), "32 ifname_list.push_back(bond0)",
                     "32 ifname_list.push_back(eth0)", leave(kNames), leave(kPhysicalDev, " eth0")}));
    forget();
    EXPECT_FALSE(collector->GetPhysicalDev(2, name));
    EXPECT_EQ(name, "eth0");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kPhysicalDev), leave(kPhysicalDev, " -")}));
}

TEST_F(GetPhysicalDev, FindsNothingBelowOne) {
    collectInterfaces({"eth0"});
    std::string name = "given";
    EXPECT_FALSE(collector->GetPhysicalDev(0, name));
    EXPECT_FALSE(collector->GetPhysicalDev(-1, name));
    EXPECT_EQ(name, "given");
}

TEST_F(GetPhysicalDev, StaysWithTheListOfItsFirstCall) {
    collectInterfaces({"eth0"});
    EXPECT_EQ(physicalDevs(), (Lines{"eth0"}));
    collectInterfaces({"eth1", "eth2"});
    EXPECT_EQ(physicalDevs(), (Lines{"eth0"}));
    strarray_t names;
    collector->GetInterfaceNameList(names);
    EXPECT_EQ(physicalDevs(), (Lines{"eth1", "eth2"}));
}

TEST_F(GetPhysicalInterfaceName, GivesAPhysicalNameItself) {
    collectInterfaces({"eth0", "eth1", "eth2"});
    EXPECT_EQ(physicalName("eth1"), "eth1");
    EXPECT_THAT(TestHost::trace(), testing::Not(testing::Contains(testing::HasSubstr("bonding"))));
}

TEST_F(GetPhysicalInterfaceName, GivesTheMachinesLastPhysicalInterfaceForABond) {
    collectInterfaces({"bond0", "bond1", "eth0", "eth1"});
    machine.anyCommand("/usr/sbin/ethtool", "bus-info: 0000:03:00.0\n");
    collector->GetEtherConfigurations();
    machine.file("/proc/net/bonding/bond0", "Slave Interface: eth0\nPermanent HW addr: aa\n");
    machine.file("/proc/net/bonding/bond1", "MII Status: up\n");
    collector->GetBondingConfifurations();
    EXPECT_EQ(physicalName("bond0"), "eth1");
    EXPECT_EQ(physicalName("bond1"), "eth1");
}

TEST_F(GetPhysicalInterfaceName, PassesOverASlaveWithoutDriverData) {
    collectInterfaces({"bond0", "eth0"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    collector->GetEtherConfigurations();
    machine.file("/proc/net/bonding/bond0", "Slave Interface: eth9\nPermanent HW addr: aa\n");
    collector->GetBondingConfifurations();
    EXPECT_EQ(physicalName("bond0"), "eth0");
}

TEST_F(GetPhysicalInterfaceName, GivesTheInterfaceUnderAVlan) {
    collectInterfaces({"bond0", "eth0", "eth0.100", "eth1"});
    machine.file("/proc/net/vlan/config", "h\nh\neth0.100 | 100 | eth0\nbond0.200 | 200 | bond0\n");
    EXPECT_EQ(physicalName("eth0.100"), "eth0");
    EXPECT_THAT(TestHost::trace(), testing::Contains(kNoBond + "eth0.100 has no bonding data"));
    EXPECT_EQ(physicalName("bond0.200"), "bond0");  // not resolved any further
}

TEST_F(GetPhysicalInterfaceName, GivesTheLastPhysicalInterfaceForAnyOtherName) {
    collectInterfaces({"eth0", "eth1"});
    EXPECT_EQ(physicalName("nothing"), "eth1");
    EXPECT_THAT(TestHost::trace(), testing::Contains(kNoBond + "nothing has no bonding data"));
}

TEST_F(GetPhysicalInterfaceName, LeavesTheTextOnAMachineWithoutOne) {
    collectInterfaces({"bond0"});
    EXPECT_EQ(physicalName("bond0"), "given");
}

TEST_F(GetPhysicalInterfaceName, TracesItsQuestionsAlone) {
    collectInterfaces({"eth0"});
    std::string name;
    collector->GetPhysicalDev(1, name);
    forget();
    physicalName("x");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kPhysicalDev), leave(kPhysicalDev, " eth0"), enter(kPhysicalDev), leave(kPhysicalDev, " -"),
                     kNoBond + "x has no bonding data", enter("bool CNetworkParameter::GetVLANData(vlanconfmap_t&)")}));
}

// ---- By an identifying text ----

TEST_F(GetIfName, FindsTheFirstInterfaceWhoseOutputMatches) {
    libc().interfaces = {"lo", "eth0", "eth1", "eth2"};
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:03:00.0\n");
    machine.command("/usr/sbin/ethtool -i eth1", "bus-info: 0000:04:00.0\n");
    machine.command("/usr/sbin/ethtool -i eth2", "bus-info: 0000:04:00.0\n");
    EXPECT_EQ(collector->GetIfName("0000:04:00.0-rest-more"), "eth1");
    EXPECT_EQ(machine.commandsRun(), (Lines{"/usr/sbin/ethtool -i eth0", "/usr/sbin/ethtool -i eth1"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIfName), enter(kKernelList), leave(kKernelList), leave(kIfName)}));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(GetIfName, IsEmptyIfNoneMatches) {
    libc().interfaces = {"eth0", "eth1"};
    machine.anyCommand("/usr/sbin/ethtool", "bus-info: 0000:03:00.0\n");
    EXPECT_EQ(collector->GetIfName("0000:05"), "");
    EXPECT_EQ(machine.commandsRun().size(), 2U);
    EXPECT_EQ(TestHost::trace().back(), leave(kIfName));
}

TEST_F(GetIfName, GivesThePieceToGrepUnquoted) {
    libc().interfaces = {"eth0"};
    machine.command("/usr/sbin/ethtool -i eth0", "driver: igb\nversion: 1\n");
    EXPECT_EQ(collector->GetIfName("-v igb | grep version"), "");  // the first piece is empty
    EXPECT_EQ(collector->GetIfName("driver | grep igb-x"), "eth0");
}

TEST_F(GetIfName, RaisesOnAMachineWithoutInterfaces) {
    try {
        collector->GetIfName("0000:04:00.0");
        FAIL() << "nothing was raised";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "basic_string::_S_construct NULL not valid");
        EXPECT_EQ(typeid(error), typeid(std::logic_error));
    }
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kIfName), enter(kKernelList)}));
}

// ---- MAC addresses ----

TEST_F(GetMacAddress, CollectsAnewAndCopiesTheAddress) {
    collectInterfaces({"eth0"});
    machine.command("/sbin/ifconfig -a", "eth0 Link encap:Ethernet  HWaddr 00:1B:21:AA:BB:CC\n\n");
    EXPECT_EQ(collector->GetMacAddress("eth0"), "00:1B:21:AA:BB:CC");
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/ifconfig -a"}));
    EXPECT_EQ(TestHost::trace().front(), enter(kMac));
    EXPECT_EQ(TestHost::trace().at(1), enter("bool CNetworkParameter::GetNetworkConfigurations()"));
    EXPECT_EQ(TestHost::trace().back(), leave(kMac));
}

TEST_F(GetMacAddress, IsEmptyForAnUnknownName) {
    collectInterfaces({"eth0"});
    EXPECT_EQ(collector->GetMacAddress("eth9"), "");
    EXPECT_EQ(TestHost::trace().back(), leave(kMac));
}

TEST_F(GetCommonMac, GivesTheConfiguredAddressInUpperCaseWithoutQuotes) {
    machine.file(kIfcfg, "DEVICE=eth0\nHWADDR=\"00:1b:21:aa:bb:cc\"\nMACADDR=11:11:11:11:11:11\n");
    EXPECT_EQ(commonMac("eth0"), "00:1B:21:AA:BB:CC");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCommonMac), leave(kCommonMac)}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(GetCommonMac, TakesTheSecondKeyWithoutTheFirst) {
    machine.file(kIfcfg, "MACADDR=00:1b:21:aa:bb:cc\n");
    EXPECT_EQ(commonMac("eth0"), "00:1B:21:AA:BB:CC");
}

TEST_F(GetCommonMac, IsEmptyWithoutEither) {
    machine.file(kIfcfg, "DEVICE=eth0\n");
    EXPECT_EQ(commonMac("eth0"), "");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCommonMac)}));
}

TEST_F(GetCommonMac, CollectsOtherAddressesThatTheRulesBindToTheName) {
    machine.file(kIfcfg, "HWADDR=00:1b:21:aa:bb:cc\n");
    machine.file("/etc/redhat-release", kRelease64);
    const auto rule = [](const std::string& mac, const std::string& name) {
        return "SUBSYSTEM==\"net\", ACTION==\"add\", DRIVERS==\"?*\", ATTR{address}==\"" + mac +
               "\", ATTR{type}==\"1\", KERNEL==\"eth*\", NAME=\"" + name + "\"\n";
    };
    machine.file(kPersistentRules, rule("00:1b:21:00:00:02", "eth0") + rule("00:1b:21:aa:bb:cc", "eth0") +
                                       rule("00:1b:21:00:00:03", "eth1") + rule("00:1b:21:00:00:01", "eth0") +
                                       rule("00:1b:21:00:00:04", "eth01"));
    EXPECT_EQ(commonMac("eth0"), "00:1B:21:AA:BB:CC");
    EXPECT_EQ(macs, (macset_t{"00:1B:21:00:00:01", "00:1B:21:00:00:02"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCommonMac), detail(kCommonMac, "eth0, 00:1B:21:00:00:02"),
                                        detail(kCommonMac, "eth0, 00:1B:21:00:00:01"), leave(kCommonMac)}));
}

TEST_F(GetCommonMac, ReadsOtherRulesOnOtherReleases) {
    machine.file(kIfcfg, "HWADDR=x\n");
    machine.file(kPersistentRules, "a b c ATTR{address}==\"00:00:00:00:00:70\" NAME=\"eth0\"\n");
    machine.file(kNetRules, "a ATTR{address}==\"00:00:00:00:00:60\" c d NAME=\"eth0\"\n");
    const struct {
        std::string release;
        std::string mac;
    } rows[] = {
        {"Red Hat Enterprise Linux Server release 6.4 (Santiago)\n", "00:00:00:00:00:70"},
        {"Red Hat Enterprise Linux Server release 6.2 (Santiago)\n", "00:00:00:00:00:70"},
        {"Red Hat Enterprise Linux Server release 6.3 (Santiago)\n", "00:00:00:00:00:60"},
        {"Red Hat Enterprise Linux Server release 6.4.1 (Santiago)\n", "00:00:00:00:00:60"},
        {"Red Hat Enterprise Linux Server release 5.9 (Tikanga)\n", "00:00:00:00:00:60"},
        {"release 6.4\n", "00:00:00:00:00:60"},
        {"", "00:00:00:00:00:60"},
    };
    for (const auto& row : rows) {
        machine.file("/etc/redhat-release", row.release);
        commonMac("eth0");
        EXPECT_EQ(macs, (macset_t{row.mac})) << row.release;
    }
    std::remove("/etc/redhat-release");
    commonMac("eth0");
    EXPECT_EQ(macs, (macset_t{"00:00:00:00:00:60"}));
}

TEST_F(GetCommonMac, TakesTheSeventeenCharactersBehindTheMarker) {
    machine.file(kIfcfg, "HWADDR=x\n");
    const struct {
        std::string column;
        std::string mac;
    } rows[] = {
        {"k==\"00:1b:21:aa:bb:cc:dd\"", "00:1B:21:AA:BB:CC"},
        {"k==\"00:1b\",", "00:1B,"},  // quotes go
        {"k==\"", ""},
        {"k=\"00:1b:21:aa:bb:cc\"", "00:1B:21:AA:BB:C"},  // no marker: from position 2, a quote counted
        {"ab", ""},
    };
    for (const auto& row : rows) {
        machine.file(kNetRules, "a " + row.column + " NAME=\"eth0\"\n");
        commonMac("eth0");
        EXPECT_EQ(macs, (macset_t{row.mac})) << row.column;
    }
}

TEST_F(GetCommonMac, RaisesForAColumnOfUnderTwoCharacters) {
    machine.file(kIfcfg, "HWADDR=x\n");
    machine.file(kNetRules, "a b NAME=\"eth0\"\n");
    EXPECT_EQ(outOfRangeOf([this] { commonMac("eth0"); }), "basic_string::substr");
}

TEST_F(GetCommonMac, WantsTheNameAtTheEndOfAWord) {
    machine.file(kIfcfg, "HWADDR=x\n");
    machine.file(kNetRules, "a k==\"1\" NAME=\"eth0\", b\n");
    commonMac("eth0");
    EXPECT_THAT(macs, testing::IsEmpty());
}

TEST_F(KernelNameList, StopsAtAnEntryWithoutAnIndexOrWithoutAName) {
    libc().interfaces = {"eth0", "eth1", "eth2"};
    std::list<std::string> names;
    libc().placeWithoutIndex = 1;
    EXPECT_TRUE(collector->GetInterfaceNameList(names));
    EXPECT_EQ(names, (std::list<std::string>{"eth0"}));
    libc().placeWithoutIndex = -1;
    libc().placeWithoutName = 2;
    EXPECT_TRUE(collector->GetInterfaceNameList(names));
    EXPECT_EQ(names, (std::list<std::string>{"eth0", "eth1"}));
}

TEST_F(GetPhysicalDev, LooksForCollectedInterfacesUntilThereAreSome) {
    std::string name;
    EXPECT_FALSE(collector->GetPhysicalDev(1, name));
    collectInterfaces({"eth0"});
    EXPECT_TRUE(collector->GetPhysicalDev(1, name));
}

TEST_F(GetPhysicalInterfaceName, AsksForTheDriverDataOfABondsSlavesAndForNoVlan) {
    collectInterfaces({"bond0", "eth0"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    machine.file("/proc/net/bonding/bond0",
                 "Slave Interface: eth0\nPermanent HW addr: aa\nSlave Interface: eth9\nPermanent HW addr: bb\n");
    machine.file("/proc/net/vlan/config", "h\nh\n");
    collector->GetBondingConfifurations();
    std::string name;
    collector->GetPhysicalDev(1, name);
    collector->GetEtherConfigurations();
    forget();
    physicalName("bond0");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kPhysicalDev), leave(kPhysicalDev, " eth0"), enter(kPhysicalDev), leave(kPhysicalDev, " -"),
                     "1 EthtoolResult* CNetworkParameter::GetEthtoolData(std::string) -- eth9 has no ethtool data"}));
}

TEST_F(GetPhysicalInterfaceName, CollectsTheDriverDataThatABondNeeds) {
    collectInterfaces({"bond0", "ib0"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    machine.file("/proc/net/bonding/bond0", "Slave Interface: ib0\nPermanent HW addr: aa\n");
    collector->GetBondingConfifurations();
    forget();
    physicalName("bond0");
    EXPECT_EQ(machine.commandsRun(), (Lines{"/usr/sbin/ethtool -i bond0", "/usr/sbin/ethtool -i ib0"}));
}

TEST_F(GetPhysicalInterfaceName, TakesTheSmallestOfTheSlavesTextsIfItIsLongerThanAPciLocationGives) {
    collectInterfaces({"bond0", "bond1", "eth0", "eth1"});
    machine.anyCommand("/usr/sbin/ethtool", "x\n");
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:-1:00.0\n");  // ffffffffffffffff/0/0
    machine.command("/usr/sbin/ethtool -i eth1", "bus-info: 0000:03:00.0\n");  // 3/0/0
    collector->GetEtherConfigurations();
    machine.file("/proc/net/bonding/bond0", "Slave Interface: eth0\nPermanent HW addr: aa\n");
    machine.file("/proc/net/bonding/bond1",
                 "Slave Interface: eth0\nPermanent HW addr: aa\nSlave Interface: eth1\nPermanent HW addr: bb\n");
    collector->GetBondingConfifurations();
    EXPECT_EQ(physicalName("bond0"), "eth0");
    EXPECT_EQ(physicalName("bond1"), "eth1");
}

TEST_F(GetPhysicalInterfaceName, ReadsTheVlansOnce) {
    collectInterfaces({"eth0"});
    machine.file("/proc/net/vlan/config", "h\nh\nx | 1 | eth0\n");
    EXPECT_EQ(physicalName("x"), "eth0");
    forget();
    EXPECT_EQ(physicalName("x"), "eth0");
    EXPECT_THAT(TestHost::trace(), testing::Not(testing::Contains(testing::HasSubstr("GetVLANData"))));
}

TEST_F(GetMacAddress, IsEmptyIfTheCommandFails) {
    collectInterfaces({"eth0"});
    machine.dropCommand("/sbin/ifconfig");
    EXPECT_EQ(collector->GetMacAddress("eth0"), "");
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{enter(kMac), enter("bool CNetworkParameter::GetNetworkConfigurations()")} + failed("/sbin/ifconfig -a") +
         Lines{"1 IfconfigResult* CNetworkParameter::GetIfconfigData(std::string) -- eth0 has no ifconfig data",
               leave(kMac)}));
}

TEST_F(GetCommonMac, TakesAnEmptyValueOfTheFirstKeyAsFound) {
    machine.file(kIfcfg, "HWADDR=\nMACADDR=x\n");
    machine.file(kNetRules, "a k==\"00:00:00:00:00:60\" NAME=\"eth0\"\n");
    EXPECT_EQ(commonMac("eth0"), "");
    EXPECT_EQ(macs, (macset_t{"00:00:00:00:00:60"}));
    EXPECT_EQ(TestHost::trace().back(), leave(kCommonMac));
}

}  // namespace
}  // namespace kvl::test
