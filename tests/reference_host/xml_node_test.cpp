#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

#include "host/CKvlXmlNode.h"
#include "host/CKvlXmlWrite.h"
#include "tests/reference_host/host_test.h"

namespace {

class XmlNode : public kvl::test::HostTest {
protected:
    // The element as written, without declaration, indentation and line ends.
    std::string textOf(const CKvlXmlNode& node) const {
        EXPECT_TRUE(CKvlXmlWrite().writeXML(scratch_ / "node.xml", node));
        std::string text;
        for (const std::string& line : kvl::test::linesOf(scratch_ / "node.xml")) {
            if (line.rfind("<?", 0) != 0) {
                text += line.substr(line.find_first_not_of(' '));
            }
        }
        return text;
    }
};

CKvlXmlNode child(const std::string& tag) {
    CKvlXmlNode node(tag);
    node.addAttribute("a", "1");
    return node;
}

TEST_F(XmlNode, IsDestroyedWholeThroughAPointerToIt) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CKvlXmlNode>);
}

TEST_F(XmlNode, StartsWithItsTagAlone) {
    EXPECT_EQ(textOf(CKvlXmlNode("tag")), "<tag />");
}

TEST_F(XmlNode, KeepsAttributesAndChildrenInOrder) {
    CKvlXmlNode node("old");
    node.addAttribute("b", "1");
    node.addChildNode(child("y"));
    node.addAttribute("a", "2");
    node.addChildNode(CKvlXmlNode("x"));
    node.addChildNode(child("y"));
    node.setTagName("tag");
    EXPECT_EQ(textOf(node), R"(<tag b="1" a="2"><y a="1" /><x /><y a="1" /></tag>)");
}

TEST_F(XmlNode, IsACopyThatItsOriginalDoesNotReach) {
    CKvlXmlNode original = child("tag");
    original.addChildNode(child("child"));
    const CKvlXmlNode copy(original);
    original.setTagName("changed");
    original.addAttribute("b", "2");
    original.addChildNode(CKvlXmlNode("more"));
    EXPECT_EQ(textOf(copy), R"(<tag a="1"><child a="1" /></tag>)");
    EXPECT_EQ(textOf(original), R"(<changed a="1" b="2"><child a="1" /><more /></changed>)");
}

TEST_F(XmlNode, IsACopyThatDoesNotReachItsOriginal) {
    const CKvlXmlNode original = child("tag");
    CKvlXmlNode copy(original);
    copy.setTagName("changed");
    copy.addAttribute("b", "2");
    EXPECT_EQ(textOf(original), R"(<tag a="1" />)");
}

TEST_F(XmlNode, IsAssignedAsAValue) {
    CKvlXmlNode first = child("first");
    CKvlXmlNode second("second");
    second = first;
    first.setTagName("changed");
    EXPECT_EQ(textOf(second), R"(<first a="1" />)");
    CKvlXmlNode& self = second;
    second = self;
    EXPECT_EQ(textOf(second), R"(<first a="1" />)");
}

TEST_F(XmlNode, IsUnchangedInTheTreeWhenTheCallerChangesItsOwn) {
    CKvlXmlNode root("root");
    {
        CKvlXmlNode node = child("node");
        root.addChildNode(node);
        node.setTagName("changed");
        node.addAttribute("b", "2");
        node.addChildNode(CKvlXmlNode("below"));
        root.addChildNode(node);
    }
    EXPECT_EQ(textOf(root), R"(<root><node a="1" /><changed a="1" b="2"><below /></changed></root>)");
}

TEST_F(XmlNode, KeepsACopyOfATreeAcrossDeepChanges) {
    CKvlXmlNode inner = child("inner");
    CKvlXmlNode outer("outer");
    outer.addChildNode(inner);
    const CKvlXmlNode copy(outer);
    inner.addAttribute("b", "2");
    outer.addChildNode(inner);
    EXPECT_EQ(textOf(copy), R"(<outer><inner a="1" /></outer>)");
    EXPECT_EQ(textOf(outer), R"(<outer><inner a="1" /><inner a="1" b="2" /></outer>)");
}

TEST_F(XmlNode, TakesACopyOfItselfAsAChild) {
    CKvlXmlNode node = child("tag");
    node.addChildNode(node);
    node.addChildNode(node);
    EXPECT_EQ(textOf(node), R"(<tag a="1"><tag a="1" /><tag a="1"><tag a="1" /></tag></tag>)");
}

TEST_F(XmlNode, IsAssignedToItselfWithoutLoss) {
    CKvlXmlNode node = child("tag");
    const CKvlXmlNode& same = node;
    node = same;
    EXPECT_EQ(textOf(node), R"(<tag a="1" />)");
}

TEST_F(XmlNode, StaysUsableAfterAMove) {
    CKvlXmlNode source = child("tag");
    CKvlXmlNode target(std::move(source));
    source.addAttribute("b", "2");  // NOLINT(bugprone-use-after-move): which is what this test is about
    EXPECT_EQ(textOf(source), R"(<tag a="1" b="2" />)");
    EXPECT_EQ(textOf(target), R"(<tag a="1" />)");
}

}  // namespace
