#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kSignature = "bool CNetworkParameter::GetResolvConf(ResolvConf&)";
const std::string kCommand = "/bin/cat /etc/resolv.conf";

class GetResolvConf : public CollectorTest {
protected:
    ResolvConf read(const std::string& content) {
        machine.file("/etc/resolv.conf", content);
        ResolvConf conf;
        EXPECT_TRUE(collector->GetResolvConf(conf));
        EXPECT_TRUE(conf.valid);
        EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
        return conf;
    }
};

TEST_F(GetResolvConf, CollectsNameserversThenTheDomainThenTheSearchList) {
    const ResolvConf conf = read(
        "# generated\nsearch one.example two.example\nnameserver 10.0.0.1\ndomain main.example\nnameserver fd00::1\n");
    EXPECT_EQ(conf.nameserver, (strarray_t{"10.0.0.1", "fd00::1"}));
    EXPECT_EQ(conf.dns_suffix, (strarray_t{"main.example", "one.example", "two.example"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kSignature)} + ran(kCommand) +
                                  Lines{detail(kSignature, "nameserver.push_back(10.0.0.1)"),
                                        detail(kSignature, "nameserver.push_back(fd00::1)"),
                                        detail(kSignature, "dns_suffix.push_back(main.example)"),
                                        detail(kSignature, "dns_suffix.push_back(one.example)"),
                                        detail(kSignature, "dns_suffix.push_back(two.example)"), leave(kSignature)}));
}

TEST_F(GetResolvConf, IsValidWithoutANameserver) {
    const ResolvConf conf = read("options rotate\n");
    EXPECT_THAT(conf.nameserver, testing::IsEmpty());
    EXPECT_THAT(conf.dns_suffix, testing::IsEmpty());
}

TEST_F(GetResolvConf, IgnoresASecondDomainAndASecondSearchLine) {
    EXPECT_EQ(read("domain a\ndomain b\nsearch c d\nsearch e\n").dns_suffix, (strarray_t{"a", "c", "d"}));
}

TEST_F(GetResolvConf, TakesLinesThatBeginWithTheWordAlone) {
    EXPECT_THAT(read(" nameserver 10.0.0.1\n#nameserver 10.0.0.2\nnameserver\t10.0.0.3\n").nameserver,
                testing::IsEmpty());
}

TEST_F(GetResolvConf, HasAnEmptyLastSuffixBehindATrailingBlank) {
    EXPECT_EQ(read("search a b \n").dns_suffix, (strarray_t{"a", "b", ""}));
}

TEST_F(GetResolvConf, TakesAnEmptyTextForAWordThatIsNotThere) {
    const ResolvConf conf = read("nameserver\ndomain\nsearch\n");
    EXPECT_EQ(conf.nameserver, (strarray_t{""}));
    EXPECT_EQ(conf.dns_suffix, (strarray_t{""}));
}

TEST_F(GetResolvConf, SeesALastLineWithoutALineFeed) {
    EXPECT_EQ(read("nameserver 10.0.0.1").nameserver, (strarray_t{"10.0.0.1"}));
}

TEST_F(GetResolvConf, AppendsToTheRecord) {
    ResolvConf conf = read("nameserver 10.0.0.1\nsearch a\n");
    EXPECT_TRUE(collector->GetResolvConf(conf));
    EXPECT_EQ(conf.nameserver, (strarray_t{"10.0.0.1", "10.0.0.1"}));
    EXPECT_EQ(conf.dns_suffix, (strarray_t{"a", "a"}));
}

TEST_F(GetResolvConf, LeavesTheRecordButForItsValidityIfTheCommandFails) {
    ResolvConf conf;
    conf.valid = true;
    conf.nameserver = {"kept"};
    EXPECT_FALSE(collector->GetResolvConf(conf));
    EXPECT_FALSE(conf.valid);
    EXPECT_EQ(conf.nameserver, (strarray_t{"kept"}));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kSignature)} + failed(kCommand)));
}

TEST_F(GetResolvConf, LeavesTheEmptyResultFileOfACommandThatPrintsNothing) {
    machine.file("/etc/resolv.conf", "");
    ResolvConf conf;
    EXPECT_FALSE(collector->GetResolvConf(conf));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kSignature)} + printedNothing(kCommand)));
    EXPECT_EQ(libc().sleeps, 10);
    EXPECT_EQ(contentOf(resultFile("cat")), "");
}

}  // namespace
}  // namespace kvl::test
