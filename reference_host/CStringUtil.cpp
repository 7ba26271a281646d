#include "host/CStringUtil.h"

#include <charconv>
#include <cstddef>
#include <limits>

namespace {

// Own code, since the character functions of the C library depend on the locale.
bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

char upperCase(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

}  // namespace

void CStringUtil::strReplace(std::string& text, const std::string& search, const std::string& replacement) {
    if (search.empty()) {
        return;
    }
    std::string result;
    std::size_t start = 0;
    for (std::size_t found = text.find(search); found != std::string::npos; found = text.find(search, start)) {
        result.append(text, start, found - start);
        result += replacement;
        start = found + search.size();
    }
    result.append(text, start, std::string::npos);
    text.swap(result);
}

std::string CStringUtil::NumberToTString(long value) {
    return std::to_string(value);
}

std::string CStringUtil::StringToTstring(std::string text) {
    return text;
}

long CStringUtil::TStringToNumber(std::string text) {
    if (text.empty() || !isDigit(text.front())) {
        return 0;
    }
    long value = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc::result_out_of_range ? std::numeric_limits<long>::max() : value;
}

std::string CStringUtil::StringToUpperCase(std::string text) {
    for (char& character : text) {
        character = upperCase(character);
    }
    return text;
}

std::list<std::string> CStringUtil::Split(std::string& text, const std::string& separator) {
    std::list<std::string> fields;
    std::size_t start = 0;
    if (!separator.empty()) {
        for (std::size_t end = text.find(separator); end != std::string::npos; end = text.find(separator, start)) {
            fields.push_back(text.substr(start, end - start));
            start = end + separator.size();
        }
    }
    fields.push_back(text.substr(start));
    return fields;
}
