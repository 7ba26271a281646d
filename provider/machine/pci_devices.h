#ifndef KVL_PROVIDER_MACHINE_PCI_DEVICES_H
#define KVL_PROVIDER_MACHINE_PCI_DEVICES_H

#include <string>

namespace kvl::provider {

/// @param location  bus:device.function, two, two and one hexadecimal digits in lower case
/// @return true if the kernel knows a PCI device there, in any domain
bool isPciDevice(const std::string& location);

}  // namespace kvl::provider

#endif
