// Trees of a million nodes, deep or wide, in a thread whose stack holds nowhere near a million frames.

#include <gtest/gtest.h>

#include <pthread.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "dom/CountedDocument.h"
#include "support/Repeat.h"
#include "support/ResidentMemory.h"
#include "support/Sweeps.h"

namespace LumTest {
namespace {

constexpr int million = 1000000;

void runOnSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{256} << 10), 0);
    pthread_t thread;
    const auto start = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, start, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

/// A document of `depth` elements inside each other.
LumPtr<LumDocument> makeDeep(NodeCounter& counter, int depth) {
    const LumPtr<CountedDocument> document(new CountedDocument(counter));
    LumNode* node = document.get();
    for (int i = 0; i < depth; ++i) {
        node = node->appendChild(document->createElementNS(LumName(), LumName(), NAME_block).get());
    }
    node->appendChildText(u"x");
    return document;
}

TEST(LargeTree, aDeepTreeIsLoadedAskedCopiedAndSaved) {
    runOnSmallStack([] {
        {
            const LumPtr<LumDocument> document = load(repeat("<a>", million) + repeat("</a>", million));
            const LumElement* const root = document->getDocumentElement();
            EXPECT_EQ(root->getDescendantNodes()->getCount(), million - 1);
            LumTreeIterator walk(document.get(), LumTreeIterator::LEAVE);
            const LumNode* const deepest = walk.nextNode();
            EXPECT_EQ(deepest->getNodeDepth(), million - 1);
            EXPECT_TRUE(deepest->lookupNamespaceUri(NAME_xml).isNull());
            EXPECT_TRUE(deepest->isDescendantOf(document.get()));
            EXPECT_FALSE(deepest->isFollowingOf(root));
        }
        NodeCounter counter;
        const LumPtr<LumDocument> document = makeDeep(counter, million);
        EXPECT_TRUE(document->getDocumentElement()->getInnerText() == u"x");
        const LumPtr<LumNode> copy = document->getDocumentElement()->cloneNode(true);
        EXPECT_EQ(counter.live, 2 * (million + 1));
        EXPECT_EQ(document->saveXml(copy.get()).length(), million * 15 + 1);  // <block></block>
    });
}

TEST(LargeTree, releaseTakesNoStackWhereverItBegins) {
    constexpr int depth = million / 2;
    const auto expectLeft = [](const char* begin, int left, auto release) {
        SCOPED_TRACE(begin);
        runOnSmallStack([&] {
            NodeCounter counter;
            LumPtr<LumDocument> document = makeDeep(counter, depth);
            release(document);
            EXPECT_EQ(counter.live, left);
        });
    };
    const auto nodeAt = [](const LumPtr<LumDocument>& document, int level) {
        LumNode* node = document.get();
        while (level-- > 0) node = node->getFirstChild();
        return node;
    };
    expectLeft("from the document", 0, [](auto& document) { document = nullptr; });
    expectLeft("from an inner node that is removed", 9,
               [&](auto& document) { nodeAt(document, 9)->removeChild(nodeAt(document, 10)); });
    expectLeft("from removeAllChildNodes", 0, [](auto& document) { document->removeAllChildNodes(); });
    expectLeft("from deleteAllChildNodes", 0,
               [](auto& document) { EXPECT_EQ(document->deleteAllChildNodes(), depth + 1); });
    expectLeft("past an inner node that is held", 0, [&](auto& document) {
        const LumPtr<LumNode> held(nodeAt(document, depth - 10));
        document = nullptr;
        EXPECT_EQ(held->getDescendantNodes()->getCount(), 11);
        EXPECT_EQ(held->getParentNode(), nullptr);
        EXPECT_EQ(held->getFirstChild()->getParentNode(), held.get());
    });
}

/// Its destructor looks at its children and gives them up itself.
class TidyElement : public ElementNS {
public:
    TidyElement(int& childrenSeen, LumDocument* owner)
        : ElementNS(owner, LumName(), LumName(), NAME_block), childrenSeen_(childrenSeen) {}
    ~TidyElement() override {
        if (hasChildNodes()) ++childrenSeen_;
        removeAllChildNodes();
    }

private:
    int& childrenSeen_;
};

TEST(LargeTree, derivedDestructorsFindTheirChildrenAndMayReleaseThem) {
    runOnSmallStack([] {
        const LumPtr<LumDocument> document(new LumDocument);
        int childrenSeen = 0;
        LumNode* node = document.get();
        for (int i = 0; i < million / 2; ++i) {
            node = node->appendChild(LumPtr<LumNode>(new TidyElement(childrenSeen, document.get())).get());
        }
        document->removeAllChildNodes();
        EXPECT_EQ(childrenSeen, million / 2 - 1);
    });
}

TEST(LargeTree, aWideElementIsLoadedCopiedSavedAndChangedAtBothEnds) {
    runOnSmallStack([] {
        const LumPtr<LumDocument> document = load("<r>" + repeat("<a/>", million) + "</r>");
        LumNode* const root = document->getDocumentElement();
        EXPECT_EQ(root->getChildNodeCount(), million);
        EXPECT_EQ(document->saveXml(root).length(), million * 4 + 7);
        EXPECT_EQ(root->cloneNode(true)->deleteAllChildNodes(), million);
        LumNode *const first = root->getFirstChild(), *const last = root->getLastChild();
        for (int i = 0; i < million / 10; ++i) {
            root->insertBefore(last, first);
            root->appendChild(last);
        }
        EXPECT_EQ(last->getPreviousSibling()->getNextSibling(), last);
        EXPECT_TRUE(last->isFollowingOf(first));
    });
}

TEST(LargeTree, textsOfADerivedClassTellTheirPositionWithoutStack) {
    runOnSmallStack([] {
        NodeCounter counter;
        const LumPtr<LumDocument> document(new CountedDocument(counter));
        document->loadXml(u"<a/>");
        LumNode* const root = document->getDocumentElement();
        for (int i = 0; i < million / 10; ++i) root->appendChildText(u"t");
        EXPECT_EQ(root->getLastChild()->getSourceLineNumber(), 1);
    });
}

// Catches a survivor that keeps the memory of its neighbours, and nodes that need their document or thread to die.
TEST(LargeTree, documentsComeAndGoAndLeaveNodesToAnotherThread) {
    const std::string xml = "<r>" + repeat("<e a='1' b='@'>text</e>", 3000) + "</r>";
    std::vector<LumPtr<LumNode>> survivors;
    std::size_t before = 0;
    for (int i = 0; i < 200; ++i) {
        if (i == 20) before = residentBytes();
        const LumPtr<LumDocument> document = load(xml);
        LumNode* node = document->getDocumentElement()->getFirstChild();
        for (int step = 0; step < 7 * i; ++step) node = node->getNextSibling();
        survivors.emplace_back(node);
    }
    EXPECT_TRUE(!isMemoryTold || residentBytes() < before + 4'000'000) << residentBytes() - before;
    for (const LumPtr<LumNode>& node : survivors) EXPECT_EQ(node->getInnerText(), u"text");
    std::thread([&survivors] { survivors.clear(); }).join();
}

TEST(LargeTree, attributesAreSetInLinearTime) {
    expectLinearTime("each attribute is looked for among all", 10000, [](std::size_t size) {
        NodeCounter counter;
        const LumPtr<LumDocument> document(new CountedDocument(counter));  // which sets one after the other
        document->getParser()->setCallbackError([](const LumError&, void*) {}, nullptr);
        // An undeclared prefix, whose namespace is looked up in the tree.
        document->loadXml(text("<a p:b='v'" + repeat(" n@='v'", size) + "/>"));
        const LumPtr<LumNode> copy = document->getDocumentElement()->cloneNode(false);
        EXPECT_EQ(copy->getAttributes()->getCount(), static_cast<int>(size) + 1);
    });
}

}  // namespace
}  // namespace LumTest
