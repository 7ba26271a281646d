#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kCollect = "bool CNetworkParameter::GetRoutingConfigurations()";
const std::string kGet =
    "std::list<RouteConfig, std::allocator<RouteConfig> > CNetworkParameter::GetRouteData(std::string)";
const std::string kGetV6 =
    "std::list<RouteConfig, std::allocator<RouteConfig> > CNetworkParameter::GetRouteDataV6(std::string)";
const std::string kMetric = "std::string CNetworkParameter::GetIpv6Metric(std::string, std::string&)";
const std::string kRoute = "/sbin/route";
const std::string kNetstat = "/bin/netstat -A inet6 -nr";
const std::string kHeader =
    "Kernel IP routing table\nDestination     Gateway         Genmask         Flags Metric Ref    Use Iface\n";
const std::string kHeaderV6 =
    "Kernel IPv6 routing table\nDestination                    Next Hop                   Flag Met Ref Use If\n";

/// Each route as "GATEWAY METRIC".
Lines asLines(const std::list<RouteConfig>& routes) {
    Lines lines;
    for (const RouteConfig& route : routes) {
        lines.push_back(route.Gateway + " " + route.Metric);
    }
    return lines;
}

class Routes : public CollectorTest {
protected:
    void collect(const std::string& table) {
        machine.command(kRoute, kHeader + table);
        EXPECT_TRUE(collector->GetRoutingConfigurations());
        EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
    }

    Lines routesV6(const std::string& ifname, const std::string& table) {
        machine.command(kNetstat, kHeaderV6 + table);
        const Lines lines = asLines(collector->GetRouteDataV6(ifname));
        EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
        return lines;
    }
};

using GetRoutingConfigurations = Routes;
using GetRouteData = Routes;
using GetRouteDataV6 = Routes;
using GetIpv6Metric = Routes;

// ---- IPv4 ----

TEST_F(GetRoutingConfigurations, KeepsTheDefaultRoutesByInterfaceInTheOrderOfTheTable) {
    collect(
        "default         10.1.0.1        0.0.0.0         UG    5      0        0 eth1\n"
        "10.0.0.0        *               255.0.0.0       U     0      0        0 eth0\n"
        "default         gateway         0.0.0.0         UG    0      0        0 eth0\n"
        "default         10.0.0.2        0.0.0.0         UG    100    0        0 eth0\n");
    EXPECT_EQ(asLines(collector->GetRouteData("eth0")), (Lines{"gateway 0", "10.0.0.2 100"}));
    EXPECT_EQ(asLines(collector->GetRouteData("eth1")), (Lines{"10.1.0.1 5"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect)} + ran(kRoute) +
                                  Lines{detail(kCollect, "Iface=eth1, Gateway=10.1.0.1, Metric=5"),
                                        detail(kCollect, "Iface=eth0, Gateway=gateway, Metric=0"),
                                        detail(kCollect, "Iface=eth0, Gateway=10.0.0.2, Metric=100"),
                                        detail(kCollect, "Change ifname eth0"), detail(kCollect, "Change ifname eth1"),
                                        detail(kCollect, "Loop End"), leave(kCollect)}));
}

TEST_F(GetRoutingConfigurations, IsTrueWithoutADefaultRoute) {
    collect("10.0.0.0 * 255.0.0.0 U 0 0 0 eth0\n");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect)} + ran(kRoute) + Lines{leave(kCollect)}));
    EXPECT_THAT(collector->GetRouteData("eth0"), testing::IsEmpty());
}

TEST_F(GetRoutingConfigurations, FailsWithTheCommandAndIsEmptyThen) {
    collect("default g 0.0.0.0 UG 0 0 0 eth0\n");
    machine.command(kRoute, "", {1});
    forget();
    EXPECT_FALSE(collector->GetRoutingConfigurations());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kCollect)} + failed(kRoute)));
    EXPECT_THAT(collector->GetRouteData("eth0"), testing::IsEmpty());
}

TEST_F(GetRoutingConfigurations, ReplacesEverythingAtEachCollection) {
    collect("default g 0.0.0.0 UG 0 0 0 eth0\n");
    collect("default h 0.0.0.0 UG 0 0 0 eth1\n");
    EXPECT_THAT(collector->GetRouteData("eth0"), testing::IsEmpty());
    EXPECT_EQ(asLines(collector->GetRouteData("eth1")), (Lines{"h 0"}));
}

TEST_F(GetRoutingConfigurations, StoresAShortLineUnderAnEmptyName) {
    collect("default g 0.0.0.0 UG\ndefault\n");
    EXPECT_EQ(asLines(collector->GetRouteData("")), (Lines{"g ", " "}));
    EXPECT_THAT(TestHost::trace(), testing::Contains(detail(kCollect, "Iface=, Gateway=g, Metric=")));
}

TEST_F(GetRoutingConfigurations, SeesALastLineWithoutALineFeed) {
    collect("default g 0.0.0.0 UG 0 0 0 eth0");
    EXPECT_EQ(asLines(collector->GetRouteData("eth0")), (Lines{"g 0"}));
}

TEST_F(GetRouteData, TracesAnUnknownNameAndCollectsNothing) {
    machine.command(kRoute, kHeader + "default g 0.0.0.0 UG 0 0 0 eth0\n");
    EXPECT_THAT(collector->GetRouteData("eth0"), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{detail(kGet, "-- eth0 has no route data")}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(GetRouteData, GivesACopyAndTracesNothingForAKnownName) {
    collect("default g 0.0.0.0 UG 0 0 0 eth0\n");
    forget();
    collector->GetRouteData("eth0").clear();
    EXPECT_EQ(collector->GetRouteData("eth0").size(), 1U);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

// ---- IPv6 ----

TEST_F(GetRouteDataV6, GivesTheRoutesWithAGateway) {
    EXPECT_EQ(routesV6("eth0",
                       "2001:db8::/32 :: U 256 1 0 eth0\n"
                       "::/0 fe80::1 UG 1024 5 0 eth0\n"
                       "::/0 fe80::2 UG 1025 5 0 eth1\n"
                       "2001:db9::/32 fe80::3 UG 1 5 0 eth0\n"
                       "::/0 :: !n -1 1 0 lo\n"),
              (Lines{"fe80::1 1024", "fe80::3 1"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGetV6)} + ran(kNetstat) +
                                  Lines{detail(kGetV6, "IPv6: eth0, Gateway=fe80::1, Metric=1024"),
                                        detail(kGetV6, "IPv6: eth0, Gateway=fe80::3, Metric=1"), leave(kGetV6)}));
}

TEST_F(GetRouteDataV6, IsEmptyForAnInterfaceWithoutALine) {
    EXPECT_THAT(routesV6("eth7", "::/0 fe80::1 UG 1024 5 0 eth0\n"), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGetV6)} + ran(kNetstat) + Lines{leave(kGetV6)}));
}

TEST_F(GetRouteDataV6, TakesALongerNameThatEndsAlike) {
    EXPECT_EQ(routesV6("eth0", "::/0 fe80::1 UG 1024 5 0 veth0\n::/0 fe80::2 UG 1024 5 0 eth0:1\n"),
              (Lines{"fe80::1 1024"}));
}

TEST_F(GetRouteDataV6, NeverLooksAtALastLineWithoutALineFeed) {
    EXPECT_THAT(routesV6("eth0", "::/0 fe80::1 UG 1024 5 0 eth0"), testing::IsEmpty());
}

TEST_F(GetRouteDataV6, PassesOverALineWithoutAFourthColumn) {
    EXPECT_THAT(routesV6("eth0", "::/0 eth0\n::/0 fe80::1 eth0\n"), testing::IsEmpty());
    EXPECT_EQ(routesV6("eth0", "::/0 fe80::1 UG eth0\n"), (Lines{"fe80::1 eth0"}));
}

TEST_F(GetRouteDataV6, SaysQuietlyThatThereIsNoIpv6) {
    machine.command(kNetstat, "INET6 (IPv6) not configured in this system.\n", {1});
    EXPECT_THAT(collector->GetRouteDataV6("eth0"), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kGetV6)} + failed(kNetstat) + Lines{"32 ** Not IPv6 Protocol **"}));
}

TEST_F(GetRouteDataV6, RunsTheCommandAtEachQuestion) {
    routesV6("eth0", "");
    routesV6("eth0", "");
    EXPECT_EQ(machine.commandsRun(), (Lines{kNetstat, kNetstat}));
}

// ---- The configured IPv6 gateway ----

TEST_F(GetIpv6Metric, FindsTheMetricOfTheConfiguredGateway) {
    machine.file("/etc/sysconfig/network", "NETWORKING=yes\nIPV6_DEFAULTGW=fe80::1\n");
    machine.file("/etc/sysconfig/network-scripts/ifcfg-eth0", "IPV6_DEFAULTGW=fe80::2\n");
    machine.command(kNetstat, kHeaderV6 +
                                  "2001:db8::/32 :: U 256 1 0 eth0\n::/0 fe80::2 UG 1 5 0 eth0\n"
                                  "::/0 fe80::1 UG 2 5 0 eth1\n::/0 fe80::1 UG 1024 5 0 eth0\n"
                                  "::/0 fe80::1 UG 9 5 0 eth0\n");
    std::string gateway;
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "1024");
    EXPECT_EQ(gateway, "fe80::1");  // the machine's file wins over the interface's
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kMetric)} + ran(kNetstat) +
                                  Lines{detail(kMetric, "IPv6: eth0, Gateway=fe80::1, Metric=1024"), leave(kMetric)}));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(GetIpv6Metric, TakesTheGatewayOfTheInterfacesFile) {
    machine.file("/etc/sysconfig/network", "NETWORKING=yes\n");
    machine.file("/etc/sysconfig/network-scripts/ifcfg-eth0", "IPV6_DEFAULTGW=\"fe80::2\"\n");
    machine.command(kNetstat, "::/0 fe80::2 UG 77 5 0 eth0\n");
    std::string gateway;
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "77");
    EXPECT_EQ(gateway, "fe80::2");
}

TEST_F(GetIpv6Metric, SaysQuietlyThatNoGatewayIsConfigured) {
    std::string gateway = "earlier";
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "");
    EXPECT_EQ(gateway, "");
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kMetric), "32 ** Not IPv6 Protocol ** (/etc/sysconfig/network-scripts/ifcfg-eth0)"}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(GetIpv6Metric, SaysQuietlyThatThereIsNoIpv6) {
    machine.file("/etc/sysconfig/network", "IPV6_DEFAULTGW=fe80::1\n");
    machine.command(kNetstat, "x\n", {1});
    std::string gateway;
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "");
    EXPECT_EQ(gateway, "fe80::1");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kMetric)} + failed(kNetstat) + Lines{"32 ** Not IPv6 Protocol **"}));
}

TEST_F(GetIpv6Metric, IsEmptyForAGatewayThatIsNotInTheTable) {
    machine.file("/etc/sysconfig/network", "IPV6_DEFAULTGW=fe80:0::1\n");
    machine.command(kNetstat, "::/0 fe80::1 UG 1024 5 0 eth0\n");
    std::string gateway;
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "");
    EXPECT_EQ(gateway, "fe80:0::1");
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kMetric)} + ran(kNetstat) + Lines{leave(kMetric)}));
}

TEST_F(GetIpv6Metric, GoesOnBehindALineWithoutAMetric) {
    machine.file("/etc/sysconfig/network", "IPV6_DEFAULTGW=fe80::1\n");
    machine.command(kNetstat, "::/0 fe80::1 eth0\n::/0 fe80::1 UG 5 5 0 eth0\n");
    std::string gateway;
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "5");
}

TEST_F(GetIpv6Metric, ForgetsTheMetricOfAnEarlierQuestion) {
    machine.file("/etc/sysconfig/network", "IPV6_DEFAULTGW=fe80::1\n");
    machine.command(kNetstat, "::/0 fe80::1 UG 1024 5 0 eth0\n");
    std::string gateway;
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "1024");
    EXPECT_EQ(collector->GetIpv6Metric("eth1", gateway), "");
}

TEST_F(GetIpv6Metric, LooksAtLinesAsGetRouteDataV6Does) {
    machine.file("/etc/sysconfig/network", "IPV6_DEFAULTGW=fe80::1\n");
    std::string gateway;
    machine.command(kNetstat, "::/0 fe80::1 UG 7 5 0 veth0\n");
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "7");
    machine.command(kNetstat, "::/0 fe80::1 UG 7 5 0 eth0:1\n::/0 fe80::1 UG 8 5 0 eth0");
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "");
}

TEST_F(GetIpv6Metric, TakesAnEmptyGatewayOfTheMachinesFileAsFound) {
    machine.file("/etc/sysconfig/network", "IPV6_DEFAULTGW=\n");
    machine.file("/etc/sysconfig/network-scripts/ifcfg-eth0", "IPV6_DEFAULTGW=fe80::2\n");
    machine.command(kNetstat, "::/0 fe80::2 UG 77 5 0 eth0\n");
    std::string gateway = "earlier";
    EXPECT_EQ(collector->GetIpv6Metric("eth0", gateway), "");
    EXPECT_EQ(gateway, "");
}

}  // namespace
}  // namespace kvl::test
