#ifndef KVL_COLLECTOR_VLAN_PARSER_H
#define KVL_COLLECTOR_VLAN_PARSER_H

#include <istream>
#include <string>
#include <utility>
#include <vector>

#include "collector/records.h"

namespace kvl {

/// Parses /proc/net/vlan/config: two heading lines, then a row for each VLAN.
/// @return name and record of each row, in order, and once more the last row's texts with the number that its
///         interface's name begins with; a table without rows gives one entry without a name
std::vector<std::pair<std::string, VlanConfig>> parseVlans(std::istream& table);

}  // namespace kvl

#endif
