#include "lan_report/CLanXmlWriter.h"
#include "tests/support/collector_test.h"

// What the parsers make of the output of real commands, whose formats hold surprises.

namespace kvl::test {
namespace {

class Recordings : public PrivateMachineTest {
protected:
    /// Loads a recorded machine and collects everything.
    void collect(const std::string& name) {
        machine.load(std::string(KVL_SOURCE_DIRECTORY) + "/machines/" + name);
        collector = std::make_unique<CNetworkParameter>(kModule);
        EXPECT_TRUE(collector->GetNetworkConfigurations());
        EXPECT_TRUE(collector->GetEtherConfigurations());
        EXPECT_TRUE(collector->GetBondingConfifurations());
        EXPECT_TRUE(collector->GetRoutingConfigurations());
    }

    const EthtoolResult& ethtool(const std::string& ifname) { return *collector->GetEthtoolData(ifname); }
    const IfconfigResult& ifconfig(const std::string& ifname) { return *collector->GetIfconfigData(ifname); }
    const BondingConfig& bond(const std::string& ifname) { return *collector->GetBondingData(ifname); }

    strarray_t names() {
        strarray_t list;
        collector->GetInterfaceNameList(list);
        return list;
    }

    Lines vlans() {
        vlanconfmap_t map;
        EXPECT_TRUE(collector->GetVLANData(map));
        Lines lines;
        for (const auto& [name, vlan] : map) {
            lines.push_back(name + " " + std::to_string(vlan.id) + " " + vlan.interface);
        }
        return lines;
    }

    Lines routes(const std::list<RouteConfig>& list) {
        Lines lines;
        for (const RouteConfig& route : list) {
            lines.push_back(route.Gateway + " " + route.Metric);
        }
        return lines;
    }

    Lines slaves(const std::string& ifname) {
        Lines lines;
        for (const SlaveInterface& slave : bond(ifname).slaves) {
            lines.push_back(slave.name + " " + slave.HWaddr);
        }
        return lines;
    }

    std::unique_ptr<CNetworkParameter> collector;
};

TEST_F(Recordings, InterfacesOfARealMachine) {
    collect("debian-12-guest");
    EXPECT_EQ(names(), (strarray_t{"bond0", "bond0.200", "bond1", "eth0", "eth1", "eth2", "eth3", "eth4", "eth4.100",
                                   "eth4:1"}));
    EXPECT_EQ(ifconfig("bond0").HWaddr, "52:54:00:12:34:00");
    EXPECT_EQ(ifconfig("bond0").inet6_addr,
              (std::map<std::string, std::string>{{"fe80::5054:ff:fe12:3400/", "64"}, {"2001:db8:10::15/", "64"}}));
    EXPECT_TRUE(ifconfig("eth0").up && ifconfig("eth0").running && ifconfig("eth0").multicast);
    EXPECT_EQ(ifconfig("eth1").HWaddr, "52:54:00:12:34:00");  // a slave shows the bond's address
    EXPECT_EQ(ifconfig("eth0").kernel_release, "6.1.0-56-amd64");
}

TEST_F(Recordings, DriverSettingsOfARealMachine) {
    collect("debian-12-guest");
    const EthtoolResult& eth2 = ethtool("eth2");
    EXPECT_EQ(eth2.driver_info.driver, "e1000e");
    EXPECT_EQ(eth2.driver_info.version, "6.1.0-56-amd64");
    EXPECT_EQ(eth2.driver_info.firmver, "2.1-0");
    EXPECT_EQ(eth2.driver_info.businfo, "1/1c/0");
    EXPECT_EQ(eth2.rcs, 1);
    EXPECT_EQ(eth2.ufo, -1);      // this ethtool has no such line any more
    EXPECT_EQ(eth2.lro, 0);       // off [fixed]
    EXPECT_EQ(eth2.autonego, 0);  // on, after a tab
    EXPECT_EQ(eth2.pause_rx, 0);
    EXPECT_EQ(eth2.pause_tx, 0);
    EXPECT_EQ(eth2.pre_rx, 4096);
    EXPECT_EQ(eth2.pre_mini, 0);  // n/a
    EXPECT_EQ(eth2.cur_rx, 256);
    EXPECT_EQ(eth2.cur_tx, 256);
    EXPECT_EQ(eth2.adaptive_rx, 0);  // n/a
    EXPECT_EQ(eth2.adaptive_tx, 0);
    EXPECT_EQ(eth2.ru, 3);
    EXPECT_EQ(eth2.tfh, 0);  // n/a
}

TEST_F(Recordings, AGroupThatADriverHasNotIsUnknownWithoutAWait) {
    collect("debian-12-guest");
    EXPECT_EQ(ethtool("eth0").ru, -1);
    EXPECT_EQ(ethtool("eth4").autonego, -1);
    EXPECT_EQ(ethtool("eth4").ru, 0);
    EXPECT_EQ(ethtool("eth4.100").pre_rx, -1);
    EXPECT_EQ(ethtool("eth4:1").driver_info.driver, "virtio_net");
    EXPECT_EQ(ethtool("bond0").driver_info.bus_info, "");
    EXPECT_EQ(ethtool("bond0").driver_info.firmver, "2");
    EXPECT_EQ(libc().sleeps, 0);
}

TEST_F(Recordings, BondsOfARealMachine) {
    collect("debian-12-guest");
    EXPECT_EQ(bond("bond0").Mode, "fault-tolerance (active-backup)");
    EXPECT_EQ(bond("bond0").PrimarySlave, "eth0");
    EXPECT_EQ(bond("bond0").pi, 100);
    EXPECT_EQ(bond("bond0").arp_pi, -1);
    EXPECT_EQ(slaves("bond0"), (Lines{"eth0 52:54:00:12:34:00", "eth1 52:54:00:12:34:01"}));
    EXPECT_EQ(bond("bond1").arp_pi, 1000);
    EXPECT_EQ(bond("bond1").arp_ip, (strarray_t{"192.168.30.2", "192.168.30.3"}));
    EXPECT_EQ(vlans(), (Lines{"bond0.200 200 bond0", "eth4.100 100 eth4"}));
}

TEST_F(Recordings, RoutesOfARealMachine) {
    collect("debian-12-guest");
    EXPECT_EQ(routes(collector->GetRouteData("bond0")), (Lines{"gw.lab.example 0"}));
    EXPECT_EQ(routes(collector->GetRouteData("eth4")), (Lines{"10.0.4.2 100"}));
    EXPECT_EQ(routes(collector->GetRouteDataV6("eth4")), (Lines{"2001:db8:4::1 1024"}));
    EXPECT_EQ(routes(collector->GetRouteDataV6("eth4.100")),
              (Lines{"2001:db8:100:aaaa:bbbb:cccc:dddd:1 1024"}));  // a long address pushes the columns
    EXPECT_THAT(routes(collector->GetRouteDataV6("bond1")), testing::IsEmpty());
}

TEST_F(Recordings, PciIdentityOfARealMachine) {
    collect("debian-12-guest");
    std::string ids;
    collector->GetFourIds("01:1c.0", ids);
    EXPECT_EQ(ids, "8086 10d3 8086 0000");
    std::string description;
    collector->GetDeviceDescription("01:1c.0", description);
    EXPECT_EQ(description, "Intel Corporation 82574L Gigabit Network Connection");
}

TEST_F(Recordings, NamesThatMislead) {
    collect("odd-names");
    // "vlo1", "visit1" and the two long names hold the loopback's or the tunnels' letters and are lost.
    EXPECT_EQ(names(), (strarray_t{"bond0", "bond0.200", "eth0", "eth1", "eth10", "eth2", "eth3", "eth4", "eth4.0030",
                                   "eth4.100", "eth4.100.7", "eth4:1", "vlan0020"}));
    // A VLAN named like a port counts as one.
    std::string physical;
    EXPECT_TRUE(collector->GetPhysicalDev(3, physical));
    EXPECT_EQ(physical, "eth10");
}

TEST_F(Recordings, AVlanNameOfFifteenCharactersTouchesTheBarAndPutsTheTableOutOfStep) {
    collect("odd-names");
    EXPECT_EQ(vlans(), (Lines{"1 0 averylongname15", "averylongname15| 0 vlo1", "bond0.200 200 bond0", "eth10 10 eth4",
                              "eth4.0030 30 eth4", "eth4.100 100 eth4", "vlan0020 20 eth4", "| 0 visit1"}));
}

TEST_F(Recordings, BondsOfManyModes) {
    collect("bond-modes");
    EXPECT_EQ(bond("bond1").Mode, "IEEE 802.3ad Dynamic link aggregation");
    EXPECT_EQ(slaves("bond1"), (Lines{"eth2 52:54:00:12:34:02", "eth3 52:54:00:12:34:03"}));
    EXPECT_EQ(bond("bond2").PrimarySlave, "None");
    EXPECT_EQ(bond("bond2").arp_pi, 500);
    EXPECT_EQ(bond("bond2").arp_ip.size(), 14U);  // sixteen, on a line of 302 characters
    EXPECT_THAT(bond("bond2").slaves, testing::IsEmpty());
    EXPECT_EQ(bond("bond3").ud, 200);
    EXPECT_EQ(bond("bond3").dd, 100);
    EXPECT_EQ(bond("bond-of-the-lab").MiiStatus, 0);
}

TEST_F(Recordings, BondsThatBroadcastAndBalance) {
    collect("bond-modes");
    EXPECT_EQ(bond("bond4").Mode, "fault-tolerance (broadcast)");
    EXPECT_EQ(bond("bond4").PrimarySlave, "");  // this mode and 802.3ad have no such line
    EXPECT_EQ(slaves("bond4"), (Lines{"eth5 52:54:00:12:34:05"}));
    EXPECT_EQ(bond("bond5").Mode, "transmit load balancing");
    EXPECT_EQ(bond("bond5").PrimarySlave, "None");
    EXPECT_EQ(slaves("bond5"), (Lines{"eth6 52:54:00:12:34:06", "eth7 52:54:00:12:34:07"}));
    EXPECT_EQ(bond("bond6").Mode, "adaptive load balancing");
    EXPECT_EQ(bond("bond6").PrimarySlave, "None");
    EXPECT_EQ(slaves("bond6"), (Lines{"eth8 52:54:00:12:34:08", "eth9 52:54:00:12:34:09"}));
    for (const char* name : {"bond4", "bond5", "bond6"}) {
        EXPECT_EQ(bond(name).MiiStatus, 1) << name;
        EXPECT_EQ(bond(name).pi, 100) << name;
        EXPECT_EQ(bond(name).arp_pi, -1) << name;
    }
    // A slave of a balancing bond keeps its own address.
    EXPECT_EQ(ifconfig("bond5").HWaddr, "52:54:00:12:34:06");
    EXPECT_EQ(ifconfig("eth7").HWaddr, "52:54:00:12:34:07");
    EXPECT_EQ(ifconfig("eth9").HWaddr, "52:54:00:12:34:09");
}

TEST_F(Recordings, ASlaveThatIsDown) {
    collect("bond-modes");
    EXPECT_FALSE(ifconfig("eth0").up);  // its flags begin with BROADCAST
    EXPECT_FALSE(ifconfig("eth0").running);
    EXPECT_TRUE(ifconfig("eth0").broadcast && ifconfig("eth0").multicast);
    EXPECT_TRUE(ifconfig("bond0").up && ifconfig("bond0").running);
    EXPECT_EQ(bond("bond0").MiiStatus, 1);  // the slave's own line says down
    EXPECT_EQ(bond("bond0").PrimarySlave, "eth0");
    EXPECT_EQ(slaves("bond0"), (Lines{"eth0 52:54:00:12:34:00", "eth1 52:54:00:12:34:01"}));
}

TEST_F(Recordings, AMachineWithoutRoutes) {
    collect("bond-modes");  // what the command prints is the two lines of its heading
    for (const std::string& name : names()) {
        EXPECT_THAT(routes(collector->GetRouteData(name)), testing::IsEmpty()) << name;
    }
}

TEST_F(Recordings, AMachineWithoutIpv6) {
    collect("bond-modes");
    for (const std::string& name : names()) {
        EXPECT_THAT(ifconfig(name).inet6_addr, testing::IsEmpty()) << name;
        EXPECT_EQ(ifconfig(name).Scope, "") << name;
    }
    forget();
    EXPECT_THAT(routes(collector->GetRouteDataV6("eth4")), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{enter("std::list<RouteConfig, std::allocator<RouteConfig> > "
                                              "CNetworkParameter::GetRouteDataV6(std::string)")} +
                                  failed("/bin/netstat -A inet6 -nr") + Lines{"32 ** Not IPv6 Protocol **"}));
    EXPECT_EQ(contentOf(resultFile("netstat")), "(absent)");  // though the command printed a line
}

}  // namespace
}  // namespace kvl::test
