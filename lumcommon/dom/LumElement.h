#pragma once

#include <lumcommon/dom/LumNode.h>

#include <concepts>
#include <string_view>
#include <vector>

namespace LumCommon {

class AttrNodeMap;
class LumAttr;

/// An element: a node with attributes and a position in its source.
///
/// Attributes are kept in the order in which they were added. Operations that take one name match the qualified name
/// ("prefix:local"), whatever the namespace; those that end in NS match namespace and local name, whatever the prefix;
/// those that end in Local match the local name alone.
///
/// Ownership: created by LumDocument::createElement() and createElementNS(); the attribute map owns one count of
/// each attribute. Plain pointers are borrowed, a LumPtr hands over a count.
/// Cost: attribute lookups are linear in the number of attributes; by namespace they are constant on average past 32,
/// see AttrNodeMap.
/// Threads: as for its tree, see LumNode.
class LUM_API LumElement : public LumNode {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xD31942AAu;

    /// The attributes that somebody still holds stay, without an owner element.
    ~LumElement() override;
    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    int getNodeType() const override;
    bool isElementNode() const override;
    /// Never null: an AttrNodeMap, made when it is first asked for. Borrowed.
    LumNamedNodeMap* getAttributes() const override;
    bool hasAttributes() const override;
    /// A copy made by the owner document's createElementNS, with the namespace as it resolves now, all attributes in
    /// order, the flags and, when `deep`, all descendants. Null when the document does not create the element;
    /// descendants that it does not create are left out. Source positions are not copied.
    ///
    /// Derived classes: with `deep`, cloneNode(true) is called for every child in document order, once the copy of its
    /// parent exists, and the result is appended to that copy. An override that calls this operation first gets a
    /// complete copy while at most 100 deep copies are nested. In elements further in it gets a copy that has no
    /// children yet; they are inserted after the override has returned, before whatever it has added. So the use of the
    /// stack is bounded, and the outermost caller gets a complete copy at any depth.
    [[nodiscard]] LumPtr<LumNode> cloneNode(bool deep) const override;
    /// -1 until set; the loader sets the position of the start tag.
    int getSourceLineNumber() const override;
    void setSourceLineNumber(int line) override;
    int getSourceColumnNumber() const override;
    void setSourceColumnNumber(int column) override;

    /// The value of the attribute; LumValue::NULL_VALUE when it is absent.
    virtual LumValue getAttribute(LumName name) const;
    /// The same by namespace and local name.
    virtual LumValue getAttributeNS(LumName namespaceUri, LumName localName) const;
    /// Sets the value of the attribute, which is created by the document and added at the end when it is absent.
    /// Nothing happens when the document does not create it. The NS forms give an attribute that exists the new prefix.
    virtual void setAttribute(LumName name, const LumValue& value);
    /// The same by namespace; a new attribute gets the prefix of the qualified name.
    virtual void setAttributeNS(LumName namespaceUri, LumName qualifiedName, const LumValue& value);
    /// The same with prefix and local name apart; a null prefix is none.
    virtual void setAttributeNS(LumName namespaceUri, LumName prefix, LumName localName, const LumValue& value);
    /// The same with a text in UTF-16 as the value: a literal, std::u16string and so on. For UTF-8 see toText().
    ///
    ///     element->setAttribute(NAME_id, u"chapter");
    template <class Text>
    requires(std::convertible_to<const Text&, std::u16string_view> &&
             !std::convertible_to<const Text&, LumValue>) void setAttribute(LumName name, const Text& text) {
        setAttribute(name, stringValue(text));
    }
    /// The same with a namespace.
    template <class Text>
    requires(std::convertible_to<const Text&, std::u16string_view> &&
             !std::convertible_to<const Text&, LumValue>) void setAttributeNS(LumName namespaceUri,
                                                                              LumName qualifiedName, const Text& text) {
        setAttributeNS(namespaceUri, qualifiedName, stringValue(text));
    }
    /// The same with a namespace.
    template <class Text>
    requires(std::convertible_to<const Text&, std::u16string_view> &&
             !std::convertible_to<const Text&, LumValue>) void setAttributeNS(LumName namespaceUri, LumName prefix,
                                                                              LumName localName, const Text& text) {
        setAttributeNS(namespaceUri, prefix, localName, stringValue(text));
    }
    /// Nothing happens when the attribute is absent.
    virtual void removeAttribute(LumName name);
    /// The same by namespace and local name.
    virtual void removeAttributeNS(LumName namespaceUri, LumName localName);
    /// The attribute; null when it is absent.
    virtual LumPtr<LumAttr> getAttributeNode(LumName name) const;
    /// The same by namespace and local name.
    virtual LumPtr<LumAttr> getAttributeNodeNS(LumName namespaceUri, LumName localName) const;
    /// Appends every attribute with that local name to `*out`, in order. `out` may be null.
    virtual void getAttributeNodeLocal(LumName localName, std::vector<LumPtr<LumAttr>>* out) const;
    /// Add the attribute at the end, or put it in the place of the one with the same name. Return the replaced
    /// attribute, null when there was none. Errors: 0x803, 0x806, 0x807, 0x808, see AttrNodeMap; nothing is changed
    /// then.
    virtual LumPtr<LumAttr> setAttributeNode(LumAttr* attr);
    /// The same; the attribute in whose place it is put has its namespace and local name.
    virtual LumPtr<LumAttr> setAttributeNodeNS(LumAttr* attr);
    /// Takes the attribute out and returns it; returns null when it is not this element's. Null throws 0x803.
    virtual LumPtr<LumAttr> removeAttributeNode(LumAttr* oldAttr);
    /// Whether there is an attribute with that qualified name.
    virtual bool hasAttribute(LumName name) const;
    /// Whether there is an attribute with that namespace and local name.
    virtual bool hasAttributeNS(LumName namespaceUri, LumName localName) const;
    /// Whether there is an attribute with that local name.
    virtual bool hasAttributeLocal(LumName localName) const;
    /// Called by the loader for each attribute, with the effect of setAttributeNS(); derived classes may override it.
    virtual void setAttributeEx(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value);

    /// Appends the value of every attribute with that local name to `*out`, in order. `out` may be null.
    void getAttributeLocal(LumName localName, std::vector<LumValue>* out) const;

protected:
    /// An element without attributes. The document is not counted.
    explicit LumElement(LumDocument* ownerDocument);

private:
    friend class LumDocument;
    friend class detail::NodeFields;

    /// A string.   Errors: std::bad_alloc.
    static LumValue stringValue(std::u16string_view text);
    AttrNodeMap* attributeMap() const;
    LumNode* lastAttribute() const noexcept;
    LumNode* findAttribute(LumName name) const;
    LumNode* findAttributeNS(LumName namespaceUri, LumName localName) const;
    void appendAttribute(LumAttr* attr);
    LumPtr<LumElement> cloneWithoutChildren() const;
    void copyDescendantsInto(LumNode* copy) const;
    void takeBack(LumNode* last) noexcept;
    LumAttr* attributeForSetting(LumName namespaceUri, LumName prefix, LumName localName, bool& isNew);
    template <class SetValue>
    void setValueOf(LumAttr* attr, bool isNew, SetValue setValue);
    template <class Visit>
    void visitLocal(LumName localName, Visit visit) const;

    // The attributes form a ring. A map of them is made when somebody asks for it, or for its index of many names.
    union Attributes {
        LumNode* last;     // null when there are none
        AttrNodeMap* map;  // when hasMap_: one count held
    };
    mutable Attributes attributes_{.last = nullptr};
    int sourceLine_ = -1;
    int sourceColumn_ = -1;
    mutable unsigned attributeCount_ : 31 = 0;  // without a map
    mutable unsigned hasMap_ : 1 = 0;
};

/// An element created from a qualified name. Its namespace is that of its prefix in the tree, looked up at each call,
/// and so changes with the place of the element; null when the prefix is not declared.   Cost of getNamespaceUri():
/// linear in the depth and the attributes met.
class LUM_API Element : public LumElement {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xD27D366Cu;

    /// @param ownerDocument  not counted, not null.
    /// @param prefix  null for none.
    /// @param localName  never null.
    Element(LumDocument* ownerDocument, LumName prefix, LumName localName);

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getLocalName() const override;
    LumName getNamespaceUri() const override;
    LumName getPrefix() const override;
    void setPrefix(LumName prefix) override;

private:
    friend class detail::NodeFields;

    LumName prefix_;
    LumName localName_;
};

/// An element that stores its namespace; changing the prefix does not change it. isA() does not accept Element's
/// identifier, although Element is the base class.
class LUM_API ElementNS : public Element {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xC08077FCu;

    /// For derived classes and documents; everybody else calls LumDocument::createElementNS(). The document is not
    /// counted and not null.
    ElementNS(LumDocument* ownerDocument, LumName namespaceUri, LumName prefix, LumName localName);

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getNamespaceUri() const override;

private:
    friend class detail::NodeFields;

    LumName namespaceUri_;
};

}  // namespace LumCommon
