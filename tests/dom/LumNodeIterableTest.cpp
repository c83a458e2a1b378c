#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/Utf8.h"

namespace LumTest {
namespace {

using namespace LumCommon;

constexpr const char* sample = "<r xmlns:p='u:p'><a>x<p:b/></a><b><b><c/></b>y</b><d/></r>";

LumPtr<LumDocument> load(const char* xml) {
    LumPtr<LumDocument> document(new LumDocument);
    document->loadXml(UnicodeString::fromUTF8(xml));
    return document;
}

std::string label(const LumNode* node) {
    return node->isText() ? "'" + utf8(node->getText()) + "'" : utf8(node->getNodeName().getString());
}

std::string forwards(const LumNodeList& list) {
    std::string text;
    for (const LumNode* node = list.getFirstNode(); node; node = list.getNextNode(node)) text += label(node) + " ";
    return text;
}

TEST(LumNodeList, listsWalkBothWaysAndIndex) {
    const LumPtr<LumDocument> document = load(sample);
    const LumElement* const root = document->getDocumentElement();
    const LumName any(u"*"), uri(u"u:p"), b(u"b");
    struct Case {
        const char* fault;
        LumPtr<LumNodeList> list;
        const char* nodes;
    };
    const Case cases[] = {
        {"children only", root->getChildNodes(), "a b d "},
        {"an empty list has a first node", root->getLastChild()->getChildNodes(), ""},
        {"texts are left out of the descendants", root->getDescendantNodes(), "a 'x' p:b b b c 'y' d "},
        {"the root is in its own list", root->getElementsByTagName(any), "a p:b b b c d "},
        {"prefixes count as names", root->getElementsByTagName(b), "p:b b b "},
        {"the namespace is not compared", root->getElementsByTagNameNS(uri, b), "p:b "},
        {"the null namespace is taken for any", root->getElementsByTagNameNS(LumName(), b), "b b "},
        {"any namespace", root->getElementsByTagNameNS(any, b), "p:b b b "},
        {"any name", root->getElementsByTagNameNS(uri, any), "p:b "},
        {"the last node fails the filter and ends the walk", root->getElementsByTagName(LumName(u"c")), "c "},
        {"nothing matches", root->getElementsByTagName(LumName(u"zz")), ""},
        {"the walk leaves the subtree", root->getFirstChild()->getDescendantNodes(), "'x' p:b "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(forwards(*c.list), c.nodes);
        std::vector<LumNode*> nodes;
        for (LumNodeIterator i = c.list->getIterator(); i.getCurrentNode(); i.nextNode()) {
            nodes.push_back(i.getCurrentNode());
        }
        std::vector<LumNode*> reversed;
        for (LumNode* n = c.list->getLastNode(); n; n = c.list->getPreviousNode(n)) reversed.push_back(n);
        std::reverse(reversed.begin(), reversed.end());
        EXPECT_EQ(nodes, reversed);
        const int count = static_cast<int>(nodes.size());
        EXPECT_EQ(c.list->getCount(), count);
        EXPECT_EQ(c.list->item(-1), nullptr);
        EXPECT_EQ(c.list->item(count), nullptr);
        for (int i = 0; i < count; ++i) EXPECT_EQ(c.list->item(i), nodes[static_cast<std::size_t>(i)]);
    }
}

TEST(LumNodeList, theirCommonClassHasNoIdentifier) {
    const LumPtr<LumDocument> document(new LumDocument);
    const LumPtr<LumNodeList> list = document->getChildNodes();
    LumPtr<LumNodeIterable> nodes(list);
    EXPECT_FALSE(list->isA(LumNodeIterable::TYPE_ID));
    nodes = static_cast<LumObjectBase*>(document.get());
    EXPECT_TRUE(nodes.isNull()) << "any counted object is taken for a collection";
}

TEST(LumNodeIterator, startsBehindTheGivenNode) {
    const LumPtr<LumDocument> document = load(sample);
    const LumElement* const root = document->getDocumentElement();
    const LumNode* const a = root->getFirstChild();
    LumNodeIterator iterator(root, a->getFirstChild());
    EXPECT_EQ(label(iterator.getCurrentNode()), "p:b");
    EXPECT_EQ(iterator.previousNode(), a->getFirstChild());
    EXPECT_EQ(iterator.previousNode(), a);
    EXPECT_EQ(iterator.previousNode(), nullptr);
    EXPECT_EQ(iterator.nextNode(), nullptr) << "an exhausted iterator stays exhausted";
    EXPECT_EQ(LumNodeIterator(static_cast<const LumNodeIterable*>(nullptr)).getCurrentNode(), nullptr);
    EXPECT_EQ(LumNodeIterator(static_cast<const LumNode*>(nullptr)).nextNode(), nullptr);
    EXPECT_EQ(label(root->getIterator().getCurrentNode()), "a");
}

/// The walk as text: "+" for entering, "-" for leaving.
std::string walkForwards(LumTreeIterator& walk) {
    std::string text;
    while (const LumNode* node = walk.nextNode()) text += (walk.isLeaving() ? "-" : "+") + label(node) + " ";
    return text;
}

TEST(LumTreeIterator, reportsByMode) {
    struct Case {
        const char* fault;
        const char* xml;
        int mode;
        const char* walk;
    };
    const Case cases[] = {
        {"enters twice", "<r><a>x</a><b/></r>", 1, "+r +a +'x' +b "},
        {"leaves in the wrong order", "<r><a>x</a><b/></r>", 2, "-'x' -a -b -r "},
        {"texts are left, or empty elements not", "<r><a>x</a><b/></r>", 3, "+r +a +'x' -a +b -b -r "},
        {"a single empty element is not left", "<r/>", 3, "+r -r "},
        {"a single empty element is entered", "<r/>", 2, "-r "},
        {"a single empty element is left", "<r/>", 1, "+r "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LumPtr<LumDocument> document = load(c.xml);
        LumTreeIterator walk(document->getDocumentElement(), c.mode);
        EXPECT_EQ(walk.getCurrentNode(), nullptr);
        EXPECT_EQ(walk.previousNode(), nullptr) << "nothing lies before the start";
        EXPECT_EQ(walkForwards(walk), c.walk);
        EXPECT_EQ(walk.nextNode(), nullptr) << "the end is final";
    }
    const LumPtr<LumDocument> document = load("<r>x</r>");
    LumTreeIterator text(document->getDocumentElement()->getFirstChild(), 3);
    EXPECT_EQ(walkForwards(text), "+'x' ") << "a text alone is reported once";
    LumTreeIterator whole(document.get(), 3);
    EXPECT_EQ(walkForwards(whole), "+#document +r +'x' -r -#document ") << "a document that has children is left too";
    LumTreeIterator none(nullptr, 1);
    EXPECT_EQ(none.nextNode(), nullptr);
    EXPECT_FALSE(none.hasNextNode() || none.hasPreviousNode());
}

TEST(LumTreeIterator, walksBackTheSameNodesAndLooksAheadTruly) {
    for (const char* xml : {sample, "<r/>", "<r>x</r>", "<r><a/></r>", "<r><a><b><c>x</c></b></a>y</r>"}) {
        SCOPED_TRACE(xml);
        const LumPtr<LumDocument> document = load(xml);
        for (LumNode* root : {static_cast<LumNode*>(document.get()), document->getFirstChild()}) {
            for (int mode : {1, 2, 3}) {
                SCOPED_TRACE(mode);
                LumTreeIterator walk(root, mode);
                std::vector<LumNode*> there, back;
                // The one place where there is more than hasNextNode() tells is a root without children.
                bool told = walk.hasNextNode();
                EXPECT_FALSE(walk.hasPreviousNode());
                while (LumNode* node = walk.nextNode()) {
                    EXPECT_TRUE(told || !root->hasChildNodes()) << label(node);
                    there.push_back(node);
                    told = walk.hasNextNode();
                }
                EXPECT_FALSE(told);
                told = walk.hasPreviousNode();
                while (LumNode* node = walk.previousNode()) {
                    EXPECT_TRUE(told || !root->hasChildNodes()) << label(node);
                    back.push_back(node);
                    told = walk.hasPreviousNode();
                }
                EXPECT_FALSE(told);
                std::reverse(back.begin(), back.end());
                EXPECT_EQ(there, back);
                EXPECT_EQ(walk.nextNode(), there.front()) << "back at the start the walk can begin again";
            }
        }
    }
}

}  // namespace
}  // namespace LumTest
