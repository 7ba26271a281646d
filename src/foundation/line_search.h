#ifndef KVL_FOUNDATION_LINE_SEARCH_H
#define KVL_FOUNDATION_LINE_SEARCH_H

#include <istream>
#include <string>

namespace kvl {

/// @return true if a line of the text, of any length, holds `part`; the line ends the reading
bool anyLineHolds(std::istream& text, const std::string& part);

}  // namespace kvl

#endif
