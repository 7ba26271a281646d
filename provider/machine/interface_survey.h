#ifndef KVL_PROVIDER_MACHINE_INTERFACE_SURVEY_H
#define KVL_PROVIDER_MACHINE_INTERFACE_SURVEY_H

#include <functional>
#include <map>
#include <string>

namespace kvl::provider {

/// What an interface is.
enum class InterfaceRole {
    kPort,  ///< an Ethernet interface with a PCI device
    kBond,
    kVlan,
    kOther,  ///< an alias, a bridge, a tunnel, an interface without a PCI device, and everything else
};

/// Finds out what the interfaces of `ifconfig -a` are: bonds and VLANs from the kernel's files about them, ports from
/// /sys, or where it doesn't know the interface, as in a recorded server, from what `ethtool -i` prints.
/// @param output        what `ifconfig -a` prints, in the form of net-tools 1.60
/// @param askForDriver  gives the output of `ethtool -i` for an interface; empty if it fails
/// @return every name in the output with its role
std::map<std::string, InterfaceRole> surveyInterfaces(
    const std::string& output, const std::function<std::string(const std::string& name)>& askForDriver);

/// The address of the PCI device of an interface, or of the next device above it that is one, such as 0000:03:00.0 for
/// a virtio port. @return empty if /sys shows none
std::string pciAddressOf(const std::string& interface);

}  // namespace kvl::provider

#endif
