#include "foundation/line_reader.h"

#include <limits>
#include <utility>

#include "foundation/columns.h"
#include "foundation/text.h"

namespace kvl {

bool LineReader::read(std::string& line) {
    text_.getline(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    line = buffer_.data();
    const bool tooLong = text_.fail() && !text_.eof() && !text_.bad() && text_.gcount() > 0;
    if (tooLong) {
        text_.clear();
        text_.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return text_.good();
}

LinesBeginningKey::LinesBeginningKey(std::istream& text, std::string key) : lines_(text), key_(std::move(key)) {}

bool LinesBeginningKey::next(std::string& line) {
    while (more_) {
        more_ = lines_.read(line);
        if (upTo(line, ' ') == key_) {
            return true;
        }
    }
    return false;
}

LinesContainingKey::LinesContainingKey(std::istream& text, std::string key) : lines_(text), key_(std::move(key)) {}

bool LinesContainingKey::next(std::string& line) {
    while (lines_.read(line)) {
        if (keyPosition(key_, line) != -1) {
            return true;
        }
    }
    return false;
}

}  // namespace kvl
