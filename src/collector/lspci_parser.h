#ifndef KVL_COLLECTOR_LSPCI_PARSER_H
#define KVL_COLLECTOR_LSPCI_PARSER_H

#include <istream>
#include <string>

namespace kvl {

/// Parses the first line of `lspci -mns`.
/// @return vendor, device, subsystem vendor and subsystem device with a blank between; an identifier that the line
///         lacks is empty
std::string parsePciIds(std::istream& text);

/// Parses the line of `lspci -m` that begins with a location.
/// @return the names of vendor and device with a blank between; empty if there is no such line
std::string parsePciDescription(std::istream& text, const std::string& location);

}  // namespace kvl

#endif
