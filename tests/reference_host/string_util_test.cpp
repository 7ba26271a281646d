#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cctype>
#include <clocale>
#include <cstdlib>
#include <limits>
#include <list>
#include <optional>
#include <string>

#include "host/CStringUtil.h"
#include "tests/reference_host/processes.h"
#include "tests/reference_host/scratch_directory.h"

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

// Makes a locale whose letters go beyond ASCII, one byte each, and sets it for as long as it lives.
class Latin1Locale {
public:
    Latin1Locale() {
        const char* previous = std::getenv("LOCPATH");
        previous_ = previous != nullptr ? std::optional<std::string>(previous) : std::nullopt;
        const std::string locale = scratch_ / "latin1";
        const int result = kvl::test::exitCodeOf([&locale] {
            return ::execlp("localedef", "localedef", "--no-archive", "-i", "en_US", "-f", "ISO-8859-1", locale.c_str(),
                            static_cast<char*>(nullptr));
        });
        ::setenv("LOCPATH", scratch_.path().c_str(), 1);
        isSet_ = result == 0 && std::setlocale(LC_ALL, "latin1") != nullptr;
    }
    ~Latin1Locale() {
        std::setlocale(LC_ALL, "C");
        previous_ ? ::setenv("LOCPATH", previous_->c_str(), 1) : ::unsetenv("LOCPATH");
    }

    Latin1Locale(const Latin1Locale&) = delete;
    Latin1Locale& operator=(const Latin1Locale&) = delete;

    bool isSet() const { return isSet_; }

private:
    const kvl::test::ScratchDirectory scratch_;
    std::optional<std::string> previous_;
    bool isSet_ = false;
};

TEST(StringToUpperCase, KeepsEveryByteThatIsNoAsciiLetterInEveryLocale) {
    const Latin1Locale locale;
    ASSERT_TRUE(locale.isSet());
    ASSERT_NE(std::islower(0xe4), 0);
    for (int byte = 0; byte < 256; ++byte) {
        const bool isLower = byte >= 'a' && byte <= 'z';
        const std::string expected(1, static_cast<char>(isLower ? byte - 'a' + 'A' : byte));
        EXPECT_EQ(CStringUtil::StringToUpperCase(std::string(1, static_cast<char>(byte))), expected) << byte;
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
