#include "foundation/CTextFileParser.h"

#include <fstream>

#include "foundation/columns.h"
#include "foundation/ini_value.h"
#include "foundation/line_reader.h"

namespace {

/// Takes the occurrence-th of the lines that a walk gives.
template <typename Lines>
bool takeOccurrence(Lines lines, int occurrence, std::string& result) {
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
    std::ifstream text(file);
    return text.is_open() && takeOccurrence(kvl::LinesBeginningKey(text, key), occurrence, result);
}

bool CTextFileParser::GetColumnBeginningKey(std::string file, std::string key, int occurrence, int column,
                                            std::string& result) {
    result.clear();
    std::string line;
    return GetLineBeginningKey(file, key, occurrence, line) && GetStrInFixedPosition(line, column, result);
}

bool CTextFileParser::GetLineContainsKey(std::string file, std::string key, int occurrence, std::string& result) {
    std::ifstream text(file);
    return text.is_open() && takeOccurrence(kvl::LinesContainingKey(text, key), occurrence, result);
}

bool CTextFileParser::GetLineContainsKey(std::string file, std::string key, std::string& result) {
    return GetLineContainsKey(file, key, 1, result);
}

bool CTextFileParser::GetStrInFixedPosition(std::string line, int column, std::string& result) {
    return kvl::takeColumn(line, column, result);
}

bool CTextFileParser::GetStrInFixedPosition(std::string file, int lineNumber, int column, std::string& result) {
    std::ifstream text(file);
    if (!text.is_open()) {
        return false;
    }
    kvl::LineReader lines(text);
    std::string line;
    for (int read = 0; read < lineNumber && lines.read(line); ++read) {
    }
    return kvl::takeColumn(line, column, result);
}

int CTextFileParser::isKeyExist(std::string key, std::string line) {
    return kvl::keyPosition(key, line);
}

bool CTextFileParser::GetIniFileValue(std::string file, std::string key, std::string& result) {
    std::ifstream text(file);
    return kvl::findIniValue(text, key, result);
}
