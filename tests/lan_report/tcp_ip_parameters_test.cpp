#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

const std::string kRoutes =
    "Kernel IP routing table\n"
    "Destination     Gateway         Genmask         Flags Metric Ref    Use Iface\n"
    "10.0.0.0        *               255.255.255.0   U     0      0        0 eth0\n"
    "default         gw.example.com  0.0.0.0         UG    20     0        0 eth0\n"
    "default         10.1.0.1        0.0.0.0         UG    5      0        0 eth1\n"
    "default         10.0.0.1        0.0.0.0         UG    10     0        0 eth0\n";

const std::string kIpv6Routes =
    "Kernel IPv6 routing table\n"
    "Destination  Next Hop  Flags Metric Ref Use Iface\n"
    "fe80::/64    ::        U     256    0   0   eth0\n"
    "::/0         fe80::2   UG    1024   0   0   eth0\n"
    "::/0         fe80::3   UG    1      0   0   eth1\n"
    "::/0         fe80::1   UG    512    0   0   eth0\n";

/// A node with an address and one more element.
std::string address(const std::string& tag, const std::string& text, const std::string& secondName,
                    const std::string& second) {
    return element(tag, value("address", text) + value(secondName, second));
}

std::string ipv4Address(const std::string& text) {
    return address("ipv4_address", text, "netmask", "255.255.255.0");
}

class TcpIpParameters : public WriterTest {
protected:
    /// An interface with an IPv4 address.
    void layAddress(const std::string& ifname, const std::string& text) {
        layInterface(ifname, "00:00:00:00:00:01", "inet addr:" + text + " Mask:255.255.255.0 UP MTU:1500 Metric:1");
    }

    std::string block(const std::string& ifname = "eth0") {
        CKvlXmlNode node("node");
        writer->SetXmlTcpIpParameters(ifname, node);
        return xmlText(node);
    }

    /// The IPv4 addresses that the block of an interface holds.
    Lines addressesOf(const std::string& ifname) { return nodesOf(block(ifname), "ipv4_address"); }
};

TEST_F(TcpIpParameters, WritesEverythingInTheOrderOfTheReport) {
    layInterface("eth0", "00:00:00:00:00:01",
                 "inet addr:10.0.0.5 Mask:255.255.255.0\n          inet6 addr: fe80::5/64 Scope:Link\n          inet6 "
                 "addr: 2001:db8::5/32 Scope:Global\n          UP MTU:1500 Metric:7");
    layAddress("eth0:1", "10.0.0.6");
    layAddress("eth0:2", "10.0.0.7");
    layAddress("eth1", "10.1.0.5");
    machine.file("/etc/sysconfig/network-scripts/ifcfg-eth0", "BOOTPROTO=dhcp\n");
    machine.file("/etc/resolv.conf",
                 "nameserver 10.0.0.1\nnameserver fd00::1\nnameserver 10.0.0.2\nnameserver fd00::2\n");
    machine.command("/sbin/route", kRoutes);
    machine.command(kReadIpv6Routes, kIpv6Routes);
    collect();
    CKvlXmlNode node("node");
    node.addChildNode(CKvlXmlNode("earlier"));
    writer->SetXmlTcpIpParameters("eth0", node);
    EXPECT_EQ(
        xmlText(node),
        document(element(
            "node",
            element("earlier") + value("ipv4_dhcp", "Enabled") + ipv4Address("10.0.0.5") + ipv4Address("10.0.0.6") +
                ipv4Address("10.0.0.7") + address("ipv4_default_gateway", "gw.example.com", "metric", "20") +
                address("ipv4_default_gateway", "10.0.0.1", "metric", "10") + value("ipv4_interface_metric", "7") +
                value("ipv4_dns_server_address", "10.0.0.1") + value("ipv4_dns_server_address", "10.0.0.2") +
                address("ipv6_address", "2001:db8::5/", "prefix", "32") +
                address("ipv6_address", "fe80::5/", "prefix", "64") +
                address("ipv6_default_gateway", "fe80::2", "metric", "1024") +
                address("ipv6_default_gateway", "fe80::1", "metric", "512") +
                value("ipv6_dns_server_address", "fd00::1") + value("ipv6_dns_server_address", "fd00::2"))));
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kTcpIpBlock, " eth0")} + interfaceNames({"eth0", "eth0:1", "eth0:2", "eth1"}) +
               nameservers({"10.0.0.1", "fd00::1", "10.0.0.2", "fd00::2"}) + Lines{enter(kGetRouteDataV6)} +
               ran(kReadIpv6Routes) +
               Lines{detail(kGetRouteDataV6, "IPv6: eth0, Gateway=fe80::2, Metric=1024"),
                     detail(kGetRouteDataV6, "IPv6: eth0, Gateway=fe80::1, Metric=512"), leave(kGetRouteDataV6),
                     leave(kTcpIpBlock)}));
    EXPECT_EQ(commandsTraced(), (Lines{kReadResolvConf, kReadIpv6Routes}));
}

TEST_F(TcpIpParameters, WritesNothingButDhcpAndMetricOfAnInterfaceWithoutAddresses) {
    layInterface("eth0", "00:00:00:00:00:01", "UP Metric:3");
    collect();
    EXPECT_EQ(block(), document(element("node", value("ipv4_dhcp", " ") + value("ipv4_interface_metric", "3"))));
    EXPECT_EQ(TestHost::trace(), plainTcpIpBlock("eth0", {"eth0"}));
}

TEST_F(TcpIpParameters, WritesDhcpAsEnabledDisabledOrOneBlank) {
    layInterface("eth0");
    collect();
    const struct {
        int bootproto;
        std::string text;
    } rows[] = {{1, "Enabled"}, {0, "Disabled"}, {-1, " "}, {2, " "}};
    for (const auto& row : rows) {
        ifconfig("eth0").BOOTPROTO = row.bootproto;
        EXPECT_EQ(valuesOf(block(), "ipv4_dhcp"), (Lines{row.text})) << row.bootproto;
    }
}

TEST_F(TcpIpParameters, WritesAnAddressWithoutANetmask) {
    layInterface("eth0", "00:00:00:00:00:01", "inet addr:10.0.0.5 UP");
    collect();
    EXPECT_EQ(addressesOf("eth0"), (Lines{address("ipv4_address", "10.0.0.5", "netmask", "")}));
}

TEST_F(TcpIpParameters, WritesNoNetmaskWithoutAnAddress) {
    layInterface("eth0", "00:00:00:00:00:01", "Mask:255.255.255.0 UP");
    collect();
    EXPECT_EQ(addressesOf("eth0"), Lines());
}

TEST_F(TcpIpParameters, WritesTheOwnAddressFirstAndTheAliasesInTheOrderOfTheNames) {
    layAddress("eth0:2", "10.0.0.7");
    layAddress("eth0:10", "10.0.0.6");
    layAddress("eth0", "10.0.0.5");
    collect();
    EXPECT_EQ(addressesOf("eth0"), (Lines{ipv4Address("10.0.0.5"), ipv4Address("10.0.0.6"), ipv4Address("10.0.0.7")}));
}

TEST_F(TcpIpParameters, WritesTheAliasesOfAnInterfaceWithoutAnAddress) {
    layInterface("eth0");
    layAddress("eth0:1", "10.0.0.6");
    collect();
    EXPECT_EQ(addressesOf("eth0"), (Lines{ipv4Address("10.0.0.6")}));
}

TEST_F(TcpIpParameters, WritesNoNodeForAnAliasWithoutAnAddress) {
    layAddress("eth0", "10.0.0.5");
    layInterface("eth0:1");
    layAddress("eth0:2", "10.0.0.7");
    collect();
    EXPECT_EQ(addressesOf("eth0"), (Lines{ipv4Address("10.0.0.5"), ipv4Address("10.0.0.7")}));
}

TEST_F(TcpIpParameters, FindsAliasesByAnyPartOfTheName) {
    layAddress("eth0", "10.0.0.5");
    layAddress("veth0:1", "10.0.0.6");  // holds "eth0:" after its beginning
    layAddress("eth0:1:2", "10.0.0.7");
    collect();
    EXPECT_EQ(addressesOf("eth0"), (Lines{ipv4Address("10.0.0.5"), ipv4Address("10.0.0.7"), ipv4Address("10.0.0.6")}));
}

TEST_F(TcpIpParameters, WantsTheColonRightBehindTheName) {
    layAddress("eth1", "10.0.0.5");
    layAddress("eth10:1", "10.0.0.6");
    layAddress("eth1.5", "10.0.0.7");
    layAddress("eth1.5:1", "10.0.0.8");
    layAddress("eth11", "10.0.0.9");
    collect();
    EXPECT_EQ(addressesOf("eth1"), (Lines{ipv4Address("10.0.0.5")}));
    EXPECT_EQ(addressesOf("eth1.5"), (Lines{ipv4Address("10.0.0.7"), ipv4Address("10.0.0.8")}));
}

TEST_F(TcpIpParameters, FindsAnAliasThatWasCollectedAfterTheFirstListOfNames) {
    layAddress("eth0", "10.0.0.5");
    collect();
    layAddress("eth0:1", "10.0.0.6");
    collector->GetNetworkConfigurations();
    EXPECT_EQ(addressesOf("eth0"), (Lines{ipv4Address("10.0.0.5"), ipv4Address("10.0.0.6")}));
}

TEST_F(TcpIpParameters, WritesNoGatewayWithoutADefaultRoute) {
    layInterface("eth2");
    machine.command("/sbin/route", kRoutes);
    machine.command(kReadIpv6Routes, kIpv6Routes);
    collect();
    EXPECT_EQ(block("eth2"), document(element("node", value("ipv4_dhcp", " ") + value("ipv4_interface_metric", "1"))));
    EXPECT_THAT(TestHost::trace(), testing::Contains(noRouteData("eth2")));
}

TEST_F(TcpIpParameters, WritesTheMetricAlsoIfItIsEmpty) {
    layInterface("eth0", "00:00:00:00:00:01", "UP");
    collect();
    EXPECT_EQ(valuesOf(block(), "ipv4_interface_metric"), (Lines{""}));
}

TEST_F(TcpIpParameters, SortsANameserverByTheCharacterThatItHolds) {
    layInterface("eth0");
    machine.file("/etc/resolv.conf", "nameserver ::ffff:10.0.0.1\nnameserver resolver\nnameserver .\nnameserver :\n");
    collect();
    EXPECT_EQ(block(), document(element("node", value("ipv4_dhcp", " ") + value("ipv4_interface_metric", "1") +
                                                    value("ipv4_dns_server_address", "::ffff:10.0.0.1") +
                                                    value("ipv4_dns_server_address", ".") +
                                                    value("ipv6_dns_server_address", "::ffff:10.0.0.1") +
                                                    value("ipv6_dns_server_address", ":"))));
}

TEST_F(TcpIpParameters, RepeatsTheNameserversForEachInterface) {
    layInterface("eth0");
    layInterface("eth1");
    machine.file("/etc/resolv.conf", "nameserver 10.0.0.1\n");
    collect();
    EXPECT_EQ(valuesOf(block("eth0"), "ipv4_dns_server_address"), (Lines{"10.0.0.1"}));
    EXPECT_EQ(valuesOf(block("eth1"), "ipv4_dns_server_address"), (Lines{"10.0.0.1"}));
}

TEST_F(TcpIpParameters, GoesOnWithoutNameserversIfTheyCannotBeRead) {
    layInterface("eth0", "00:00:00:00:00:01", "inet6 addr: fe80::5/64 Metric:1");
    machine.command(kReadIpv6Routes, kIpv6Routes);
    collect();
    EXPECT_EQ(block(), document(element("node", value("ipv4_dhcp", " ") + value("ipv4_interface_metric", "1") +
                                                    address("ipv6_address", "fe80::5/", "prefix", "64") +
                                                    address("ipv6_default_gateway", "fe80::2", "metric", "1024") +
                                                    address("ipv6_default_gateway", "fe80::1", "metric", "512"))));
}

TEST_F(TcpIpParameters, WritesNothingOfIpv6OnAMachineWithoutIt) {
    layAddress("eth0", "10.0.0.5");
    machine.command(kReadIpv6Routes, "INET6 (IPv6) not configured in this system.\n", {1});
    collect();
    EXPECT_EQ(block(), document(element("node", value("ipv4_dhcp", " ") + ipv4Address("10.0.0.5") +
                                                    value("ipv4_interface_metric", "1"))));
    EXPECT_THAT(TestHost::trace(), testing::Contains("32 ** Not IPv6 Protocol **"));
    EXPECT_EQ(TestHost::trace().back(), leave(kTcpIpBlock));
}

TEST_F(TcpIpParameters, WritesEmptyValuesForAnUnknownInterface) {
    layAddress("eth7:1", "10.0.0.6");
    collect();
    EXPECT_EQ(block("eth7"), document(element("node", value("ipv4_dhcp", "") + ipv4Address("10.0.0.6") +
                                                          value("ipv4_interface_metric", ""))));
    EXPECT_EQ(TestHost::trace()[1], noIfconfigData("eth7"));
}

}  // namespace
}  // namespace kvl::test
