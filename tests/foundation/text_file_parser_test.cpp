#include <tuple>

#include "foundation/CTextFileParser.h"
#include "tests/support/private_machine_test.h"

namespace kvl::test {
namespace {

const std::string kFile = "/tmp/lines";
const std::string kUntouched = "untouched";

class TextFileParser : public PrivateMachineTest {
protected:
    std::string result = kUntouched;
};

using GetLineBeginningKey = TextFileParser;
using GetColumnBeginningKey = TextFileParser;
using GetStrInFixedPosition = TextFileParser;
using IsKeyExist = TextFileParser;
using GetLineContainsKey = TextFileParser;
using GetIniFileValue = TextFileParser;

TEST_F(TextFileParser, CanBeMadeAndDestroyedThoughAllLookupsAreStatic) {
    const CTextFileParser parser;
    EXPECT_TRUE(std::has_virtual_destructor_v<CTextFileParser>);
}

// ---- GetLineBeginningKey ----

TEST_F(GetLineBeginningKey, GivesTheWholeLineWhoseFirstWordIsTheKey) {
    machine.file(kFile, "search a.example\nnameserver 10.0.0.1  # first \nnameserver 10.0.0.2\n");
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "nameserver", 1, result));
    EXPECT_EQ(result, "nameserver 10.0.0.1  # first ");
}

TEST_F(GetLineBeginningKey, CountsOccurrences) {
    machine.file(kFile, "key one\nother\nkey two\nkey three\n");
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "key", 3, result));
    EXPECT_EQ(result, "key three");
}

TEST_F(GetLineBeginningKey, ClearsTheResultWithoutThatManyLines) {
    machine.file(kFile, "key one\n");
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey(kFile, "key", 2, result));
    EXPECT_EQ(result, "");
}

TEST_F(GetLineBeginningKey, LeavesTheResultForAnOccurrenceBelowOne) {
    machine.file(kFile, "key one\n");
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey(kFile, "key", 0, result));
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey(kFile, "key", -1, result));
    EXPECT_EQ(result, kUntouched);
}

TEST_F(GetLineBeginningKey, LeavesTheResultForAFileThatCannotBeOpened) {
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey("/tmp/absent", "key", 1, result));
    EXPECT_EQ(result, kUntouched);
}

TEST_F(GetLineBeginningKey, SeesALastLineWithoutALineFeed) {
    machine.file(kFile, "other\nkey last");
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result));
    EXPECT_EQ(result, "key last");
}

TEST_F(GetLineBeginningKey, TakesALineWithoutABlankWhole) {
    machine.file(kFile, "keyword\nkey\n");
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result));
    EXPECT_EQ(result, "key");
}

TEST_F(GetLineBeginningKey, ComparesTheWholeFirstWord) {
    machine.file(kFile, "key: a\nkeys b\nke c\nKEY d\n#key e\n");
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result));
}

TEST_F(GetLineBeginningKey, TakesATabAsPartOfTheWord) {
    machine.file(kFile, "key\ta b\n");
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result));
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "key\ta", 1, result));
}

TEST_F(GetLineBeginningKey, FindsAnEmptyFirstWordInALineThatStartsWithABlank) {
    machine.file(kFile, "a\n key one\n");
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result));
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "", 1, result));
    EXPECT_EQ(result, " key one");
}

TEST_F(GetLineBeginningKey, KeepsACarriageReturn) {
    machine.file(kFile, "key one\r\n");
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result));
    EXPECT_EQ(result, "key one\r");
}

TEST_F(GetLineBeginningKey, CutsALineThatDoesNotFitTheBufferAndReadsOn) {
    const std::string longLine = "key " + std::string(300, 'x');
    machine.file(kFile, longLine + "\nkey two\n");
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result));
    EXPECT_EQ(result, longLine.substr(0, 255));
    EXPECT_TRUE(CTextFileParser::GetLineBeginningKey(kFile, "key", 2, result));
    EXPECT_EQ(result, "key two");
}

TEST_F(GetLineBeginningKey, TakesADirectoryAsAnEmptyFile) {
    machine.directory("/tmp/directory");
    EXPECT_FALSE(CTextFileParser::GetLineBeginningKey("/tmp/directory", "key", 1, result));
    EXPECT_EQ(result, "");
}

// ---- GetColumnBeginningKey ----

TEST_F(GetColumnBeginningKey, GivesAColumnOfTheLine) {
    machine.file(kFile, "key one\nkey two  more\n");
    EXPECT_TRUE(CTextFileParser::GetColumnBeginningKey(kFile, "key", 2, 3, result));
    EXPECT_EQ(result, "more");
}

TEST_F(GetColumnBeginningKey, ClearsTheResultOnEveryFailure) {
    machine.file(kFile, "key one\n");
    const std::tuple<std::string, std::string, int, int> failures[] = {
        {"/tmp/absent", "key", 1, 1}, {kFile, "key", 0, 1}, {kFile, "key", 2, 1},
        {kFile, "key", 1, 3},         {kFile, "key", 1, 0}, {kFile, "no", 1, 1},
    };
    for (const auto& [file, key, occurrence, column] : failures) {
        result = kUntouched;
        EXPECT_FALSE(CTextFileParser::GetColumnBeginningKey(file, key, occurrence, column, result));
        EXPECT_EQ(result, "") << file << " " << key << " " << occurrence << " " << column;
    }
}

// ---- GetStrInFixedPosition on a line ----

TEST_F(GetStrInFixedPosition, CutsColumnsOfALine) {
    const struct {
        std::string line;
        int column;
        bool found;
        std::string expected;
    } rows[] = {
        {"one two three", 1, true, "one"},
        {"one two three", 2, true, "two"},
        {"one two three", 3, true, "three"},
        {"one two three", 4, false, ""},
        {"one", 1, true, "one"},
        {"one   two", 2, true, "two"},         // a run of blanks separates once
        {"one\ttwo three", 2, true, "three"},  // a tab separates nothing
        {"one two ", 3, true, ""},             // after a trailing blank
        {"one two ", 4, false, ""},
        {"one two   ", 3, true, ""},
        {"one two   ", 4, false, ""},
        {" one two", 1, true, ""},  // one leading blank hides the first word
        {" one two", 2, true, "two"},
        {" one two", 3, false, ""},
        {"  one two", 1, true, ""},  // two don't
        {"  one two", 2, true, "one"},
        {"  one two", 3, true, "two"},
        {"   one two", 2, true, "one"},
        {" ", 1, true, ""},
        {" ", 2, false, ""},
        {"  ", 2, true, ""},
        {"one two", 0, false, ""},
        {"one two", -1, false, ""},
        {"", 1, false, ""},
    };
    for (const auto& row : rows) {
        result = kUntouched;
        EXPECT_EQ(CTextFileParser::GetStrInFixedPosition(row.line, row.column, result), row.found)
            << "'" << row.line << "' " << row.column;
        EXPECT_EQ(result, row.expected) << "'" << row.line << "' " << row.column;
    }
}

// ---- GetStrInFixedPosition on a file ----

TEST_F(GetStrInFixedPosition, CutsAColumnOfALineOfAFile) {
    machine.file(kFile, "a b\nc d\n");
    EXPECT_TRUE(CTextFileParser::GetStrInFixedPosition(kFile, 2, 2, result));
    EXPECT_EQ(result, "d");
}

TEST_F(GetStrInFixedPosition, LeavesTheResultForAFileThatCannotBeOpened) {
    EXPECT_FALSE(CTextFileParser::GetStrInFixedPosition("/tmp/absent", 1, 1, result));
    EXPECT_EQ(result, kUntouched);
}

TEST_F(GetStrInFixedPosition, TakesTheLastLineBehindTheEndOfAFileWithoutALineFeed) {
    machine.file(kFile, "a b\nc d");
    EXPECT_TRUE(CTextFileParser::GetStrInFixedPosition(kFile, 9, 2, result));
    EXPECT_EQ(result, "d");
}

TEST_F(GetStrInFixedPosition, FindsNothingBehindTheEndOfAFileWithALineFeed) {
    machine.file(kFile, "a b\nc d\n");
    EXPECT_FALSE(CTextFileParser::GetStrInFixedPosition(kFile, 3, 1, result));
    EXPECT_EQ(result, "");
}

TEST_F(GetStrInFixedPosition, ReadsNothingForALineNumberBelowOne) {
    machine.file(kFile, "a b\n");
    EXPECT_FALSE(CTextFileParser::GetStrInFixedPosition(kFile, 0, 1, result));
    EXPECT_FALSE(CTextFileParser::GetStrInFixedPosition(kFile, -3, 1, result));
    EXPECT_EQ(result, "");
}

TEST_F(GetStrInFixedPosition, TakesADirectoryAsAnEmptyFile) {
    machine.directory("/tmp/directory");
    EXPECT_FALSE(CTextFileParser::GetStrInFixedPosition("/tmp/directory", 1, 1, result));
    EXPECT_EQ(result, "");
}

TEST_F(GetStrInFixedPosition, CountsALongLineOnce) {
    machine.file(kFile, std::string(1000, 'x') + "\nc d\n");
    EXPECT_TRUE(CTextFileParser::GetStrInFixedPosition(kFile, 2, 2, result));
    EXPECT_EQ(result, "d");
}

// ---- isKeyExist ----

TEST_F(IsKeyExist, BoundsTheEndOfTheKeyAlone) {
    const struct {
        std::string key;
        std::string line;
        int position;
    } rows[] = {
        {"eth0", "eth0", 0},
        {"eth0", "eth0 up", 0},
        {"eth0", "on eth0", 3},
        {"eth0", "veth0 up", 1},
        {"eth0", "eth0: up", -1},
        {"eth0", "eth0:1 eth0", 7},
        {"eth0", "eth0\tup", -1},
        {"eth1", "eth10 eth1", 6},
        {"eth1", "eth10", -1},
        {"aa", "aaa", 1},  // the search goes on from the next position
        {"eth0", "", -1},
        {"", "a b", 1},
        {"", "", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CTextFileParser::isKeyExist(row.key, row.line), row.position) << row.key << " in " << row.line;
    }
}

// ---- GetLineContainsKey ----

TEST_F(GetLineContainsKey, GivesTheLineAndCountsALineOnce) {
    machine.file(kFile, "x eth0 eth0\ny eth0\n");
    EXPECT_TRUE(CTextFileParser::GetLineContainsKey(kFile, "eth0", 2, result));
    EXPECT_EQ(result, "y eth0");
}

TEST_F(GetLineContainsKey, TakesTheFirstLineWithoutAnOccurrence) {
    machine.file(kFile, "none\nx eth0\ny eth0\n");
    EXPECT_TRUE(CTextFileParser::GetLineContainsKey(kFile, "eth0", result));
    EXPECT_EQ(result, "x eth0");
}

TEST_F(GetLineContainsKey, NeverLooksAtALastLineWithoutALineFeed) {
    machine.file(kFile, "x\ny eth0");
    EXPECT_FALSE(CTextFileParser::GetLineContainsKey(kFile, "eth0", result));
    EXPECT_EQ(result, "");
}

TEST_F(GetLineContainsKey, ReadsToTheEndForAnOccurrenceBelowOne) {
    machine.file(kFile, "x eth0\n");
    for (const int occurrence : {0, -1}) {
        result = kUntouched;
        EXPECT_FALSE(CTextFileParser::GetLineContainsKey(kFile, "eth0", occurrence, result));
        EXPECT_EQ(result, "");
    }
}

TEST_F(GetLineContainsKey, LeavesTheResultForAFileThatCannotBeOpened) {
    EXPECT_FALSE(CTextFileParser::GetLineContainsKey("/tmp/absent", "eth0", result));
    EXPECT_EQ(result, kUntouched);
}

TEST_F(GetLineContainsKey, LooksAtTheFirst255CharactersOfALongLine) {
    machine.file(kFile, std::string(251, 'x') + "eth0\n" + std::string(252, 'y') + "eth0\nz eth0\n");
    EXPECT_TRUE(CTextFileParser::GetLineContainsKey(kFile, "eth0", 1, result));
    EXPECT_EQ(result, std::string(251, 'x') + "eth0");
    EXPECT_TRUE(CTextFileParser::GetLineContainsKey(kFile, "eth0", 2, result));
    EXPECT_EQ(result, "z eth0");
}

// ---- GetIniFileValue ----

TEST_F(GetIniFileValue, CutsTheValueBehindTheKey) {
    const struct {
        std::string content;
        bool found;
        std::string expected;
    } rows[] = {
        {"NAME=value\n", true, "value"},
        {"NAME=\"a value\"\n", true, "a value"},  // without double quotes
        {"NAME='a value'\n", true, "'a value'"},  // with single ones
        {"NAME=value", true, "value"},            // no line feed
        {"NAME= value \r\n", true, " value \r"},  // nothing is trimmed
        {"NAME=\n", true, ""},
        {"NAME = value\n", false, ""},
        {"NAME\n", false, ""},
        {"export NAME=value\n", true, "t NAME=value"},  // cut from the start of the line
        {"DEVICE_NAME=x\n", true, "E_NAME=x"},          // a longer key that ends alike
        {"#NAME=value\n", true, "=value"},              // no comments
        {"[section]\nA=1\nNAME=first\nNAME=second\n", true, "first"},
        {"\"NAME=\"\n", true, ""},
        {"", false, ""},
    };
    for (const auto& row : rows) {
        machine.file(kFile, row.content);
        result = kUntouched;
        EXPECT_EQ(CTextFileParser::GetIniFileValue(kFile, "NAME", result), row.found) << row.content;
        EXPECT_EQ(result, row.expected) << row.content;
    }
}

TEST_F(GetIniFileValue, GivesAnEmptyValueWhereQuotesLeaveTooShortALine) {
    machine.file(kFile, "\"NAME\"=\n");
    EXPECT_TRUE(CTextFileParser::GetIniFileValue(kFile, "\"NAME\"", result));
    EXPECT_EQ(result, "");
}

TEST_F(GetIniFileValue, ClearsTheResultForAFileThatCannotBeOpened) {
    EXPECT_FALSE(CTextFileParser::GetIniFileValue("/tmp/absent", "NAME", result));
    EXPECT_EQ(result, "");
}

TEST_F(GetIniFileValue, ReadsOnBehindALongLineAndEndsInADirectory) {
    machine.file(kFile, std::string(256, 'x') + "\nNAME=value\n");
    EXPECT_TRUE(CTextFileParser::GetIniFileValue(kFile, "NAME", result));
    EXPECT_EQ(result, "value");
    machine.directory("/tmp/directory");
    EXPECT_FALSE(CTextFileParser::GetIniFileValue("/tmp/directory", "NAME", result));
}

TEST_F(TextFileParser, TracesNothing) {
    machine.file(kFile, "key one\n");
    CTextFileParser::GetLineBeginningKey(kFile, "key", 1, result);
    CTextFileParser::GetLineContainsKey("/tmp/absent", "key", result);
    CTextFileParser::GetIniFileValue("/tmp/absent", "key", result);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

}  // namespace
}  // namespace kvl::test
