#ifndef KVL_COLLECTOR_CUTTERS_H
#define KVL_COLLECTOR_CUTTERS_H

#include <string>

namespace kvl {

/// @param start  where the colon is looked for
/// @return what stands after the first colon and the blanks that follow it (tabs stay)
/// @throws std::out_of_range "basic_string::substr" for a text without a colon
std::string colonSeparatedValue(const std::string& text, std::string::size_type start = 0);

/// @param index  how many separators come before the field; the first character of the text never counts as one.
///               Below 1 the field starts at position 1
/// @return the field, empty if there are fewer separators
/// @throws std::out_of_range "basic_string::substr" for an index below 1 and an empty text
std::string fieldAfter(char separator, int index, const std::string& text);

/// Takes the next word off the front of a text. Only blanks separate.
/// @param text  becomes the rest, which starts with the next word
/// @return the word; empty if nothing is left
std::string takeWord(std::string& text);

/// @return the decimal text of `value`
std::string decimalText(int value);

/// Cuts the name of a command by its first "/": of "/bin/uname -r" that is "bin/uname -".
std::string commandName(const std::string& commandLine);

}  // namespace kvl

#endif
