#ifndef KVL_FOUNDATION_LINE_READER_H
#define KVL_FOUNDATION_LINE_READER_H

#include <array>
#include <istream>
#include <string>

namespace kvl {

/// Reads a text line by line through a 256-byte buffer.
///
/// A line is the text before a line feed, cut at its first zero byte. A carriage return stays in it. Of a line
/// that doesn't fit the buffer the first 255 bytes are taken and the rest is dropped. A read that fails for
/// another reason, as in a directory or a file that could not be opened, is taken as the end of the text.
class LineReader {
public:
    /// @param text  must outlive this object
    explicit LineReader(std::istream& text) : text_(text) {}

    /// Reads a line.
    /// @param line  receives it; at the end of the text what stood after the last line feed, maybe nothing
    /// @return false if the read met the end of the text
    bool read(std::string& line);

private:
    std::istream& text_;
    std::array<char, 256> buffer_{};
};

/// Walks the lines of a text whose first word is a key, in order, the last line included if it has no line feed. The
/// first word runs to the first blank: of a line that starts with a blank it is empty.
class LinesBeginningKey {
public:
    /// @param text  must outlive this object
    LinesBeginningKey(std::istream& text, std::string key);

    /// @return false if there is no further line; `line` is of no use then
    bool next(std::string& line);

private:
    LineReader lines_;
    std::string key_;
    bool more_ = true;
};

/// Walks the lines of a text in which `keyPosition` finds a key, in order. A last line without a line feed is never
/// looked at.
class LinesContainingKey {
public:
    /// @param text  must outlive this object
    LinesContainingKey(std::istream& text, std::string key);

    /// @return false if there is no further line; `line` is of no use then
    bool next(std::string& line);

private:
    LineReader lines_;
    std::string key_;
};

}  // namespace kvl

#endif
