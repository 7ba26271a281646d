#ifndef KVL_FOUNDATION_INI_VALUE_H
#define KVL_FOUNDATION_INI_VALUE_H

#include <istream>
#include <string>

namespace kvl {

/// Reads the value of the first line that holds a key and "=" side by side. Lines are those of `LineReader`, the last
/// one included if it has no line feed.
/// @param result  the line without double quotes, cut at the length of key and "=" from its start, wherever the key
///                stands; empty on failure
/// @return true if there is such a line
bool findIniValue(std::istream& text, const std::string& key, std::string& result);

}  // namespace kvl

#endif
