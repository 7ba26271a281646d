#ifndef KVL_COLLECTOR_PARSING_H
#define KVL_COLLECTOR_PARSING_H

#include <cstdlib>
#include <string>

#include "foundation/text.h"

namespace kvl {

constexpr const char* kIfcfgPrefix = "/etc/sysconfig/network-scripts/ifcfg-";

/// @return the decimal number that the text begins with; 0 if there is none
inline int toNumber(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

/// @return 1 if a switch is on, whatever follows the word, and 0 for anything else. A tab in front of the word makes
///         it anything else
inline int toSwitch(const std::string& value) {
    return beginsWith(value, "on") ? 1 : 0;
}

/// @return the PCI location in a bus information: of 0000:03:00.0 that is 03:00.0
/// @throws std::out_of_range "basic_string::substr" for one of under five characters
inline std::string pciLocation(const std::string& busInfo) {
    return cut(busInfo, 5, 7);
}

/// A record dump goes through a buffer of 1024 bytes. @return the part that fits
inline std::string cutToDump(const std::string& text) {
    return text.substr(0, 1023);
}

}  // namespace kvl

#endif
