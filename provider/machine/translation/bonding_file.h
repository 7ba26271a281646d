#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_BONDING_FILE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_BONDING_FILE_H

#include <string>

namespace kvl::provider {

/// A bond's file in /proc/net/bonding. The oldest drivers print no line "Permanent HW addr:" for their slaves; the
/// library then takes the next slave's and drops what has none. Such a slave gets that line with nothing after it,
/// which the library reads as an address of no characters. A line of ARP targets that is longer than the library's (16
/// targets make 302 characters) becomes several, whose targets the library takes together.
std::string translateBondingFile(const std::string& file);

}  // namespace kvl::provider

#endif
