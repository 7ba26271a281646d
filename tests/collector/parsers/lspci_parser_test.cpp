#include "collector/lspci_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

class PciIds : public ParserTable {};

TEST_P(PciIds, AreThoseOf) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsePciIds(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, PciIds,
    testing::Values(
        ParserCase{"AWholeLine", "02:00.0 \"0200\" \"8086\" \"10c9\" -r01 \"8086\" \"a03c\"\n", "8086 10c9 8086 a03c"},
        ParserCase{"TheFirstLine", "a \"0\" \"1\" \"2\" \"3\" \"4\"\nb \"0\" \"5\" \"6\" \"7\" \"8\"\n", "1 2 3 4"},
        ParserCase{"ALineWithoutALineFeed", "a \"0\" \"1\" \"2\" \"3\" \"4\"", "1 2 3 4"},
        ParserCase{"ALineWithoutASubsystem", "a \"0\" \"1\" \"2\"\n", "1 2  "},
        ParserCase{"ALineWithoutQuotes", "a 0 1 2\n", "   "},
        ParserCase{"ALineWithAnOpenField", "a \"0\" \"1\n", "1   "},
        ParserCase{"ALineOfEmptyFields", "a \"\" \"\" \"\" \"\" \"\"\n", "   "}, ParserCase{"NoLine", "", "   "}),
    ruleOf);

class PciDescription : public ParserTable {};

TEST_P(PciDescription, IsThatOf) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsePciDescription(text, "02:00.0"), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, PciDescription,
    testing::Values(
        ParserCase{
            "TheDevicesLine",
            "12:02:00.0 \"x\" \"a\" \"b\"\n02:00.0 \"Ethernet controller\" \"Intel Corporation\" \"82576 Gigabit\" "
            "-r01 \"Sub\" \"Sys\"\n02:00.0 \"x\" \"c\" \"d\"\n",
            "Intel Corporation 82576 Gigabit"},
        ParserCase{"ALastLineWithoutALineFeed", "02:00.0 \"c\" \"v\" \"d\"", "v d"},
        ParserCase{"ALineWithoutADevice", "02:00.0 \"c\" \"v\"\n", "v "},
        ParserCase{"ALineWithoutFields", "02:00.0\n", " "},
        ParserCase{"NoLineOfThatLocation", "02:00.01 \"c\" \"v\" \"d\"\n 02:00.0 \"c\" \"v\" \"d\"\n", ""}),
    ruleOf);

TEST(LspciFile, GivesNothingWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream ids(path);
        EXPECT_EQ(parsePciIds(ids), "   ");
        std::ifstream description(path);
        EXPECT_EQ(parsePciDescription(description, "02:00.0"), "");
    }
}

}  // namespace
}  // namespace kvl::test
