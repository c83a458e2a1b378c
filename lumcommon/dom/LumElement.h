#pragma once

#include <lumcommon/dom/LumNode.h>

#include <vector>

namespace LumCommon {

class AttrNodeMap;
class LumAttr;

/// An element: a node with attributes and a position in its source.
class LUM_API LumElement : public LumNode {
public:
    static constexpr unsigned int TYPE_ID = 0xD31942AAu;

    ~LumElement() override;
    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    int getNodeType() const override;
    bool isElementNode() const override;
    /// Never null. Borrowed.
    LumNamedNodeMap* getAttributes() const override;
    bool hasAttributes() const override;
    /// A copy made by the owner document's createElementNS with the namespace as resolved now, all attributes in order
    /// and, when `deep`, all descendants. Null when the document makes no such element; descendants that it does not
    /// make are left out. Source positions are not copied.
    ///
    /// Derived classes: with `deep`, every child is asked for cloneNode(true), after the copy of its parent has been
    /// made and in document order, and what it answers is appended. A class that overrides cloneNode and asks this
    /// operation first gets a whole copy, as long as at most 100 deep copies stand inside each other: past that, depth
    /// of the tree would become depth of the stack. Elements further in are asked the same, but this operation answers
    /// them with a copy that is still without children; these are put in, before whatever the class has added, when the
    /// class has answered. The copy that the outermost caller gets is whole whatever its depth.
    LumPtr<LumNode> cloneNode(bool deep) const override;
    int getSourceLineNumber() const override;
    void setSourceLineNumber(int line) override;
    int getSourceColumnNumber() const override;
    void setSourceColumnNumber(int column) override;

    /// The value of the attribute with that qualified name; null value when absent.   Cost of all lookups: linear.
    virtual LumValue getAttribute(LumName name) const;
    virtual LumValue getAttributeNS(LumName namespaceUri, LumName localName) const;
    /// Sets the value of the attribute, adding it at the end when absent.
    virtual void setAttribute(LumName name, const LumValue& value);
    virtual void setAttributeNS(LumName namespaceUri, LumName qualifiedName, const LumValue& value);
    virtual void setAttributeNS(LumName namespaceUri, LumName prefix, LumName localName, const LumValue& value);
    virtual void removeAttribute(LumName name);
    virtual void removeAttributeNS(LumName namespaceUri, LumName localName);
    virtual LumPtr<LumAttr> getAttributeNode(LumName name) const;
    virtual LumPtr<LumAttr> getAttributeNodeNS(LumName namespaceUri, LumName localName) const;
    /// Appends every attribute with that local name to `*out`, in order.
    virtual void getAttributeNodeLocal(LumName localName, std::vector<LumPtr<LumAttr>>* out) const;
    /// Return the replaced attribute, null when there was none. Errors: 0x803, 0x806, 0x807, 0x808.
    virtual LumPtr<LumAttr> setAttributeNode(LumAttr* attr);
    virtual LumPtr<LumAttr> setAttributeNodeNS(LumAttr* attr);
    /// Returns the attribute, null when it is not this element's. Null throws 0x803.
    virtual LumPtr<LumAttr> removeAttributeNode(LumAttr* oldAttr);
    virtual bool hasAttribute(LumName name) const;
    virtual bool hasAttributeNS(LumName namespaceUri, LumName localName) const;
    virtual bool hasAttributeLocal(LumName localName) const;
    /// Called by the loader for each attribute; for subclasses.
    virtual void setAttributeEx(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value);

    /// Appends the values of every attribute with that local name to `*out`, in order.
    void getAttributeLocal(LumName localName, std::vector<LumValue>* out) const;

protected:
    explicit LumElement(LumDocument* ownerDocument);

private:
    AttrNodeMap* attributeMap() const;
    LumPtr<LumElement> cloneWithoutChildren() const;
    void copyDescendantsInto(LumNode* copy) const;
    LumAttr* attributeForSetting(LumName namespaceUri, LumName prefix, LumName localName);
    template <class Visit>
    void visitLocal(LumName localName, Visit visit) const;

    mutable AttrNodeMap* attributes_ = nullptr;  // one count held; made when first asked for
    int sourceLine_ = -1;
    int sourceColumn_ = -1;
};

/// An element created from a qualified name; its namespace is looked up in the tree each time it is asked for.
class LUM_API Element : public LumElement {
public:
    static constexpr unsigned int TYPE_ID = 0xD27D366Cu;

    Element(LumDocument* ownerDocument, LumName prefix, LumName localName);

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getLocalName() const override;
    LumName getNamespaceUri() const override;
    LumName getPrefix() const override;
    void setPrefix(LumName prefix) override;

private:
    LumName prefix_;
    LumName localName_;
};

/// An element with a namespace of its own. isA() does not accept Element's identifier.
class LUM_API ElementNS : public Element {
public:
    static constexpr unsigned int TYPE_ID = 0xC08077FCu;

    ElementNS(LumDocument* ownerDocument, LumName namespaceUri, LumName prefix, LumName localName);

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getNamespaceUri() const override;

private:
    LumName namespaceUri_;
};

}  // namespace LumCommon
