#ifndef KVL_REFERENCE_HOST_FORMATTED_TEXT_H
#define KVL_REFERENCE_HOST_FORMATTED_TEXT_H

#include <cstdarg>
#include <string>

namespace kvl::host {

/// @return the whole printf text, whatever its length; the format itself where printf refuses it, and an empty
/// text for a null format
std::string formattedText(const char* format, std::va_list arguments);

/// @return `text` on one line: control characters but the tab are written as "\n", "\r" or "\x1b"
std::string onOneLine(const std::string& text);

}  // namespace kvl::host

#endif
