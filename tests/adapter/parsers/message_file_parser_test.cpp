#include "adapter/message_file_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

// ---- message.txt ----

class MessageFileTable : public ParserTable {};

/// "s" and "e" with number and text for each text as it is stored, "." for each line; then what is stored at the end.
std::string parsed(std::istream& text) {
    std::string shown;
    MessageFileEvents events;
    events.line = [&shown](const std::string&) { shown += "."; };
    events.success = [&shown](std::size_t number, const std::string& stored) {
        shown += "s" + std::to_string(number) + "[" + stored + "]";
    };
    events.end = [&shown](std::size_t number, const std::string& stored) {
        shown += "e" + std::to_string(number) + "[" + stored + "]";
    };
    const Messages messages = parseMessageFile(text, events);
    for (const auto* texts : {&messages.success, &messages.end}) {
        shown += " :";
        for (const std::string& stored : *texts) {
            shown += stored + ";";
        }
    }
    return shown;
}

TEST_P(MessageFileTable, IsRead) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsed(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, MessageFileTable,
    testing::Values(ParserCase{"Whole", "SuccessMessage=done\nEndMessage=end\n# x\n\nSuccessMessage=fine\n",
                               ".s0[done].e0[end]...s1[fine] :done;fine; :end;"},
                    ParserCase{"WithoutBlanksAndCarriageReturnsAroundATextOnly",
                               "SuccessMessage= \r a b \r \r\nEndMessage=\tx\t\n", ".s0[a b].e0[\tx\t] :a b; :\tx\t;"},
                    ParserCase{"WithEmptyTexts", "SuccessMessage=\nEndMessage=  \n", ".s0[].e0[] :; :;"},
                    ParserCase{"CutAtTheKeysLengthFromTheLinesStart", "xxSuccessMessage=abc\n", ".s0[e=abc] :e=abc; :"},
                    ParserCase{"WithBothKindsInOneLine", "EndMessage=SuccessMessage=ab\n",
                               ".s0[essMessage=ab]e0[SuccessMessage=ab] :essMessage=ab; :SuccessMessage=ab;"},
                    ParserCase{"WithFiveTextsOfAKind",
                               "EndMessage=1\nEndMessage=2\nEndMessage=3\nEndMessage=4\nEndMessage=5\nEndMessage=6\n"
                               "SuccessMessage=7\n",
                               ".e0[1].e1[2].e2[3].e3[4].e4[5]..s0[7] :7; :1;2;3;4;5;"},
                    ParserCase{"ByItsKeysInTheirSpelling", "successmessage=a\nSuccessMessage =a\nEndMessag=a\n",
                               "... : :"},
                    ParserCase{"InALastLineWithoutALineFeed", "EndMessage=a", ".e0[a] : :a;"},
                    ParserCase{"InLinesOfAnyLength", "EndMessage=" + std::string(600, 'x') + "\n",
                               ".e0[" + std::string(600, 'x') + "] : :" + std::string(600, 'x') + ";"},
                    ParserCase{"WithZeroBytes", "EndMessage=a\0b\n"s, ".e0[a\0b] : :a\0b;"s},
                    ParserCase{"Empty", "", " : :"}),
    ruleOf);

TEST(MessageFileLines, AreReportedWhole) {
    std::istringstream text("EndMessage= a \r\n\n");
    std::string shown;
    MessageFileEvents events;
    events.line = [&shown](const std::string& line) { shown += "[" + line + "]"; };
    parseMessageFile(text, events);
    EXPECT_EQ(shown, "[EndMessage= a \r][]");
}

// ---- An updater's output ----

class UpdaterOutput : public ParserTable {};

std::string found(std::istream& output) {
    std::string shown;
    const std::optional<std::string> hit =
        findMessage(output, {"Complete", "OK now"}, [&shown](const std::string& line) { shown += "[" + line + "]"; });
    return shown + (hit ? "hit " + *hit : "no hit");
}

TEST_P(UpdaterOutput, IsSearched) {
    std::istringstream output(GetParam().input);
    EXPECT_EQ(found(output), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Parser, UpdaterOutput,
                         testing::Values(ParserCase{"UpToTheFirstLineWithOneOfTheTexts", "a\nxOK nowx\nComplete\n",
                                                    "[a][xOK nowx]hit xOK nowx"},
                                         ParserCase{"ForEachText", "Download Complete.\r\n",
                                                    "[Download Complete.\r]hit Download Complete.\r"},
                                         ParserCase{"ToTheEnd", "OK\nnow\n\ncomplete\n", "[OK][now][][complete]no hit"},
                                         ParserCase{"InALastLineWithoutALineFeed", "Complete",
                                                    "[Complete]hit Complete"},
                                         ParserCase{"ThoughEmpty", "", "no hit"}),
                         ruleOf);

TEST(UpdaterOutputText, HoldsAnEmptyTextInItsFirstLine) {
    std::istringstream output("a\nb\n");
    EXPECT_EQ(findMessage(output, {""}, [](const std::string&) {}), "a");
    EXPECT_EQ(findMessage(output, {}, [](const std::string&) {}), std::nullopt);
}

TEST(MessageFile, GivesNothingWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream messages(path);
        EXPECT_EQ(parsed(messages), " : :");
        std::ifstream output(path);
        EXPECT_EQ(found(output), "no hit");
    }
}

}  // namespace
}  // namespace kvl::test
