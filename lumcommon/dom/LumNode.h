#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/values/LumValue.h>

namespace LumCommon {

enum class LumCommonErrorSource : int;
class LumDocument;
class LumNamedNodeMap;
class LumNodeIterator;
class LumNodeList;

namespace detail {
class NodeFields;
}

/// A node of the document tree.
///
/// A parent owns one count of each child; parent, sibling and owner-document links are plain pointers. So a subtree
/// lives while a LumPtr holds its root or while it is part of a tree that is held. A plain pointer that an operation
/// returns is borrowed; a LumPtr hands over a count.
///
/// A node whose content is still being loaded asks its document for more input when it is asked for a child or a
/// following sibling that has not been read.
///
/// Errors: tree operations throw LumError 0x803 (null), 0x806 (other document) and 0x809 (not a child) before they
/// change anything. Inserting a node below itself, or attributes and documents as children, is not checked for.
/// Cost: constant unless stated otherwise; no operation's use of the stack grows with the depth of the tree.
/// Threads: a tree, loading included, belongs to one thread at a time.
class LUM_API LumNode : public LumRCObject {
public:
    static constexpr unsigned int TYPE_ID = 0x74DC3393u;

    /// The node type numbers of the DOM.
    enum NodeType : int {
        ELEMENT_NODE = 1,
        ATTRIBUTE_NODE = 2,
        TEXT_NODE = 3,
        ENTITY_NODE = 6,
        PROCESSING_INSTRUCTION_NODE = 7,
        DOCUMENT_NODE = 9,
        DOCUMENT_TYPE_NODE = 10,
        DOCUMENT_FRAGMENT_NODE = 11,
        NOTATION_NODE = 12,
    };

    /// Bits of the flags word that loading uses.
    enum Flag : unsigned {
        FLAG_LOADING = 1,    ///< the children have not all been read yet
        FLAG_COMPLETE = 2,   ///< the content has been read to its end
        FLAG_STEP_OVER = 4,  ///< the loader skips this ancestor when it climbs after an end tag
    };

    ~LumNode() override;
    /// A derived class that does not override these has the identifier and the name of its base class.
    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

    /// "prefix:local" interned, or the local name.
    virtual LumName getNodeName() const;
    virtual LumName getLocalName() const = 0;
    virtual LumName getNamespaceUri() const;
    virtual LumName getPrefix() const;
    virtual void setPrefix(LumName prefix);
    virtual LumValue getNodeValue() const;
    /// Nodes without a value throw code 0x80B.
    virtual void setNodeValue(const LumValue& value);
    virtual int getNodeType() const = 0;

    virtual LumNode* getParentNode() const;
    virtual bool hasChildNodes() const;
    /// A new live list.
    virtual LumPtr<LumNodeList> getChildNodes() const;
    virtual LumNode* getFirstChild() const;
    virtual LumNode* getLastChild() const;
    virtual LumNode* getPreviousSibling() const;
    virtual LumNode* getNextSibling() const;
    /// The document that made the node; null for a document.
    virtual LumDocument* getOwnerDocument() const;

    /// Inserts before `refChild`, or appends when that is null. `newChild` is first taken out of its old parent.
    /// Returns it.
    virtual LumNode* insertBefore(LumNode* newChild, LumNode* refChild);
    /// Returns the replaced child.
    virtual LumPtr<LumNode> replaceChild(LumNode* newChild, LumNode* oldChild);
    /// Returns the removed child, which dies with the returned pointer when nobody else holds it.
    virtual LumPtr<LumNode> removeChild(LumNode* oldChild);
    virtual LumNode* appendChild(LumNode* newChild);

    virtual LumNamedNodeMap* getAttributes() const;
    virtual bool hasAttributes() const;
    /// A copy made through the factory operations of the owner document; null where a node cannot be copied. A derived
    /// class may copy differently; LumElement::cloneNode says what it can rely on.
    virtual LumPtr<LumNode> cloneNode(bool deep) const;

    /// Namespace lookups by the rules of DOM level 3.   Cost: linear in the depth and the attributes met.
    virtual LumName lookupPrefix(LumName namespaceUri) const;
    virtual bool isDefaultNamespace(LumName namespaceUri) const;
    virtual LumName lookupNamespaceUri(LumName prefix) const;

    /// Called by the loader after an element's attributes have been set; for subclasses.
    virtual void finishAttributes();
    virtual bool isElementNode() const;
    virtual bool isText() const;
    /// Classification for the node classes of a formatter; false here.
    virtual bool isFO() const;
    virtual bool isLUMX() const;
    virtual bool isArea() const;
    virtual bool isBlock() const;
    virtual bool isInline() const;
    virtual bool isNeutral() const;
    virtual bool isInlineBlock() const;
    virtual bool isOutOfLine() const;
    virtual UnicodeString getText() const;
    virtual void setText(const UnicodeString& text);

    /// New live lists of descendants in document order; "*" matches every name.
    virtual LumPtr<LumNodeList> getElementsByTagName(LumName localName) const;
    virtual LumPtr<LumNodeList> getElementsByTagNameNS(LumName namespaceUri, LumName localName) const;
    virtual LumPtr<LumNodeList> getDescendantNodes() const;
    /// An iterator over the descendants.
    virtual LumNodeIterator getIterator() const;
    /// Called by the loader to append an element; for subclasses. Returns the node to load into.
    virtual LumNode* appendChildEx(LumNode* newChild);
    /// Appends the node that the document creates for `text`; null when it creates none.
    virtual LumNode* appendChildText(const UnicodeString& text);

    /// The position of an element's start tag in its source, -1 when unknown. Other nodes have the position of the
    /// sibling before them, if that has one, else their parent's; an attribute has its element's. A derived class may
    /// override this and call LumNode's operation for the inherited position. The use of the stack does not grow with
    /// the number of siblings, except for elements whose class calls LumNode's operation.   Cost: linear in the
    /// siblings back to the nearest element.
    virtual int getSourceLineNumber() const;
    virtual void setSourceLineNumber(int line);
    virtual int getSourceColumnNumber() const;
    virtual void setSourceColumnNumber(int column);

    unsigned getFlags() const noexcept { return flags_; }
    void setFlags(unsigned flags) noexcept { flags_ = flags; }

    /// Unlinks and releases all children.   Cost: linear in the number of nodes that die.
    void removeAllChildNodes();
    /// Takes out and releases all descendants, even those that somebody else holds, and returns their number. Counts
    /// change without atomic instructions: no other thread may hold a node of the tree.
    int deleteAllChildNodes();
    /// The same for the siblings up to and including `last` and their descendants; siblings after it stay. If `last`
    /// has no parent, only its descendants are taken out, as no tree holds a count of it. Null gives 0.
    static int deleteAllChildNodes(LumNode* last);

    bool isDescendantOf(const LumNode* other) const;
    bool isDescendantOrSelfOf(const LumNode* other) const;
    /// Document order in the sense of the XPath axes: ancestors and descendants are neither following nor preceding.
    /// Cost: linear in siblings and depth.
    bool isFollowingOf(const LumNode* other) const;
    bool isPrecedingOf(const LumNode* other) const;
    /// Cost: linear.
    int countPrecedingSiblings() const;
    int countFollowingSiblings() const;
    int getChildNodeCount() const;
    /// The first child that matches, else null.   Cost: linear.
    LumNode* getChildNodeByName(LumName localName) const;
    LumNode* getChildNodeByNameNS(LumName namespaceUri, LumName localName) const;
    LumNode* getChildNodeByTypeID(unsigned int typeId) const;
    /// The nearest ancestor that matches, else null.   Cost: linear in the depth.
    LumNode* getAncestorByName(LumName localName) const;
    LumNode* getAncestorOrSelfByName(LumName localName) const;
    LumNode* getAncestorByNameNS(LumName namespaceUri, LumName localName) const;
    LumNode* getAncestorByTypeID(unsigned int typeId) const;
    LumNode* getCommonAncestorOrSelf(const LumNode* other) const;
    LumNode* getCommonAncestor(const LumNode* other) const;
    /// A text node's text; of an element the text of all its descendants.   Cost: linear.
    /// Failure: std::bad_alloc, also where that is more than the 2^31-1 units that a string holds.
    UnicodeString getInnerText() const;
    /// The number of ancestors below the document; 0 for the document element.   Cost: linear in the depth.
    int getNodeDepth() const;

protected:
    /// @param ownerDocument  the document that makes the node; a document passes itself. Not counted.
    explicit LumNode(LumDocument* ownerDocument) noexcept : ownerDocument_(ownerDocument) {}

    friend class detail::NodeFields;
    friend class AttrNodeMap;
    friend class Attr;
    friend class LumDocument;
    friend class LumElement;

    /// Puts a new object into its first LumPtr, without an atomic instruction, as no other thread can see it yet.
    template <class T>
    static LumPtr<T> firstPointer(T* fresh) noexcept {
        static_cast<LumNode*>(fresh)->takeFirstRef();
        return LumPtr<T>(fresh, false);
    }

    unsigned flags_ = 0;
    LumNode* parent_ = nullptr;           // of an attribute: its owner element
    LumNode* nextSibling_ = nullptr;      // the last child's points to the first: a ring
    LumNode* previousSibling_ = nullptr;  // null for the first child
    LumNode* lastChild_ = nullptr;
    LumDocument* ownerDocument_;

private:
    void checkNewChild(const LumNode* newChild, LumCommonErrorSource source) const;
    static void moveOut(LumNode* newChild);
    void linkLast(LumNode* child) noexcept;
    void unlinkChild(LumNode* child) noexcept;
    bool isLastChildOfLoading() const noexcept;
    void releaseChildren() noexcept;
    int inheritedPosition(bool isLine) const;
    int positionFromSiblings(bool isLine, int parents) const;
};

}  // namespace LumCommon
