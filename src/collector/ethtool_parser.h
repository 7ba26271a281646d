#ifndef KVL_COLLECTOR_ETHTOOL_PARSER_H
#define KVL_COLLECTOR_ETHTOOL_PARSER_H

#include <istream>

#include "collector/records.h"

namespace kvl {

// The parsers of ethtool's outputs. Each fills only the fields of its own group. A line that begins with a key of the
// group and has no colon raises std::out_of_range "basic_string::substr"; what was read before it stays.

/// Parses `ethtool -i`. What is not there stays as it is; a bus information of under 12 characters gives no location.
void parseDriverInfo(std::istream& text, EthtoolDriverInfo& info);

/// Parses `ethtool -k`. What is not there becomes -1, as in the groups below.
void parseOffload(std::istream& text, EthtoolResult& result);

/// Parses `ethtool -a`.
void parsePause(std::istream& text, EthtoolResult& result);

/// Parses `ethtool -g`: the maximums and the current sizes, each below its heading.
void parseRings(std::istream& text, EthtoolResult& result);

/// Parses `ethtool -c`.
void parseCoalesce(std::istream& text, EthtoolResult& result);

}  // namespace kvl

#endif
