#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumElement.h>

#include <utility>

namespace LumCommon {

// LumAttr

bool LumAttr::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNode::isA(typeId); }

UnicodeString LumAttr::getTypeName() const { return u"LumAttr"; }

int LumAttr::getNodeType() const { return ATTRIBUTE_NODE; }

UnicodeString LumAttr::getText() const { return getValue().toString(); }

void LumAttr::setText(const UnicodeString& text) { setValue(LumValue(text)); }

// Attr

Attr::Attr(LumDocument* ownerDocument, LumName localName) : LumAttr(ownerDocument) {
    value_.setNameKey(localName.getEnum());
}

UnicodeString Attr::getTypeName() const { return u"Attr"; }

LumName Attr::getNodeName() const { return value_.getNameKey(); }

LumName Attr::getLocalName() const { return value_.getNameKey(); }

LumValue Attr::getNodeValue() const { return getValue(); }

void Attr::setNodeValue(const LumValue& value) { setValue(value); }

LumNode* Attr::getParentNode() const { return nullptr; }

LumNode* Attr::getPreviousSibling() const { return nullptr; }

LumNode* Attr::getNextSibling() const { return nullptr; }

LumValue Attr::getValue() const { return value_; }

void Attr::setValue(const LumValue& value) { takeValue(LumValue(value)); }

void Attr::takeValue(LumValue&& value) noexcept {
    value.setNameKey(value_.getNameKey());
    value_ = std::move(value);
}

LumElement* Attr::getOwnerElement() const { return static_cast<LumElement*>(parent_); }

// AttrNS

AttrNS::AttrNS(LumDocument* ownerDocument, LumName namespaceUri, LumName prefix, LumName localName)
    : Attr(ownerDocument, localName), namespaceUri_(namespaceUri), prefix_(prefix) {}

bool AttrNS::isA(unsigned int typeId) const { return typeId == TYPE_ID || Attr::isA(typeId); }

UnicodeString AttrNS::getTypeName() const { return u"AttrNS"; }

LumName AttrNS::getNodeName() const { return LumNode::getNodeName(); }

LumName AttrNS::getNamespaceUri() const {
    return namespaceUri_.isNull() && !prefix_.isNull() ? lookupNamespaceUri(prefix_) : namespaceUri_;
}

LumName AttrNS::getPrefix() const { return prefix_; }

void AttrNS::setPrefix(LumName prefix) { prefix_ = prefix; }

}  // namespace LumCommon
