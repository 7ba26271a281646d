#include "reference_host/formatted_text.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace kvl::host {

std::string formattedText(const char* format, std::va_list arguments) {
    if (format == nullptr) {
        return {};
    }
    std::array<char, 512> shortText{};
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(shortText.data(), shortText.size(), format, arguments);
    std::string text;
    if (length < 0) {
        text = format;
    } else if (static_cast<std::size_t>(length) < shortText.size()) {
        text.assign(shortText.data(), static_cast<std::size_t>(length));
    } else {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
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
