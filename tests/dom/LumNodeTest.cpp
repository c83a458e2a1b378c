#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <sstream>
#include <vector>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"
#include "support/ExpectError.h"

namespace LumTest {
namespace {

LumNode* find(const LumPtr<LumDocument>& document, const char* name) {
    return document->getElementsByTagName(LumName(text(name)))->getFirstNode();
}

// A model of the tree: for each node the vector of its children. After each step all links and counts are compared.

class Model {
public:
    explicit Model(int nodeCount) : document_(new LumDocument) {
        for (int i = 0; i < nodeCount; ++i) {
            const bool isText = i % 5 == 4;
            nodes_.push_back(isText ? LumPtr<LumNode>(document_->createTextNode(u"t"))
                                    : LumPtr<LumNode>(document_->createElement(NAME_block)));
            if (!isText) parents_.push_back(nodes_.back().get());
        }
    }

    void step(std::mt19937& random) {
        LumNode* const parent = parents_[random() % parents_.size()];
        LumNode* const node = nodes_[random() % nodes_.size()].get();
        if (isAncestorOrSelf(node, parent)) return;
        std::vector<LumNode*>& children = children_[parent];
        LumNode* const target = children.empty() ? nullptr : children[random() % children.size()];
        const unsigned operation = random() % 4;
        if (operation == 0) {
            EXPECT_EQ(parent->appendChild(node), node);
            takeOut(node);
            children.push_back(node);
        } else if (operation == 1) {
            EXPECT_EQ(parent->insertBefore(node, target), node);
            if (node == target) return;
            takeOut(node);
            children.insert(std::find(children.begin(), children.end(), target), node);
        } else if (operation == 2 && target) {
            EXPECT_TRUE(parent->replaceChild(node, target) == target);
            if (node == target) return;
            takeOut(node);
            *std::find(children.begin(), children.end(), target) = node;
        } else if (target) {
            EXPECT_TRUE(parent->removeChild(target) == target);
            takeOut(target);
        }
    }

    void check() {
        std::map<const LumNode*, const LumNode*> parentOf;
        for (const auto& [parent, children] : children_) {
            for (const LumNode* child : children) parentOf[child] = parent;
        }
        for (const LumPtr<LumNode>& node : nodes_) {
            ASSERT_EQ(node->getParentNode(), parentOf[node.get()]);
            ASSERT_EQ(node->getRefCount(), parentOf[node.get()] ? 2 : 1);
            if (!node->getParentNode()) {
                ASSERT_EQ(node->getNextSibling(), nullptr);
                ASSERT_EQ(node->getPreviousSibling(), nullptr);
            }
            const std::vector<LumNode*>& children = children_[node.get()];
            std::vector<LumNode*> forwards, backwards;
            for (LumNode* c = node->getFirstChild(); c; c = c->getNextSibling()) forwards.push_back(c);
            for (LumNode* c = node->getLastChild(); c; c = c->getPreviousSibling()) backwards.push_back(c);
            ASSERT_EQ(forwards, children);
            std::reverse(backwards.begin(), backwards.end());
            ASSERT_EQ(backwards, children);
            ASSERT_EQ(node->hasChildNodes(), !children.empty());
            ASSERT_EQ(node->getChildNodeCount(), static_cast<int>(children.size()));
        }
    }

    /// Document order by the definition: the preorder numbers, ancestors left out.
    void checkOrder() {
        std::map<const LumNode*, int> preorder;
        for (const LumPtr<LumNode>& root : nodes_) {
            if (!root->getParentNode()) number(root.get(), preorder);
        }
        for (const LumPtr<LumNode>& a : nodes_) {
            for (const LumPtr<LumNode>& b : nodes_) {
                const LumNode* common = b.get();
                while (common && !isAncestorOrSelf(common, a.get())) common = common->getParentNode();
                const bool isRelated = !common || common == a.get() || common == b.get();
                ASSERT_EQ(a->isFollowingOf(b.get()), !isRelated && preorder[a.get()] > preorder[b.get()]);
                ASSERT_EQ(a->isPrecedingOf(b.get()), !isRelated && preorder[a.get()] < preorder[b.get()]);
                ASSERT_EQ(a->isDescendantOrSelfOf(b.get()), isAncestorOrSelf(b.get(), a.get()));
                ASSERT_EQ(a->getCommonAncestorOrSelf(b.get()), common);
            }
        }
    }

private:
    static bool isAncestorOrSelf(const LumNode* ancestor, const LumNode* node) {
        while (node && node != ancestor) node = node->getParentNode();
        return node != nullptr;
    }
    void number(const LumNode* node, std::map<const LumNode*, int>& preorder) {
        preorder.emplace(node, static_cast<int>(preorder.size()));
        for (const LumNode* child : children_[node]) number(child, preorder);
    }
    void takeOut(LumNode* node) {
        for (auto& entry : children_) std::erase(entry.second, node);
    }

    LumPtr<LumDocument> document_;
    std::vector<LumPtr<LumNode>> nodes_;
    std::vector<LumNode*> parents_;
    std::map<const LumNode*, std::vector<LumNode*>> children_;
};

TEST(LumNode, treeOperationsAgreeWithVectorsOfChildren) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Model model(6 + static_cast<int>(seed) * 2);
        for (int i = 0; i < 300; ++i) {
            model.step(random);
            model.check();
            if (HasFatalFailure()) FAIL() << "at step " << i;
            if (i % 50 == 0) model.checkOrder();
            if (HasFatalFailure()) FAIL() << "order at step " << i;
        }
    }
}

TEST(LumNode, refusesBadArgumentsAndChangesNothing) {
    const LumPtr<LumDocument> document = load("<r id=''><a/><b id=''/>t</r>"), other = load("<r id=''><a/>t</r>");
    LumElement* const root = document->getDocumentElement();
    std::map<std::string, LumNode*> nodes = {
        {"-", nullptr},
        {"document", document.get()},
        {"root", root},
        {"a", find(document, "a")},
        {"b", find(document, "b")},
        {"foreign", find(other, "a")},
        {"text", root->getLastChild()},
        {"foreignText", other->getDocumentElement()->getLastChild()},
        {"attr", root->getAttributes()->getFirstNode()},
        {"attrOfB", find(document, "b")->getAttributes()->getFirstNode()},
        {"foreignAttr", other->getDocumentElement()->getAttributes()->getFirstNode()},
    };
    const UnicodeString before = document->saveXml(root);
    for (const std::vector<std::string>& row : readEscapedRows("dom/refused.txt", 4)) {
        SCOPED_TRACE(row[3]);
        std::istringstream words(row[0]);
        std::string name, call, first = "-", second = "-";
        words >> name >> call >> first >> second;
        LumNode *const node = nodes.at(name), *const newChild = nodes.at(first), *const place = nodes.at(second);
        const unsigned code = static_cast<unsigned>(std::stoi(row[1].substr(0, 4), nullptr, 16));
        expectError(code, "SYSTEM ERROR: " + row[1].substr(5), "LumCommon::" + row[2], [&] {
            if (call == "append") node->appendChild(newChild);
            if (call == "insert") node->insertBefore(newChild, place);
            if (call == "replace") node->replaceChild(newChild, place);
            if (call == "remove") node->removeChild(newChild);
            if (call == "takeNode") static_cast<LumElement*>(node)->removeAttributeNode(nullptr);
            if (call == "put") node->getAttributes()->setNamedItem(newChild);
            if (call == "putNS") node->getAttributes()->setNamedItemNS(newChild);
            if (call == "setValue") node->setNodeValue(LumValue(1));
        });
        EXPECT_EQ(utf8(document->saveXml(root)), utf8(before));
        for (const auto& [told, unchanged] : nodes) {
            EXPECT_TRUE(!unchanged || unchanged->getRefCount() == 1) << told;
        }
    }
    EXPECT_EQ(utf8(other->saveXml(other->getDocumentElement())), "<r id=\"\"><a/>t</r>");
}

TEST(LumNode, deletingTakesTheDescendantsOfHeldNodesOutToo) {
    NodeCounter counter;
    const LumPtr<CountedDocument> document(new CountedDocument(counter));
    document->loadXml(u"<r><a><b>x<c/></b></a><d/></r>");
    const LumPtr<LumNode> held(document->getElementsByTagName(LumName(u"b"))->getFirstNode());
    EXPECT_EQ(document->getDocumentElement()->deleteAllChildNodes(), 5);
    EXPECT_EQ(held->getRefCount(), 1);
    EXPECT_EQ(held->getParentNode(), nullptr);
    EXPECT_FALSE(held->hasChildNodes());
    EXPECT_EQ(counter.live, 2);
}

TEST(LumNode, plainElementsFindTheirNamespaceWhereTheyHang) {
    const LumPtr<LumDocument> document(new LumDocument);
    const LumPtr<LumElement> outer = document->createElement(LumName(u"r"));
    const LumPtr<LumElement> inner = document->createElement(LumName(u"p:x"));
    outer->setAttribute(LumName(u"xmlns:p"), LumValue(u"u:p"));
    EXPECT_TRUE(inner->getNamespaceUri().isNull());
    outer->appendChild(inner.get());
    EXPECT_EQ(utf8(inner->getNamespaceUri().getString()), "u:p");
    EXPECT_EQ(utf8(inner->getNodeName().getString()), "p:x");
    const LumPtr<LumNode> copy = inner->cloneNode(false);
    outer->removeChild(inner.get());
    EXPECT_TRUE(inner->getNamespaceUri().isNull());
    EXPECT_EQ(utf8(copy->getNamespaceUri().getString()), "u:p") << "the copy keeps what was resolved";
}

/// A text that answers line 7, line -1, or a number of lines more than other texts do.
class PlacedText : public LumTextNode {
public:
    PlacedText(LumDocument* document, char rule) : LumTextNode(document, u"t"), rule_(rule) {}
    int getSourceLineNumber() const override {
        if (rule_ == '7' || rule_ == '-') return rule_ == '7' ? 7 : -1;
        return LumTextNode::getSourceLineNumber() + (rule_ == '+' ? 10 : 0);
    }

private:
    char rule_;
};

TEST(LumNode, othersAnswerWithThePositionBeforeOrAround) {
    for (const std::vector<std::string>& row : readEscapedRows("dom/positions.txt", 3)) {
        SCOPED_TRACE(row[2]);
        const LumPtr<LumDocument> document = load("<r id=''/>");
        LumElement* const root = document->getDocumentElement();
        for (const char kind : row[0]) {
            if (kind == 'e' || kind == 'u') {
                root->appendChild(document->createElement(NAME_block).get())->setSourceLineNumber(kind == 'e' ? 5 : -1);
            } else {
                root->appendChild(LumPtr<LumNode>(new PlacedText(document.get(), kind)).get());
            }
        }
        LumNode* const last = root->appendChildText(u"t");
        last->setSourceLineNumber(9);  // texts store none
        EXPECT_EQ(std::to_string(last->getSourceLineNumber()), row[1]);
        EXPECT_EQ(last->getSourceColumnNumber(), root->getSourceColumnNumber()) << "columns are looked up on their own";
        EXPECT_EQ(root->getAttributes()->getFirstNode()->getSourceLineNumber(), 1);
        EXPECT_EQ(document->getSourceLineNumber(), -1);
        EXPECT_EQ(root->cloneNode(true)->getSourceColumnNumber(), -1);
    }
}

TEST(LumNode, kindsTellTheirTypesAndNames) {
    const LumPtr<LumDocument> document = load("<r>a<b>c</b></r>");
    const LumName uri(u"u");
    const auto expectKind = [](const LumPtr<LumNode>& node, int type, const char* name) {
        EXPECT_EQ(node->getNodeType(), type) << name;
        EXPECT_EQ(utf8(node->getNodeName().getString()), name);
    };
    expectKind(document, 9, "#document");
    expectKind(document->createDocumentFragment(), 11, "#document-fragment");
    expectKind(document->createTextNode(u""), 3, "#text");
    expectKind(document->createProcessingInstruction(u"i"), 7, "#text");
    expectKind(document->createElement(LumName(u":a")), 1, "a");
    expectKind(document->createElementNS(uri, LumName(u"p:a:b")), 1, "p:a:b");
    expectKind(document->createAttribute(LumName(u":a")), 2, ":a");
    expectKind(document->createAttributeNS(uri, LumName(u"p:a")), 2, "p:a");
    LumElement* const root = document->getDocumentElement();
    root->getLastChild()->appendChild(document->createProcessingInstruction(u"pi").get());
    EXPECT_EQ(utf8(root->getInnerText()), "acpi");
}

}  // namespace
}  // namespace LumTest
