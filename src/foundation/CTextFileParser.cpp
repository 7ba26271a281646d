#include "foundation/CTextFileParser.h"

#include "foundation/line_reader.h"
#include "foundation/text.h"
#include "host/CStringUtil.h"

using kvl::LineReader;

namespace {

/// Takes the occurrence-th of the lines that a walk gives.
template <typename Lines>
bool takeOccurrence(Lines& lines, int occurrence, std::string& result) {
    std::string line;
    for (int count = 1; lines.next(line); ++count) {
        if (count == occurrence) {
            result = line;
            return true;
        }
    }
    result.clear();
    return false;
}

}  // namespace

CTextFileParser::CTextFileParser() = default;
CTextFileParser::~CTextFileParser() = default;

bool CTextFileParser::GetLineBeginningKey(std::string file, std::string key, int occurrence, std::string& result) {
    if (occurrence < 1) {
        return false;
    }
    kvl::LinesBeginningKey lines(file, key);
    return lines.isOpen() && takeOccurrence(lines, occurrence, result);
}

bool CTextFileParser::GetColumnBeginningKey(std::string file, std::string key, int occurrence, int column,
                                            std::string& result) {
    result.clear();
    std::string line;
    return GetLineBeginningKey(file, key, occurrence, line) && GetStrInFixedPosition(line, column, result);
}

bool CTextFileParser::GetLineContainsKey(std::string file, std::string key, int occurrence, std::string& result) {
    kvl::LinesContainingKey lines(file, key);
    return lines.isOpen() && takeOccurrence(lines, occurrence, result);
}

bool CTextFileParser::GetLineContainsKey(std::string file, std::string key, std::string& result) {
    return GetLineContainsKey(file, key, 1, result);
}

bool CTextFileParser::GetStrInFixedPosition(std::string line, int column, std::string& result) {
    result.clear();
    if (column < 1 || line.empty()) {
        return false;
    }
    std::string::size_type begin = 0;
    for (int reached = 1; reached < column; ++reached) {
        // kept: the first search starts at position 1, so a blank at position 0 is never counted.
        const auto blank = line.find(' ', begin == 0 ? 1 : begin);
        if (blank == std::string::npos) {
            return false;
        }
        const auto word = line.find_first_not_of(' ', blank);
        begin = word == std::string::npos ? line.size() : word;
    }
    result = line.substr(begin, line.find(' ', begin) - begin);
    return true;
}

bool CTextFileParser::GetStrInFixedPosition(std::string file, int lineNumber, int column, std::string& result) {
    LineReader lines(file);
    if (!lines.isOpen()) {
        return false;
    }
    std::string line;
    for (int read = 0; read < lineNumber && lines.read(line); ++read) {
    }
    return GetStrInFixedPosition(line, column, result);
}

int CTextFileParser::isKeyExist(std::string key, std::string line) {
    for (auto position = line.find(key); position != std::string::npos; position = line.find(key, position + 1)) {
        const auto end = line.find(' ', position);
        if (line.compare(position, end - position, key) == 0) {
            return static_cast<int>(position);
        }
    }
    return -1;
}

bool CTextFileParser::GetIniFileValue(std::string file, std::string key, std::string& result) {
    result.clear();
    const std::string search = key + "=";
    LineReader lines(file);
    bool more = lines.isOpen();
    while (more) {
        std::string line;
        more = lines.read(line);
        if (kvl::holds(line, search)) {
            CStringUtil::strReplace(line, "\"", "");
            // kept: the value is cut at the length of the search text from the start of the line, wherever the
            // search text stands. A line that got shorter than that has an empty value.
            result = search.size() < line.size() ? line.substr(search.size()) : "";
            return true;
        }
    }
    return false;
}
