#ifndef KVL_COLLECTOR_IFCONFIG_PARSER_H
#define KVL_COLLECTOR_IFCONFIG_PARSER_H

#include <functional>
#include <istream>
#include <string>

#include "collector/records.h"

namespace kvl {

/// Parses the output of `ifconfig -a`: blocks of lines, each ended by an empty line.
/// @param take  receives name and record of each interface when its block ends, in the order of the blocks. A block
///              without the word "Link" has no record, and one whose name holds "lo" or "sit" is left out
/// @throws std::out_of_range "basic_string::substr" for an "inet" without a colon in the word after it
void parseIfconfig(std::istream& text,
                   const std::function<void(const std::string& ifname, const IfconfigResult& record)>& take);

}  // namespace kvl

#endif
