#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_NETWORK_MANAGER_KEYFILE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_NETWORK_MANAGER_KEYFILE_H

#include <optional>
#include <string>
#include <vector>

namespace kvl::provider {

/// A connection of NetworkManager, from a keyfile (nm-settings-keyfile(5); RHEL 9 and 10 write no other files). Texts
/// are empty where the file does not say.
struct KeyfileConnection {
    std::string id;
    std::string uuid;
    std::string type;              ///< ethernet, bond, vlan, bridge, ..., as NetworkManager names it today
    std::string interfaceName;     ///< empty: for any interface that fits, by its MAC address for one
    std::string controller;        ///< name or UUID of the bond, bridge or team that it is a port of
    bool autoconnect = true;       ///< starts at boot
    std::string macAddress;        ///< the permanent address of the interface that it is for, in capitals
    std::string clonedMacAddress;  ///< the address to set, in capitals, or a word such as "random"
    std::string ipv4Method;        ///< auto (DHCP), manual, disabled, link-local, shared
    std::string ipv6Method;        ///< auto, dhcp, manual, ignore, disabled, link-local, shared
    std::string ipv6Gateway;
    std::vector<std::string> dns;        ///< of both families
    std::vector<std::string> dnsSearch;  ///< of both families
    std::string vlanParent;
    std::string vlanId;
};

/// @return the connection; nothing if the text has no group [connection], so that it is no keyfile
std::optional<KeyfileConnection> readKeyfile(const std::string& file);

/// The keyfile as the ifcfg file that says the same: DEVICE, ONBOOT, BOOTPROTO, HWADDR, MACADDR and IPV6_DEFAULTGW, as
/// far as it has them. A text that is no keyfile comes out as it is.
std::string translateKeyfile(const std::string& file);

}  // namespace kvl::provider

#endif
