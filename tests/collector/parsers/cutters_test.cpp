#include "collector/cutters.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

TEST(ColonSeparatedValue, IsWhatStandsAfterTheFirstColonAndItsBlanks) {
    struct Case {
        const char* text;
        std::string::size_type start;
        const char* expected;
    };
    constexpr Case kTable[] = {
        {"addr:10.0.0.1", 0, "10.0.0.1"},
        {"Mode:   a b ", 0, "a b "},
        {"key: a: b", 0, "a: b"},
        {"key:", 0, ""},
        {"key:   ", 0, ""},
        {"key:\tv", 0, "\tv"},
        {"a: 1 b: 2", 2, "2"},
        {"a: 1 b: 2", 1, "1 b: 2"},
        {"key", 0, "!basic_string::substr"},
        {"", 0, "!basic_string::substr"},
        {"a: 1", 2, "!basic_string::substr"},
        {"a: 1", 99, "!basic_string::substr"},
    };
    for (const Case& row : kTable) {
        EXPECT_EQ(outcomeOf([&row](std::string& shown) { shown += colonSeparatedValue(row.text, row.start); }),
                  row.expected)
            << row.text << " from " << row.start;
    }
}

TEST(FieldAfter, IsWhatStandsAfterThatManySeparators) {
    struct Case {
        int index;
        const char* text;
        const char* expected;
    };
    constexpr Case kTable[] = {
        {1, "a,b,c", "b"},
        {2, "a,b,c", "c"},
        {3, "a,b,c", ""},
        {1, "a,", ""},
        {1, ",a,b", "b"},  // the first character never counts
        {0, "xa,b", "a"},
        {-1, "xa,b", "a"},
        {0, "x", ""},
        {1, "", ""},
        {0, "", "!basic_string::substr"},
    };
    for (const Case& row : kTable) {
        EXPECT_EQ(outcomeOf([&row](std::string& shown) { shown += fieldAfter(',', row.index, row.text); }),
                  row.expected)
            << row.index << " in " << row.text;
    }
}

TEST(TakeWord, TakesTheNextWordAndLeavesTheRestAtTheWordAfterIt) {
    struct Case {
        const char* text;
        const char* word;
        const char* rest;
    };
    constexpr Case kTable[] = {
        {"  a  b", "a", "b"}, {"b", "b", ""}, {"a b c", "a", "b c"},   {"a  ", "a", ""},
        {"   ", "", ""},      {"", "", ""},   {"a\tb c", "a\tb", "c"},
    };
    for (const Case& row : kTable) {
        std::string text = row.text;
        EXPECT_EQ(takeWord(text), row.word) << row.text;
        EXPECT_EQ(text, row.rest) << row.text;
    }
}

TEST(DecimalText, IsTheNumber) {
    EXPECT_EQ(decimalText(0), "0");
    EXPECT_EQ(decimalText(-12), "-12");
    EXPECT_EQ(decimalText(2147483647), "2147483647");
}

TEST(CommandName, IsCutByTheFirstSlash) {
    struct Case {
        const char* line;
        const char* expected;
    };
    constexpr Case kTable[] = {
        {"uname -r", "uname -r"},
        {"/bin/uname", "bin/uname"},
        {"/bin/uname -r", "bin/uname -"},
        {"cat /a/b", ""},
        {"cat a/b", "b"},
        {"", ""},
    };
    for (const Case& row : kTable) {
        EXPECT_EQ(commandName(row.line), row.expected) << row.line;
    }
}

}  // namespace
}  // namespace kvl::test
