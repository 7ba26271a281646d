#ifndef KVL_COLLECTOR_BONDING_PARSER_H
#define KVL_COLLECTOR_BONDING_PARSER_H

#include <istream>

#include "collector/records.h"

namespace kvl {

/// Parses a bond's file in /proc/net/bonding.
/// @throws std::out_of_range "basic_string::substr" for a line that begins with a key and has no colon
BondingConfig parseBond(std::istream& text);

}  // namespace kvl

#endif
