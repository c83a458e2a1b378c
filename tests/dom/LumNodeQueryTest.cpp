// What nodes answer without being changed: namespaces, searches, lists and walks.

#include <gtest/gtest.h>

#include <sstream>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"

namespace LumTest {
namespace {

std::string label(const LumNode* node) {
    if (!node) return "none";
    return node->isText() ? "'" + utf8(node->getText()) + "'" : utf8(node->getNodeName().getString());
}

std::string show(LumName name) { return name.isNull() ? "-" : utf8(name.getString()); }

/// The labels of a list, which is the same walked forwards and backwards and by index.
std::string show(const LumNodeList& list) {
    std::string labels;
    std::vector<LumNode*> nodes, reversed;
    for (LumNodeIterator i = list.getIterator(); i.getCurrentNode(); i.nextNode()) nodes.push_back(i.getCurrentNode());
    for (LumNode* n = list.getLastNode(); n; n = list.getPreviousNode(n)) reversed.insert(reversed.begin(), n);
    EXPECT_EQ(nodes, reversed);
    const int count = static_cast<int>(nodes.size());
    EXPECT_EQ(list.getCount(), count);
    EXPECT_EQ(list.item(-1), nullptr);
    EXPECT_EQ(list.item(count), nullptr);
    const LumNode* next = list.getFirstNode();
    for (int i = 0; i < count; ++i, next = list.getNextNode(next)) {
        EXPECT_EQ(list.item(i), nodes[static_cast<std::size_t>(i)]);
        EXPECT_EQ(next, nodes[static_cast<std::size_t>(i)]);
        labels += (i ? " " : "") + label(next);
    }
    EXPECT_EQ(next, nullptr);
    return labels;
}

/// A walk to the end, which gives the same nodes on the way back and looks ahead truly.
std::string walk(LumNode* root, int mode) {
    LumTreeIterator walk(root, mode);
    EXPECT_EQ(walk.getCurrentNode(), nullptr);
    EXPECT_FALSE(walk.hasPreviousNode());
    EXPECT_EQ(walk.previousNode(), nullptr) << "nothing lies before the start";
    std::string labels;
    std::vector<LumNode*> there, back;
    // The one place where there is more than hasNextNode() tells is a root without children.
    bool told = walk.hasNextNode();
    while (LumNode* node = walk.nextNode()) {
        EXPECT_TRUE(told || !root->hasChildNodes()) << label(node);
        there.push_back(node);
        labels += (labels.empty() ? "" : " ") + std::string(walk.isLeaving() ? "-" : "+") + label(node);
        told = walk.hasNextNode();
    }
    EXPECT_FALSE(told);
    EXPECT_EQ(walk.nextNode(), nullptr) << "the end is final";
    told = walk.hasPreviousNode();
    while (LumNode* node = walk.previousNode()) {
        EXPECT_TRUE(told || !root->hasChildNodes()) << label(node);
        back.insert(back.begin(), node);
        told = walk.hasPreviousNode();
    }
    EXPECT_FALSE(told);
    EXPECT_EQ(there, back);
    EXPECT_EQ(walk.nextNode(), there.front()) << "back at the start the walk can begin again";
    return labels;
}

LumPtr<LumNode> findNode(const LumPtr<LumDocument>& document, const std::string& wanted) {
    if (wanted == "fragment") return document->createDocumentFragment();
    if (wanted.starts_with("/")) {
        LumNode* node = document.get();
        for (const char step : wanted.substr(1))
            node = step == 'f' ? node->getFirstChild() : step == 'l' ? node->getLastChild() : node->getNextSibling();
        return LumPtr<LumNode>(node);
    }
    LumTreeIterator nodes(document.get(), LumTreeIterator::ENTER);
    const std::string node = wanted.substr(wanted.starts_with("@") ? 1 : 0);
    while (LumNode* found = nodes.nextNode())
        if (label(found) == node)
            return LumPtr<LumNode>(node == wanted ? found : found->getAttributes()->getFirstNode());
    ADD_FAILURE() << "no " << wanted;
    return document;
}

LumDocument& asDocument(LumNode& node) { return static_cast<LumDocument&>(node); }
LumXmlParser& parserOf(LumNode& node) { return *asDocument(node).getParser(); }

std::string answer(LumNode& node, const std::string& question, LumName a, LumName b) {
    const auto number = [](int value) { return std::to_string(value); };
    if (question == "uriOf") return show(node.lookupNamespaceUri(a));
    if (question == "prefixOf") return show(node.lookupPrefix(a));
    if (question == "isDefault") return node.isDefaultNamespace(a) ? "yes" : "no";
    if (question == "child") return label(node.getChildNodeByName(a));
    if (question == "childNS") return label(node.getChildNodeByNameNS(a, b));
    if (question == "ancestor") return label(node.getAncestorByName(a));
    if (question == "ancestorOrSelf") return label(node.getAncestorOrSelfByName(a));
    if (question == "ancestorNS") return label(node.getAncestorByNameNS(a, b));
    if (question == "textChild") return label(node.getChildNodeByTypeID(LumTextNode::TYPE_ID));
    if (question == "above") return label(node.getAncestorByTypeID(LumDocument::TYPE_ID));
    if (question == "innerText") return utf8(node.getInnerText());
    if (question == "depth") return number(node.getNodeDepth());
    if (question == "preceding") return number(node.countPrecedingSiblings());
    if (question == "following") return number(node.countFollowingSiblings());
    if (question == "common")
        return label(node.getCommonAncestor(findNode(LumPtr<LumDocument>(node.getOwnerDocument()), show(a)).get()));
    if (question == "flags") return number(static_cast<int>(node.getFlags()));
    if (question == "refs") return number(node.getRefCount() - 1);
    if (question == "deleteAll") return number(node.deleteAllChildNodes());
    if (question == "deleteUpTo") return number(LumNode::deleteAllChildNodes(&node));
    if (question == "xml") return utf8(asDocument(node).saveXml(node.getFirstChild()));
    if (question == "abort") return asDocument(node).abort(), "";
    if (question == "parserDepth") return number(parserOf(node).getDepth());
    if (question == "parserEvent") return utf8(LumXmlParser::getEventTypeStr(parserOf(node).getEventType()));
    if (question == "children") return show(*node.getChildNodes());
    if (question == "descendants") return show(*node.getDescendantNodes());
    if (question == "tags") return show(*node.getElementsByTagName(a));
    if (question == "tagsNS") return show(*node.getElementsByTagNameNS(a, b));
    if (question == "walk") return walk(&node, std::stoi(show(a)));
    ADD_FAILURE() << "no question " << question;
    return "";
}

TEST(LumNodeQuery, answersWhatTheRowsTell) {
    LumPtr<LumDocument> document;
    UnicodeString xml;  // is read while loading lasts
    for (const std::vector<std::string>& row : readEscapedRows("dom/queries.txt", 3)) {
        SCOPED_TRACE(row[2] + ": " + row[0]);
        std::istringstream words(row[0]);
        std::string node, question, a = "-", b = "-";
        words >> node >> question >> a >> b;
        const auto named = [](const std::string& word) { return word == "-" ? LumName() : LumName(text(word)); };
        if (question == "is") {
            EXPECT_EQ(label(findNode(document, node).get()), row[1]);
        } else if (node == "document" || node == "deferred") {
            document = LumPtr<LumDocument>(new LumDocument);
            document->setDeferredLoad(node == "deferred");
            xml = text(row[1]);
            document->loadXml(xml);
            if (node == "deferred") continue;
            for (LumNode* root : {static_cast<LumNode*>(document.get()), document->getFirstChild()})
                for (const int mode : {1, 2, 3}) walk(root, mode);
        } else {
            EXPECT_EQ(answer(*findNode(document, node), question, named(a), named(b)), row[1]);
        }
    }
}

TEST(LumNodeQuery, iteratorsStartAfterTheGivenNode) {
    const LumPtr<LumDocument> document = load("<r><a>x<b/></a><c/></r>");
    const LumElement* const root = document->getDocumentElement();
    const LumNode* const a = root->getFirstChild();
    LumNodeIterator iterator(root, a->getFirstChild());
    EXPECT_EQ(label(iterator.getCurrentNode()), "b");
    EXPECT_EQ(iterator.previousNode(), a->getFirstChild());
    EXPECT_EQ(iterator.previousNode(), a);
    EXPECT_EQ(iterator.previousNode(), nullptr);
    EXPECT_EQ(iterator.nextNode(), nullptr) << "an exhausted iterator stays exhausted";
    EXPECT_EQ(LumNodeIterator(static_cast<const LumNodeIterable*>(nullptr)).getCurrentNode(), nullptr);
    EXPECT_EQ(LumNodeIterator(static_cast<const LumNode*>(nullptr)).nextNode(), nullptr);
    EXPECT_EQ(label(root->getIterator().getCurrentNode()), "a");
    LumPtr<LumNodeIterable> nodes(document->getChildNodes());
    nodes = static_cast<LumObjectBase*>(document.get());
    EXPECT_TRUE(nodes.isNull()) << "any counted object is taken for a collection";
    LumTreeIterator none(nullptr, LumTreeIterator::ENTER);
    EXPECT_EQ(none.nextNode(), nullptr);
    EXPECT_FALSE(none.hasNextNode() || none.hasPreviousNode());
}

}  // namespace
}  // namespace LumTest
