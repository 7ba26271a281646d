#include "provider/machine/translation/ipv4_routes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kvl::provider {
namespace {

using Texts = std::vector<std::string>;

const std::string kNamedRoutes =
    "Destination     Gateway         Genmask         Flags Metric Ref    Use Iface\n"
    "default         _gateway        0.0.0.0         UG    100    0        0 ens192\n"
    "default         gateway         0.0.0.0         UG    100    0        0 eth0\n"
    "default         10.0.4.2        0.0.0.0         UG    300    0        0 eth4\n"
    "default         *               0.0.0.0         U     0      0        0 ppp0\n"
    "default         -               0.0.0.0         !     0      -        0 -\n"
    "172.16.0.0      the-second-gate 255.240.0.0     UG    0      0        0 bond1\n";

Texts namesIn(const std::string& routes) {
    Texts names;
    for (const NamedGateway& gateway : gatewaysWithoutAddress(routes)) {
        names.push_back(gateway.interface + " " + gateway.name);
    }
    return names;
}

TEST(GatewaysWithoutAddress, AreThoseOfDefaultRoutesThatHaveANameOnly) {
    EXPECT_EQ(namesIn(kNamedRoutes), (Texts{"ens192 _gateway", "eth0 gateway"}));
}

TEST(GatewaysWithoutAddress, AreFoundInTranslatedRoutesToo) {
    EXPECT_EQ(namesIn(translateIpv4Routes(kNamedRoutes)), namesIn(kNamedRoutes));
}

}  // namespace
}  // namespace kvl::provider
