#include "collector/udev_rules_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

class UdevRules : public ParserTable {};

std::string parsed(std::istream& text) {
    return outcomeOf([&text](std::string& shown) {
        parseUdevRules(text, "eth0", 2, [&shown](const std::string& mac) { shown += "[" + mac + "]"; });
    });
}

TEST_P(UdevRules, GiveTheAddresses) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsed(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, UdevRules,
    testing::Values(ParserCase{"OfTheInterfaceInOrder",
                               "# eth0\nSUB== ATTR{address}==\"00:1b:21:aa:bb:cc\", NAME=\"eth0\"\n"
                               "SUB== ATTR{address}==\"00:1b:21:aa:bb:dd\", NAME=\"eth1\"\n"
                               "SUB== ATTR{address}==\"00:1b:21:aa:bb:ee\", NAME=\"eth0\"\n",
                               "[00:1B:21:AA:BB:CC][00:1B:21:AA:BB:EE]"},
                    ParserCase{"AlsoInAComment", "# A==\"00:11:22:33:44:55\", NAME=\"eth0\"\n", "[00:11:22:33:44:55]"},
                    ParserCase{"WhereTheNameEndsAtABlankOrWithTheLine",
                               "a ==\"1\" NAME=\"eth0\" x\na ==\"2\" NAME=\"eth0\",x\na ==\"3\" NAME=\"eth0\"\n",
                               "[1][3]"},
                    ParserCase{"Of17CharactersWithoutQuotes",
                               "a ==\"00:11:22:33:44:55:66\" NAME=\"eth0\"\na ==\"0\"1\" NAME=\"eth0\"\n",
                               "[00:11:22:33:44:55][01]"},
                    ParserCase{"FromTheThirdCharacterWhereTheMarkerIsMissing", "a xyabc NAME=\"eth0\"\n", "[ABC]"},
                    ParserCase{"EmptyForTwoCharacters", "a xy NAME=\"eth0\"\n", "[]"},
                    ParserCase{"BeforeAColumnOfUnderTwoCharacters", "a ==\"1\" NAME=\"eth0\"\na x NAME=\"eth0\"\n",
                               "[1]!basic_string::substr"},
                    ParserCase{"BeforeARuleWithoutTheColumn", "NAME=\"eth0\"\n", "!basic_string::substr"},
                    ParserCase{"WithoutALastLineThatMeetsTheEnd", "a ==\"1\" NAME=\"eth0\"", ""}),
    ruleOf);

TEST(UdevRulesColumn, IsTheGivenOne) {
    std::istringstream text("a ==\"1\" b ==\"2\" NAME=\"eth0\"\n");
    std::string shown;
    parseUdevRules(text, "eth0", 4, [&shown](const std::string& mac) { shown += mac; });
    EXPECT_EQ(shown, "2");
}

TEST(UdevRulesFile, GivesNothingWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(parsed(file), "");
    }
}

TEST(NormalizedMac, IsInUpperCaseWithoutQuotes) {
    EXPECT_EQ(normalizedMac("\"00:1b:21:aA:bb:cc\""), "00:1B:21:AA:BB:CC");
}

}  // namespace
}  // namespace kvl::test
