#include "collector/route_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

// ---- route ----

class DefaultRoutes : public ParserTable {};

std::string parsedDefault(std::istream& table) {
    std::string shown;
    for (const auto& [ifname, route] : parseDefaultRoutes(table)) {
        shown += "[" + ifname + "] via [" + route.Gateway + "] metric [" + route.Metric + "]\n";
    }
    return shown;
}

TEST_P(DefaultRoutes, AreRead) {
    std::istringstream table(GetParam().input);
    EXPECT_EQ(parsedDefault(table), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, DefaultRoutes,
    testing::Values(ParserCase{"InTheOrderOfTheTable",
                               "Kernel IP routing table\n"
                               "Destination     Gateway         Genmask         Flags Metric Ref    Use Iface\n"
                               "10.0.0.0        *               255.255.255.0   U     0      0        0 eth0\n"
                               "default         10.0.0.1        0.0.0.0         UG    5      1        2 eth0\n"
                               "default         10.1.0.1        0.0.0.0         UG    6      3        4 eth1\n",
                               "[eth0] via [10.0.0.1] metric [5]\n[eth1] via [10.1.0.1] metric [6]\n"},
                    ParserCase{"WithEmptyTextsForMissingColumns", "default g 0 UG 7\ndefault\n",
                               "[] via [g] metric [7]\n[] via [] metric []\n"},
                    ParserCase{"ByTheWholeFirstWord", "defaults g 0 UG 7 0 0 eth0\n default g 0 UG 7 0 0 eth0\n", ""},
                    ParserCase{"InALastLineWithoutALineFeed", "default g 0 UG 7 0 0 eth0",
                               "[eth0] via [g] metric [7]\n"},
                    ParserCase{"InNoTable", "", ""}),
    ruleOf);

// ---- netstat -A inet6 -nr ----

const std::string kIpv6Table =
    "Kernel IPv6 routing table\n"
    "Destination     Next Hop                Flags Metric Ref    Use Iface\n"
    "fe80::/64       ::                      U     256    0        0 eth0\n"
    "::/0            fe80::1                 UG    1      0        0 eth0\n"
    "::/0            fe80::2                 UG    2      0        0 eth1\n"
    "2001::/16       fe80::1                 UG    3      0        0 eth0\n"
    "::/0            fe80::9                 UG    9      0        0 eth01\n";

class Ipv6Routes : public ParserTable {};

std::string parsedIpv6(std::istream& table) {
    std::string shown;
    for (const RouteConfig& route : parseIpv6Routes(table, "eth0")) {
        shown += "[" + route.Gateway + "] metric [" + route.Metric + "]\n";
    }
    return shown;
}

TEST_P(Ipv6Routes, AreRead) {
    std::istringstream table(GetParam().input);
    EXPECT_EQ(parsedIpv6(table), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, Ipv6Routes,
    testing::Values(
        ParserCase{"OfTheInterfaceThroughAGateway", kIpv6Table, "[fe80::1] metric [1]\n[fe80::1] metric [3]\n"},
        ParserCase{"ByANameThatEndsAWord", "a g U 1 xeth0\na g U 2 eth0 x\n", "[g] metric [1]\n[g] metric [2]\n"},
        ParserCase{"WithAMetricAlone", "eth0 g U\neth0\neth0 h U 4\n", "[h] metric [4]\n"},
        ParserCase{"AlsoWithAnEmptyMetricAfterABlank", "eth0 g U \n", "[g] metric []\n"},
        ParserCase{"WithoutALastLineThatMeetsTheEnd", "a g U 1 eth0\na g U 2 eth0", "[g] metric [1]\n"}),
    ruleOf);

class Ipv6Metric : public ParserTable {};

std::string foundMetric(std::istream& table) {
    const std::optional<std::string> metric = findIpv6Metric(table, "eth0", "fe80::1");
    return metric ? "[" + *metric + "]" : "(none)";
}

TEST_P(Ipv6Metric, IsThatOf) {
    std::istringstream table(GetParam().input);
    EXPECT_EQ(foundMetric(table), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, Ipv6Metric,
    testing::Values(ParserCase{"TheFirstRouteThroughTheGateway", kIpv6Table, "[1]"},
                    ParserCase{"ARouteOfTheInterfaceAlone", "a fe80::1 UG 5 0 0 eth1\na fe80::1 UG 6 0 0 eth0\n",
                               "[6]"},
                    ParserCase{"ARouteThroughTheWholeGatewayAlone",
                               "a fe80::11 UG 5 0 0 eth0\na fe80:: UG 6 0 0 eth0\na fe80::1 UG 7 0 0 eth0\n", "[7]"},
                    ParserCase{"TheNextLineWhereOneHasNoMetric", "eth0 fe80::1 UG\neth0 fe80::1 UG 8\n", "[8]"},
                    ParserCase{"ALineWithABlankAtItsEnd", "eth0 fe80::1 UG \n", "[]"},
                    ParserCase{"NoRoute", "a fe80::2 UG 5 0 0 eth0\n", "(none)"},
                    ParserCase{"NoLineThatMeetsTheEnd", "a fe80::1 UG 5 0 0 eth0", "(none)"}),
    ruleOf);

TEST(RouteFile, GivesNothingWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream defaults(path);
        EXPECT_EQ(parsedDefault(defaults), "");
        std::ifstream ipv6(path);
        EXPECT_EQ(parsedIpv6(ipv6), "");
        std::ifstream metric(path);
        EXPECT_EQ(foundMetric(metric), "(none)");
    }
}

}  // namespace
}  // namespace kvl::test
