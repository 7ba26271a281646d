#ifndef KVL_ADAPTER_MESSAGE_FILE_PARSER_H
#define KVL_ADAPTER_MESSAGE_FILE_PARSER_H

#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace kvl {

/// What a message file says about an updater's output: up to five texts of each kind.
struct Messages {
    std::vector<std::string> success;
    std::vector<std::string> end;
};

/// What the parser of a message file meets on its way, in this order for one line.
struct MessageFileEvents {
    using Text = std::function<void(std::size_t number, const std::string& text)>;

    std::function<void(const std::string& line)> line = [](const std::string&) {};
    Text success = [](std::size_t, const std::string&) {};  ///< One was stored, with its number from 0.
    Text end = [](std::size_t, const std::string&) {};      ///< The same for an end text.
};

/// Parses a message file: lines "SuccessMessage=" and "EndMessage=", of any length. Blanks and carriage returns around
/// a text don't count.
Messages parseMessageFile(std::istream& text, const MessageFileEvents& events = {});

/// Looks through an updater's output, from its position to the first line that holds one of the texts.
/// @param readLine  called for each line, that one included
/// @return that line; nothing if there is none
std::optional<std::string> findMessage(std::istream& output, const std::vector<std::string>& texts,
                                       const std::function<void(const std::string& line)>& readLine);

}  // namespace kvl

#endif
