#include <ifaddrs.h>
#include <net/if.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include "provider/machine/interface_index.h"
#include "provider/machine/plain_command.h"

namespace kvl::provider {
namespace {

std::set<std::string>& passedOver() {
    static std::set<std::string> names;
    return names;
}

/// The machine's interfaces by their numbers.
std::map<unsigned, std::string> interfaces() {
    std::map<unsigned, std::string> found;
    struct ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0) {
        return found;
    }
    const std::unique_ptr<struct ifaddrs, void (*)(struct ifaddrs*)> list(first, freeifaddrs);
    for (const struct ifaddrs* entry = list.get(); entry != nullptr; entry = entry->ifa_next) {
        if (const unsigned number = if_nametoindex(entry->ifa_name)) {
            found.emplace(number, entry->ifa_name);
        }
    }
    return found;
}

}  // namespace

const std::set<std::string>& interfacesPassedOver() {
    return passedOver();
}

}  // namespace kvl::provider

/// Stands in front of libc's own. The program exports it, so the library's list of interfaces comes from here: without
/// the names that a shell would take apart, since the library puts the names into shell lines.
extern "C" struct if_nameindex* if_nameindex() {
    const std::map<unsigned, std::string> found = kvl::provider::interfaces();
    auto* const list = static_cast<struct if_nameindex*>(std::calloc(found.size() + 1, sizeof(struct if_nameindex)));
    if (list == nullptr) {
        return nullptr;
    }
    struct if_nameindex* next = list;
    for (const auto& [number, name] : found) {
        if (!kvl::provider::isPlainWord(name)) {
            kvl::provider::passedOver().insert(name);
        } else if (char* const copy = strdup(name.c_str())) {
            *next++ = {number, copy};
        }
    }
    return list;
}

extern "C" void if_freenameindex(struct if_nameindex* list) {
    for (struct if_nameindex* entry = list; entry != nullptr && entry->if_name != nullptr; ++entry) {
        std::free(entry->if_name);
    }
    std::free(list);
}
