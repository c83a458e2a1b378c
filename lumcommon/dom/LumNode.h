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
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x74DC3393u;

    /// The node type numbers of the DOM.
    enum NodeType : int {
        ELEMENT_NODE = 1,                 ///< LumElement
        ATTRIBUTE_NODE = 2,               ///< LumAttr
        TEXT_NODE = 3,                    ///< LumTextNode
        ENTITY_NODE = 6,                  ///< of the DOM; no class here has it
        PROCESSING_INSTRUCTION_NODE = 7,  ///< LumPINode
        DOCUMENT_NODE = 9,                ///< LumDocument
        DOCUMENT_TYPE_NODE = 10,          ///< of the DOM; no class here has it
        DOCUMENT_FRAGMENT_NODE = 11,      ///< LumDocumentFragment
        NOTATION_NODE = 12,               ///< of the DOM; no class here has it
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
    /// The name without its prefix; "#text" and the like for nodes that have none of their own.
    virtual LumName getLocalName() const = 0;
    /// The namespace; null for none, and for all but elements and attributes.
    virtual LumName getNamespaceUri() const;
    /// The prefix; null for none, and for all but elements and attributes.
    virtual LumName getPrefix() const;
    /// Changes the prefix of an element, or of an attribute that was made with a prefix or namespace (AttrNS); does
    /// nothing for other nodes.
    virtual void setPrefix(LumName prefix);
    /// The value of an attribute, the text of a text node; the null value for others.
    virtual LumValue getNodeValue() const;
    /// Nodes without a value throw code 0x80B.
    virtual void setNodeValue(const LumValue& value);
    /// The NodeType of the class.
    virtual int getNodeType() const = 0;

    /// Null for a document, an attribute and a node outside of any tree. Borrowed.
    virtual LumNode* getParentNode() const;
    /// Whether there is a child; a deferred load reads until that is known.
    virtual bool hasChildNodes() const;
    /// A new live list.
    virtual LumPtr<LumNodeList> getChildNodes() const;
    /// Null when there are no children. Borrowed. May load.
    virtual LumNode* getFirstChild() const;
    /// Null when there are no children. Borrowed. A deferred load reads all of the node first.
    virtual LumNode* getLastChild() const;
    /// Null for the first child and for a node without a parent. Borrowed.
    virtual LumNode* getPreviousSibling() const;
    /// Null for the last child and for a node without a parent. Borrowed. May load.
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
    /// Makes it the last child, taken out of its old parent first. Returns it.
    virtual LumNode* appendChild(LumNode* newChild);

    /// The attributes of an element; null for other nodes. Borrowed.
    virtual LumNamedNodeMap* getAttributes() const;
    /// Whether it is an element with at least one attribute; this makes no map.
    virtual bool hasAttributes() const;
    /// A copy made through the factory operations of the owner document; null where a node cannot be copied. A derived
    /// class may copy differently; LumElement::cloneNode says what it can rely on.
    [[nodiscard]] virtual LumPtr<LumNode> cloneNode(bool deep) const;

    /// Namespace lookups by the rules of DOM level 3.   Cost: linear in the depth and the attributes met.
    virtual LumName lookupPrefix(LumName namespaceUri) const;
    /// Whether names without a prefix are in that namespace here.   Cost: as for lookupPrefix().
    virtual bool isDefaultNamespace(LumName namespaceUri) const;
    /// The namespace that the prefix is bound to here, null when it is unbound. The null prefix asks for the default
    /// namespace.   Cost: as for lookupPrefix().
    virtual LumName lookupNamespaceUri(LumName prefix) const;

    /// Called by the loader after an element's attributes have been set; for subclasses.
    virtual void finishAttributes();
    /// Whether it is an element; cheaper than asking isA().
    virtual bool isElementNode() const;
    /// Whether it is a text node or a processing instruction, which is one here.
    virtual bool isText() const;
    /// Classification for the node classes of a formatter; false here.
    virtual bool isFO() const;
    /// For the node classes of a formatter; false here.
    virtual bool isLUMX() const;
    /// For the node classes of a formatter; false here.
    virtual bool isArea() const;
    /// For the node classes of a formatter; false here.
    virtual bool isBlock() const;
    /// For the node classes of a formatter; false here.
    virtual bool isInline() const;
    /// For the node classes of a formatter; false here.
    virtual bool isNeutral() const;
    /// For the node classes of a formatter; false here.
    virtual bool isInlineBlock() const;
    /// For the node classes of a formatter; false here.
    virtual bool isOutOfLine() const;
    /// The text of a text node, the value of an attribute; empty for other nodes. See getInnerText() for those.
    virtual UnicodeString getText() const;
    /// Replaces the text of a text node or the value of an attribute; does nothing for other nodes.
    virtual void setText(const UnicodeString& text);

    /// New live lists of descendants in document order; "*" matches every name.
    virtual LumPtr<LumNodeList> getElementsByTagName(LumName localName) const;
    /// The same by namespace and local name.
    virtual LumPtr<LumNodeList> getElementsByTagNameNS(LumName namespaceUri, LumName localName) const;
    /// A new live list of all descendants, texts included, in document order.
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
    /// Has an effect on elements only.
    virtual void setSourceLineNumber(int line);
    /// The column, by the same rules as the line.   Cost: the same.
    virtual int getSourceColumnNumber() const;
    /// Has an effect on elements only.
    virtual void setSourceColumnNumber(int column);

    /// The word of flags: bits of Flag, the others free for the classes of a user.
    unsigned getFlags() const noexcept { return flags_; }
    /// Replaces the whole word, with the bits that loading uses: change the others alone.
    void setFlags(unsigned flags) noexcept { flags_ = flags; }

    /// Unlinks and releases all children.   Cost: linear in the number of nodes that die.
    void removeAllChildNodes();
    /// Takes out and releases all descendants, even those that somebody else holds, and returns their number. Counts
    /// change without atomic instructions: no other thread may hold a node of the tree.
    int deleteAllChildNodes();
    /// The same for the siblings up to and including `last` and their descendants; siblings after it stay. If `last`
    /// has no parent, only its descendants are taken out, as no tree holds a count of it. Null gives 0.
    static int deleteAllChildNodes(LumNode* last);

    /// Whether `other` is an ancestor; false for null.   Cost: linear in the depth.
    bool isDescendantOf(const LumNode* other) const;
    /// Whether `other` is this node or an ancestor; false for null.   Cost: linear in the depth.
    bool isDescendantOrSelfOf(const LumNode* other) const;
    /// Document order in the sense of the XPath axes: ancestors and descendants are neither following nor preceding.
    /// Cost: linear in siblings and depth.
    bool isFollowingOf(const LumNode* other) const;
    /// Whether `other` is following this node; see isFollowingOf().   Cost: the same.
    bool isPrecedingOf(const LumNode* other) const;
    /// Cost: linear.
    int countPrecedingSiblings() const;
    /// Cost: linear in the siblings, which a deferred load reads first.
    int countFollowingSiblings() const;
    /// Cost: linear in the children, which a deferred load reads first.
    int getChildNodeCount() const;
    /// The first child that matches, else null.   Cost: linear.
    LumNode* getChildNodeByName(LumName localName) const;
    /// The first child with that namespace and local name, else null.   Cost: linear.
    LumNode* getChildNodeByNameNS(LumName namespaceUri, LumName localName) const;
    /// The first child whose isA() accepts the identifier, else null.   Cost: linear.
    LumNode* getChildNodeByTypeID(unsigned int typeId) const;
    /// The nearest ancestor that matches, else null.   Cost: linear in the depth.
    LumNode* getAncestorByName(LumName localName) const;
    /// This node if it matches, else the nearest ancestor that does, else null.   Cost: linear in the depth.
    LumNode* getAncestorOrSelfByName(LumName localName) const;
    /// The nearest ancestor with that namespace and local name, else null.   Cost: linear in the depth.
    LumNode* getAncestorByNameNS(LumName namespaceUri, LumName localName) const;
    /// The nearest ancestor whose isA() accepts the identifier, else null.   Cost: linear in the depth.
    LumNode* getAncestorByTypeID(unsigned int typeId) const;
    /// The innermost node that is, or is above, both; null when they are in different trees.   Cost: linear in the
    /// depth.
    LumNode* getCommonAncestorOrSelf(const LumNode* other) const;
    /// The innermost node that is above both; null when there is none.   Cost: linear in the depth.
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

    unsigned flags_ = 0;                  ///< getFlags()
    LumNode* parent_ = nullptr;           ///< not counted; of an attribute its owner element
    LumNode* nextSibling_ = nullptr;      ///< one count held; the last child's points to the first: a ring
    LumNode* previousSibling_ = nullptr;  ///< not counted; null for the first child
    LumNode* lastChild_ = nullptr;        ///< not counted; null without children
    LumDocument* ownerDocument_;          ///< not counted

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
