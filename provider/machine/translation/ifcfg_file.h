#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_IFCFG_FILE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_IFCFG_FILE_H

#include <string>

namespace kvl::provider {

/// A file /etc/sysconfig/network-scripts/ifcfg-NAME. The initscripts (RHEL 5 to 8) source it in a shell; the library
/// takes the first line that holds a key, wherever it stands in the line, and all that follows as the value.
///
/// @return the file as it is where the library reads it right. Else the lines that the library would look at go, and
///         at the end stand "ONBOOT=yes" or "ONBOOT=no", "BOOTPROTO=dhcp" or "BOOTPROTO=none", and HWADDR, MACADDR and
///         IPV6_DEFAULTGW if they are set, plain
///
/// - The last assignment wins; quotes, a comment after the value and "export" are the shell's.
/// - ONBOOT: without it the interface starts at boot. The initscripts look for "no" in any case of letters (boot loop
///   of /etc/init.d/network), NetworkManager (ifcfg-rh) and is_false of the initscripts of RHEL 7 also for "false",
///   "n", "f" and "0".
/// - BOOTPROTO: "dhcp" and "bootp" start a DHCP client (ifup-eth), in small letters; without it there is none.
std::string translateIfcfg(const std::string& file);

/// /etc/sysconfig/network: the same for IPV6_DEFAULTGW, the one key that the library reads there.
std::string translateNetworkFile(const std::string& file);

/// What an ifcfg file says about whom it is for.
struct IfcfgOwner {
    std::string device;  ///< DEVICE: decides the interface; empty without it: then HWADDR does, or the file's name
    std::string hwaddr;  ///< HWADDR, as written
};

IfcfgOwner ownerOf(const std::string& file);

}  // namespace kvl::provider

#endif
