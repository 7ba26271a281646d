#include "foundation/columns.h"

#include <gtest/gtest.h>

namespace kvl::test {
namespace {

/// A column of a line; "(none)" if there is none.
std::string columnOf(const std::string& line, int column) {
    std::string result = "earlier";
    const bool isThere = takeColumn(line, column, result);
    EXPECT_TRUE(isThere || result.empty()) << line;
    return isThere ? result : "(none)";
}

TEST(TakeColumn, CutsAColumnOutOfALine) {
    struct Case {
        const char* line;
        int column;
        const char* expected;
    };
    constexpr Case kTable[] = {
        {"a b c", 1, "a"},
        {"a b c", 2, "b"},
        {"a b c", 3, "c"},
        {"a b c", 4, "(none)"},
        {"a   b", 2, "b"},
        {"a\tb c", 2, "c"},
        {"a b", 0, "(none)"},
        {"a b", -1, "(none)"},
        {"", 1, "(none)"},
        // A trailing blank opens an empty column.
        {"a ", 2, ""},
        {"a   ", 2, ""},
        {"a ", 3, "(none)"},
        // One leading blank hides the first word, two don't.
        {" a b", 1, ""},
        {" a b", 2, "b"},
        {"  a b", 2, "a"},
        {" ", 2, "(none)"},
    };
    for (const Case& row : kTable) {
        EXPECT_EQ(columnOf(row.line, row.column), row.expected) << "\"" << row.line << "\" " << row.column;
    }
}

TEST(KeyPosition, FindsAKeyThatEndsAtABlankOrWithTheLine) {
    struct Case {
        const char* key;
        const char* line;
        int expected;
    };
    constexpr Case kTable[] = {
        {"eth1", "eth1", 0},   {"eth1", "a eth1", 2},     {"eth1", "xeth1 b", 1},
        {"eth1", "eth10", -1}, {"eth1", "eth10 eth1", 6}, {"eth1", "eth1\t", -1},
        {"eth1", "", -1},      {"eth1", "eth", -1},       {"a b", "a b", -1},
    };
    for (const Case& row : kTable) {
        EXPECT_EQ(keyPosition(row.key, row.line), row.expected) << row.line;
    }
}

}  // namespace
}  // namespace kvl::test
