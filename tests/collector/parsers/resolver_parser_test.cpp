#include "collector/resolver_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

class ResolverTable : public ParserTable {};

std::string parsed(std::istream& text) {
    const ResolvConf conf = parseResolvConf(text);
    std::string shown = conf.valid ? "" : "not valid";
    for (const std::string& server : conf.nameserver) {
        shown += "server[" + server + "]";
    }
    for (const std::string& suffix : conf.dns_suffix) {
        shown += "suffix[" + suffix + "]";
    }
    return shown;
}

TEST_P(ResolverTable, IsRead) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsed(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, ResolverTable,
    testing::Values(
        ParserCase{"Whole",
                   "# comment\nsearch a.example b.example\nnameserver 10.0.0.1\ndomain c.example\nnameserver ::1\n",
                   "server[10.0.0.1]server[::1]suffix[c.example]suffix[a.example]suffix[b.example]"},
        ParserCase{"WithTheFirstDomainAndSearchLineAlone", "domain a\ndomain b\nsearch c\nsearch d\n",
                   "suffix[a]suffix[c]"},
        ParserCase{"WithAnEmptyTextForAMissingValue", "nameserver\ndomain\nsearch\n", "server[]suffix[]"},
        ParserCase{"WithAnEmptySuffixAfterABlankAtTheEnd", "search a \n", "suffix[a]suffix[]"},
        ParserCase{"WithoutTheFirstLinesValuesWhereTheyAreMissing", "search\nsearch a\n", ""},
        ParserCase{"ByWholeFirstWords", "nameservers 1\n nameserver 2\n#nameserver 3\nnameserver\t4\n", ""},
        ParserCase{"InALastLineWithoutALineFeed", "nameserver 1\nnameserver 2", "server[1]server[2]"},
        ParserCase{"UpToAZeroByte", "nameserver 1\0"s + "2\n", "server[1]"},
        ParserCase{"AsAValidRecordWithoutLines", "", ""}),
    ruleOf);

TEST(ResolverFile, IsAValidRecordWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(parsed(file), "");
    }
}

}  // namespace
}  // namespace kvl::test
