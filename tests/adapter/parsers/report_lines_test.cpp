#include "adapter/report_lines.h"

#include "tests/adapter/parsers/report_text.h"
#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

class ReportLinesTable : public ParserTable {};

TEST_P(ReportLinesTable, AreRead) {
    ReportText report(GetParam().input);
    ReportLines lines = report.lines();
    std::string shown;
    std::string line = "untouched";
    while (lines.read(line)) {
        shown += "[" + line + "]";
    }
    std::string kept = line;
    EXPECT_FALSE(lines.read(line));
    EXPECT_EQ(line, kept);
    EXPECT_EQ(shown, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, ReportLinesTable,
    testing::Values(ParserCase{"WithTheirLineFeeds", "a\r\n\nb\n", "[a\r\n][\n][b\n]"},
                    ParserCase{"TheLastOneWithoutALineFeedToo", "a\nb", "[a\n][b]"},
                    ParserCase{"UpToAZeroByte", "a\0b\n\0\nc\n"s, "[a][][c\n]"},
                    ParserCase{"InPiecesOf255Characters", std::string(255, 'x') + "\n" + std::string(600, 'y') + "\n",
                               "[" + std::string(255, 'x') + "][\n][" + std::string(255, 'y') + "][" +
                                   std::string(255, 'y') + "][" + std::string(90, 'y') + "\n]"},
                    ParserCase{"WholeAt254CharactersAndALineFeed", std::string(254, 'x') + "\n",
                               "[" + std::string(254, 'x') + "\n]"},
                    ParserCase{"FromNothing", "", ""}),
    ruleOf);

TEST(ReportLinesWithoutLineEnd, HaveABlankForEachCarriageReturnAndLineFeed) {
    ReportText report("a\rb\r\n\nc");
    ReportLines lines = report.lines();
    std::string shown;
    for (std::string line; lines.readWithoutLineEnd(line);) {
        shown += "[" + line + "]";
    }
    EXPECT_EQ(shown, "[a b  ][ ][c]");
}

TEST(ReportLinesOfADirectory, HaveEnded) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> directory(std::fopen(kDirectory, "r"), std::fclose);
    ASSERT_TRUE(directory);
    std::string line = "untouched";
    EXPECT_FALSE(ReportLines(directory.get()).read(line));
    EXPECT_FALSE(ReportLines(directory.get()).readWithoutLineEnd(line));
    EXPECT_EQ(line, "untouched");
}

}  // namespace
}  // namespace kvl::test
