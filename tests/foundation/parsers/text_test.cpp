#include "foundation/text.h"

#include <gtest/gtest.h>

namespace kvl::test {
namespace {

TEST(TakeToken, TakesWhatStandsBeforeTheSeparator) {
    struct Case {
        const char* text;
        const char* token;
        const char* rest;
    };
    constexpr Case kTable[] = {
        {"03:00.0", "03", "00.0"}, {":00", "", "00"}, {"03:", "03", ""},
        {"03", "03", ""},          {"", "", ""},      {"a::b", "a", ":b"},
    };
    for (const Case& row : kTable) {
        std::string text = row.text;
        EXPECT_EQ(takeToken(text, ':'), row.token) << row.text;
        EXPECT_EQ(text, row.rest) << row.text;
    }
}

}  // namespace
}  // namespace kvl::test
