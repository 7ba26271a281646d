#include "foundation/line_reader.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;
using Lines = std::vector<std::string>;

/// All lines, with "|" after each that a line feed ended and "." after the one that met the end.
Lines readAll(const std::string& content) {
    std::istringstream text(content);
    LineReader reader(text);
    Lines lines;
    std::string line;
    while (reader.read(line)) {
        lines.push_back(line + "|");
    }
    lines.push_back(line + ".");
    return lines;
}

/// The lines that a walk gives, "|" after each.
template <typename Walk>
std::string walked(const std::string& content, const std::string& key) {
    std::istringstream text(content);
    Walk walk(text, key);
    std::string lines;
    for (std::string line; walk.next(line);) {
        lines += line + "|";
    }
    return lines;
}

TEST(LineReader, MeetsTheEndAfterTheLastLineFeed) {
    EXPECT_EQ(readAll("a\n\nb\n"), (Lines{"a|", "|", "b|", "."}));
}

TEST(LineReader, GivesWhatStandsAfterTheLastLineFeed) {
    EXPECT_EQ(readAll("a\nb"), (Lines{"a|", "b."}));
}

TEST(LineReader, ReadsAnEmptyFile) {
    EXPECT_EQ(readAll(""), (Lines{"."}));
}

TEST(LineReader, TakesALineOf255CharactersWhole) {
    const std::string line(255, 'x');
    EXPECT_EQ(readAll(line + "\nnext\n"), (Lines{line + "|", "next|", "."}));
    EXPECT_EQ(readAll(line), (Lines{line + "."}));
}

TEST(LineReader, DropsWhatDoesNotFitTheBuffer) {
    const std::string kept(255, 'x');
    EXPECT_EQ(readAll(kept + "y\nnext\n"), (Lines{kept + "|", "next|", "."}));
    EXPECT_EQ(readAll(kept + std::string(600, 'y') + "\n\nnext"), (Lines{kept + "|", "|", "next."}));
    EXPECT_EQ(readAll(kept + "y"), (Lines{kept + "."}));
}

TEST(LineReader, CutsALineAtItsFirstZeroByte) {
    EXPECT_EQ(readAll("ab\0cd\nnext\n"s), (Lines{"ab|", "next|", "."}));
}

TEST(LineReader, StaysAtTheEnd) {
    std::istringstream text("a");
    LineReader reader(text);
    std::string line;
    EXPECT_FALSE(reader.read(line));
    EXPECT_EQ(line, "a");
    EXPECT_FALSE(reader.read(line));
    EXPECT_EQ(line, "");
}

TEST(LineReader, TakesAnAbsentFileAndADirectoryAsEnded) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        std::string line = "untouched";
        EXPECT_FALSE(LineReader(file).read(line));
        EXPECT_EQ(line, "");
    }
}

TEST(LinesBeginningKey, GivesEachLineWhoseFirstWordIsTheKeyTheLastOneIncluded) {
    EXPECT_EQ(walked<LinesBeginningKey>("key 1\nkeys 2\n key 3\nkey\nkey\t4\nkey 5", "key"), "key 1|key|key 5|");
    EXPECT_EQ(walked<LinesBeginningKey>("other\n", "key"), "");
}

TEST(LinesBeginningKey, TakesALineThatStartsWithABlankForOneWithAnEmptyFirstWord) {
    EXPECT_EQ(walked<LinesBeginningKey>(" a\nb\n", ""), " a||");
}

TEST(LinesContainingKey, GivesEachLineInWhichTheKeyEndsAtABlankOrWithTheLine) {
    EXPECT_EQ(walked<LinesContainingKey>("eth1\neth10\nxeth1 y\neth10 eth1\n", "eth1"), "eth1|xeth1 y|eth10 eth1|");
}

TEST(LinesContainingKey, NeverLooksAtALastLineWithoutALineFeed) {
    EXPECT_EQ(walked<LinesContainingKey>("eth1\neth1", "eth1"), "eth1|");
}

}  // namespace
}  // namespace kvl::test
