#ifndef KVL_TESTS_SUPPORT_PARSER_TABLE_H
#define KVL_TESTS_SUPPORT_PARSER_TABLE_H

#include <gtest/gtest.h>

#include <fstream>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace kvl::test {

/// One row of a parser's table: the rule that it pins, in the form of a test's name, what is read, and the whole
/// result.
struct ParserCase {
    const char* rule;
    std::string input;
    std::string expected;
};

inline void PrintTo(const ParserCase& row, std::ostream* stream) {
    *stream << row.rule;
}

/// A test that runs once for each row of a parser's table.
using ParserTable = testing::TestWithParam<ParserCase>;

inline std::string ruleOf(const testing::TestParamInfo<ParserCase>& row) {
    return row.param.rule;
}

/// Collects what a parser gives, as text.
/// @param parse  appends it to its argument
/// @return that text, and "!" with the text of an out-of-range exception that ended it
template <typename Parse>
std::string outcomeOf(Parse parse) {
    std::string shown;
    try {
        parse(shown);
    } catch (const std::out_of_range& error) {
        shown += std::string("!") + error.what();
    }
    return shown;
}

// Paths that give nothing to read.
constexpr const char* kAbsentFile = "/absent/file";
constexpr const char* kDirectory = "/";

}  // namespace kvl::test

#endif
