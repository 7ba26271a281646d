#ifndef KVL_FOUNDATION_COLUMNS_H
#define KVL_FOUNDATION_COLUMNS_H

#include <string>

namespace kvl {

/// Cuts a column out of a line. A run of blanks separates once; one leading blank hides the first word, two or more
/// don't. A tab is an ordinary character.
/// @param column  1 for the first, which is empty for a line that starts with a blank
/// @param result  another text than `line`: the column, empty after a trailing blank; empty on failure
/// @return true if there is such a column
bool takeColumn(const std::string& line, int column, std::string& result);

/// Looks for a key that ends at a blank or at the end of the line; what comes before it doesn't matter.
/// @return its position in `line`, or -1
int keyPosition(const std::string& key, const std::string& line);

}  // namespace kvl

#endif
