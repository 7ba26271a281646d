#include "provider/machine/translation/ipv6_routes.h"

#include <gtest/gtest.h>

#include <string>

namespace kvl::provider {
namespace {

const std::string kHeader =
    "Kernel IPv6 routing table\n"
    "Destination                    Next Hop                   Flag Met Ref  Use If\n";

const std::string kOfEth1 = "::/0                           fe80::1                    UG   1024 1      0 eth1\n";
const std::string kOfVeth1 = "::/0                           fe80::2                    UG   1024 1      0 veth1\n";
const std::string kOfEth10 = "::/0                           fe80::3                    UG   1024 1      0 eth10   \n";

TEST(Ipv6RoutesOf, KeepsTheLinesOfTheseInterfacesByTheirWholeNames) {
    EXPECT_EQ(ipv6RoutesOf({"eth1", "eth10"}, kHeader + kOfEth1 + kOfVeth1 + kOfEth10), kHeader + kOfEth1 + kOfEth10);
    EXPECT_EQ(ipv6RoutesOf({"eth1"}, kHeader + kOfVeth1 + kOfEth10 + kOfEth1), kHeader + kOfEth1);
    EXPECT_EQ(ipv6RoutesOf({}, kHeader + kOfEth1), kHeader);
}

}  // namespace
}  // namespace kvl::provider
