// What nodes answer and what becomes of them, step by step as the rows tell.

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <vector>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"
#include "support/ExpectError.h"

namespace LumTest {
namespace {

std::string show(LumName name) { return name.isNull() ? "-" : utf8(name.getString()); }

std::string label(const LumNode* node) {
    if (!node) return "none";
    return node->isText() ? "'" + utf8(node->getText()) + "'" : utf8(node->getNodeName().getString());
}

std::string told(const std::vector<LumValue>& values) {
    std::string texts;
    for (const LumValue& value : values)
        texts += (texts.empty() ? "" : " ") + (value.isNull() ? "none" : utf8(value.toString()));
    return texts;
}

/// The nodes of a list or a map, which is the same walked forwards and backwards and by index.
template <class Nodes>
std::vector<LumNode*> nodesOf(const Nodes& list) {
    std::vector<LumNode*> nodes, following, reversed;
    for (LumNodeIterator i = list.getIterator(); i.getCurrentNode(); i.nextNode()) nodes.push_back(i.getCurrentNode());
    for (LumNode* n = list.getFirstNode(); n; n = list.getNextNode(n)) following.push_back(n);
    for (LumNode* n = list.getLastNode(); n; n = list.getPreviousNode(n)) reversed.insert(reversed.begin(), n);
    EXPECT_EQ(nodes, reversed);
    EXPECT_EQ(nodes, following);
    const int count = static_cast<int>(nodes.size());
    EXPECT_EQ(list.getCount(), count);
    EXPECT_EQ(list.item(-1), nullptr);
    EXPECT_EQ(list.item(count), nullptr);
    for (int i = 0; i < count; ++i) EXPECT_EQ(list.item(i), nodes[static_cast<std::size_t>(i)]);
    return nodes;
}

std::string show(const LumNodeList& list) {
    std::string labels;
    for (const LumNode* node : nodesOf(list)) labels += (labels.empty() ? "" : " ") + label(node);
    return labels;
}

std::string attributes(const LumNode& element) {
    std::string texts;
    for (const LumNode* attr : nodesOf(*element.getAttributes())) {
        EXPECT_EQ(static_cast<const LumAttr*>(attr)->getOwnerElement(), &element);
        EXPECT_EQ(attr->getParentNode(), nullptr);
        EXPECT_EQ(attr->getNextSibling(), nullptr);
        texts += (texts.empty() ? "" : " ") + utf8(attr->getNodeName().getString()) + "=" + utf8(attr->getText());
    }
    EXPECT_EQ(element.hasAttributes(), !texts.empty());
    return texts;
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

/// Documents, the nodes that rows keep, and what the next step does with them.
class Steps {
public:
    /// @param isCounted  of a class of its own, which counts its nodes.
    void begin(const std::string& xml, bool isDeferred, bool isCounted) {
        document_ =
            isCounted ? LumPtr<LumDocument>(new CountedDocument(counter_)) : LumPtr<LumDocument>(new LumDocument);
        document_->getSerializer()->setGenerator(UnicodeString());
        document_->setDeferredLoad(isDeferred);
        xml_ = text(xml);
        document_->loadXml(xml_);
        if (isDeferred) return;
        for (LumNode* root : {static_cast<LumNode*>(document_.get()), document_->getFirstChild()})
            for (const int mode : {1, 2, 3}) walk(root, mode);
    }

    /// @param step  a node, a question and its arguments; "> x" at the end keeps the node of the answer as $x.
    std::string take(const std::string& step) {
        words_.clear();
        std::istringstream in(step);
        for (std::string word; in >> word;) words_.push_back(unescape(word));
        const bool isKept = words_.size() > 2 && words_[words_.size() - 2] == ">";
        const std::string name = "$" + words_.back();
        if (isKept) words_.resize(words_.size() - 2);
        words_.resize(6, "-");
        std::string answered;
        try {
            answered = answer(find(words_[0]).get(), words_[1]);
        } catch (const LumError& error) {
            answered = describe(error);
        }
        if (isKept) kept_[name] = result_;
        result_ = nullptr;
        return answered;
    }

private:
    LumName named(std::size_t i) const { return words_[i] == "-" ? LumName() : LumName(text(words_[i])); }
    UnicodeString textAt(std::size_t i) const { return words_[i] == "-" ? UnicodeString() : text(words_[i]); }
    UnicodeString dataFile(std::size_t i) const { return text(words_[i] == "-" ? "" : LUM_TEST_DATA "/" + words_[i]); }
    LumPtr<LumNode> nodeAt(std::size_t i) { return words_[i] == "-" ? nullptr : find(words_[i]); }

    LumPtr<LumNode> find(const std::string& wanted) {
        if (const std::size_t slash = wanted.find('/'); slash != std::string::npos) {
            LumPtr<LumNode> node = slash == 0 ? LumPtr<LumNode>(document_) : find(wanted.substr(0, slash));
            for (const char step : wanted.substr(slash + 1))
                node = LumPtr<LumNode>(step == 'f'   ? node->getFirstChild()
                                       : step == 'l' ? node->getLastChild()
                                                     : node->getNextSibling());
            return node;
        }
        if (wanted.starts_with("$")) return kept_.at(wanted);
        if (wanted.starts_with("@")) return LumPtr<LumNode>(find(wanted.substr(1))->getAttributes()->getFirstNode());
        LumTreeIterator nodes(document_.get(), LumTreeIterator::ENTER);
        while (LumNode* found = nodes.nextNode())
            if (label(found) == wanted) return LumPtr<LumNode>(found);
        ADD_FAILURE() << "no " << wanted;
        return document_;
    }

    std::string keep(LumNode* node) {
        result_ = LumPtr<LumNode>(node);
        return label(node);
    }

    /// What a saving writes to a stream that dies before the next one is set.
    template <class Save>
    static std::string saved(Save save) {
        const auto out = std::make_unique<std::ostringstream>();
        save(*out);
        return out->str();
    }

    /// @param found  null after the document has been dropped, and where there is no such node.
    std::string answer(LumNode* found, const std::string& question) {
        const auto number = [](int value) { return std::to_string(value); };
        if (question == "is") return keep(found);
        if (question == "live") return number(counter_.live);
        LumNode& node = *found;
        auto& document = static_cast<LumDocument&>(node);
        if (question == "uriOf") return show(node.lookupNamespaceUri(named(2)));
        if (question == "prefixOf") return show(node.lookupPrefix(named(2)));
        if (question == "isDefault") return node.isDefaultNamespace(named(2)) ? "yes" : "no";
        if (question == "qualified") return utf8(LumXmlUtil::makeNSQNameStr(textAt(2), textAt(3)));
        if (question == "uri") return show(node.getNamespaceUri());
        if (question == "kind") return number(node.getNodeType()) + " " + utf8(node.getNodeName().getString());
        if (question == "isBlock") return node.isBlock() ? "yes" : "no";
        if (question == "parent") return keep(node.getParentNode());
        if (question == "child") return label(node.getChildNodeByName(named(2)));
        if (question == "childNS") return label(node.getChildNodeByNameNS(named(2), named(3)));
        if (question == "ancestor") return label(node.getAncestorByName(named(2)));
        if (question == "ancestorOrSelf") return label(node.getAncestorOrSelfByName(named(2)));
        if (question == "ancestorNS") return label(node.getAncestorByNameNS(named(2), named(3)));
        if (question == "textChild") return label(node.getChildNodeByTypeID(LumTextNode::TYPE_ID));
        if (question == "above") return label(node.getAncestorByTypeID(LumDocument::TYPE_ID));
        if (question == "innerText") return utf8(node.getInnerText());
        if (question == "depth") return number(node.getNodeDepth());
        if (question == "preceding") return number(node.countPrecedingSiblings());
        if (question == "following") return number(node.countFollowingSiblings());
        if (question == "common") return label(node.getCommonAncestor(nodeAt(2).get()));
        if (question == "flags") return number(static_cast<int>(node.getFlags()));
        if (question == "refs") return number(node.getRefCount() - 1);
        if (question == "children") return show(*node.getChildNodes());
        if (question == "descendants") return show(*node.getDescendantNodes());
        if (question == "tags") return show(*node.getElementsByTagName(named(2)));
        if (question == "tagsNS") return show(*node.getElementsByTagNameNS(named(2), named(3)));
        if (question == "walk") return walk(&node, std::stoi(words_[2]));
        if (question == "xml") return utf8(document_->saveXml(&node == document_.get() ? node.getFirstChild() : &node));
        if (question == "line") return number(node.getSourceLineNumber());
        if (question == "column") return number(node.getSourceColumnNumber());
        // Documents
        if (question == "abort") return document.abort(), "";
        if (question == "parserDepth") return number(document.getParser()->getDepth());
        if (question == "parserEvent") return utf8(LumXmlParser::getEventTypeStr(document.getParser()->getEventType()));
        if (question == "load") return document.load(dataFile(2)), "";
        if (question == "loadInto") return document.load(dataFile(2), nodeAt(3).get()), "";
        if (question == "loadedFrom") return document.getDocumentUri() == dataFile(2) ? "yes" : "no";
        if (question == "resetParser") return document.setParser(document.getParser()), "";
        if (question == "drop") return document_ = nullptr, "";
        if (question == "save")
            return saved([&](auto& out) { document.save(out, nodeAt(2).get(), textAt(3), textAt(4)); });
        if (question == "saveBoth")
            return saved([&](auto& out) { document.save(textAt(4), textAt(5), out, nodeAt(2).get(), textAt(3)); });
        if (question == "saveXml") return utf8(document.saveXml(nodeAt(2).get()));
        if (question == "fragment") return keep(document.createDocumentFragment().get());
        if (question == "text") return keep(document.createTextNode(textAt(2)).get());
        if (question == "instruction") return keep(document.createProcessingInstruction(textAt(2)).get());
        if (question == "element") return keep(document.createElement(named(2)).get());
        if (question == "elementNS") return keep(document.createElementNS(named(2), named(3)).get());
        if (question == "attribute") return keep(document.createAttribute(named(2)).get());
        if (question == "attributeNS") return keep(document.createAttributeNS(named(2), named(3)).get());
        if (question == "placed") return keep(LumPtr<LumNode>(new PlacedText(document_.get(), words_[2][0])).get());
        // Changes
        if (question == "setLine") return node.setSourceLineNumber(std::stoi(words_[2])), "";
        if (question == "append") return keep(node.appendChild(nodeAt(2).get()));
        if (question == "insert") return keep(node.insertBefore(nodeAt(2).get(), nodeAt(3).get()));
        if (question == "replace") return keep(node.replaceChild(nodeAt(2).get(), nodeAt(3).get()).get());
        if (question == "remove") return keep(node.removeChild(nodeAt(2).get()).get());
        if (question == "clone") return keep(node.cloneNode(words_[2] == "deep").get());
        if (question == "setFlags") return node.setFlags(static_cast<unsigned>(std::stoi(words_[2]))), "";
        if (question == "setNodeValue") return node.setNodeValue(LumValue(1)), "";
        if (question == "deleteAll") return number(node.deleteAllChildNodes());
        if (question == "deleteUpTo") return number(LumNode::deleteAllChildNodes(&node));
        return answerOfElement(static_cast<LumElement&>(node), question);
    }

    std::string answerOfElement(LumElement& element, const std::string& question) {
        const LumColor lime(0, 255, 0);
        LumNamedNodeMap& map = *element.getAttributes();
        if (question == "attributes") return attributes(element);
        if (question == "attr") return keep(element.getAttributeNode(named(2)).get());
        if (question == "putNode") return keep(element.setAttributeNode(static_cast<LumAttr*>(nodeAt(2).get())).get());
        if (question == "takeNode")
            return keep(element.removeAttributeNode(static_cast<LumAttr*>(nodeAt(2).get())).get());
        if (question == "item") return keep(map.setNamedItem(nodeAt(2).get()).get());
        if (question == "itemNS") return keep(map.setNamedItemNS(nodeAt(2).get()).get());
        if (question == "many")  // past a number of attributes lookups take another road
            for (int i = 0; i < 40; ++i)
                element.setAttributeNS(LumName(), LumName(), LumName(text("n" + std::to_string(i))), LumValue(1));
        if (question == "set") element.setAttribute(named(2), LumValue(textAt(3)));
        if (question == "setCmyk") element.setAttribute(named(2), LumValue(LumColor(lime, 0.0f, 1.0f, 0.5f, 0.0f)));
        if (question == "setSpot") element.setAttribute(named(2), LumValue(LumColor(lime, u"Gold", 0.5f)));
        if (question == "setRead")  // null where there is nothing to read
            element.setAttribute(named(2), LumTokenizer(textAt(3)).nextTokenValueFunc());
        if (question == "setObject")
            element.setAttribute(named(2), LumValue(static_cast<LumRCObject*>(document_.get())));
        if (question == "parse") element.setAttribute(named(2), LumValue::parse(textAt(3)));
        if (question == "parsePart") {
            LumValue value = element.getAttribute(named(2));
            value.setNamedItem(named(3), LumValue::parse(textAt(4)));
            element.setAttribute(named(2), value);
        }
        if (question == "setNS") element.setAttributeNS(named(2), named(3), LumValue(textAt(4)));
        if (question == "setPNS") element.setAttributeNS(named(2), named(3), named(4), LumValue(textAt(5)));
        if (question == "removeAttribute") element.removeAttribute(named(2));
        if (question == "takeNS") element.removeAttributeNS(named(2), named(3));
        if (question == "get") return told({element.getAttribute(named(2))});
        if (question == "getNS") return told({element.getAttributeNS(named(2), named(3))});
        if (question == "has") return element.hasAttribute(named(2)) ? "yes" : "none";
        if (question == "count") return std::to_string(map.getCount());
        if (question == "local") {
            std::vector<LumPtr<LumAttr>> nodes;
            std::vector<LumValue> values;
            element.getAttributeNodeLocal(named(2), &nodes);
            element.getAttributeLocal(named(2), &values);
            map.getNamedItemLocal(named(2), nullptr);
            EXPECT_EQ(nodes.size(), values.size());
            EXPECT_EQ(element.hasAttributeLocal(named(2)), !values.empty());
            return told(values);
        }
        if (question == "put" || question == "putNS" || question == "take") {
            const LumPtr<LumAttr> attr = document_->createAttribute(named(2));
            attr->setValue(LumValue(u"new"));
            const LumPtr<LumNode> out = question == "take"    ? map.removeNamedItem(named(2))
                                        : question == "putNS" ? map.setNamedItemNS(attr.get())
                                                              : map.setNamedItem(attr.get());
            EXPECT_EQ(attr->getRefCount(), question == "take" ? 1 : 2);
            EXPECT_TRUE(!out || (out->getRefCount() == 1 && !static_cast<LumAttr&>(*out).getOwnerElement()));
            return out ? utf8(out->getText()) : "none";
        }
        EXPECT_TRUE(question == "many" || question.starts_with("set") || question.starts_with("parse") ||
                    question == "removeAttribute" || question == "takeNS");
        return "";
    }

    NodeCounter counter_;
    LumPtr<LumDocument> document_{new LumDocument};
    UnicodeString xml_;  // is read while loading lasts
    std::map<std::string, LumPtr<LumNode>> kept_;
    std::vector<std::string> words_;
    LumPtr<LumNode> result_;
};

TEST(LumNode, answersAndBecomesWhatTheRowsTell) {
    Steps steps;
    for (const std::vector<UnicodeString>& row : readRows("dom/nodes.txt")) {
        const std::string step = utf8(row[0]), answer = row.size() > 1 ? unescape(utf8(row[1])) : "";
        SCOPED_TRACE(step + ": " + utf8(row.back()));
        if (step == "document" || step == "deferred" || step == "counted") {
            steps.begin(answer, step == "deferred", step == "counted");
        } else {
            EXPECT_EQ(steps.take(step), answer);
        }
    }
}

TEST(LumNode, attributesChangeAsTheRowsTell) {
    Steps steps;
    for (const std::vector<std::string>& row : readEscapedRows("dom/attributes.txt", 4)) {
        SCOPED_TRACE(row[0] + ": " + row[3]);
        EXPECT_EQ(steps.take((row[0].starts_with("element") ? "/ " : "$e ") + row[0]), row[1]);
        const std::string now = steps.take("$e attributes");
        EXPECT_TRUE(row[2].starts_with("... ") ? now.ends_with(row[2].substr(3)) : now == row[2]) << now;
    }
}

/// Names live as long as some document does.
class LumElementTest : public testing::Test {
protected:
    LumPtr<LumDocument> document{new LumDocument};
    LumPtr<LumElement> element = document->createElement(NAME_block);
    const LumName a{u"a"}, b{u"b"};
};

TEST_F(LumElementTest, attributeValuesKeepTheirKindAndName) {
    element->setAttribute(a, LumValue(1.5f, UNIT_PT));
    const LumPtr<LumAttr> attr = element->getAttributeNode(a);
    EXPECT_EQ(attr->getValue(), LumValue(1.5f, UNIT_PT));
    attr->setNodeValue(element->getAttribute(a));
    attr->setValue(LumValue(LumName(b)));
    EXPECT_EQ(attr->getLocalName(), a) << "a value brings its own name along";
    attr->setText(u"long enough to need memory, which moves");
    EXPECT_EQ(attr->getNodeValue().getKind(), KIND_STRING);
    EXPECT_EQ(utf8(attr->getText()), "long enough to need memory, which moves");
    EXPECT_EQ(attr->getNodeName(), a);
}

TEST_F(LumElementTest, aMapThatOutlivesItsElementIsEmpty) {
    element->setAttribute(a, LumValue(1));
    const LumPtr<LumNamedNodeMap> map(element->getAttributes());
    const LumPtr<LumAttr> attr = element->getAttributeNode(a);
    element = nullptr;
    EXPECT_EQ(map->getCount(), 0);
    EXPECT_EQ(map->getFirstNode(), nullptr);
    EXPECT_EQ(attr->getOwnerElement(), nullptr);
    EXPECT_EQ(attr->getRefCount(), 1);
    expectError(0x806, "SYSTEM ERROR: arg is created from a different document.",
                "LumCommon::AttrNodeMap::setNamedItem", [&] { map->setNamedItem(attr.get()); });
}

/// Writes down each question for a copy and puts a mark at the end of the copy.
class MarkingElement : public ElementNS {
public:
    MarkingElement(std::string& log, LumDocument* owner)
        : ElementNS(owner, LumName(), LumName(), NAME_block), log_(log) {}
    LumPtr<LumNode> cloneNode(bool deep) const override {
        log_ += deep ? 'd' : 's';
        LumPtr<LumNode> copy = ElementNS::cloneNode(deep);
        copy->appendChildText(u"!");
        return copy;
    }

private:
    std::string& log_;
};

TEST_F(LumElementTest, aDeepCloneAsksForDeepClonesAtEveryDepth) {
    for (const int depth : {3, 300}) {  // within the stack that copying takes, and beyond it
        SCOPED_TRACE(depth);
        std::string log, wanted;
        LumNode* node = element.get();
        for (int i = 0; i < depth; ++i) {
            node = node->appendChild(LumPtr<LumNode>(new MarkingElement(log, document.get())).get());
            wanted = "<block>" + wanted + "!</block>";
        }
        EXPECT_EQ(utf8(document->saveXml(element->cloneNode(true).get())), "<block>" + wanted + "</block>");
        EXPECT_EQ(log, std::string(static_cast<std::size_t>(depth), 'd'));
        element->removeAllChildNodes();
    }
}

TEST(LumNode, iteratorsStartAfterTheGivenNode) {
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
