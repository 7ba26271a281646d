#ifndef KVL_FOUNDATION_LINE_READER_H
#define KVL_FOUNDATION_LINE_READER_H

#include <array>
#include <fstream>
#include <string>

namespace kvl {

/// Reads a text file line by line through a 256-byte buffer.
///
/// A line is what stands before a line feed, cut at its first zero byte. A carriage return stays in it. Of a line
/// that doesn't fit the buffer the first 255 bytes are taken and the rest is dropped. A read that fails for
/// another reason, as in a directory, is taken as the end of the file.
class LineReader {
public:
    explicit LineReader(const std::string& path);

    /// @return true if the file could be opened
    bool isOpen() const { return file_.is_open(); }

    /// Reads a line.
    /// @param line  receives it; at the end of the file what stood behind the last line feed, maybe nothing
    /// @return false if the read met the end of the file
    bool read(std::string& line);

private:
    std::ifstream file_;
    std::array<char, 256> buffer_{};
};

/// Walks the lines of a file whose first word is a key, in file order, the last line included if it has no line
/// feed. The first word runs to the first blank: of a line that starts with a blank it is empty.
class LinesBeginningKey {
public:
    LinesBeginningKey(const std::string& path, std::string key);
    bool isOpen() const { return lines_.isOpen(); }

    /// @return false if there is no further line; `line` then is of no use
    bool next(std::string& line);

private:
    LineReader lines_;
    std::string key_;
    bool more_ = true;
};

/// Walks the lines of a file that hold a key as `CTextFileParser::isKeyExist` tells, in file order. A last line
/// without a line feed is never looked at.
class LinesContainingKey {
public:
    LinesContainingKey(const std::string& path, std::string key);
    bool isOpen() const { return lines_.isOpen(); }

    /// @return false if there is no further line; `line` then is of no use
    bool next(std::string& line);

private:
    LineReader lines_;
    std::string key_;
};

}  // namespace kvl

#endif
