#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_IPV6_ROUTES_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_IPV6_ROUTES_H

#include <set>
#include <string>

namespace kvl::provider {

/// `netstat -A inet6 -nr`, of net-tools 1.60 and 2. The library takes every line whose next hop is not "::" for a
/// default gateway. Left out are those that are none: routes to a network through a gateway, "ff02::1/128 ff02::1 UC"
/// and the like of older kernels (their route cache), and reject routes ("!n"). Lines with the next hop "::" stay: the
/// library passes over them.
std::string translateIpv6Routes(const std::string& output);

/// Leaves out the routes of all other interfaces. The library looks for an interface's name at the end of any word, so
/// a line of veth1 is one of eth1 to it: what it never asks about must not be there.
/// @param interfaces  the names that the library may ask about, none of which may end in another
std::string ipv6RoutesOf(const std::set<std::string>& interfaces, const std::string& output);

}  // namespace kvl::provider

#endif
