#include <fstream>
#include <map>

#include "collector/CNetworkParameter.h"
#include "collector/parsing.h"
#include "collector/route_parser.h"
#include "foundation/CTextFileParser.h"
#include "foundation/operation_trace.h"

namespace {

constexpr const char* kRouteCommand = "/sbin/route";
constexpr const char* kIpv6RouteCommand = "/bin/netstat -A inet6 -nr";
constexpr const char* kNetworkFile = "/etc/sysconfig/network";
constexpr const char* kIpv6GatewayKey = "IPV6_DEFAULTGW";

}  // namespace

bool CNetworkParameter::GetRoutingConfigurations() {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetRoutingConfigurations()");
    trace.enter();
    route_map.clear();
    if (ExecCommand("%s", kRouteCommand) < 0) {
        return false;
    }
    std::multimap<std::string, RouteConfig> routes;
    std::ifstream table(result_file);
    for (const auto& [ifname, route] : kvl::parseDefaultRoutes(table)) {
        trace.detail("Iface=%s, Gateway=%s, Metric=%s", ifname.c_str(), route.Gateway.c_str(), route.Metric.c_str());
        routes.emplace(ifname, route);
    }
    RemoveResultFile();

    for (auto entry = routes.begin(); entry != routes.end();) {
        const std::string& ifname = entry->first;
        const auto nextInterface = routes.upper_bound(ifname);
        std::list<RouteConfig>& routesOfInterface = route_map[ifname];
        for (; entry != nextInterface; ++entry) {
            routesOfInterface.push_back(entry->second);
        }
        trace.detail("Change ifname %s", ifname.c_str());
    }
    if (!routes.empty()) {
        trace.detail("Loop End");
    }
    trace.leave();
    return true;
}

std::list<RouteConfig> CNetworkParameter::GetRouteData(std::string ifname) {
    const kvl::OperationTrace trace(
        module_name,
        "std::list<RouteConfig, std::allocator<RouteConfig> > CNetworkParameter::GetRouteData(std::string)");
    const auto found = route_map.find(ifname);
    if (found == route_map.end()) {
        trace.detail("-- %s has no route data", ifname.c_str());
        return {};
    }
    return found->second;
}

std::list<RouteConfig> CNetworkParameter::GetRouteDataV6(std::string ifname) {
    const kvl::OperationTrace trace(
        module_name,
        "std::list<RouteConfig, std::allocator<RouteConfig> > CNetworkParameter::GetRouteDataV6(std::string)");
    trace.enter();
    if (ExecCommand("%s", kIpv6RouteCommand) < 0) {
        trace.notice("** Not IPv6 Protocol **");
        return {};
    }
    std::ifstream table(result_file);
    std::list<RouteConfig> routes = kvl::parseIpv6Routes(table, ifname);
    for (const RouteConfig& route : routes) {
        trace.detail("IPv6: %s, Gateway=%s, Metric=%s", ifname.c_str(), route.Gateway.c_str(), route.Metric.c_str());
    }
    RemoveResultFile();
    trace.leave();
    return routes;
}

std::string CNetworkParameter::GetIpv6Metric(std::string ifname, std::string& gateway) {
    const kvl::OperationTrace trace(module_name,
                                    "std::string CNetworkParameter::GetIpv6Metric(std::string, std::string&)");
    trace.enter();
    work_str.clear();
    const std::string ifcfgFile = kvl::kIfcfgPrefix + ifname;
    if (!CTextFileParser::GetIniFileValue(kNetworkFile, kIpv6GatewayKey, gateway) &&
        !CTextFileParser::GetIniFileValue(ifcfgFile, kIpv6GatewayKey, gateway)) {
        trace.notice("** Not IPv6 Protocol ** (%s)", ifcfgFile.c_str());
        return "";
    }
    if (ExecCommand("%s", kIpv6RouteCommand) < 0) {
        trace.notice("** Not IPv6 Protocol **");
        return "";
    }
    std::ifstream table(result_file);
    if (const std::optional<std::string> metric = kvl::findIpv6Metric(table, ifname, gateway)) {
        work_str = *metric;
        trace.detail("IPv6: %s, Gateway=%s, Metric=%s", ifname.c_str(), gateway.c_str(), work_str.c_str());
    }
    RemoveResultFile();
    trace.leave();
    return work_str;
}
