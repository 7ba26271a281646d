#include "foundation/line_search.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

TEST(AnyLineHolds, LooksAtEachLineOfAnyLength) {
    const auto held = [](const std::string& part) {
        std::istringstream text("first\n" + std::string(600, 'x') + "Download Complete.\nlast");
        return anyLineHolds(text, part);
    };
    EXPECT_TRUE(held("first"));
    EXPECT_TRUE(held("Download Complete"));
    EXPECT_TRUE(held("last"));
    EXPECT_FALSE(held("download"));
    EXPECT_FALSE(held("first\n"));
}

TEST(AnyLineHolds, ReadsNoFurtherThanThatLine) {
    std::istringstream text("a\nb\nc\n");
    EXPECT_TRUE(anyLineHolds(text, "b"));
    std::string next;
    std::getline(text, next);
    EXPECT_EQ(next, "c");
}

TEST(AnyLineHolds, FindsNothingWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_FALSE(anyLineHolds(file, ""));
    }
}

}  // namespace
}  // namespace kvl::test
