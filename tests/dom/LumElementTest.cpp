#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/ExpectError.h"
#include "support/Utf8.h"

namespace LumTest {
namespace {

using namespace LumCommon;

LumName name(const std::string& text) { return LumName(UnicodeString::fromUTF8(text)); }

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
    std::string text;
    int index = 0;
    const LumNode* previous = nullptr;
    for (const LumNode* attr = map.getFirstNode(); attr; attr = map.getNextNode(attr)) {
        EXPECT_EQ(map.item(index++), attr);
        EXPECT_EQ(map.getPreviousNode(attr), previous);
        EXPECT_EQ(static_cast<const LumAttr*>(attr)->getOwnerElement(), &element);
        EXPECT_EQ(attr->getParentNode(), nullptr);
        EXPECT_EQ(attr->getNextSibling(), nullptr);
        previous = attr;
        text += utf8(attr->getNodeName().getString()) + "=" + utf8(attr->getText()) + " ";
    }
    EXPECT_EQ(map.getLastNode(), previous);
    EXPECT_EQ(map.getCount(), index);
    EXPECT_EQ(map.item(index), nullptr);
    EXPECT_EQ(map.item(-1), nullptr);
    EXPECT_EQ(element.hasAttributes(), index > 0);
    return text;
}

class LumElementTest : public testing::Test {
protected:
    LumPtr<LumDocument> document{new LumDocument};
    LumPtr<LumElement> element = document->createElement(NAME_block);
    // Names live as long as some document does.
    const LumName a{u"a"}, b{u"b"}, c{u"c"}, uri{u"u:x"};
};

TEST_F(LumElementTest, keepsTheOrderThroughAddingReplacingAndRemoving) {
    EXPECT_EQ(attributes(*element), "");
    EXPECT_TRUE(element->getAttribute(a).isNull());
    element->setAttribute(a, LumValue(1));
    element->setAttributeNS(uri, name("p:b"), LumValue(2));
    element->setAttributeNS(LumName(), LumName(), c, LumValue(3));
    EXPECT_EQ(attributes(*element), "a=1 p:b=2 c=3 ");
    element->setAttributeNS(uri, name("q:b"), LumValue(4));
    EXPECT_EQ(attributes(*element), "a=1 q:b=4 c=3 ") << "the prefix of an attribute found by namespace is replaced";

    struct Step {
        const char* fault;
        const char* set;  // null: remove
        const char* other;
        const char* returned;  // text of what comes back
        const char* left;
        bool comparesNamespaces = false;
    };
    const Step steps[] = {
        {"a replaced first attribute moves", "a", nullptr, "1", "a=new q:b=4 c=3 "},
        {"a replaced last attribute moves", "c", nullptr, "3", "a=new q:b=4 c=new "},
        {"qualified names are not compared", "q:b", nullptr, "4", "a=new q:b=new c=new "},
        {"a new one is not the last", "d", nullptr, nullptr, "a=new q:b=new c=new d=new "},
        {"the ring breaks at the last", nullptr, "d", "new", "a=new q:b=new c=new "},
        {"the ring breaks at the first", nullptr, "a", "new", "q:b=new c=new "},
        {"removing what is absent does something", nullptr, "z", nullptr, "q:b=new c=new "},
        {"removing compares local names", nullptr, "b", nullptr, "q:b=new c=new "},
        {"the ring breaks at two", nullptr, "q:b", "new", "c=new "},
        {"the map is not empty after the last", nullptr, "c", "new", ""},
        {"an emptied map forgets its element", "e", nullptr, nullptr, "e=new "},
        {"an only attribute is replaced and its ring lost", "e", nullptr, "new", "e=new "},
        {"a declaration is no attribute", "xmlns:x", nullptr, nullptr, "e=new xmlns:x=new "},
        {"a second one replaces the first", "xmlns:y", nullptr, nullptr, "e=new xmlns:x=new xmlns:y=new "},
        {"a prefix means nothing before the attribute has its owner: a plain one is lost", "x:e", nullptr, nullptr,
         "e=new xmlns:x=new xmlns:y=new x:e=new ", true},
        {"a prefix means nothing before the attribute has its owner: the same name stands twice", "y:e", nullptr, "new",
         "e=new xmlns:x=new xmlns:y=new y:e=new ", true},
    };
    LumNamedNodeMap* const map = element->getAttributes();
    for (const Step& step : steps) {
        SCOPED_TRACE(step.fault);
        LumPtr<LumNode> returned;
        if (step.set) {
            const LumPtr<LumAttr> attr = document->createAttribute(name(step.set));
            attr->setValue(LumValue(u"new"));
            returned = step.comparesNamespaces ? map->setNamedItemNS(attr.get()) : map->setNamedItem(attr.get());
            EXPECT_EQ(attr->getRefCount(), 2);
        } else {
            returned = map->removeNamedItem(name(step.other));
        }
        EXPECT_EQ(returned ? utf8(returned->getText()) : "none", step.returned ? step.returned : "none");
        if (returned) {
            EXPECT_EQ(returned->getRefCount(), 1);
            EXPECT_EQ(static_cast<LumAttr*>(returned.get())->getOwnerElement(), nullptr);
        }
        EXPECT_EQ(attributes(*element), step.left);
    }
}

TEST_F(LumElementTest, findsByQualifiedNameNamespaceAndLocalName) {
    element->setAttribute(name("p:a"), LumValue(1));  // its namespace is looked up
    element->setAttributeNS(uri, name("q:a"), LumValue(2));
    element->setAttribute(a, LumValue(3));
    EXPECT_EQ(element->getAttribute(name("p:a")).getIntegerValue(), 1);
    EXPECT_EQ(element->getAttribute(a).getIntegerValue(), 3) << "local names of prefixed attributes do not count";
    EXPECT_EQ(element->getAttributeNS(uri, a).getIntegerValue(), 2);
    EXPECT_EQ(element->getAttributeNS(LumName(), a).getIntegerValue(), 1) << "the prefix is unbound: no namespace";
    element->setAttribute(name("xmlns:p"), LumValue(u"u:x"));
    EXPECT_EQ(element->getAttributeNS(uri, a).getIntegerValue(), 1) << "a declaration changes what is found";
    EXPECT_EQ(element->getAttributeNS(LumName(), a).getIntegerValue(), 3);
    std::vector<LumPtr<LumAttr>> nodes;
    std::vector<LumValue> values;
    element->getAttributeNodeLocal(a, &nodes);
    element->getAttributeLocal(a, &values);
    EXPECT_EQ(nodes.size(), 3u);
    ASSERT_EQ(values.size(), 3u);
    EXPECT_EQ(values[1].getIntegerValue(), 2);
    element->getAttributes()->getNamedItemLocal(a, nullptr);
    EXPECT_TRUE(element->hasAttributeLocal(a));
    EXPECT_FALSE(element->hasAttributeLocal(b));
    EXPECT_FALSE(element->hasAttribute(name("r:a")));
    EXPECT_TRUE(element->hasAttributeNS(NAME_NS_XMLNS, name("p")));
    EXPECT_EQ(element->getAttributeNode(b), nullptr);
    element->removeAttributeNS(uri, a);
    element->removeAttribute(name("zz"));
    EXPECT_EQ(attributes(*element), "q:a=2 a=3 xmlns:p=u:x ");
}

TEST_F(LumElementTest, refusesBadAttributesAndChangesNothing) {
    const LumPtr<LumDocument> otherDocument(new LumDocument);
    const LumPtr<LumElement> otherElement = document->createElement(b);
    otherElement->setAttribute(b, LumValue(1));
    element->setAttribute(a, LumValue(1));
    LumNamedNodeMap* const map = element->getAttributes();
    const LumPtr<LumAttr> foreign = otherDocument->createAttribute(a);
    const LumPtr<LumTextNode> text = document->createTextNode(u"t");
    const LumPtr<LumTextNode> foreignText = otherDocument->createTextNode(u"t");
    const LumPtr<LumAttr> own = element->getAttributeNode(a);
    const LumPtr<LumAttr> owned = otherElement->getAttributeNode(b);
    struct Case {
        const char* fault;
        LumNode* node;
        unsigned code;
        const char* message;
    };
    const Case cases[] = {
        {"null is dereferenced", nullptr, 0x803, "arg is null."},
        {"documents are mixed", foreign.get(), 0x806, "arg is created from a different document."},
        {"the kind is checked before the document", foreignText.get(), 0x806,
         "arg is created from a different document."},
        {"a text becomes an attribute", text.get(), 0x807, "arg is not an LumAttr object."},
        {"an attribute has two owners", owned.get(), 0x808,
         "arg is an LumAttr that is already an attribute of another LumElement object."},
        {"an attribute replaces itself", own.get(), 0x808,
         "arg is an LumAttr that is already an attribute of another LumElement object."},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.fault);
        const std::string message = std::string("SYSTEM ERROR: ") + row.message;
        expectError(row.code, message, "LumCommon::AttrNodeMap::setNamedItem", [&] { map->setNamedItem(row.node); });
        expectError(row.code, message, "LumCommon::AttrNodeMap::setNamedItemNS",
                    [&] { map->setNamedItemNS(row.node); });
        EXPECT_EQ(attributes(*element), "a=1 ");
    }
    EXPECT_EQ(own->getRefCount(), 2);
    EXPECT_EQ(foreign->getRefCount(), 1);
    expectError(0x803, "SYSTEM ERROR: oldAttr is null.", "LumCommon::LumElement::removeAttributeNode",
                [&] { element->removeAttributeNode(nullptr); });
    EXPECT_EQ(element->removeAttributeNode(owned.get()), nullptr) << "another element's attribute is not taken";
    EXPECT_EQ(element->removeAttributeNode(own.get()), own.get());
    EXPECT_EQ(attributes(*otherElement), "b=1 ");
    EXPECT_EQ(element->setAttributeNode(own.get()), nullptr);
    EXPECT_EQ(attributes(*element), "a=1 ");
}

TEST_F(LumElementTest, attributeValuesKeepTheirKindAndName) {
    element->setAttribute(a, LumValue(1.5f, UNIT_PT));
    const LumPtr<LumAttr> attr = element->getAttributeNode(a);
    EXPECT_EQ(attr->getValue(), LumValue(1.5f, UNIT_PT));
    attr->setNodeValue(element->getAttribute(a));
    attr->setValue(LumValue(LumName(b)));
    EXPECT_EQ(attr->getLocalName(), a) << "a value brings its own name along";
    attr->setText(u"long enough to need memory of its own, which moves");
    EXPECT_EQ(attr->getNodeValue().getKind(), KIND_STRING);
    EXPECT_EQ(utf8(attr->getText()), "long enough to need memory of its own, which moves");
    EXPECT_EQ(attr->getNodeName(), a);
}

TEST_F(LumElementTest, manyAttributesAreFoundAsInAShortList) {
    // Past a number of attributes lookups take another road; each kind of change must keep it true.
    std::vector<LumName> names;
    for (int i = 0; i < 40; ++i) names.push_back(name("n" + std::to_string(i)));
    for (const LumName& n : names) element->setAttributeNS(LumName(), LumName(), n, LumValue(1));
    element->setAttributeNS(uri, name("p:n3"), LumValue(2));
    const auto valueNS = [&](LumName ns, LumName n) { return element->getAttributeNS(ns, n).getIntegerValue(); };
    EXPECT_EQ(valueNS(uri, names[3]), 2);
    EXPECT_EQ(valueNS(LumName(), names[3]), 1);
    EXPECT_EQ(valueNS(uri, names[4]), 0);
    element->setAttributeNS(LumName(), LumName(), names[3], LumValue(5));
    EXPECT_EQ(element->getAttributes()->getCount(), 41) << "an indexed attribute is added twice";
    const LumPtr<LumAttr> removed = element->removeAttributeNode(element->getAttributeNode(names[3]).get());
    EXPECT_FALSE(element->hasAttributeNS(LumName(), names[3])) << "a removed attribute is still found";
    const LumPtr<LumAttr> other = document->createAttribute(names[5]);
    other->setValue(LumValue(9));
    const LumPtr<LumAttr> replaced = element->setAttributeNodeNS(other.get());
    EXPECT_EQ(valueNS(LumName(), names[5]), 9) << "a replaced attribute is still found";
    element->setAttributeNode(removed.get());
    EXPECT_EQ(valueNS(LumName(), names[3]), 5);
    // The namespace of this one depends on declarations around it.
    element->setAttribute(name("r:z"), LumValue(7));
    EXPECT_EQ(valueNS(uri, name("z")), 0);
    element->setAttribute(name("xmlns:r"), LumValue(u"u:x"));
    EXPECT_EQ(valueNS(uri, name("z")), 7);
    EXPECT_EQ(valueNS(uri, names[3]), 2);
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
    EXPECT_EQ(attributes(static_cast<LumElement&>(*deep)), "one=1 p:two=2 xmlns:p=u:p ");
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
