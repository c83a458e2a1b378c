#pragma once

#include <lumcommon/dom/LumNode.h>

namespace LumCommon {

class LumElement;

/// An attribute: a name and a typed value.
///
/// An attribute belongs to at most one element, but is not its child: getParentNode(), getPreviousSibling() and
/// getNextSibling() return null. LumElement::getAttributes() walks the attributes of an element. cloneNode() returns
/// null: attributes are copied together with their element.
///
/// Ownership: created by LumDocument, or by an element whose attribute is set; the element's map holds one count. An
/// attribute that somebody still holds survives its element, and then has no owner element.
/// Errors: nothing here throws unless memory runs out; for the errors of adding an attribute see AttrNodeMap.
/// Threads: as for its tree, see LumNode.
class LUM_API LumAttr : public LumNode {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xC5B6A2E2u;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    int getNodeType() const override;
    /// The value as LumValue::toString() writes it.
    UnicodeString getText() const override;
    /// Makes the value a string. The text is not parsed.
    void setText(const UnicodeString& text) override;

    /// A copy of the value; if that is an object or a compound, the two share it.   Cost: that of copying a LumValue.
    virtual LumValue getValue() const = 0;
    /// Stores a copy of `value`. The name of the attribute does not change.
    virtual void setValue(const LumValue& value) = 0;
    /// The element that the attribute belongs to; null when there is none. Borrowed.
    virtual LumElement* getOwnerElement() const = 0;

protected:
    using LumNode::LumNode;
};

/// An attribute without prefix and namespace. Its type identifier is that of LumAttr, so isA() does not tell the two
/// apart. The value carries the attribute's name in its name bits (see LumValue::getNameKey), and so do its copies.
class LUM_API Attr : public LumAttr {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = LumAttr::TYPE_ID;

    /// For derived classes and documents; everybody else calls LumDocument::createAttribute().
    /// @param ownerDocument  not counted, not null.
    /// @param localName  never null.
    Attr(LumDocument* ownerDocument, LumName localName);

    UnicodeString getTypeName() const override;
    LumName getNodeName() const override;
    LumName getLocalName() const override;
    /// The same as getValue() and setValue().
    LumValue getNodeValue() const override;
    void setNodeValue(const LumValue& value) override;
    /// Null, as are both siblings; see getOwnerElement().
    LumNode* getParentNode() const override;
    LumNode* getPreviousSibling() const override;
    LumNode* getNextSibling() const override;
    LumValue getValue() const override;
    void setValue(const LumValue& value) override;
    LumElement* getOwnerElement() const override;

    /// The value, without copying it. The reference is valid until the value changes or the attribute dies.
    const LumValue& peekValue() const noexcept { return value_; }

private:
    friend class AttrNodeMap;
    friend class LumDocument;
    friend class LumElement;

    /// As setValue(), of a string that need not be copied.
    void takeValue(LumValue&& value) noexcept;

    LumValue value_;
};

/// An attribute with a prefix, a namespace or both.
class LUM_API AttrNS : public Attr {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x8EEE55FDu;

    /// For derived classes and documents; everybody else calls LumDocument::createAttributeNS().
    /// @param ownerDocument  not counted, not null.
    /// @param namespaceUri   null: looked up from the prefix, see getNamespaceUri().
    /// @param prefix  null for none.
    /// @param localName  never null.
    AttrNS(LumDocument* ownerDocument, LumName namespaceUri, LumName prefix, LumName localName);

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    /// "prefix:local", interned at each call, or the local name when the prefix is null.
    LumName getNodeName() const override;
    /// The stored namespace. When that is null and there is a prefix, the namespace is looked up from the owner element
    /// at each call; null when the prefix is not declared or there is no owner.   Cost: constant; linear in the depth
    /// and the attributes met when it is looked up.
    LumName getNamespaceUri() const override;
    LumName getPrefix() const override;
    /// Changes the prefix alone; a stored namespace stays.
    void setPrefix(LumName prefix) override;

private:
    friend class AttrNodeMap;

    LumName namespaceUri_;
    LumName prefix_;
};

}  // namespace LumCommon
