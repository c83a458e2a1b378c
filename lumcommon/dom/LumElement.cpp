#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/AttrNodeMap.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/detail/ExactType.h>
#include <lumcommon/dom/detail/QualifiedName.h>
#include <lumcommon/dom/detail/Restored.h>
#include <lumcommon/values/detail/ValueText.h>

#include <utility>

namespace LumCommon {

LumElement::LumElement(LumDocument* ownerDocument) : LumNode(ownerDocument) {}

LumElement::~LumElement() {
    const Attributes old = attributes_;
    attributes_.last = nullptr;
    if (!hasMap_) {
        AttrNodeMap::release(old.last);
        return;
    }
    hasMap_ = 0;
    old.map->forgetOwner();
    old.map->releaseRef();
}

bool LumElement::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNode::isA(typeId); }

UnicodeString LumElement::getTypeName() const { return u"LumElement"; }

int LumElement::getNodeType() const { return ELEMENT_NODE; }

bool LumElement::isElementNode() const { return true; }

AttrNodeMap* LumElement::attributeMap() const {
    if (!hasMap_) {
        auto* const map = new AttrNodeMap(const_cast<LumElement*>(this), attributes_.last, attributeCount_);
        map->addRef();
        attributes_.map = map;
        hasMap_ = 1;
    }
    return attributes_.map;
}

LumNode* LumElement::lastAttribute() const noexcept {
    return hasMap_ ? attributes_.map->AttrNodeMap::getLastNode() : attributes_.last;
}

LumNode* LumElement::findAttribute(LumName name) const { return AttrNodeMap::find(lastAttribute(), name); }

LumNode* LumElement::findAttributeNS(LumName namespaceUri, LumName localName) const {
    if (hasMap_ || attributeCount_ > AttrNodeMap::indexThreshold) {
        return attributeMap()->findByNameNS(namespaceUri, localName);
    }
    return AttrNodeMap::findNS(attributes_.last, namespaceUri, localName);
}

/// Adds an attribute that is not the element's yet, as the last one, and takes over one count.
void LumElement::appendAttribute(LumAttr* attr) {
    if (hasMap_) {
        attributes_.map->append(attr);
    } else {
        attributes_.last = AttrNodeMap::link(attributes_.last, attr, this);
        ++attributeCount_;
    }
}

/// Removes and releases the last attribute. Needs no memory.
void LumElement::takeBack(LumNode* last) noexcept {
    if (hasMap_) {
        attributes_.map->remove(last);
        return;
    }
    LumNode* previous = last;
    while (previous->nextSibling_ != last) previous = previous->nextSibling_;
    previous->nextSibling_ = last->nextSibling_;
    attributes_.last = previous == last ? nullptr : previous;
    --attributeCount_;
    last->parent_ = last->nextSibling_ = nullptr;
    last->releaseRef();
}

/// Calls `setValue`; when it throws, an attribute that has just been added does not stay without its value.
template <class SetValue>
void LumElement::setValueOf(LumAttr* attr, bool isNew, SetValue setValue) {
    try {
        setValue();
    } catch (...) {
        if (isNew && lastAttribute() == attr) takeBack(attr);
        throw;
    }
}

LumNamedNodeMap* LumElement::getAttributes() const { return attributeMap(); }

bool LumElement::hasAttributes() const { return lastAttribute() != nullptr; }

int LumElement::getSourceLineNumber() const { return sourceLine_; }

void LumElement::setSourceLineNumber(int line) { sourceLine_ = line; }

int LumElement::getSourceColumnNumber() const { return sourceColumn_; }

void LumElement::setSourceColumnNumber(int column) { sourceColumn_ = column; }

// Copying

LumValue LumElement::stringValue(std::u16string_view text) { return LumValue(detail::textOf(text)); }

LumPtr<LumElement> LumElement::cloneWithoutChildren() const {
    LumPtr<LumElement> copy = ownerDocument_->createElementNS(getNamespaceUri(), getPrefix(), getLocalName());
    if (!copy) return copy;
    for (const LumNode* attr = AttrNodeMap::first(lastAttribute()); attr;
         attr = AttrNodeMap::after(attr, lastAttribute())) {
        copy->setAttributeNS(attr->getNamespaceUri(), attr->getPrefix(), attr->getLocalName(), attr->getNodeValue());
    }
    copy->setFlags(getFlags());
    return copy;
}

namespace {

using detail::isExactly;
using detail::Restored;

/// Deeper than the documents that people write, yet only a small part of a thread's stack.
constexpr int maxNestedCopies = 100;

/// The deep copies in progress on this thread.
struct DeepCopying {
    int nested = 0;
    const LumNode* asked = nullptr;       // by copyDescendantsInto; null once LumElement has answered
    LumPtr<LumNode>* unfilled = nullptr;  // where it puts its answer
};
constinit thread_local DeepCopying copying;

/// An element whose descendants are being copied.
struct Level {
    const LumNode* child;    // being copied
    LumPtr<LumNode> copy;    // of the element, for the copies of its children
    LumNode* rest;           // the first child that the element's class added to the copy
    LumPtr<LumNode> answer;  // what cloneNode() of the element returned, for the parent's copy

    void addCopyOfChild(LumNode* copyOfChild) {
        if (copyOfChild) rest ? copy->insertBefore(copyOfChild, rest) : copy->appendChild(copyOfChild);
        child = child->getNextSibling();
    }
};

}  // namespace

LumPtr<LumNode> LumElement::cloneNode(bool deep) const {
    LumPtr<LumNode> copy = cloneWithoutChildren();
    if (!copy || !deep) return copy;
    if (copying.nested < maxNestedCopies) {
        const Restored<int> nested(copying.nested, copying.nested + 1);
        Level level{getFirstChild(), copy, nullptr, nullptr};
        while (level.child) level.addCopyOfChild(level.child->cloneNode(true).get());
    } else if (copying.asked == this) {
        copying.asked = nullptr;
        *copying.unfilled = copy;
    } else {
        copyDescendantsInto(copy.get());
    }
    return copy;
}

/// Fills `copy` and the copies of all elements below this one, which are returned to it without their children.
void LumElement::copyDescendantsInto(LumNode* copy) const {
    std::vector<Level> levels;
    levels.push_back({getFirstChild(), LumPtr<LumNode>(copy), nullptr, nullptr});
    for (;;) {
        if (const LumNode* const child = levels.back().child) {
            LumPtr<LumNode> unfilled;
            const Restored<LumPtr<LumNode>*> place(copying.unfilled, &unfilled);
            const Restored<const LumNode*> asked(copying.asked, child);
            LumPtr<LumNode> answer = child->cloneNode(true);
            if (unfilled) {
                LumNode* const rest = unfilled->getFirstChild();
                levels.push_back({child->getFirstChild(), std::move(unfilled), rest, std::move(answer)});
            } else {
                levels.back().addCopyOfChild(answer.get());
            }
        } else {
            const LumPtr<LumNode> answer = std::move(levels.back().answer);
            levels.pop_back();
            if (levels.empty()) return;
            levels.back().addCopyOfChild(answer.get());
        }
    }
}

// Attributes

namespace {

LumAttr* asAttr(LumNode* node) noexcept {
    return node && node->isA(LumAttr::TYPE_ID) ? static_cast<LumAttr*>(node) : nullptr;
}

LumValue valueOf(LumNode* node) {
    const LumAttr* const attr = asAttr(node);
    return attr ? attr->getValue() : LumValue::NULL_VALUE;
}

LumPtr<LumAttr> asAttr(LumPtr<LumNode>&& node) {
    LumAttr* const attr = asAttr(node.get());
    if (attr) static_cast<void>(node.detach());
    return LumPtr<LumAttr>(attr, false);
}

}  // namespace

LumValue LumElement::getAttribute(LumName name) const {
    if (!lastAttribute()) return LumValue();
    return valueOf(findAttribute(name));
}

LumValue LumElement::getAttributeNS(LumName namespaceUri, LumName localName) const {
    return valueOf(findAttributeNS(namespaceUri, localName));
}

void LumElement::setAttribute(LumName name, const LumValue& value) {
    LumAttr* attr = asAttr(findAttribute(name));
    const bool isNew = !attr;
    if (isNew) {
        LumPtr<LumAttr> made = ownerDocument_->createAttribute(name);
        if (!made) return;
        appendAttribute(made.get());
        attr = made.detach();
    }
    setValueOf(attr, isNew, [&] { attr->setValue(value); });
}

void LumElement::setAttributeNS(LumName namespaceUri, LumName qualifiedName, const LumValue& value) {
    const detail::QualifiedName name = detail::splitQualifiedName(qualifiedName);
    setAttributeNS(namespaceUri, name.prefix, name.localName, value);
}

/// The attribute of that name, its prefix set to `prefix`, or else a new one. Null when the document creates none.
LumAttr* LumElement::attributeForSetting(LumName namespaceUri, LumName prefix, LumName localName, bool& isNew) {
    LumAttr* const attr = asAttr(findAttributeNS(namespaceUri, localName));
    isNew = !attr;
    if (attr) {
        attr->setPrefix(prefix);
        return attr;
    }
    LumPtr<LumAttr> made = ownerDocument_->createAttributeNS(namespaceUri, prefix, localName);
    if (made) appendAttribute(made.get());
    return made.detach();
}

void LumElement::setAttributeNS(LumName namespaceUri, LumName prefix, LumName localName, const LumValue& value) {
    bool isNew = false;
    LumAttr* const attr = attributeForSetting(namespaceUri, prefix, localName, isNew);
    if (!attr) return;
    if (&value == &ownerDocument_->loadedValue_ && (isExactly<AttrNS>(*attr) || isExactly<Attr>(*attr))) {
        static_cast<Attr*>(attr)->takeValue(detail::ValueText::share(value));
    } else {
        setValueOf(attr, isNew, [&] { attr->setValue(value); });
    }
}

void LumElement::setAttributeEx(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value) {
    // While it loads, the document has the value already, and the attribute may share the string.
    const LumValue& loaded = ownerDocument_->loadedValue_;
    if (&value == loaded.getStringPointer()) {
        setAttributeNS(namespaceUri, prefix, localName, loaded);
    } else {
        setAttributeNS(namespaceUri, prefix, localName, LumValue(value));
    }
}

void LumElement::removeAttribute(LumName name) {
    if (lastAttribute()) attributeMap()->removeNamedItem(name);
}

void LumElement::removeAttributeNS(LumName namespaceUri, LumName localName) {
    if (lastAttribute()) attributeMap()->removeNamedItemNS(namespaceUri, localName);
}

LumPtr<LumAttr> LumElement::getAttributeNode(LumName name) const {
    return LumPtr<LumAttr>(asAttr(findAttribute(name)));
}

LumPtr<LumAttr> LumElement::getAttributeNodeNS(LumName namespaceUri, LumName localName) const {
    return LumPtr<LumAttr>(asAttr(findAttributeNS(namespaceUri, localName)));
}

template <class Visit>
void LumElement::visitLocal(LumName localName, Visit visit) const {
    for (LumNode* node = AttrNodeMap::first(lastAttribute()); node; node = AttrNodeMap::after(node, lastAttribute())) {
        LumAttr* const attr = node->getLocalName() == localName ? asAttr(node) : nullptr;
        if (attr && !visit(attr)) return;
    }
}

void LumElement::getAttributeNodeLocal(LumName localName, std::vector<LumPtr<LumAttr>>* out) const {
    if (!out) return;
    visitLocal(localName, [out](LumAttr* attr) {
        out->emplace_back(attr);
        return true;
    });
}

void LumElement::getAttributeLocal(LumName localName, std::vector<LumValue>* out) const {
    if (!out) return;
    visitLocal(localName, [out](const LumAttr* attr) {
        out->push_back(attr->getValue());
        return true;
    });
}

LumPtr<LumAttr> LumElement::setAttributeNode(LumAttr* attr) { return asAttr(attributeMap()->setNamedItem(attr)); }

LumPtr<LumAttr> LumElement::setAttributeNodeNS(LumAttr* attr) { return asAttr(attributeMap()->setNamedItemNS(attr)); }

LumPtr<LumAttr> LumElement::removeAttributeNode(LumAttr* oldAttr) {
    if (!oldAttr) {
        throwCommonError(LumErrorCodeLumLIB::NullArgument, LumCommonErrorSource::ElementRemoveAttributeNode,
                         u"oldAttr");
    }
    return attributeMap()->removeAttrNode(oldAttr);
}

bool LumElement::hasAttribute(LumName name) const { return findAttribute(name) != nullptr; }

bool LumElement::hasAttributeNS(LumName namespaceUri, LumName localName) const {
    return findAttributeNS(namespaceUri, localName) != nullptr;
}

bool LumElement::hasAttributeLocal(LumName localName) const {
    bool isFound = false;
    visitLocal(localName, [&isFound](const LumAttr*) { return !(isFound = true); });
    return isFound;
}

// Element, ElementNS

Element::Element(LumDocument* ownerDocument, LumName prefix, LumName localName)
    : LumElement(ownerDocument), prefix_(prefix), localName_(localName) {}

bool Element::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumElement::isA(typeId); }

UnicodeString Element::getTypeName() const { return u"Element"; }

LumName Element::getLocalName() const { return localName_; }

LumName Element::getNamespaceUri() const { return lookupNamespaceUri(prefix_); }

LumName Element::getPrefix() const { return prefix_; }

void Element::setPrefix(LumName prefix) { prefix_ = prefix; }

ElementNS::ElementNS(LumDocument* ownerDocument, LumName namespaceUri, LumName prefix, LumName localName)
    : Element(ownerDocument, prefix, localName), namespaceUri_(namespaceUri) {}

bool ElementNS::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumElement::isA(typeId); }

UnicodeString ElementNS::getTypeName() const { return u"ElementNS"; }

LumName ElementNS::getNamespaceUri() const { return namespaceUri_; }

}  // namespace LumCommon
