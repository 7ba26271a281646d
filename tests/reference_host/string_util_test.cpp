#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <list>
#include <string>

#include "host/CStringUtil.h"

namespace {

using ::testing::ElementsAre;

struct Replacement {
    const char* text;
    const char* search;
    const char* replacement;
    const char* expected;
};

constexpr Replacement kReplacements[] = {
    {"a/b/c", "/", "_", "a_b_c"}, {"line\r", "\r", "", "line"},
    {"aaa", "aa", "b", "ba"},     {"aa", "a", "aa", "aaaa"},
    {"abc", "x", "y", "abc"},     {"", "x", "y", ""},
    {"abc", "abc", "", ""},       {"one two", " ", " and ", "one and two"},
};

TEST(StrReplace, ReplacesEveryOccurrence) {
    for (const Replacement& row : kReplacements) {
        std::string text = row.text;
        CStringUtil::strReplace(text, row.search, row.replacement);
        EXPECT_EQ(text, row.expected) << row.text;
    }
}

TEST(StrReplace, ChangesNothingForAnEmptySearch) {
    std::string text = "abc";
    CStringUtil::strReplace(text, "", "x");
    EXPECT_EQ(text, "abc");
}

TEST(StrReplace, TakesTheTextItselfAsSearchAndReplacement) {
    std::string text = "abc";
    CStringUtil::strReplace(text, text, text);
    EXPECT_EQ(text, "abc");
}

TEST(StrReplace, TreatsZeroBytesAsOrdinaryOnes) {
    std::string text("a\0b\0c", 5);
    CStringUtil::strReplace(text, std::string("\0", 1), "-");
    EXPECT_EQ(text, "a-b-c");
}

TEST(NumberToTString, GivesTheDecimalText) {
    EXPECT_EQ(CStringUtil::NumberToTString(0), "0");
    EXPECT_EQ(CStringUtil::NumberToTString(-17), "-17");
    EXPECT_EQ(CStringUtil::NumberToTString(std::numeric_limits<long>::max()), "9223372036854775807");
    EXPECT_EQ(CStringUtil::NumberToTString(std::numeric_limits<long>::min()), "-9223372036854775808");
}

TEST(StringToTstring, ReturnsTheTextUnchanged) {
    const std::string text("\xff\0 text\r\n", 9);
    EXPECT_EQ(CStringUtil::StringToTstring(text), text);
}

struct Number {
    const char* text;
    long expected;
};

constexpr Number kNumbers[] = {
    {"12", 12},
    {"007", 7},
    {"10a", 10},
    {"4.1.2", 4},
    {"3 4", 3},
    {"", 0},
    {"abc", 0},
    {"-5", 0},
    {"+5", 0},
    {" 5", 0},
    {"0x10", 0},
    {"9223372036854775807", std::numeric_limits<long>::max()},
    {"9223372036854775808", std::numeric_limits<long>::max()},
    {"99999999999999999999999999tail", std::numeric_limits<long>::max()},
};

TEST(TStringToNumber, GivesTheLeadingDigitsAndSaturates) {
    for (const Number& row : kNumbers) {
        EXPECT_EQ(CStringUtil::TStringToNumber(row.text), row.expected) << row.text;
    }
}

TEST(StringToUpperCase, RaisesTheLettersAndKeepsTheRest) {
    const std::string text = "az AZ 09 {`}";
    EXPECT_EQ(CStringUtil::StringToUpperCase(text), "AZ AZ 09 {`}");
    EXPECT_EQ(text, "az AZ 09 {`}");
}

TEST(StringToUpperCase, KeepsEveryByteThatIsNoAsciiLetterInAnyLocale) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    const std::string before = CStringUtil::StringToUpperCase(all);
    std::setlocale(LC_ALL, "");
    const std::string after = CStringUtil::StringToUpperCase(all);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(before, after);
    for (std::size_t byte = 0; byte < 256; ++byte) {
        const bool isLower = byte >= 'a' && byte <= 'z';
        EXPECT_EQ(static_cast<unsigned char>(before[byte]), isLower ? byte - 32 : byte);
    }
}

std::list<std::string> split(std::string text, const std::string& separator) {
    return CStringUtil::Split(text, separator);
}

TEST(Split, GivesTheFieldsInOrder) {
    EXPECT_THAT(split("4.1.402.9", "."), ElementsAre("4", "1", "402", "9"));
    EXPECT_THAT(split("a-b", "-"), ElementsAre("a", "b"));
    EXPECT_THAT(split("x|y|z", "|"), ElementsAre("x", "y", "z"));
}

TEST(Split, GivesTheWholeTextWithoutASeparatorInIt) {
    EXPECT_THAT(split("abc", "."), ElementsAre("abc"));
    EXPECT_THAT(split("", "."), ElementsAre(""));
    EXPECT_THAT(split("a.b", ""), ElementsAre("a.b"));
}

TEST(Split, KeepsEmptyFields) {
    EXPECT_THAT(split(".a..b.", "."), ElementsAre("", "a", "", "b", ""));
}

TEST(Split, LeavesTheTextAsItWas) {
    std::string text = "a.b.c";
    EXPECT_EQ(CStringUtil::Split(text, "."), CStringUtil::Split(text, "."));
    EXPECT_EQ(text, "a.b.c");
}

}  // namespace
