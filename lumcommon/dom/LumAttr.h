#pragma once

#include <lumcommon/dom/LumNode.h>

namespace LumCommon {

class LumElement;

/// An attribute. It is no child of its element: parent and siblings are null.
class LUM_API LumAttr : public LumNode {
public:
    static constexpr unsigned int TYPE_ID = 0xC5B6A2E2u;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    int getNodeType() const override;
    UnicodeString getText() const override;
    void setText(const UnicodeString& text) override;

    virtual LumValue getValue() const = 0;
    virtual void setValue(const LumValue& value) = 0;
    /// The element that the attribute belongs to, else null. Borrowed.
    virtual LumElement* getOwnerElement() const = 0;

protected:
    using LumNode::LumNode;
};

/// An attribute without prefix and namespace. Its name sits in the name bits of its value.
class LUM_API Attr : public LumAttr {
public:
    static constexpr unsigned int TYPE_ID = LumAttr::TYPE_ID;

    Attr(LumDocument* ownerDocument, LumName localName);

    UnicodeString getTypeName() const override;
    LumName getNodeName() const override;
    LumName getLocalName() const override;
    LumValue getNodeValue() const override;
    void setNodeValue(const LumValue& value) override;
    LumNode* getParentNode() const override;
    LumNode* getPreviousSibling() const override;
    LumNode* getNextSibling() const override;
    LumValue getValue() const override;
    void setValue(const LumValue& value) override;
    LumElement* getOwnerElement() const override;

    /// The value without copying it. Valid until it changes.
    const LumValue& peekValue() const noexcept { return value_; }

private:
    friend class AttrNodeMap;
    friend class LumElement;

    void takeValue(LumValue&& value) noexcept;

    LumValue value_;
};

/// An attribute with prefix and namespace. With a prefix and a null namespace the namespace is looked up from the
/// owner element each time it is asked for.
class LUM_API AttrNS : public Attr {
public:
    static constexpr unsigned int TYPE_ID = 0x8EEE55FDu;

    AttrNS(LumDocument* ownerDocument, LumName namespaceUri, LumName prefix, LumName localName);

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getNodeName() const override;
    LumName getNamespaceUri() const override;
    LumName getPrefix() const override;
    void setPrefix(LumName prefix) override;

private:
    friend class AttrNodeMap;

    LumName namespaceUri_;
    LumName prefix_;
};

}  // namespace LumCommon
