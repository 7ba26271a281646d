#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {
namespace {

constexpr const char* kIpv4 = "/sbin/route";
constexpr const char* kIpv6 = "/bin/netstat -A inet6 -nr";

const std::string kIpv4Header =
    "Kernel IP routing table\n"
    "Destination     Gateway         Genmask         Flags Metric Ref    Use Iface\n";

const std::string kIpv6Header =
    "Kernel IPv6 routing table\n"
    "Destination                    Next Hop                   Flag Met Ref  Use If\n";

const std::string kIpv6OfRhel6 =
    "Kernel IPv6 routing table\n"
    "Destination                                 Next Hop                                Flags Metric Ref    Use "
    "Iface\n"
    "2001:db8:20::/64                            ::                                      U     256    0        0 bond0 "
    "  \n"
    "::/0                                        2001:db8:20::1                          UG    1      0        0 bond0 "
    "  \n"
    "::/0                                        fe80::1                                 UG    1024   0        0 eth3  "
    "  \n"
    "::1/128                                     ::                                      U     0      128       1 lo   "
    "   \n"
    "ff00::/8                                    ::                                      U     256    0        0 bond0 "
    "  \n"
    "::/0                                        ::                                      !n    -1     1        1 lo    "
    "  \n";

const std::string kNoIpv6 = "INET6 (IPv6) not configured in this system.\n";

const std::string kRouteOfRhel6 = kIpv4Header +
                                  "192.168.1.0     *               255.255.255.0   U     0      0        0 eth0\n"
                                  "link-local      *               255.255.0.0     U     1002   0        0 eth0\n"
                                  "default         192.168.1.1     0.0.0.0         UG    0      0        0 eth0\n";

}  // namespace

std::vector<TranslationCase> routeCases() {
    return {
        {"route -n, net-tools 2.10: two default gateways", kIpv4,
         kIpv4Header + "0.0.0.0         192.168.10.2    0.0.0.0         UG    0      0        0 bond0\n"
                       "0.0.0.0         10.0.4.2        0.0.0.0         UG    100    0        0 eth4\n"
                       "10.0.4.0        0.0.0.0         255.255.255.0   U     0      0        0 eth4\n"
                       "172.16.0.0      192.168.30.2    255.240.0.0     UG    0      0        0 bond1\n",
         kIpv4Header + "default         192.168.10.2    0.0.0.0         UG    0      0        0 bond0\n"
                       "default         10.0.4.2        0.0.0.0         UG    100    0        0 eth4\n"
                       "10.0.4.0        0.0.0.0         255.255.255.0   U     0      0        0 eth4\n"
                       "172.16.0.0      192.168.30.2    255.240.0.0     UG    0      0        0 bond1\n"},
        {"route -n, net-tools 2.10: no gateway, rejected, half of everywhere", kIpv4,
         kIpv4Header + "0.0.0.0         0.0.0.0         0.0.0.0         U     0      0        0 tun0\n"
                       "0.0.0.0         -               0.0.0.0         !     99     -        0 -\n"
                       "0.0.0.0         10.8.0.5        128.0.0.0       UG    0      0        0 tun0\n",
         kIpv4Header + "0.0.0.0         0.0.0.0         0.0.0.0         U     0      0        0 tun0\n"
                       "0.0.0.0         -               0.0.0.0         !     99     -        0 -\n"
                       "0.0.0.0         10.8.0.5        128.0.0.0       UG    0      0        0 tun0\n"},
        {"route, net-tools 1.60: a line to a provider has no gateway", kIpv4,
         kIpv4Header + "default         *               0.0.0.0         U     0      0        0 ppp0\n",
         kIpv4Header + "0.0.0.0         *               0.0.0.0         U     0      0        0 ppp0\n"},
        {"route, net-tools 2.10: no gateway, half of everywhere", kIpv4,
         kIpv4Header + "default         0.0.0.0         0.0.0.0         U     0      0        0 tun0\n"
                       "default         10.8.0.5        128.0.0.0       UG    0      0        0 tun0\n",
         kIpv4Header + "0.0.0.0         0.0.0.0         0.0.0.0         U     0      0        0 tun0\n"
                       "0.0.0.0         10.8.0.5        128.0.0.0       UG    0      0        0 tun0\n"},
        {"route, net-tools 2.10: gateways by name", kIpv4,
         kIpv4Header + "default         _gateway        0.0.0.0         UG    100    0        0 ens192\n"
                       "default         ip-10-10-0-1.eu 0.0.0.0         UG    200    0        0 eth1\n"
                       "default         10.0.4.2        0.0.0.0         UG    300    0        0 eth4\n"
                       "172.16.0.0      the-second-gate 255.240.0.0     UG    0      0        0 bond1\n",
         kIpv4Header + "0.0.0.0         _gateway        0.0.0.0         UG    100    0        0 ens192\n"
                       "0.0.0.0         ip-10-10-0-1.eu 0.0.0.0         UG    200    0        0 eth1\n"
                       "default         10.0.4.2        0.0.0.0         UG    300    0        0 eth4\n"
                       "172.16.0.0      the-second-gate 255.240.0.0     UG    0      0        0 bond1\n"},
        {"route, net-tools 1.60", kIpv4, kRouteOfRhel6, kRouteOfRhel6},
        {"route: carriage returns at line ends", kIpv4,
         "default         192.168.1.1     0.0.0.0         UG    0      0        0 eth0\r\n",
         "default         192.168.1.1     0.0.0.0         UG    0      0        0 eth0\n"},

        {"netstat, net-tools 2.10: a network through a gateway", kIpv6,
         kIpv6Header + "2001:db8:4::/64                ::                         U    256 1      0 eth4\n"
                       "2001:db8:ffff::/48             2001:db8:100:aaaa:bbbb:cccc:dddd:1 UG   1024 1      0 eth4.100\n"
                       "::/0                           2001:db8:4::1              UG   1024 1      0 eth4\n"
                       "::/0                           fe80::1                    UGDAe 2048 1      0 bond0\n"
                       "::1/128                        ::                         Un   0   3      0 lo\n"
                       "::/0                           ::                         !n   -1  1      0 lo\n",
         kIpv6Header + "2001:db8:4::/64                ::                         U    256 1      0 eth4\n"
                       "::/0                           2001:db8:4::1              UG   1024 1      0 eth4\n"
                       "::/0                           fe80::1                    UGDAe 2048 1      0 bond0\n"
                       "::1/128                        ::                         Un   0   3      0 lo\n"
                       "::/0                           ::                         !n   -1  1      0 lo\n"},
        {"netstat, net-tools 1.60 on an older kernel: the route cache", kIpv6,
         kIpv6Header + "ff02::1/128                    ff02::1                    UC   0   25      0 eth0\n"
                       "2001:db8::9/128                fe80::1                    UGDC 0   3       0 eth0\n"
                       "ff00::/8                       ::                         U    256 0       0 eth0\n",
         kIpv6Header + "ff00::/8                       ::                         U    256 0       0 eth0\n"},
        {"netstat: a default route that rejects", kIpv6,
         kIpv6Header + "::/0                           fe80::1                    !n   -1  1      0 lo\n", kIpv6Header},
        {"netstat, net-tools 1.60 of RHEL 6", kIpv6, kIpv6OfRhel6, kIpv6OfRhel6},
        {"netstat without IPv6", kIpv6, kNoIpv6, kNoIpv6},
    };
}

}  // namespace kvl::test
