#include "collector/route_parser.h"

#include "foundation/columns.h"
#include "foundation/line_reader.h"

namespace kvl {

namespace {

constexpr const char* kOnLink = "::";

// Columns of route's table.
constexpr int kGatewayColumn = 2;
constexpr int kMetricColumn = 5;
constexpr int kInterfaceColumn = 8;

// Columns of netstat's table.
constexpr int kNextHopColumn = 2;
constexpr int kIpv6MetricColumn = 4;

}  // namespace

std::vector<InterfaceRoute> parseDefaultRoutes(std::istream& table) {
    std::vector<InterfaceRoute> routes;
    LinesBeginningKey lines(table, "default");
    std::string line;
    while (lines.next(line)) {
        InterfaceRoute found;
        takeColumn(line, kGatewayColumn, found.route.Gateway);
        takeColumn(line, kMetricColumn, found.route.Metric);
        takeColumn(line, kInterfaceColumn, found.ifname);
        routes.push_back(found);
    }
    return routes;
}

std::list<RouteConfig> parseIpv6Routes(std::istream& table, const std::string& ifname) {
    std::list<RouteConfig> routes;
    LinesContainingKey lines(table, ifname);
    std::string line;
    while (lines.next(line)) {
        RouteConfig route;
        takeColumn(line, kNextHopColumn, route.Gateway);
        if (route.Gateway != kOnLink && takeColumn(line, kIpv6MetricColumn, route.Metric)) {
            routes.push_back(route);
        }
    }
    return routes;
}

std::optional<std::string> findIpv6Metric(std::istream& table, const std::string& ifname, const std::string& gateway) {
    LinesContainingKey lines(table, ifname);
    std::string line;
    while (lines.next(line)) {
        std::string nextHop;
        std::string metric;
        takeColumn(line, kNextHopColumn, nextHop);
        if (nextHop == gateway && takeColumn(line, kIpv6MetricColumn, metric)) {
            return metric;
        }
    }
    return std::nullopt;
}

}  // namespace kvl
