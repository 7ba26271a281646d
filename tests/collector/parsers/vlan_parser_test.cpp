#include "collector/vlan_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

const std::string kHeader = "VLAN Dev name\t | VLAN ID\nName-Type: VLAN_NAME_TYPE_RAW_PLUS_VID_NO_PAD\n";

class VlanTable : public ParserTable {};

/// A line "NAME ID INTERFACE" for each row.
std::string parsed(std::istream& table) {
    std::string shown;
    for (const auto& [name, vlan] : parseVlans(table)) {
        shown += name + " " + std::to_string(vlan.id) + " " + vlan.interface + "\n";
    }
    return shown;
}

TEST_P(VlanTable, GivesItsRowsAndTheLastOneAgain) {
    std::istringstream table(GetParam().input);
    EXPECT_EQ(parsed(table), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, VlanTable,
    testing::Values(ParserCase{"InOrder", kHeader + "eth0.100       | 100  | eth0\nbond0.200      | 200  | bond0\n",
                               "eth0.100 100 eth0\nbond0.200 200 bond0\nbond0.200 0 bond0\n"},
                    ParserCase{"WithTheNumberThatTheInterfaceBeginsWith", kHeader + "a | 7 | 12x\n",
                               "a 7 12x\na 12 12x\n"},
                    ParserCase{"OnceWithoutALastLineFeed", kHeader + "eth0.100 | 100 | eth0", "eth0.100 100 eth0\n"},
                    ParserCase{"AsOneEntryWithoutANameWhereThereIsNone", kHeader, " 0 \n"},
                    ParserCase{"AsOneEntryWithoutANameWhereTheHeaderIsShort", "VLAN Dev name\n", " 0 \n"},
                    ParserCase{"WithTheWordBeforeForOneThatIsMissing", kHeader + "a | 5 |", "a 5 |\n"},
                    ParserCase{"WithoutComparingTheBars", kHeader + "a x 5 y b\n", "a 5 b\na 0 b\n"},
                    ParserCase{"WithZeroForWhatIsNoNumber", kHeader + "a | x | b\n", "a 0 b\na 0 b\n"},
                    ParserCase{"WithWordsOfAnyLength", kHeader + std::string(400, 'v') + " | 5 | eth0\n",
                               std::string(400, 'v') + " 5 eth0\n" + std::string(400, 'v') + " 0 eth0\n"}),
    ruleOf);

TEST(VlanFile, IsOneEntryWithoutANameWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(parsed(file), " 0 \n");
    }
}

}  // namespace
}  // namespace kvl::test
