#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <pugixml.hpp>
#include <string>

#include "host/CKvlXmlWrite.h"
#include "reference_host/xml_text.h"
#include "tests/reference_host/host_test.h"
#include "tests/reference_host/processes.h"

namespace {

using kvl::host::xmlName;
using kvl::host::xmlText;
using kvl::test::contentOf;
using kvl::test::HostTest;
using kvl::test::lay;
using ::testing::ElementsAre;

constexpr char kReplacement[] = "\xef\xbf\xbd";

class XmlWrite : public HostTest {
protected:
    // Writes the tree, and reads it as any other program would.
    pugi::xml_document written(const CKvlXmlNode& root) const {
        EXPECT_TRUE(CKvlXmlWrite().writeXML(path_, root));
        pugi::xml_document document;
        const pugi::xml_parse_result result = document.load_file(path_.c_str());
        EXPECT_TRUE(result) << result.description();
        return document;
    }

    std::string writtenValue(const std::string& value) const {
        CKvlXmlNode node("tag");
        node.addAttribute("name", value);
        return written(node).child("tag").attribute("name").value();
    }

    const std::string path_ = scratch_ / "report.xml";
};

bool isAcceptedByXmllint(const std::string& path) {
    return std::system(("xmllint --noout '" + path + "'").c_str()) == 0;
}

TEST_F(XmlWrite, WritesADeclarationAndIndentedElements) {
    CKvlXmlNode port("Port");
    port.addAttribute("Name", "eth0");
    CKvlXmlNode adapter("Adapter");
    adapter.addChildNode(port);
    CKvlXmlNode report("Report");
    report.addAttribute("Version", "1");
    report.addChildNode(adapter);
    ASSERT_TRUE(CKvlXmlWrite().writeXML(path_, report));
    EXPECT_EQ(contentOf(path_),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Report Version=\"1\">\n"
              "  <Adapter>\n"
              "    <Port Name=\"eth0\" />\n"
              "  </Adapter>\n"
              "</Report>\n");
}

TEST_F(XmlWrite, ReplacesAFileOfThatName) {
    lay(path_, std::string(100000, 'x'));
    EXPECT_STREQ(written(CKvlXmlNode("tag")).first_child().name(), "tag");
    EXPECT_THAT(scratch_.entries(), ElementsAre("report.xml"));
}

TEST_F(XmlWrite, EscapesAttributeValues) {
    const std::string value = "<a href=\"b\"> & 'c' &amp; ]]>";
    EXPECT_EQ(writtenValue(value), value);
}

TEST_F(XmlWrite, KeepsBlanksTabsAndLineEnds) {
    for (const char* value : {"\t", "\n", "\r", "\r\n", " a \t\n\r b ", ""}) {
        EXPECT_EQ(writtenValue(value), value);
    }
}

TEST_F(XmlWrite, KeepsEveryCharacterOfUtf8) {
    const std::string value = "\xc3\xa4 \xe2\x82\xac \xf0\x9f\x96\xa7 \xef\xbf\xbd \x7f";
    EXPECT_EQ(writtenValue(value), value);
}

struct Unfit {
    const char* name;
    std::string text;
    std::string expected;
};

const Unfit kUnfitTexts[] = {
    {"a zero byte", std::string("a\0b", 3), std::string("a") + kReplacement + "b"},
    {"a control character", "a\x01", std::string("a") + kReplacement},
    {"an escape", "\x1b[0m", std::string(kReplacement) + "[0m"},
    {"a byte of Latin-1", "\xe4", kReplacement},
    {"a cut sequence", "a\xe2\x82", std::string("a") + kReplacement},
    {"a lone continuation", "\x80z", std::string(kReplacement) + "z"},
    {"U+FFFE", "\xef\xbf\xbe", kReplacement},
    {"U+FFFF", "\xef\xbf\xbf", kReplacement},
};

TEST_F(XmlWrite, ReplacesWhatXmlCannotHold) {
    for (const Unfit& row : kUnfitTexts) {
        EXPECT_EQ(writtenValue(row.text), row.expected) << row.name;
    }
}

TEST(XmlText, HoldsNoSurrogateAndNoOverlongSequence) {
    for (const char* text : {"\xed\xa0\x80", "\xc0\x80", "\xf4\x90\x80\x80", "\xff"}) {
        const std::string fit = xmlText(text);
        EXPECT_EQ(fit.rfind(kReplacement, 0), 0U);
        EXPECT_EQ(fit, xmlText(fit));
        EXPECT_EQ(fit.size() % 3, 0U);
    }
}

struct Name {
    const char* name;
    const char* expected;
};

constexpr Name kNames[] = {
    {"Port", "Port"},
    {"a-b.c_d1", "a-b.c_d1"},
    {"x:y", "x:y"},
    {"\xc3\xa4", "\xc3\xa4"},
    {"", "_"},
    {"1st", "_st"},
    {"-a", "_a"},
    {"a b", "a_b"},
    {"a<b>&\"'/", "a_b_____"},
    {"a\tb\n", "a_b_"},
    {"\xff"
     "a",
     "_a"},
    {"\xc3\x97", "_"},
    {"a\xc2\xb7", "a\xc2\xb7"},
    {"\xc2\xb7", "_"},
};

TEST(XmlName, HasAnUnderscoreForEachBadCharacter) {
    for (const Name& row : kNames) {
        EXPECT_EQ(xmlName(row.name), row.expected) << row.name;
    }
}

TEST_F(XmlWrite, MakesNamesFit) {
    CKvlXmlNode node("1 port");
    node.addAttribute("", "empty");
    node.addAttribute("a=b", "value");
    node.addChildNode(CKvlXmlNode(""));
    const pugi::xml_document document = written(node);
    const pugi::xml_node root = document.child("__port");
    EXPECT_STREQ(root.attribute("_").value(), "empty");
    EXPECT_STREQ(root.attribute("a_b").value(), "value");
    EXPECT_TRUE(root.child("_"));
}

TEST_F(XmlWrite, WritesANameOnceInAnElement) {
    CKvlXmlNode node("tag");
    node.addAttribute("a", "first");
    node.addAttribute("b", "other");
    node.addAttribute("a", "second");
    EXPECT_TRUE(written(node));
    EXPECT_THAT(contentOf(path_), ::testing::HasSubstr("<tag a=\"second\" b=\"other\" />"));
    EXPECT_TRUE(isAcceptedByXmllint(path_));
}

TEST_F(XmlWrite, IsAcceptedByOtherReadersWithEveryByteInItsValuesAndNames) {
    CKvlXmlNode root("root");
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        all += text;
        if (byte != ':') {
            CKvlXmlNode node(text);
            node.addAttribute(text, text);
            node.addAttribute("x" + text, "x" + text + "x");
            root.addChildNode(node);
        }
    }
    root.addAttribute("all", all);
    EXPECT_TRUE(written(root));
    EXPECT_TRUE(isAcceptedByXmllint(path_));
}

TEST_F(XmlWrite, KeepsEveryChildOfAWideTreeInOrder) {
    CKvlXmlNode root("root");
    for (int i = 0; i < 1000; ++i) {
        CKvlXmlNode node("child");
        node.addAttribute("n", std::to_string(i));
        node.addChildNode(CKvlXmlNode("below"));
        root.addChildNode(node);
    }
    const pugi::xml_document document = written(root);
    int expected = 0;
    for (const pugi::xml_node& node : document.child("root")) {
        EXPECT_EQ(node.attribute("n").as_int(), expected++);
        EXPECT_TRUE(node.child("below"));
    }
    EXPECT_EQ(expected, 1000);
}

// Runs on a stack that a call for each level of a deep tree would overflow.
void runOnSmallStack(void* (*work)(void*), void* argument) {
    constexpr std::size_t kStackSize = 256 * 1024;
    pthread_attr_t attributes;
    pthread_t thread{};
    ASSERT_EQ(::pthread_attr_init(&attributes), 0);
    ASSERT_EQ(::pthread_attr_setstacksize(&attributes, kStackSize), 0);
    ASSERT_EQ(::pthread_create(&thread, &attributes, work, argument), 0);
    ASSERT_EQ(::pthread_join(thread, nullptr), 0);
    ::pthread_attr_destroy(&attributes);
}

constexpr int kDepth = 3000;

void* writeDeepTree(void* path) {
    CKvlXmlNode node("leaf");
    for (int i = 1; i < kDepth; ++i) {
        CKvlXmlNode parent("n");
        parent.addChildNode(node);
        node = parent;
    }
    EXPECT_TRUE(CKvlXmlWrite().writeXML(*static_cast<const std::string*>(path), node));
    return nullptr;
}

TEST_F(XmlWrite, WritesAndDropsTreesOfAnyDepth) {
    std::string path = path_;
    runOnSmallStack(writeDeepTree, &path);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(path_.c_str()));
    int depth = 0;
    for (pugi::xml_node node = document.first_child(); node; node = node.first_child()) {
        ++depth;
    }
    EXPECT_EQ(depth, kDepth);
    EXPECT_LT(contentOf(path_).size(), kDepth * sizeof("<n></n>") + 100U);
}

TEST_F(XmlWrite, FailsWhereNoFileCanBe) {
    kvl::test::layDirectory(scratch_ / "directory");
    for (const std::string& path : {scratch_ / "directory", scratch_ / "missing/report.xml", std::string()}) {
        EXPECT_FALSE(CKvlXmlWrite().writeXML(path, CKvlXmlNode("tag"))) << path;
    }
    EXPECT_THAT(scratch_.entries(), ElementsAre("directory"));
}

TEST_F(XmlWrite, LeavesTheOldReportWhenTheDiskIsFull) {
    lay(path_, "old");
    const auto writeMoreThanFits = [this] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{50000, 50000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        CKvlXmlNode node("tag");
        node.addAttribute("value", std::string(60000, 'x'));
        return CKvlXmlWrite().writeXML(path_, node) ? 1 : 0;
    };
    EXPECT_EQ(kvl::test::exitCodeOf(writeMoreThanFits), 0);
    EXPECT_EQ(contentOf(path_), "old");
    EXPECT_THAT(scratch_.entries(), ElementsAre("report.xml"));
}

TEST_F(XmlWrite, GivesTheReportThePermissionsThatTheUmaskLeaves) {
    const mode_t before = ::umask(022);
    EXPECT_TRUE(CKvlXmlWrite().writeXML(path_, CKvlXmlNode("tag")));
    ::umask(before);
    EXPECT_EQ(kvl::test::permissionsOf(path_), 0644U);
}

}  // namespace
