#include "collector/vendor_item_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

class VendorItem : public ParserTable {};

TEST_P(VendorItem, IsTheFirstLine) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parseVendorItem(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, VendorItem,
    testing::Values(ParserCase{"OfTwo", "1.2.3\n4\n", "1.2.3"}, ParserCase{"WithoutALineFeed", "1.2.3", "1.2.3"},
                    ParserCase{"WithItsBlanks", " 1 \t\r\n", " 1 \t\r"},
                    ParserCase{"WithAZeroByte", "1\0002\n"s, "1\0002"s},
                    ParserCase{"OfAnyLength", std::string(5000, 'x') + "\n", std::string(5000, 'x')},
                    ParserCase{"EmptyAboveOthers", "\n1\n", ""}, ParserCase{"OfAnEmptyFile", "", ""}),
    ruleOf);

TEST(VendorItemFile, IsEmptyWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(parseVendorItem(file), "");
    }
}

TEST(ApplyVendorItem, WinsOverWhatACommandPrinted) {
    const auto applied = [](const std::string& item) {
        std::string field = "printed";
        applyVendorItem(item, field);
        return field;
    };
    EXPECT_EQ(applied("1.2"), "1.2");
    EXPECT_EQ(applied(""), "printed");
    EXPECT_EQ(applied("#EMP"), "");
    EXPECT_EQ(applied("#EMPTY"), "#EMPTY");
}

}  // namespace
}  // namespace kvl::test
