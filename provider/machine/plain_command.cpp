#include "provider/machine/plain_command.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace kvl::provider {
namespace {

constexpr std::string_view kPlainSigns = "_-./:,@+%";

bool isPlainByte(char character) {
    const auto byte = static_cast<unsigned char>(character);
    constexpr unsigned char kFirstBeyondAscii = 0x80;
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           byte >= kFirstBeyondAscii || kPlainSigns.find(character) != kPlainSigns.npos;
}

bool isPlainText(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isPlainByte);
}

std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; std::getline(stream, word, ' ');) {
        if (!word.empty()) {
            words.push_back(word);
        }
    }
    return words;
}

/// Walks over the words of a line from the left.
class WordReader {
public:
    explicit WordReader(const std::string& line) : words_(wordsOf(line)) {}

    bool atEnd() const { return next_ == words_.size(); }

    /// @return true, and passes over the words, if they come next
    bool take(const std::vector<std::string>& expected) {
        if (words_.size() - next_ < expected.size() ||
            !std::equal(expected.begin(), expected.end(), words_.begin() + static_cast<std::ptrdiff_t>(next_))) {
            return false;
        }
        next_ += expected.size();
        return true;
    }

    /// @return the next word if it is plain; else nothing
    std::optional<std::string> takePlain() {
        if (atEnd() || !isPlainText(words_[next_])) {
            return std::nullopt;
        }
        return words_[next_++];
    }

private:
    const std::vector<std::string> words_;
    std::size_t next_ = 0;
};

}  // namespace

bool isPlainWord(const std::string& text) {
    return isPlainText(text) && text.front() != '-';
}

std::optional<PlainCommand> readPlainCommand(const std::string& line) {
    PlainCommand command;
    WordReader reader(line);
    while (const auto word = reader.takePlain()) {
        command.words.push_back(*word);
    }
    if (command.words.empty() || command.words.front().front() != '/') {
        return std::nullopt;
    }
    if (reader.take({"|", "grep"})) {
        const auto pattern = reader.takePlain();
        if (!pattern) {
            return std::nullopt;
        }
        command.filter = {"grep", *pattern};
    }
    if (reader.take({">"})) {
        const auto file = reader.takePlain();
        if (!file) {
            return std::nullopt;
        }
        command.outputFile = *file;
    }
    command.dropsErrors = reader.take({"2>", "/dev/null"});
    return reader.atEnd() ? std::optional(command) : std::nullopt;
}

std::string describe(const PlainCommand& command) {
    std::string text;
    for (const std::string& word : command.words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return command.filter.empty() ? text : text + " | " + command.filter[0] + " " + command.filter[1];
}

}  // namespace kvl::provider
