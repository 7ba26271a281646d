#include "foundation/ini_value.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

class IniValue : public ParserTable {};

/// The value of "ONBOOT" in brackets; "(none)" if there is none.
std::string valueIn(std::istream& text) {
    std::string result = "earlier";
    const bool isFound = findIniValue(text, "ONBOOT", result);
    EXPECT_TRUE(isFound || result.empty());
    return isFound ? "[" + result + "]" : "(none)";
}

TEST_P(IniValue, IsFound) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(valueIn(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, IniValue,
    testing::Values(ParserCase{"InTheFirstLineWithTheKey", "DEVICE=eth0\nONBOOT=yes\nONBOOT=no\n", "[yes]"},
                    ParserCase{"InALastLineWithoutALineFeed", "DEVICE=eth0\nONBOOT=yes", "[yes]"},
                    ParserCase{"WithoutDoubleQuotes", "ONBOOT=\"y\"es\"\"\n", "[yes]"},
                    ParserCase{"WithItsBlanks", "ONBOOT= yes \n", "[ yes ]"},
                    ParserCase{"AlsoIfEmpty", "ONBOOT=\nONBOOT=yes\n", "[]"},
                    ParserCase{"BySearchTextAnywhereCutFromTheLinesStart", "#ONBOOT=yes\n", "[=yes]"},
                    ParserCase{"EmptyWhereQuotesLeaveTooShortALine", "\"ONBOOT=\"\n", "[]"},
                    ParserCase{"NotForAKeyApartFromTheSign", "ONBOOT =yes\n", "(none)"},
                    ParserCase{"NotInCapitalsForSmallLetters", "onboot=yes\n", "(none)"},
                    ParserCase{"NotInAnEmptyFile", "", "(none)"},
                    ParserCase{"CutAtAZeroByte", "ONBOOT=y\0es\n"s, "[y]"},
                    ParserCase{"CutAt255Characters", "ONBOOT=" + std::string(300, 'y') + "\n",
                               "[" + std::string(248, 'y') + "]"}),
    ruleOf);

TEST(IniValueInAFile, IsNotFoundWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(valueIn(file), "(none)");
    }
}

}  // namespace
}  // namespace kvl::test
