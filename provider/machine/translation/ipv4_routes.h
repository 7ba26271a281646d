#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_IPV4_ROUTES_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_IPV4_ROUTES_H

#include <string>
#include <vector>

namespace kvl::provider {

/// `route -n`, and `route` as recordings have it. The library reads the gateway of each line that begins with
/// "default", whatever stands in its column. So that word is put where the route goes everywhere (0.0.0.0 with the mask
/// 0.0.0.0) through a gateway whose address is there, and "0.0.0.0" everywhere else: the library passes over these. No
/// gateway are "0.0.0.0" (net-tools 2, busybox -n), "*" (net-tools 1.60, busybox) and "-" (a reject route). No address
/// is a name such as "_gateway" (systemd's, RHEL 7 and newer) or "ip-10-10-0-1.eu" (cut at 15 characters).
std::string translateIpv4Routes(const std::string& output);

/// A default route whose gateway's address the output does not show.
struct NamedGateway {
    std::string interface;
    std::string name;  ///< as printed, so perhaps cut at 15 characters
};

/// @return the default routes in an output of `route`, translated or not, that have a gateway by name only, in its
/// order
std::vector<NamedGateway> gatewaysWithoutAddress(const std::string& output);

}  // namespace kvl::provider

#endif
