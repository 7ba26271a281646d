#ifndef KVL_COLLECTOR_ROUTE_PARSER_H
#define KVL_COLLECTOR_ROUTE_PARSER_H

#include <istream>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "collector/records.h"

namespace kvl {

/// A default route and the interface that it belongs to.
struct InterfaceRoute {
    std::string ifname;
    RouteConfig route;
};

/// Parses the output of `route`. @return its default routes, in the order of the table
std::vector<InterfaceRoute> parseDefaultRoutes(std::istream& table);

/// Parses the output of `netstat -A inet6 -nr`.
/// @return the interface's routes through a gateway, in the order of the table
std::list<RouteConfig> parseIpv6Routes(std::istream& table, const std::string& ifname);

/// Looks in the output of `netstat -A inet6 -nr` for the interface's first route through a gateway.
/// @return its metric; nothing if there is no such route
std::optional<std::string> findIpv6Metric(std::istream& table, const std::string& ifname, const std::string& gateway);

}  // namespace kvl

#endif
