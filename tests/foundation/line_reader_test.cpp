#include "foundation/line_reader.h"

#include "tests/support/private_machine_test.h"

namespace kvl::test {
namespace {

const std::string kFile = "/tmp/lines";

class LineReaderTest : public PrivateMachineTest {
protected:
    /// All lines, with "|" behind each that a line feed ended and "." behind the one that met the end.
    Lines readAll(const std::string& content) {
        machine.file(kFile, content);
        LineReader reader(kFile);
        Lines lines;
        std::string line;
        while (reader.read(line)) {
            lines.push_back(line + "|");
        }
        lines.push_back(line + ".");
        return lines;
    }
};

TEST_F(LineReaderTest, MeetsTheEndBehindTheLastLineFeed) {
    EXPECT_EQ(readAll("a\n\nb\n"), (Lines{"a|", "|", "b|", "."}));
}

TEST_F(LineReaderTest, GivesWhatStandsBehindTheLastLineFeed) {
    EXPECT_EQ(readAll("a\nb"), (Lines{"a|", "b."}));
}

TEST_F(LineReaderTest, ReadsAnEmptyFile) {
    EXPECT_EQ(readAll(""), (Lines{"."}));
}

TEST_F(LineReaderTest, TakesALineOf255CharactersWhole) {
    const std::string line(255, 'x');
    EXPECT_EQ(readAll(line + "\nnext\n"), (Lines{line + "|", "next|", "."}));
    EXPECT_EQ(readAll(line), (Lines{line + "."}));
}

TEST_F(LineReaderTest, DropsWhatDoesNotFitTheBuffer) {
    const std::string kept(255, 'x');
    EXPECT_EQ(readAll(kept + "y\nnext\n"), (Lines{kept + "|", "next|", "."}));
    EXPECT_EQ(readAll(kept + std::string(600, 'y') + "\n\nnext"), (Lines{kept + "|", "|", "next."}));
    EXPECT_EQ(readAll(kept + "y"), (Lines{kept + "."}));
}

TEST_F(LineReaderTest, CutsALineAtItsFirstZeroByte) {
    EXPECT_EQ(readAll(std::string("ab\0cd\nnext\n", 11)), (Lines{"ab|", "next|", "."}));
}

TEST_F(LineReaderTest, StaysAtTheEnd) {
    machine.file(kFile, "a");
    LineReader reader(kFile);
    std::string line;
    EXPECT_FALSE(reader.read(line));
    EXPECT_EQ(line, "a");
    EXPECT_FALSE(reader.read(line));
    EXPECT_EQ(line, "");
}

TEST_F(LineReaderTest, TakesAnAbsentFileAndADirectoryAsEnded) {
    machine.directory("/tmp/directory");
    for (const char* path : {"/tmp/absent", "/tmp/directory"}) {
        LineReader reader(path);
        std::string line = "untouched";
        EXPECT_FALSE(reader.read(line));
        EXPECT_EQ(line, "");
    }
    EXPECT_FALSE(LineReader("/tmp/absent").isOpen());
}

}  // namespace
}  // namespace kvl::test
