#include "provider/machine/translation/ethtool_coalesce.h"
#include "provider/machine/translation/ipv6_routes.h"
#include "provider/machine/translation/translations.h"
#include "tests/support/collector_test.h"

// What the library's own parsers make of translated outputs.

namespace kvl::test {
namespace {

using provider::translated;

constexpr int kNotFound = -1;

class Collected : public CollectorTest {
protected:
    /// Lays down a command with the translation of what it prints.
    void prints(const std::string& command, const std::string& output) {
        machine.command(command, translated(command, output));
    }

    void holds(const std::string& path, const std::string& content) { machine.file(path, translated(path, content)); }

    EthtoolResult ethtool(const std::string& option, const std::string& output) {
        prints("/usr/sbin/ethtool " + option + " eth0", output);
        EthtoolResult result;
        EXPECT_TRUE(option == "-a"   ? collector->ExecEthtool_A("eth0", result)
                    : option == "-g" ? collector->ExecEthtool_G("eth0", result)
                    : option == "-c" ? collector->ExecEthtool_C("eth0", result)
                                     : collector->ExecEthtool_K("eth0", result));
        return result;
    }

    Lines routesOf(const std::string& ifname) {
        Lines routes;
        for (const RouteConfig& route : collector->GetRouteData(ifname)) {
            routes.push_back(route.Gateway + " " + route.Metric);
        }
        return routes;
    }
};

TEST_F(Collected, PauseIsWhatEthtoolSays) {
    const EthtoolResult result =
        ethtool("-a", "Pause parameters for eth0:\nAutonegotiate:\tn/a\nRX:\t\ton\nTX:\t\ton\n\n");
    EXPECT_EQ(result.autonego, kNotFound);
    EXPECT_EQ(result.pause_rx, 1);
    EXPECT_EQ(result.pause_tx, 1);
}

TEST_F(Collected, ARingThatTheDriverDoesNotHaveIsNotFound) {
    const EthtoolResult result = ethtool(
        "-g",
        "Ring parameters for eth0:\nPre-set maximums:\nRX:\t\t4096\nRX Mini:\tn/a\nRX Jumbo:\tn/a\nTX:\t\t2048\n"
        "Current hardware settings:\nRX:\t\t256\nRX Mini:\tn/a\nRX Jumbo:\tn/a\nTX:\t\t128\nTX Push:\toff\n");
    EXPECT_EQ(result.pre_rx, 4096);
    EXPECT_EQ(result.pre_mini, kNotFound);
    EXPECT_EQ(result.pre_jumbo, kNotFound);
    EXPECT_EQ(result.pre_tx, 2048);
    EXPECT_EQ(result.cur_rx, 256);
    EXPECT_EQ(result.cur_mini, kNotFound);
    EXPECT_EQ(result.cur_jumbo, kNotFound);
    EXPECT_EQ(result.cur_tx, 128);
}

TEST_F(Collected, CoalescingThatTheDriverDoesNotHaveIsNotFound) {
    const EthtoolResult result =
        ethtool("-c",
                "Coalesce parameters for eth0:\nAdaptive RX: n/a  TX: n/a\nrx-usecs: 3\nrx-frames: n/a\n"
                "tx-frames-low: 12\n\nCQE mode RX: n/a  TX: n/a\n\n");
    EXPECT_EQ(result.adaptive_rx, kNotFound);
    EXPECT_EQ(result.adaptive_tx, kNotFound);
    EXPECT_EQ(result.ru, 3);
    EXPECT_EQ(result.rf, kNotFound);
    EXPECT_EQ(result.tfl, 12);
}

TEST_F(Collected, AnAdaptiveSwitchBesideAnUnknownOneNeedsTheFinding) {
    const std::string output = "Coalesce parameters for eth0:\nAdaptive RX: on  TX: n/a\n";
    const EthtoolResult result = ethtool("-c", output);
    EXPECT_EQ(result.adaptive_rx, 1);
    EXPECT_EQ(result.adaptive_tx, 0);
    EXPECT_FALSE(provider::readAdaptive(output).tx);
}

TEST_F(Collected, OffloadOfRhel5IsFound) {
    const EthtoolResult result =
        ethtool("-k",
                "Offload parameters for eth0:\nrx-checksumming: on\ntcp segmentation offload: on\n"
                "udp fragmentation offload: off\ngeneric segmentation offload: on\n");
    EXPECT_EQ(result.rcs, 1);
    EXPECT_EQ(result.tso, 1);
    EXPECT_EQ(result.ufo, 0);
    EXPECT_EQ(result.gso, 1);
    EXPECT_EQ(result.lro, kNotFound);
}

TEST_F(Collected, InterfacesOfNetTools2AreThoseOf160) {
    prints("/sbin/ifconfig -a",
           "eth0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"
           "        inet 10.0.4.15  netmask 255.255.255.0  broadcast 10.0.4.255\n"
           "        inet6 2001:db8:4::15  prefixlen 64  scopeid 0x0<global>\n"
           "        inet6 fe80::5054:ff:fe12:3404  prefixlen 64  scopeid 0x20<link>\n"
           "        ether 52:54:00:12:ab:04  txqueuelen 1000  (Ethernet)\n"
           "        RX packets 0  bytes 0 (0.0 B)\n"
           "        RX errors 0  dropped 0  overruns 0  frame 0\n"
           "        TX packets 17  bytes 1566 (1.5 KiB)\n"
           "        TX errors 0  dropped 0 overruns 0  carrier 0  collisions 0\n"
           "\n"
           "ib0: flags=4098<BROADCAST,MULTICAST>  mtu 2044  metric 2\n"
           "Infiniband hardware address can be incorrect! Please read BUGS section in ifconfig(8).\n"
           "        infiniband 80:00:02:08:fe:80:00:00:00:00:00:00:00:00:00:00:00:00:00:00  txqueuelen 256  "
           "(InfiniBand)\n"
           "\n");
    ASSERT_TRUE(collector->GetNetworkConfigurations());
    strarray_t names;
    collector->GetInterfaceNameList(names);
    ASSERT_EQ(names, (strarray_t{"eth0", "ib0"}));
    const IfconfigResult& eth0 = *collector->GetIfconfigData("eth0");
    EXPECT_EQ(eth0.link_encap, 1);
    EXPECT_EQ(eth0.HWaddr, "52:54:00:12:AB:04");
    EXPECT_EQ(eth0.inet_addr, "10.0.4.15");
    EXPECT_EQ(eth0.Bcast, "10.0.4.255");
    EXPECT_EQ(eth0.Mask, "255.255.255.0");
    EXPECT_EQ(eth0.inet6_addr,
              (std::map<std::string, std::string>{{"2001:db8:4::15/", "64"}, {"fe80::5054:ff:fe12:3404/", "64"}}));
    EXPECT_EQ(eth0.Scope, "Link");
    EXPECT_EQ(eth0.MTU, "1500");
    EXPECT_EQ(eth0.Metric, "1");
    EXPECT_TRUE(eth0.up && eth0.broadcast && eth0.running && eth0.multicast);
    const IfconfigResult& ib0 = *collector->GetIfconfigData("ib0");
    EXPECT_EQ(ib0.link_encap, 0);
    EXPECT_EQ(ib0.Metric, "2");
    EXPECT_FALSE(ib0.up);
}

TEST_F(Collected, DefaultGatewaysAreAddresses) {
    prints("/sbin/route",
           "Kernel IP routing table\n"
           "Destination     Gateway         Genmask         Flags Metric Ref    Use Iface\n"
           "0.0.0.0         192.168.10.2    0.0.0.0         UG    7      0        0 bond0\n"
           "0.0.0.0         0.0.0.0         0.0.0.0         U     0      0        0 tun0\n"
           "default         *               0.0.0.0         U     0      0        0 ppp0\n"
           "default         _gateway        0.0.0.0         UG    100    0        0 ens192\n"
           "10.0.4.0        0.0.0.0         255.255.255.0   U     0      0        0 eth4\n");
    ASSERT_TRUE(collector->GetRoutingConfigurations());
    EXPECT_EQ(routesOf("bond0"), (Lines{"192.168.10.2 7"}));
    for (const char* const ifname : {"tun0", "ppp0", "ens192", "eth4"}) {
        EXPECT_EQ(routesOf(ifname), Lines()) << ifname;
    }
}

TEST_F(Collected, Ipv6GatewaysAreThoseOfDefaultRoutes) {
    prints("/bin/netstat -A inet6 -nr",
           "Kernel IPv6 routing table\n"
           "Destination                    Next Hop                   Flag Met Ref  Use If\n"
           "2001:db8:ffff::/48             2001:db8:4::9              UG   1024 1      0 eth4\n"
           "::/0                           2001:db8:4::1              UG   1024 1      0 eth4\n"
           "ff02::1/128                    ff02::1                    UC   0   25      0 eth4\n"
           "::/0                           ::                         !n   -1  1      0 lo\n");
    Lines gateways;
    for (const RouteConfig& route : collector->GetRouteDataV6("eth4")) {
        gateways.push_back(route.Gateway + " " + route.Metric);
    }
    EXPECT_EQ(gateways, (Lines{"2001:db8:4::1 1024"}));
}

TEST_F(Collected, Ipv6GatewaysOfAnInterfaceAreNotThoseOfALongerName) {
    const std::string command = "/bin/netstat -A inet6 -nr";
    machine.command(command, provider::ipv6RoutesOf({"eth1"},
                                                    "Kernel IPv6 routing table\n"
                                                    "::/0     fe80::2       UG   1024 1      0 veth1\n"
                                                    "::/0     fe80::1       UG   1024 1      0 eth1\n"));
    ASSERT_EQ(collector->GetRouteDataV6("eth1").size(), 1U);
    EXPECT_EQ(collector->GetRouteDataV6("eth1").front().Gateway, "fe80::1");
}

TEST_F(Collected, TheResolverIsAsGlibcReadsIt) {
    prints("/bin/cat /etc/resolv.conf",
           "domain a.example\nnameserver\t10.1.1.1\nsearch b.example\nsearch\tc.example d.example \n"
           "nameserver ns.example\nnameserver 2001:db8::2\n");
    ResolvConf conf;
    ASSERT_TRUE(collector->GetResolvConf(conf));
    EXPECT_EQ(conf.nameserver, (strarray_t{"10.1.1.1", "2001:db8::2"}));
    EXPECT_EQ(conf.dns_suffix, (strarray_t{"c.example", "d.example"}));
}

TEST_F(Collected, ABondOfAnOldDriverHasSlavesWithoutAddresses) {
    const std::string file = "/proc/net/bonding/bond0";
    machine.file(file, "");
    machine.command("/bin/ls /proc/net/bonding", "bond0\n");
    prints("/bin/cat " + file,
           "Bonding Mode: load balancing (round-robin)\nMII Status: up\n\n"
           "Slave Interface: eth0\nMII Status: up\nLink Failure Count: 0\n\n"
           "Slave Interface: eth1\nMII Status: down\nLink Failure Count: 0\n");
    ASSERT_TRUE(collector->GetBondingConfifurations());
    const BondingConfig* bond = collector->GetBondingData("bond0");
    ASSERT_NE(bond, nullptr);
    EXPECT_EQ(bond->MiiStatus, 1);
    ASSERT_EQ(bond->slaves.size(), 2U);
    EXPECT_EQ(bond->slaves[0].name + "," + bond->slaves[0].HWaddr, "eth0,");
    EXPECT_EQ(bond->slaves[1].name + "," + bond->slaves[1].HWaddr, "eth1,");
}

TEST_F(Collected, AllArpTargetsAreThere) {
    std::string targets;
    strarray_t expected;
    for (int number = 201; number <= 216; ++number) {
        expected.push_back("192.168.130." + std::to_string(number));
        targets += (targets.empty() ? " " : ", ") + expected.back();
    }
    const std::string file = "/proc/net/bonding/bond0";
    machine.file(file, "");
    machine.command("/bin/ls /proc/net/bonding", "bond0\n");
    prints("/bin/cat " + file,
           "Bonding Mode: fault-tolerance (active-backup)\nARP Polling Interval (ms): 500\n"
           "ARP IP target/s (n.n.n.n form):" +
               targets + "\n");
    ASSERT_TRUE(collector->GetBondingConfifurations());
    EXPECT_EQ(collector->GetBondingData("bond0")->arp_ip, expected);
}

TEST_F(Collected, VlansOfLongNamesKeepTheTableInStep) {
    const std::string file = "/proc/net/vlan/config";
    machine.file(file, "");
    prints("/bin/cat " + file,
           "VLAN Dev name\t | VLAN ID\nName-Type: VLAN_NAME_TYPE_RAW_PLUS_VID_NO_PAD\n"
           "averylongname15| 4094  | eth4\neth4.100       | 100  | eth4\n");
    vlanconfmap_t vlans;
    ASSERT_TRUE(collector->GetVLANData(vlans));
    ASSERT_EQ(vlans.size(), 2U);
    EXPECT_EQ(vlans["averylongname15"].id, 4094);
    EXPECT_EQ(vlans["averylongname15"].interface, "eth4");
    EXPECT_EQ(vlans["eth4.100"].id, 100);
}

TEST_F(Collected, IfcfgFilesSayWhatTheShellReads) {
    struct File {
        const char* content;
        int onboot;
        int bootproto;
    };
    const std::string file = "/etc/sysconfig/network-scripts/ifcfg-eth0";
    for (const File& row : std::vector<File>{{"ONBOOT='yes'\nBOOTPROTO='dhcp'\n", 1, 1},
                                             {"ONBOOT=yes # x\nBOOTPROTO=dhcp # y\n", 1, 1},
                                             {"#ONBOOT=yes\nONBOOT=no\n#BOOTPROTO=dhcp\n", 0, 0},
                                             {"#ONBOOT=no\nONBOOT=\"yes\"\nBOOTPROTO=\"dhcp\"\n", 1, 1},
                                             {"DEVICE=eth0\n", 1, 0}}) {
        holds(file, row.content);
        IfconfigResult result;
        collector->GetIfconfigFile("eth0", &result);
        EXPECT_EQ(result.ONBOOT, row.onboot) << row.content;
        EXPECT_EQ(result.BOOTPROTO, row.bootproto) << row.content;
    }
}

TEST_F(Collected, AKeyfileIsReadAsTheIfcfgFileThatItBecomes) {
    machine.file("/etc/sysconfig/network-scripts/ifcfg-eth0",
                 translated("/etc/NetworkManager/system-connections/eth0.nmconnection",
                            "[connection]\ninterface-name=eth0\nautoconnect=false\n"
                            "[ethernet]\nmac-address=00:1b:21:8e:40:10\n[ipv4]\nmethod=auto\n"));
    IfconfigResult result;
    collector->GetIfconfigFile("eth0", &result);
    EXPECT_EQ(result.ONBOOT, 0);
    EXPECT_EQ(result.BOOTPROTO, 1);
    std::string ifname = "eth0";
    macset_t others;
    EXPECT_EQ(collector->GetCommonMac(ifname, others), "00:1B:21:8E:40:10");
}

}  // namespace
}  // namespace kvl::test
