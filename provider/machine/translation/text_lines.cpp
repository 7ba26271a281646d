#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kBlanks = " \t";

}  // namespace

std::vector<TextLine> linesOf(const std::string& text) {
    std::vector<TextLine> lines;
    for (std::string::size_type begin = 0; begin < text.size();) {
        const auto feed = text.find('\n', begin);
        const bool ended = feed != std::string::npos;
        const auto end = ended ? feed : text.size();
        TextLine line{text.substr(begin, end - begin), ended};
        line.text.erase(line.text.find_last_not_of('\r') + 1);
        lines.push_back(line);
        begin = end + 1;
    }
    return lines;
}

std::string textOf(const std::vector<TextLine>& lines) {
    std::string text;
    for (const TextLine& line : lines) {
        text += line.text;
        if (line.ended) {
            text += '\n';
        }
    }
    return text;
}

std::string translateLines(const std::string& text,
                           const std::function<std::optional<std::string>(const std::string&)>& translate) {
    std::vector<TextLine> translated;
    for (const TextLine& line : linesOf(text)) {
        if (const auto other = translate(line.text)) {
            translated.push_back({*other, line.ended});
        }
    }
    return textOf(translated);
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    auto begin = text.find_first_not_of(kBlanks);
    while (begin != std::string::npos) {
        const auto end = text.find_first_of(kBlanks, begin);
        words.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(kBlanks, end);
    }
    return words;
}

std::string trimmed(const std::string& text) {
    const auto begin = text.find_first_not_of(kBlanks);
    return begin == std::string::npos ? "" : withoutTrailingBlanks(text.substr(begin));
}

std::string withoutTrailingBlanks(const std::string& text) {
    return text.substr(0, text.find_last_not_of(" \t\r") + 1);
}

bool startsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

}  // namespace kvl::provider
