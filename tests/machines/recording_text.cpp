#include "tests/machines/recording_text.h"

#include <sstream>

namespace kvl::test {

bool beginsWith(const std::string& text, const std::string& start) {
    return text.rfind(start, 0) == 0;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string valueBehind(const std::string& key, const std::string& text) {
    const std::size_t at = text.find(key);
    if (at == std::string::npos) {
        return "";
    }
    const std::size_t start = at + key.size();
    return text.substr(start, text.find('\n', start) - start);
}

}  // namespace kvl::test
