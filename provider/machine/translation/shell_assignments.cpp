#include "provider/machine/translation/shell_assignments.h"

#include <vector>

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kNameCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789";

bool isEnd(char character) {
    return character == ';' || character == '&' || character == '|';
}

/// A word of a command line.
struct Word {
    std::string text;            ///< without quotes
    std::string::size_type raw;  ///< number of characters before the first quote or backslash
};

/// Takes the words of a line one after the other.
class WordReader {
public:
    explicit WordReader(const std::string& line) : line_(line) {}

    /// Takes the words up to the end of a command.
    /// @return false at the end of the line
    bool readCommand(std::vector<Word>& words) {
        words.clear();
        if (atEnd()) {
            return false;
        }
        for (skipBlanks(); !atEnd() && !isEnd(line_[position_]); skipBlanks()) {
            if (line_[position_] == '#') {
                position_ = line_.size();
                return true;
            }
            words.push_back(readWord());
        }
        position_ += atEnd() ? 0 : 1;
        return true;
    }

private:
    bool atEnd() const { return position_ >= line_.size(); }

    bool atBlank() const { return line_[position_] == ' ' || line_[position_] == '\t'; }

    void skipBlanks() {
        while (!atEnd() && atBlank()) {
            ++position_;
        }
    }

    Word readWord() {
        Word word{"", std::string::npos};
        char quote = '\0';
        for (; !atEnd() && (quote != '\0' || (!atBlank() && !isEnd(line_[position_]))); ++position_) {
            const char character = line_[position_];
            if (character == quote) {
                quote = '\0';
            } else if (quote == '\0' && (character == '"' || character == '\'')) {
                quote = character;
                endRaw(word);
            } else if (isEscape(quote)) {
                endRaw(word);
                word.text += line_[++position_];
            } else {
                word.text += character;
            }
        }
        endRaw(word);
        return word;
    }

    static void endRaw(Word& word) {
        if (word.raw == std::string::npos) {
            word.raw = word.text.size();
        }
    }

    /// Between double quotes a backslash is one before a few characters only, and nowhere between single quotes.
    bool isEscape(char quote) const {
        if (line_[position_] != '\\' || position_ + 1 == line_.size() || quote == '\'') {
            return false;
        }
        return quote == '\0' || std::string("\"\\$`").find(line_[position_ + 1]) != std::string::npos;
    }

    const std::string& line_;
    std::string::size_type position_ = 0;
};

/// @return the length of the name that the word assigns to; 0 if it is no assignment
std::string::size_type nameLength(const Word& word) {
    const auto length = word.text.find_first_not_of(kNameCharacters);
    const bool isAssignment = length != std::string::npos && length < word.raw && word.text[length] == '=';
    return isAssignment && (word.text[0] < '0' || word.text[0] > '9') ? length : 0;
}

/// A command's assignments hold if nothing but assignments is there: else they are the environment of a program.
bool onlyAssigns(const std::vector<Word>& words) {
    for (const Word& word : words) {
        if (nameLength(word) == 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::map<std::string, std::string> shellAssignments(const std::string& file) {
    std::map<std::string, std::string> variables;
    for (const TextLine& line : linesOf(file)) {
        WordReader reader(line.text);
        std::vector<Word> words;
        while (reader.readCommand(words)) {
            if (!words.empty() && words.front().text == "export") {
                words.erase(words.begin());
            }
            if (!onlyAssigns(words)) {
                continue;
            }
            for (const Word& word : words) {
                const auto length = nameLength(word);
                variables[word.text.substr(0, length)] = word.text.substr(length + 1);
            }
        }
    }
    return variables;
}

}  // namespace kvl::provider
