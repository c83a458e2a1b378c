#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "dom/CountedDocument.h"
#include "support/ExpectError.h"
#include "support/Utf8.h"

namespace LumTest {
namespace {

LumPtr<LumDocument> load(const char* xml) {
    LumPtr<LumDocument> document(new LumDocument);
    document->loadXml(UnicodeString::fromUTF8(xml));
    return document;
}

LumNode* find(const LumPtr<LumDocument>& document, const char* name) {
    return document->getElementsByTagName(LumName(UnicodeString::fromUTF8(name)))->getFirstNode();
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
        switch (random() % 4) {
            case 0:
                EXPECT_EQ(parent->appendChild(node), node);
                takeOut(node);
                children.push_back(node);
                break;
            case 1:
                EXPECT_EQ(parent->insertBefore(node, target), node);
                if (node == target) break;
                takeOut(node);
                children.insert(std::find(children.begin(), children.end(), target), node);
                break;
            case 2: {
                if (!target) break;
                EXPECT_TRUE(parent->replaceChild(node, target) == target);
                if (node == target) break;
                takeOut(node);
                *std::find(children.begin(), children.end(), target) = node;
                break;
            }
            default:
                if (!target) break;
                EXPECT_TRUE(parent->removeChild(target) == target);
                takeOut(target);
                break;
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
                const bool isRelated = rootOf(a.get()) != rootOf(b.get()) || isAncestorOrSelf(a.get(), b.get()) ||
                                       isAncestorOrSelf(b.get(), a.get());
                ASSERT_EQ(a->isFollowingOf(b.get()), !isRelated && preorder[a.get()] > preorder[b.get()]);
                ASSERT_EQ(a->isPrecedingOf(b.get()), !isRelated && preorder[a.get()] < preorder[b.get()]);
                ASSERT_EQ(a->isDescendantOrSelfOf(b.get()), isAncestorOrSelf(b.get(), a.get()));
                const LumNode* common = b.get();
                while (common && !isAncestorOrSelf(common, a.get())) common = common->getParentNode();
                ASSERT_EQ(a->getCommonAncestorOrSelf(b.get()), common);
            }
        }
    }

private:
    static bool isAncestorOrSelf(const LumNode* ancestor, const LumNode* node) {
        while (node && node != ancestor) node = node->getParentNode();
        return node != nullptr;
    }
    static const LumNode* rootOf(const LumNode* node) {
        while (node->getParentNode()) node = node->getParentNode();
        return node;
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
    const LumPtr<LumDocument> document = load("<r><a/><b/></r>");
    const LumPtr<LumDocument> other = load("<r><a/></r>");
    LumNode* const root = document->getDocumentElement();
    LumNode* const a = find(document, "a");
    LumNode* const b = find(document, "b");
    LumNode* const foreign = find(other, "a");
    root->appendChild(document->createElement(NAME_block).get());
    static_cast<LumElement*>(root)->setAttribute(NAME_id, LumValue(1));
    LumNode* const attr = root->getAttributes()->getFirstNode();

    struct Case {
        const char* fault;
        unsigned code;
        const char* message;
        const char* operation;
        std::function<void()> call;
    };
    const Case cases[] = {
        {"append dereferences null", 0x803, "newChild is null.", "appendChild", [&] { root->appendChild(nullptr); }},
        {"insert dereferences null", 0x803, "newChild is null.", "insertBefore",
         [&] { root->insertBefore(nullptr, a); }},
        {"replace takes a null", 0x803, "newChild is null.", "replaceChild", [&] { root->replaceChild(nullptr, a); }},
        {"replace puts it in the place of null", 0x803, "oldChild is null.", "replaceChild",
         [&] { root->replaceChild(a, nullptr); }},
        {"remove dereferences null", 0x803, "oldChild is null.", "removeChild", [&] { root->removeChild(nullptr); }},
        {"append mixes documents", 0x806, "newChild is created from a different document.", "appendChild",
         [&] { root->appendChild(foreign); }},
        {"insert mixes documents", 0x806, "newChild is created from a different document.", "insertBefore",
         [&] { root->insertBefore(foreign, a); }},
        {"insert with null sibling forgets to check", 0x806, "newChild is created from a different document.",
         "appendChild", [&] { root->insertBefore(foreign, nullptr); }},
        {"replace mixes documents", 0x806, "newChild is created from a different document.", "replaceChild",
         [&] { root->replaceChild(foreign, a); }},
        {"insert before another's child", 0x809, "refChild is not a child of this node.", "insertBefore",
         [&] { a->insertBefore(b, b); }},
        {"the place is checked after the document", 0x809, "refChild is not a child of this node.", "insertBefore",
         [&] { a->insertBefore(foreign, b); }},
        {"replace another's child", 0x809, "oldChild is not a child of this node.", "replaceChild",
         [&] { a->replaceChild(b, b); }},
        {"remove another's child", 0x809, "oldChild is not a child of this node.", "removeChild",
         [&] { a->removeChild(b); }},
        {"an attribute is cut out as if it were a child", 0x809, "oldChild is not a child of this node.", "removeChild",
         [&] { root->removeChild(attr); }},
        {"an owned attribute becomes a child", 0x809, "oldChild is not a child of this node.", "removeChild",
         [&] { a->appendChild(attr); }},
        {"elements take a value", 0x80B, "Cannot set a value on node type: ElementNS", "setNodeValue",
         [&] { a->setNodeValue(LumValue(1)); }},
        {"documents take a value", 0x80B, "Cannot set a value on node type: LumDocument", "setNodeValue",
         [&] { document->setNodeValue(LumValue(1)); }},
    };
    const UnicodeString before = document->saveXml(root);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        expectError(c.code, std::string("SYSTEM ERROR: ") + c.message,
                    std::string("LumCommon::LumNode::") + c.operation, c.call);
        EXPECT_EQ(utf8(document->saveXml(root)), utf8(before));
        for (const LumNode* node : {a, b, foreign, attr}) EXPECT_EQ(node->getRefCount(), 1);
    }
    EXPECT_EQ(utf8(other->saveXml(other->getDocumentElement())), "<r><a/></r>");
}

TEST(LumNode, deletingCountsAndLetsHeldNodesGoOneByOne) {
    NodeCounter counter;
    const LumPtr<CountedDocument> document(new CountedDocument(counter));
    document->loadXml(u"<r><a><b>x<c/></b></a><d/>y<e><f/></e></r>");
    LumNode* const root = document->getDocumentElement();
    const LumPtr<LumNode> held(document->getElementsByTagName(LumName(u"b"))->getFirstNode());
    LumNode* const d = document->getElementsByTagName(LumName(u"d"))->getFirstNode();
    EXPECT_EQ(LumNode::deleteAllChildNodes(d), 5);  // a, b, x, c, d; what follows d stays
    EXPECT_EQ(utf8(document->saveXml(root)), "<r>y<e><f/></e></r>");
    EXPECT_EQ(held->getRefCount(), 1);
    EXPECT_EQ(held->getParentNode(), nullptr);
    EXPECT_FALSE(held->hasChildNodes()) << "descendants of held nodes are taken out too";
    EXPECT_EQ(root->getFirstChild()->getPreviousSibling(), nullptr);
    EXPECT_EQ(root->deleteAllChildNodes(), 3);
    EXPECT_EQ(root->deleteAllChildNodes(), 0);
    EXPECT_EQ(counter.live, 2);
}

TEST(LumNode, namespaceLookupsFollowDeclarationsAndElements) {
    const LumPtr<LumDocument> document =
        load("<a xmlns='u:d' xmlns:p='u:p'><p:b><c xmlns:p='u:q' xmlns:o='u:p'/></p:b><e xmlns=''><g/></e>t</a>");
    struct Case {
        const char* fault;
        const char* node;
        const char* prefix;
        const char* uri;  // of the prefix
    };
    const Case cases[] = {
        {"declarations of ancestors are not seen", "c", "o", "u:p"},
        {"an outer declaration wins", "c", "p", "u:q"},
        {"the element's own prefix does not count", "b", "p", "u:p"},
        {"the default namespace is missed", "b", "", "u:d"},
        {"the default namespace cannot be taken back", "g", "", ""},
        {"an unknown prefix finds something", "c", "z", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(utf8(find(document, c.node)->lookupNamespaceUri(LumName(UnicodeString(c.prefix))).getString()),
                  c.uri);
    }
    LumNode* const c = find(document, "c");
    EXPECT_EQ(utf8(c->lookupPrefix(LumName(u"u:p")).getString()), "o") << "p is rebound further in";
    EXPECT_EQ(utf8(c->lookupPrefix(LumName(u"u:q")).getString()), "p");
    EXPECT_EQ(utf8(find(document, "b")->lookupPrefix(LumName(u"u:p")).getString()), "p");
    EXPECT_TRUE(c->lookupPrefix(LumName(u"u:d")).isNull()) << "a default namespace has no prefix";
    EXPECT_TRUE(c->lookupPrefix(LumName()).isNull());
    const LumPtr<LumDocument> shadowed = load("<p:a xmlns:p='u:1'><b xmlns:p='u:2'/></p:a>");
    EXPECT_TRUE(find(shadowed, "b")->lookupPrefix(LumName(u"u:1")).isNull()) << "the prefix means something else here";
    EXPECT_TRUE(find(document, "b")->isDefaultNamespace(LumName(u"u:d"))) << "a prefixed element asks its parent";
    EXPECT_TRUE(find(document, "g")->isDefaultNamespace(LumName()));
    EXPECT_EQ(utf8(document->lookupNamespaceUri(LumName(u"p")).getString()), "u:p") << "a document asks its root";
    EXPECT_EQ(utf8(document->getDocumentElement()->getLastChild()->lookupNamespaceUri(LumName(u"p")).getString()),
              "u:p")
        << "a text asks its parent";
    EXPECT_EQ(utf8(c->getAttributes()->getFirstNode()->lookupNamespaceUri(LumName(u"o")).getString()), "u:p")
        << "an attribute asks its element";
    EXPECT_TRUE(document->createDocumentFragment()->lookupNamespaceUri(LumName(u"p")).isNull());
    EXPECT_EQ(utf8(c->lookupNamespaceUri(NAME_xmlns).getString()), "");
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
    EXPECT_TRUE(copy->isA(ElementNS::TYPE_ID));
    EXPECT_EQ(utf8(copy->getNamespaceUri().getString()), "u:p") << "the copy keeps what was resolved";
}

TEST(LumNode, searchesMatchNamesNamespacesAndTypes) {
    const LumPtr<LumDocument> document = load("<r xmlns:p='u:p'>t<x/><p:x><y>a<?i b?>c</y>d</p:x></r>");
    LumNode* const root = document->getDocumentElement();
    LumNode* const y = find(document, "y");
    LumNode* const px = y->getParentNode();
    y->appendChild(document->createProcessingInstruction(u"pi").get());
    EXPECT_EQ(root->getChildNodeByName(LumName(u"x")), px->getPreviousSibling());
    EXPECT_EQ(root->getChildNodeByNameNS(LumName(u"u:p"), LumName(u"x")), px);
    EXPECT_EQ(root->getChildNodeByNameNS(LumName(u"u:p"), LumName(u"y")), nullptr) << "only children";
    EXPECT_EQ(root->getChildNodeByTypeID(LumTextNode::TYPE_ID), root->getFirstChild());
    EXPECT_EQ(y->getAncestorByName(LumName(u"x")), px);
    EXPECT_EQ(y->getAncestorByName(LumName(u"y")), nullptr);
    EXPECT_EQ(y->getAncestorOrSelfByName(LumName(u"y")), y);
    EXPECT_EQ(y->getAncestorByNameNS(LumName(), LumName(u"x")), nullptr);
    EXPECT_EQ(y->getAncestorByTypeID(LumDocument::TYPE_ID), document.get());
    EXPECT_EQ(utf8(root->getInnerText()), "tacpid");
    EXPECT_EQ(utf8(document->getInnerText()), "") << "only elements gather";
    EXPECT_EQ(root->getNodeDepth(), 0);
    EXPECT_EQ(y->getNodeDepth(), 2);
    EXPECT_EQ(px->countPrecedingSiblings(), 2);
    EXPECT_EQ(root->getFirstChild()->countFollowingSiblings(), 2);
    EXPECT_EQ(root->getCommonAncestor(root), document.get());
    EXPECT_EQ(y->getCommonAncestor(document.get()), nullptr) << "a node without parent has none";
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
    struct Case {
        const char* fault;
        const char* siblings;  // e, u: an element on line 5, one without line; 7, -, +, t: texts; the parent: line 1
        int line;              // of a text after them
    };
    const Case cases[] = {
        {"an element before is not asked", "uet", 5},
        {"an element without position is passed over", "eu", 1},
        {"a text's own position is passed over", "e7t", 7},
        {"an element is passed over for a text before it", "7e", 5},
        {"a text that asks what it inherits is told -1", "e+t+", 25},
        {"a first text that asks is not told the parent's", "+", 11},
        {"after a text without position the parent is not asked", "e-t+", 11},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LumPtr<LumDocument> document = load("<r id=''/>");
        LumElement* const root = document->getDocumentElement();
        for (const char* kind = c.siblings; *kind; ++kind) {
            if (*kind == 'e' || *kind == 'u') {
                root->appendChild(document->createElement(NAME_block).get())
                    ->setSourceLineNumber(*kind == 'e' ? 5 : -1);
            } else {
                root->appendChild(LumPtr<LumNode>(new PlacedText(document.get(), *kind)).get());
            }
        }
        LumNode* const last = root->appendChildText(u"t");
        last->setSourceLineNumber(9);  // texts store none
        EXPECT_EQ(last->getSourceLineNumber(), c.line);
        EXPECT_EQ(last->getSourceColumnNumber(), root->getSourceColumnNumber()) << "columns are looked up on their own";
        EXPECT_EQ(root->getAttributes()->getFirstNode()->getSourceLineNumber(), 1);
        EXPECT_EQ(document->getSourceLineNumber(), -1);
        EXPECT_EQ(root->cloneNode(true)->getSourceColumnNumber(), -1);
    }
}

/// A class of a derived library that brings no identifier and no name of its own.
template <class Base>
class Unnamed : public Base {
public:
    explicit Unnamed(LumDocument* document) : Base(document) {}
    LumName getLocalName() const override { return NAME_block; }
};

TEST(LumNode, kindsTellTheirTypesAndNames) {
    const LumPtr<LumDocument> document(new LumDocument);
    struct Case {
        LumPtr<LumNode> node;
        const char* typeName;
        int nodeType;
        const char* nodeName;
        std::set<unsigned> kinds;  // besides LumNode and up
    };
    const LumName uri(u"u");
    const Case cases[] = {
        {document, "LumDocument", 9, "#document", {LumDocument::TYPE_ID}},
        {document->createDocumentFragment(), "LumDocumentFragment", 11, "#document-fragment", {0x319C59B1}},
        {document->createTextNode(u""), "LumTextNode", 3, "#text", {0x92151179}},
        {document->createProcessingInstruction(u"i"), "LumPINode", 7, "#text", {0x1A6FA3CF, 0x92151179}},
        {document->createElement(LumName(u":a")), "Element", 1, "a", {0xD27D366C, 0xD31942AA}},
        {document->createElementNS(uri, LumName(u"p:a:b")), "ElementNS", 1, "p:a:b", {0xC08077FC, 0xD31942AA}},
        {document->createAttribute(LumName(u":a")), "Attr", 2, ":a", {0xC5B6A2E2}},
        {LumPtr<LumNode>(new Unnamed<LumElement>(document.get())), "LumElement", 1, "block", {0xD31942AA}},
        {document->createAttributeNS(uri, LumName(u"p:a")), "AttrNS", 2, "p:a", {0x8EEE55FD, 0xC5B6A2E2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typeName);
        EXPECT_EQ(utf8(c.node->getTypeName()), c.typeName);
        EXPECT_EQ(c.node->getNodeType(), c.nodeType);
        EXPECT_EQ(utf8(c.node->getNodeName().getString()), c.nodeName);
        for (unsigned id : {0xF6B431AFu, 0x319C59B1u, 0x92151179u, 0x1A6FA3CFu, 0xD27D366Cu, 0xD31942AAu, 0xC08077FCu,
                            0xC5B6A2E2u, 0x8EEE55FDu, 0x316E063Eu}) {
            EXPECT_EQ(c.node->isA(id), c.kinds.count(id) == 1) << std::hex << id;
        }
        for (unsigned id : {0x74DC3393u, 0x90AF0240u, 0xA4EBD8C4u}) EXPECT_TRUE(c.node->isA(id));
        EXPECT_TRUE(c.kinds.count(c.node->getTypeID()));
    }
}

}  // namespace
}  // namespace LumTest
