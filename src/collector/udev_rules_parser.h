#ifndef KVL_COLLECTOR_UDEV_RULES_PARSER_H
#define KVL_COLLECTOR_UDEV_RULES_PARSER_H

#include <functional>
#include <istream>
#include <string>

namespace kvl {

/// @return a MAC address in upper case and without double quotes
std::string normalizedMac(std::string mac);

/// Parses udev rules that bind MAC addresses to interface names.
/// @param addressColumn  which column of a rule holds the address, as in ATTR{address}=="00:1b:21:aa:bb:cc"
/// @param take           receives the normalized address of each rule for the interface, in order
/// @throws std::out_of_range "basic_string::substr" for a rule whose address column has under two characters
void parseUdevRules(std::istream& text, const std::string& ifname, int addressColumn,
                    const std::function<void(const std::string& mac)>& take);

}  // namespace kvl

#endif
