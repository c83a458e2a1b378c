#include <gtest/gtest.h>

#include <sstream>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"
#include "support/ExpectError.h"

namespace LumTest {
namespace {

LumName name(const std::string& bytes) { return bytes == "-" ? LumName() : LumName(text(bytes)); }

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

/// The attributes in order, read forwards; the walk backwards and by index must agree.
std::string attributes(const LumElement& element) {
    const LumNamedNodeMap& map = *element.getAttributes();
    std::string told;
    int index = 0;
    const LumNode* previous = nullptr;
    for (const LumNode* attr = map.getFirstNode(); attr; attr = map.getNextNode(attr)) {
        EXPECT_EQ(map.item(index++), attr);
        EXPECT_EQ(map.getPreviousNode(attr), previous);
        EXPECT_EQ(static_cast<const LumAttr*>(attr)->getOwnerElement(), &element);
        EXPECT_EQ(attr->getParentNode(), nullptr);
        EXPECT_EQ(attr->getNextSibling(), nullptr);
        previous = attr;
        told += (index > 1 ? " " : "") + utf8(attr->getNodeName().getString()) + "=" + utf8(attr->getText());
    }
    EXPECT_EQ(map.getLastNode(), previous);
    EXPECT_EQ(map.getCount(), index);
    EXPECT_EQ(map.item(index), nullptr);
    EXPECT_EQ(map.item(-1), nullptr);
    EXPECT_EQ(element.hasAttributes(), index > 0);
    return told;
}

class LumElementTest : public testing::Test {
protected:
    LumPtr<LumDocument> document{new LumDocument};
    LumPtr<LumElement> element = document->createElement(NAME_block);
    // Names live as long as some document does.
    const LumName a{u"a"}, b{u"b"}, c{u"c"}, uri{u"u:x"};
};

TEST_F(LumElementTest, changesAsTheRowsTell) {
    for (const std::vector<std::string>& row : readEscapedRows("dom/attributes.txt", 4)) {
        SCOPED_TRACE(row[0] + ": " + row[3]);
        std::istringstream words(row[0]);
        std::string what, arguments[4], told;
        words >> what >> arguments[0] >> arguments[1] >> arguments[2] >> arguments[3];
        const LumName first = name(arguments[0]), second = name(arguments[1]), third = name(arguments[2]);
        const auto tell = [&told](const LumValue& value) {
            told += (told.empty() ? "" : " ") + (value.isNull() ? "none" : utf8(value.toString()));
        };
        if (what == "element") element = document->createElement(NAME_block);
        if (what == "many")  // past a number of attributes lookups take another road
            for (int i = 0; i < 40; ++i)
                element->setAttributeNS(LumName(), LumName(), name("n" + std::to_string(i)), LumValue(1));
        if (what == "set") element->setAttribute(first, LumValue(text(arguments[1])));
        if (what == "setNS") element->setAttributeNS(first, second, LumValue(text(arguments[2])));
        if (what == "setPNS") element->setAttributeNS(first, second, third, LumValue(text(arguments[3])));
        if (what == "remove") element->removeAttribute(first);
        if (what == "takeNS") element->removeAttributeNS(first, second);
        if (what == "get") tell(element->getAttribute(first));
        if (what == "getNS") tell(element->getAttributeNS(first, second));
        if (what == "has") told = element->hasAttribute(first) ? "yes" : "none";
        LumNamedNodeMap* const map = element->getAttributes();
        if (what == "count") told = std::to_string(map->getCount());
        if (what == "local") {
            std::vector<LumPtr<LumAttr>> nodes;
            std::vector<LumValue> values;
            element->getAttributeNodeLocal(first, &nodes);
            element->getAttributeLocal(first, &values);
            map->getNamedItemLocal(first, nullptr);
            EXPECT_EQ(nodes.size(), values.size());
            EXPECT_EQ(element->hasAttributeLocal(first), !values.empty());
            for (const LumValue& value : values) tell(value);
        }
        if (what == "put" || what == "putNS" || what == "take") {
            const LumPtr<LumAttr> attr = document->createAttribute(first);
            attr->setValue(LumValue(u"new"));
            const LumPtr<LumNode> out = what == "take"    ? map->removeNamedItem(first)
                                        : what == "putNS" ? map->setNamedItemNS(attr.get())
                                                          : map->setNamedItem(attr.get());
            EXPECT_EQ(attr->getRefCount(), what == "take" ? 1 : 2);
            told = out ? utf8(out->getText()) : "none";
            if (out) {
                EXPECT_EQ(out->getRefCount(), 1);
                EXPECT_EQ(static_cast<LumAttr*>(out.get())->getOwnerElement(), nullptr);
            }
        }
        EXPECT_EQ(told, row[1]);
        const std::string now = attributes(*element);
        EXPECT_TRUE(row[2].starts_with("... ") ? now.ends_with(row[2].substr(3)) : now == row[2]) << now;
    }
}

TEST_F(LumElementTest, takesOutItsOwnAttributeNodesAlone) {
    const LumPtr<LumElement> other = document->createElement(b);
    other->setAttribute(b, LumValue(1));
    element->setAttribute(a, LumValue(1));
    const LumPtr<LumAttr> own = element->getAttributeNode(a), owned = other->getAttributeNode(b);
    EXPECT_EQ(own->getRefCount(), 2);
    EXPECT_EQ(element->removeAttributeNode(owned.get()), nullptr) << "another element's attribute is not taken";
    EXPECT_EQ(element->removeAttributeNode(own.get()), own.get());
    EXPECT_EQ(attributes(*other), "b=1");
    EXPECT_EQ(element->setAttributeNode(own.get()), nullptr);
    EXPECT_EQ(attributes(*element), "a=1");
}

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

TEST_F(LumElementTest, clonesCarryNamesAttributesAndFlags) {
    document->loadXml(u"<r xmlns='u:d'><a one='1' p:two='2' xmlns:p='u:p'>x<b>y</b><c/></a></r>");
    LumNode* const original = document->getDocumentElement()->getFirstChild();
    original->appendChild(document->createProcessingInstruction(u"pi x").get());
    original->setFlags(original->getFlags() | 0x100);
    const LumPtr<LumNode> deep = original->cloneNode(true);
    EXPECT_EQ(attributes(static_cast<LumElement&>(*deep)), "one=1 p:two=2 xmlns:p=u:p");
    EXPECT_EQ(deep->getFlags(), original->getFlags());
    EXPECT_EQ(deep->getParentNode(), nullptr);
    EXPECT_EQ(deep->getRefCount(), 1);
    EXPECT_EQ(deep->getLastChild()->getNodeType(), LumNode::TEXT_NODE) << "instructions are cloned as texts";
    original->removeChild(original->getLastChild());
    deep->removeChild(deep->getLastChild());
    EXPECT_EQ(utf8(document->saveXml(deep.get())), utf8(document->saveXml(original)));
    const LumPtr<LumNode> shallow = original->cloneNode(false);
    EXPECT_FALSE(shallow->hasChildNodes());
    EXPECT_EQ(document->cloneNode(true), nullptr);
    EXPECT_EQ(document->createDocumentFragment()->cloneNode(true), nullptr);
}

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

}  // namespace
}  // namespace LumTest
