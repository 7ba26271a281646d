#ifndef KVL_REFERENCE_HOST_INSTALL_PATH_H
#define KVL_REFERENCE_HOST_INSTALL_PATH_H

#include <string>

namespace kvl::host {

/// The product's install directory, without a "/" at its end: the environment variable KVL_INSTALL_PATH, or
/// /opt/tarvenn/kvl where that is unset or empty.
std::string installPath();

}  // namespace kvl::host

#endif
