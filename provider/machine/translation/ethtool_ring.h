#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_RING_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_RING_H

#include <string>

namespace kvl::provider {

/// `ethtool -g`. From 5.9 on, which asks over netlink, a ring that the driver does not have is "RX Mini:<tab>n/a",
/// which the library takes for 0; its line is left out, and the library has no value. Older versions print 0. Tabs
/// before a number do no harm.
std::string translateRing(const std::string& output);

}  // namespace kvl::provider

#endif
