#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_PAUSE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_PAUSE_H

#include <string>

namespace kvl::provider {

/// `ethtool -a`. Every version from 6 (RHEL 5) to 6.x prints tabs before the values, "RX:<tab><tab>on", which the
/// library takes for off; they become blanks. From 5.9 on a switch that the driver does not report is "n/a", which the
/// library takes for off, too; its line is left out, and the library has no value.
std::string translatePause(const std::string& output);

}  // namespace kvl::provider

#endif
