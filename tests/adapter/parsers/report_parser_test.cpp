#include "adapter/report_parser.h"

#include "tests/adapter/parsers/report_text.h"
#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

std::string shown(const KeyValue& found) {
    return found.first + "=" + found.second;
}

// ---- A key and its value ----

struct KeyCase {
    const char* rule;
    std::string input;
    std::string keys;
    unsigned int count;
    std::string expected;
    std::string separator = ":";
};

void PrintTo(const KeyCase& row, std::ostream* stream) {
    *stream << row.rule;
}

std::string keyRuleOf(const testing::TestParamInfo<KeyCase>& row) {
    return row.param.rule;
}

class KeyValueTable : public testing::TestWithParam<KeyCase> {};

TEST_P(KeyValueTable, IsFound) {
    const KeyCase& row = GetParam();
    ReportText report(row.input);
    EXPECT_EQ(shown(findKeyValue(report.lines(), row.keys, row.separator, row.count)), row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, KeyValueTable,
    testing::Values(KeyCase{"InTheFirstLineThatHoldsTheKey", "Other : x\nPort Number : 1\nPort Number : 2\n",
                            "Port Number", 0, "Port Number=1"},
                    KeyCase{"InTheLineAfterThatManyOthers", "K: 0\nX\nK: 1\nK: 2\n", "K", 2, "K=2"},
                    KeyCase{"NotWithFewerLines", "K: 0\nK: 1\n", "K", 2, "="},
                    KeyCase{"WithoutBlanksAroundIt", "K:   a b  \n", "K", 0, "K=a b"},
                    KeyCase{"WithoutACarriageReturn", "K: a\r\n", "K", 0, "K=a"},
                    KeyCase{"WithItsTabs", "K:\ta\n", "K", 0, "K=\ta"},
                    KeyCase{"AnywhereInALine", "  x K y : a\n", "K", 0, "K=a"},
                    KeyCase{"WithTheFirstSeparatorAfterTheKey", "a: K b: c: d\n", "K", 0, "K=c: d"},
                    KeyCase{"AfterASeparatorInsideTheKey", "A:B: c\n", "A:B", 0, "A:B=B: c"},
                    KeyCase{"InALaterLineWhereOneHasNoSeparator", "K a\nK: b\n", "K", 0, "K=b"},
                    KeyCase{"InALaterLineWhereOneHasNoValue", "K:  \r\nK: b\n", "K", 0, "K=b"},
                    KeyCase{"WithLinesWithoutAValueCounted", "K:\nK: b\nK: c\n", "K", 1, "K=b"},
                    KeyCase{"ByAlternatives", "b: 1\na: 2\n", "a|b", 0, "b=1"},
                    KeyCase{"ByTheFirstAlternativeThatALineHolds", "b a: 1\n", "a|b", 0, "a=1"},
                    KeyCase{"WithALineOfTwoAlternativesCountedOnce", "a b: 1\na: 2\nb: 3\n", "a|b", 2, "b=3"},
                    KeyCase{"AfterASeparatorOfSeveralCharacters", "Dump = x := y\n", "Dump", 0, "Dump=y", ":="},
                    KeyCase{"InALastLineWithoutALineFeed", "K: a", "K", 0, "K=a"},
                    KeyCase{"InAPieceOfALongLine", std::string(255, 'x') + "K: a\n", "K", 0, "K=a"},
                    KeyCase{"NotAcrossTwoPieces", std::string(254, 'x') + "KY: a\n", "KY", 0, "="},
                    KeyCase{"NotInAnEmptyReport", "", "K", 0, "="}),
    keyRuleOf);

// ---- A key below a tag ----

struct TagCase {
    const char* rule;
    std::string input;
    std::string tags;
    unsigned int count;
    std::string expected;
};

void PrintTo(const TagCase& row, std::ostream* stream) {
    *stream << row.rule;
}

std::string tagRuleOf(const testing::TestParamInfo<TagCase>& row) {
    return row.param.rule;
}

class TagTable : public testing::TestWithParam<TagCase> {};

TEST_P(TagTable, GivesTheValue) {
    const TagCase& row = GetParam();
    ReportText report(row.input);
    EXPECT_EQ(shown(findTagKeyValue(report.lines(), row.tags, "K|L", ":", row.count)), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Parser, TagTable,
                         testing::Values(TagCase{"InALineAfterTheTag", "K: 0\nTag\nX\nK: 1\nK: 2\n", "Tag", 0, "K=1"},
                                         TagCase{"NotInTheLineOfTheTag", "Tag K: 0\nK: 1\n", "Tag", 0, "K=1"},
                                         TagCase{"AfterThatManyTags", "Tag\nK: 0\nTag\nK: 1\n", "Tag", 1, "K=1"},
                                         TagCase{"ByAnyKey", "Tag\nL: 1\nK: 2\n", "Tag", 0, "L=1"},
                                         TagCase{"OfALaterSectionInItsNextLineAlone",
                                                 "Tag\nK: 0\nTag\nK: 1\nTag\nX\nK: 2\n", "Tag", 0, "K=1"},
                                         TagCase{"AfterAnyTag", "Two\nK: 1\n", "One|Two", 0, "K=1"},
                                         TagCase{"OfTheSecondTagOfALineAfterThatOfTheFirst",
                                                 "One Two\nK: 1\nK: 2\nK: 3\n", "One|Two", 0, "K=2"},
                                         TagCase{"WithALineOfTwoTagsPassedOverOnce", "One Two\nK: 1\nX\nOne\nX\nK: 2\n",
                                                 "One|Two", 1, "K=2"},
                                         TagCase{"InALaterLineWhereOneHasNoValue", "Tag\nK:\nK: 1\n", "Tag", 0, "K=1"},
                                         TagCase{"NowhereWithoutATag", "K: 1\n", "Tag", 0, "="},
                                         TagCase{"NowhereBelowTheLastTag", "K: 1\nTag\n", "Tag", 0, "="}),
                         tagRuleOf);

// ---- A text ----

TEST(HoldsText, LooksAtEachLine) {
    const auto held = [](const std::string& text) {
        ReportText report("first line\nsecond Port WWN: 10:00\nlast");
        return holdsText(report.lines(), text);
    };
    EXPECT_TRUE(held("Port WWN: 10:00"));
    EXPECT_TRUE(held("first"));
    EXPECT_TRUE(held("last"));
    EXPECT_FALSE(held("Port WWN: 10:01"));
    EXPECT_FALSE(held("line second"));
}

}  // namespace
}  // namespace kvl::test
