#ifndef KVL_PROVIDER_MACHINE_INTERFACE_INDEX_H
#define KVL_PROVIDER_MACHINE_INTERFACE_INDEX_H

#include <set>
#include <string>

namespace kvl::provider {

/// The interfaces that were left out when the library asked for all of the machine's, because a shell would take their
/// names apart.
const std::set<std::string>& interfacesPassedOver();

}  // namespace kvl::provider

#endif
