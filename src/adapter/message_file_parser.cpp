#include "adapter/message_file_parser.h"

#include <algorithm>

#include "foundation/text.h"

namespace kvl {

namespace {

constexpr const char* kSuccessKey = "SuccessMessage=";
constexpr const char* kEndKey = "EndMessage=";
constexpr std::size_t kTextsPerKind = 5;

std::string withoutBlanksAround(const std::string& text) {
    constexpr const char* kBlanks = " \r\n";
    const auto begin = text.find_first_not_of(kBlanks);
    if (begin == std::string::npos) {
        return "";
    }
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

void takeText(const std::string& line, const std::string& key, std::vector<std::string>& texts,
              const MessageFileEvents::Text& stored) {
    if (!holds(line, key) || texts.size() == kTextsPerKind) {
        return;
    }
    // kept: the value is cut from this column also where the key stands further right.
    texts.push_back(withoutBlanksAround(line.substr(key.size())));
    stored(texts.size() - 1, texts.back());
}

}  // namespace

Messages parseMessageFile(std::istream& text, const MessageFileEvents& events) {
    Messages messages;
    std::string line;
    while (std::getline(text, line)) {
        events.line(line);
        takeText(line, kSuccessKey, messages.success, events.success);
        takeText(line, kEndKey, messages.end, events.end);
    }
    return messages;
}

std::optional<std::string> findMessage(std::istream& output, const std::vector<std::string>& texts,
                                       const std::function<void(const std::string& line)>& readLine) {
    std::string line;
    while (std::getline(output, line)) {
        readLine(line);
        if (std::any_of(texts.begin(), texts.end(), [&line](const std::string& text) { return holds(line, text); })) {
            return line;
        }
    }
    return std::nullopt;
}

}  // namespace kvl
