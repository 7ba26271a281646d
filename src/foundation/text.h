#ifndef KVL_FOUNDATION_TEXT_H
#define KVL_FOUNDATION_TEXT_H

#include <cstdarg>
#include <string>

namespace kvl {

/// The text that printf would print for this format and its arguments, of any length.
std::string formatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The same for an argument list.
std::string formatTextV(const char* format, std::va_list arguments) __attribute__((format(printf, 1, 0)));

/// @return true if `text` starts with `beginning`
bool beginsWith(const std::string& text, const char* beginning);

/// @return true if `part` stands anywhere in `text`
bool holds(const std::string& text, const std::string& part);

/// Cuts a part out of a text.
/// @throws std::out_of_range "basic_string::substr" if `position` lies past the end, the same text with every
///         compiler's library
std::string cut(const std::string& text, std::string::size_type position,
                std::string::size_type length = std::string::npos);

/// @return the part of `text` before the first `end`, or all of it if there is none
std::string upTo(const std::string& text, char end);

/// Takes the next token off the front of a text. Empty tokens count.
/// @param text  becomes what follows the separator, empty if there is none
/// @return the part before the separator, or all of it
std::string takeToken(std::string& text, char separator);

}  // namespace kvl

#endif
