#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_OFFLOAD_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_OFFLOAD_H

#include <string>

namespace kvl::provider {

/// `ethtool -k`. Version 6 (RHEL 5) prints some names with blanks, "tcp segmentation offload: on", where the library
/// reads "tcp-segmentation-offload". The forms of RHEL 6 ("on") and of 3.x and newer ("off [fixed]", and features of
/// the driver after a tab) are read as they are.
std::string translateOffload(const std::string& output);

}  // namespace kvl::provider

#endif
