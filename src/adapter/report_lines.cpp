#include "adapter/report_lines.h"

#include <algorithm>

namespace kvl {

bool ReportLines::read(std::string& line) {
    if (std::fgets(buffer_.data(), static_cast<int>(buffer_.size()), report_) == nullptr) {
        return false;
    }
    line = buffer_.data();
    return true;
}

bool ReportLines::readWithoutLineEnd(std::string& line) {
    if (!read(line)) {
        return false;
    }
    std::replace_if(
        line.begin(), line.end(), [](char character) { return character == '\r' || character == '\n'; }, ' ');
    return true;
}

}  // namespace kvl
