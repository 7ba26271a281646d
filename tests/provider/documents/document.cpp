#include "tests/provider/documents/document.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "tests/machines/outside.h"

namespace kvl::test {
namespace {

constexpr const char* kAnyWords = "...";

/// A word of the documents that stands for something else, and the expression for that.
struct Placeholder {
    const char* word;
    const char* pattern;
};

constexpr std::array<Placeholder, 18> kPlaceholders = {{
    {"TREE", "/opt/tarvenn/kvl/tmp/EMULEX"},
    {"SCRATCH", "/opt/tarvenn/kvl/tmp/EMULEX/temp/(?:CNA/unpacked|FC/unpacked|tmp)"},
    {"DIR", "/.*"},
    {"FILE", "[^ ]+"},
    {"NAME", ".+"},
    {"DEVICE", "[0-9a-f]{2}:[0-9a-f]{2}\\.[0-9a-f]"},
    {"COMMAND", "/usr/sbin/ocmanager/hbacmd .+"},
    {"VERSION", "[^']*"},
    {"NUMBER", "[0-9]+"},
    {"RELEASE", "2\\.6\\.32-358\\.el6\\.x86_64"},
    {"WHY", ".+"},
    {"X", ".*"},
    {"Y", ".*"},
    {"A", ".+"},
    {"B", ".+"},
    {"1234", "[0-9]+"},
    {"41", "[0-9]+"},
    {"12", "[0-9]+"},
}};

bool isOfWord(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

std::string trimmed(const std::string& text) {
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// The cells of a line of a table, in which "\|" is no border.
std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::string cell;
    for (std::size_t place = 1; place < line.size(); ++place) {
        if (line[place] == '\\' && place + 1 < line.size() && line[place + 1] == '|') {
            cell += line[++place];
        } else if (line[place] == '|') {
            cells.push_back(trimmed(cell));
            cell.clear();
        } else {
            cell += line[place];
        }
    }
    return cells;
}

bool isRule(const std::string& line) {
    return line.find_first_not_of("|-") == std::string::npos;
}

std::vector<std::string> quotedIn(const std::string& cell) {
    std::vector<std::string> quoted;
    std::istringstream parts(cell);
    bool isQuoted = false;
    for (std::string part; std::getline(parts, part, '`'); isQuoted = !isQuoted) {
        if (isQuoted) {
            quoted.push_back(part);
        }
    }
    return quoted;
}

bool isSentence(const std::string& text) {
    return text.find(' ') != std::string::npos;
}

std::string escaped(char character) {
    constexpr std::string_view kSpecial = "\\^$.|?*+()[]{}";
    return kSpecial.find(character) == std::string_view::npos ? std::string(1, character)
                                                              : std::string("\\") + character;
}

std::string alternatives(const std::vector<std::string>& patterns) {
    std::string text;
    for (const std::string& pattern : patterns) {
        text += (text.empty() ? "" : "|") + pattern;
    }
    return "(?:" + text + ")";
}

/// A text up to the end of each of its words.
std::vector<std::string> beginningsOf(const std::string& text) {
    std::vector<std::string> beginnings = {text};
    for (auto blank = text.find(' '); blank != std::string::npos; blank = text.find(' ', blank + 1)) {
        beginnings.push_back(text.substr(0, blank));
    }
    return beginnings;
}

}  // namespace

bool DocumentTable::has(const std::string& title) const {
    return std::find(titles.begin(), titles.end(), title) != titles.end();
}

const std::string& DocumentTable::cell(std::size_t row, const std::string& title) const {
    const auto column = std::find(titles.begin(), titles.end(), title);
    if (column == titles.end()) {
        throw std::out_of_range("the table below '" + heading + "' has no column '" + title + "'");
    }
    return rows.at(row).at(static_cast<std::size_t>(column - titles.begin()));
}

Document readDocument(const std::string& name) {
    Document document;
    std::istringstream lines(readFile(std::string(KVL_DOCUMENTS_FOLDER) + "/" + name));
    std::string heading;
    bool isInBlock = false;
    bool isInTable = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("```", 0) == 0) {
            isInBlock = !isInBlock;
            if (isInBlock) {
                document.blocks.emplace_back();
            }
        } else if (isInBlock) {
            document.blocks.back().push_back(line);
        } else if (line.rfind('#', 0) == 0) {
            heading = trimmed(line.substr(line.find_first_not_of('#')));
        } else if (line.rfind('|', 0) == 0 && !isInTable) {
            document.tables.push_back({heading, cellsOf(line), {}});
        } else if (line.rfind('|', 0) == 0 && !isRule(line)) {
            document.tables.back().rows.push_back(cellsOf(line));
        }
        isInTable = !isInBlock && line.rfind('|', 0) == 0;
    }
    return document;
}

const DocumentTable& tableBelow(const Document& document, const std::string& heading, const std::string& title) {
    for (const DocumentTable& table : document.tables) {
        if (table.heading == heading && table.titles.front() == title) {
            return table;
        }
    }
    throw std::out_of_range("there is no table '" + title + "' below '" + heading + "'");
}

std::vector<std::string> sentencesIn(const std::string& cell) {
    std::vector<std::string> texts = quotedIn(cell);
    texts.erase(std::remove_if(texts.begin(), texts.end(), [](const std::string& text) { return !isSentence(text); }),
                texts.end());
    return texts;
}

std::vector<std::string> wordsIn(const std::string& cell) {
    std::vector<std::string> texts = quotedIn(cell);
    texts.erase(std::remove_if(texts.begin(), texts.end(), isSentence), texts.end());
    return texts;
}

std::set<int> numbersIn(const std::string& cell) {
    static const std::regex kNumber("[0-9]+");
    std::set<int> numbers;
    for (auto found = std::sregex_iterator(cell.begin(), cell.end(), kNumber); found != std::sregex_iterator();
         ++found) {
        numbers.insert(std::stoi(found->str()));
    }
    return numbers;
}

SentencePatterns::SentencePatterns(const std::vector<std::string>& causes) {
    std::vector<std::string> patterns;
    for (const std::string& cell : causes) {
        for (const std::string& pattern : of(cell)) {
            patterns.push_back(pattern);
        }
    }
    causes_ = alternatives(patterns);
}

std::string SentencePatterns::meaningOf(const std::string& word) const {
    if (word == "CAUSE") {
        return causes_;
    }
    const auto* const found = std::find_if(kPlaceholders.begin(), kPlaceholders.end(),
                                           [&word](const Placeholder& row) { return row.word == word; });
    return found == kPlaceholders.end() ? word : found->pattern;
}

std::string SentencePatterns::patternOf(const std::string& sentence) const {
    std::string pattern;
    for (std::size_t place = 0; place < sentence.size();) {
        std::size_t end = place;
        while (end < sentence.size() && isOfWord(sentence[end])) {
            ++end;
        }
        if (end > place) {
            pattern += meaningOf(sentence.substr(place, end - place));
            place = end;
        } else if (sentence.compare(place, 3, kAnyWords) == 0) {
            pattern += ".*";
            place += 3;
        } else {
            pattern += escaped(sentence[place++]);
        }
    }
    return pattern;
}

std::vector<std::string> SentencePatterns::of(const std::string& cell, const std::vector<std::string>& above) const {
    const std::vector<std::string> sentences = sentencesIn(cell);
    std::vector<std::string> patterns;
    for (const std::string& sentence : sentences) {
        if (sentence.rfind(kAnyWords, 0) != 0) {
            patterns.push_back(patternOf(sentence));
            continue;
        }
        std::vector<std::string> beginnings = patterns.empty() ? above : beginningsOf(sentences.front());
        std::transform(beginnings.begin(), beginnings.end(), beginnings.begin(),
                       [this](const std::string& text) { return patternOf(text); });
        patterns.push_back(alternatives(beginnings) + patternOf(sentence.substr(3)));
    }
    return patterns;
}

std::string testName(const std::string& text) {
    constexpr std::size_t kLongest = 90;
    std::string name;
    for (const char character : text) {
        if (isOfWord(character)) {
            name += character;
        } else if (!name.empty() && name.back() != '_') {
            name += '_';
        }
    }
    name.resize(std::min(name.size(), kLongest));
    return name.empty() || name.back() != '_' ? name : name.substr(0, name.size() - 1);
}

}  // namespace kvl::test
