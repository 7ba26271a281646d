#include "foundation/columns.h"

namespace kvl {

bool takeColumn(const std::string& line, int column, std::string& result) {
    result.clear();
    if (column < 1 || line.empty()) {
        return false;
    }
    std::string::size_type begin = 0;
    for (int reached = 1; reached < column; ++reached) {
        // kept: the first search starts at position 1, so a blank at position 0 is never counted.
        const auto blank = line.find(' ', begin == 0 ? 1 : begin);
        if (blank == std::string::npos) {
            return false;
        }
        const auto word = line.find_first_not_of(' ', blank);
        begin = word == std::string::npos ? line.size() : word;
    }
    result = line.substr(begin, line.find(' ', begin) - begin);
    return true;
}

int keyPosition(const std::string& key, const std::string& line) {
    for (auto position = line.find(key); position != std::string::npos; position = line.find(key, position + 1)) {
        const auto end = line.find(' ', position);
        if (line.compare(position, end - position, key) == 0) {
            return static_cast<int>(position);
        }
    }
    return -1;
}

}  // namespace kvl
