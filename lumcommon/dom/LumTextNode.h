#pragma once

#include <lumcommon/dom/LumNode.h>

namespace LumCommon {

/// A run of character data.
class LUM_API LumTextNode : public LumNode {
public:
    static constexpr unsigned int TYPE_ID = 0x92151179u;

    LumTextNode(LumDocument* ownerDocument, const UnicodeString& text) : LumNode(ownerDocument), text_(text) {}

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getLocalName() const override;
    LumValue getNodeValue() const override;
    void setNodeValue(const LumValue& value) override;
    int getNodeType() const override;
    bool isText() const override;
    UnicodeString getText() const override;
    void setText(const UnicodeString& text) override;
    /// The owner document's createTextNode of the same text.
    LumPtr<LumNode> cloneNode(bool deep) const override;

    /// In UTF-16 code units.
    virtual int getLength() const;
    virtual UnicodeString getData() const;
    virtual void setData(const UnicodeString& text);

private:
    UnicodeString text_;
};

/// A processing instruction; its text is everything between "<?" and "?>". It answers and clones as a text node.
class LUM_API LumPINode : public LumTextNode {
public:
    static constexpr unsigned int TYPE_ID = 0x1A6FA3CFu;

    using LumTextNode::LumTextNode;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    int getNodeType() const override;
};

/// A holder of nodes that are to be moved together.
class LUM_API LumDocumentFragment : public LumNode {
public:
    static constexpr unsigned int TYPE_ID = 0x319C59B1u;

    explicit LumDocumentFragment(LumDocument* ownerDocument) : LumNode(ownerDocument) {}

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getLocalName() const override;
    int getNodeType() const override;
};

}  // namespace LumCommon
