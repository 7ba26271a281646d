#include "foundation/words.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

class Words : public ParserTable {};

TEST_P(Words, AreRead) {
    std::istringstream text(GetParam().input);
    std::string shown;
    for (const std::string& word : readWords(text)) {
        shown += word + "|";
    }
    EXPECT_EQ(shown, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Parser, Words,
                         testing::Values(ParserCase{"LineByLine", "bond0\nbond1\n", "bond0|bond1|"},
                                         ParserCase{"BetweenAllWhiteSpace", " a\tb\v\n\nc \n", "a|b|c|"},
                                         ParserCase{"WithoutALastOneThatMeetsTheEnd", "bond0\nbond1", "bond0|"},
                                         ParserCase{"OfAnyLength", std::string(5000, 'x') + "\n",
                                                    std::string(5000, 'x') + "|"},
                                         ParserCase{"FromAnEmptyListing", "", ""}),
                         ruleOf);

}  // namespace
}  // namespace kvl::test
