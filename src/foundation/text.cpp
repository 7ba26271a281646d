#include "foundation/text.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace kvl {

std::string formatTextV(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::vector<char> buffer(length < 0 ? 1 : static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(buffer.data(), buffer.size(), format, again);
    va_end(again);
    return std::string(buffer.data());
}

std::string formatText(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = formatTextV(format, arguments);
    va_end(arguments);
    return text;
}

bool beginsWith(const std::string& text, const char* beginning) {
    return text.compare(0, std::strlen(beginning), beginning) == 0;
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string cut(const std::string& text, std::string::size_type position, std::string::size_type length) {
    if (position > text.size()) {
        throw std::out_of_range("basic_string::substr");
    }
    return text.substr(position, length);
}

std::string upTo(const std::string& text, char end) {
    return text.substr(0, text.find(end));
}

std::string takeToken(std::string& text, char separator) {
    const auto end = text.find(separator);
    std::string token = text.substr(0, end);
    text.erase(0, end == std::string::npos ? end : end + 1);
    return token;
}

}  // namespace kvl
