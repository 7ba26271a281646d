#ifndef KVL_PROVIDER_MACHINE_INTERFACE_INDEX_H
#define KVL_PROVIDER_MACHINE_INTERFACE_INDEX_H

#include <set>
#include <string>

namespace kvl::provider {

/// The machine's interfaces that the library was not told of when it asked for all of them, because a shell would take
/// their names apart.
const std::set<std::string>& interfacesPassedOver();

}  // namespace kvl::provider

#endif
