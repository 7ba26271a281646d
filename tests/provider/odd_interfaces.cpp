// Loaded in front of a program, has the kernel list two interfaces beside lo: eth0, and one whose name a shell would
// take apart.

#include <ifaddrs.h>
#include <net/if.h>

#include <array>
#include <cstring>

namespace {

std::array<char, 5> plain = {"eth0"};
std::array<char, 5> odd = {"a;id"};
std::array<struct ifaddrs, 2> interfaces{};

}  // namespace

extern "C" int getifaddrs(struct ifaddrs** first) {
    interfaces[0].ifa_name = plain.data();
    interfaces[0].ifa_next = &interfaces[1];
    interfaces[1].ifa_name = odd.data();
    *first = interfaces.data();
    return 0;
}

extern "C" void freeifaddrs(struct ifaddrs*) {}

extern "C" unsigned if_nametoindex(const char* name) {
    return std::strcmp(name, plain.data()) == 0 ? 2 : 3;
}
