#include "foundation/line_reader.h"

#include <limits>
#include <utility>

#include "foundation/CTextFileParser.h"
#include "foundation/text.h"

namespace kvl {

LineReader::LineReader(const std::string& path) : file_(path) {}

bool LineReader::read(std::string& line) {
    file_.getline(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    line = buffer_.data();
    const bool tooLong = file_.fail() && !file_.eof() && !file_.bad() && file_.gcount() > 0;
    if (tooLong) {
        file_.clear();
        file_.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return file_.good();
}

LinesBeginningKey::LinesBeginningKey(const std::string& path, std::string key) : lines_(path), key_(std::move(key)) {}

bool LinesBeginningKey::next(std::string& line) {
    while (more_) {
        more_ = lines_.read(line);
        if (upTo(line, ' ') == key_) {
            return true;
        }
    }
    return false;
}

LinesContainingKey::LinesContainingKey(const std::string& path, std::string key) : lines_(path), key_(std::move(key)) {}

bool LinesContainingKey::next(std::string& line) {
    while (lines_.read(line)) {
        if (CTextFileParser::isKeyExist(key_, line) != -1) {
            return true;
        }
    }
    return false;
}

}  // namespace kvl
