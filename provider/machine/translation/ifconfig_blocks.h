#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_IFCONFIG_BLOCKS_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_IFCONFIG_BLOCKS_H

#include <string>

namespace kvl::provider {

/// `ifconfig -a` of net-tools 2 (RHEL 7 and newer, Debian 9 and newer), whose blocks begin "eth0: flags=4163<UP,...>".
/// The library reads the blocks of net-tools 1.60 (RHEL 5 and 6), "eth0      Link encap:Ethernet  HWaddr ...", which
/// busybox prints, too. Each new block becomes an old one, to the letter as 1.60 prints it; but a name keeps all its
/// characters, where the oldest 1.60 cut it at nine. A MAC address gets capitals. A metric that is not printed is 1.
/// The last block is closed by an empty line, without which the library drops it, if it holds all that the library
/// reads.
std::string translateIfconfig(const std::string& output);

}  // namespace kvl::provider

#endif
