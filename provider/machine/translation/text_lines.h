#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_TEXT_LINES_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_TEXT_LINES_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kvl::provider {

/// The library reads a line into a buffer of this size less one; the rest of a longer line is lost.
constexpr std::string::size_type kLongestLine = 255;

/// A line of a text, without what ends it.
struct TextLine {
    std::string text;
    bool ended = true;  ///< a line feed followed. Only the last line of a text can lack it: the text was cut
};

/// @return the lines of the text; a carriage return at the end of one is dropped
std::vector<TextLine> linesOf(const std::string& text);

/// @return the text of these lines
std::string textOf(const std::vector<TextLine>& lines);

/// Puts another line in the place of each line of a text.
/// @param translate  gives that line; nothing if the line is to be left out
std::string translateLines(const std::string& text,
                           const std::function<std::optional<std::string>(const std::string&)>& translate);

/// @return the words between blanks and tabs
std::vector<std::string> wordsOf(const std::string& text);

/// @return the text without the blanks and tabs around it, and without carriage returns at its end
std::string trimmed(const std::string& text);

/// @return the text without blanks, tabs and carriage returns at its end
std::string withoutTrailingBlanks(const std::string& text);

bool startsWith(const std::string& text, const std::string& beginning);

}  // namespace kvl::provider

#endif
