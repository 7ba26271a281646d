#include "reference_host/formatted_text.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace kvl::host {

std::string formattedText(const char* format, std::va_list arguments) {
    if (format == nullptr) {
        return {};
    }
    char* printed = nullptr;
    const int length = ::vasprintf(&printed, format, arguments);
    if (length < 0) {
        return format;
    }
    const std::unique_ptr<char, decltype(&std::free)> owner(printed, &std::free);
    return {printed, static_cast<std::size_t>(length)};
}

std::string onOneLine(const std::string& text) {
    constexpr char kHexDigits[] = "0123456789abcdef";
    std::string line;
    line.reserve(text.size());
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\n') {
            line += "\\n";
        } else if (character == '\r') {
            line += "\\r";
        } else if ((byte < 0x20 && character != '\t') || byte == 0x7f) {
            line += "\\x";
            line += kHexDigits[byte >> 4];
            line += kHexDigits[byte & 0x0f];
        } else {
            line += character;
        }
    }
    return line;
}

}  // namespace kvl::host
