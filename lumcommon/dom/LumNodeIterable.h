#pragma once

#include <lumcommon/dom/LumNode.h>

namespace LumCommon {

class LumNodeIterable;

/// A position in a collection of nodes; it keeps the collection alive, not the nodes. Threads: one at a time.
class LUM_API LumNodeIterator {
public:
    /// Over the descendants of `node`, starting at the first of them or, if `start` is given, at the one after it.
    explicit LumNodeIterator(const LumNode* node, const LumNode* start = nullptr);
    /// Over `nodes`, starting at its first node; null gives an iterator without a current node.
    explicit LumNodeIterator(const LumNodeIterable* nodes);

    /// Null when the collection is exhausted.
    LumNode* getCurrentNode() const noexcept { return current_; }
    /// Moves on and returns the new current node; null behind the last, from where there is no way back.
    LumNode* nextNode();
    /// Moves back and returns the new current node; null before the first.
    LumNode* previousNode();

private:
    LumPtr<LumNodeIterable> nodes_;
    LumNode* current_ = nullptr;
};

/// A live collection of nodes: each call walks the tree anew, and no node is held. The node that it was obtained from
/// must outlive it.
class LUM_API LumNodeIterable : public LumRCObject {
public:
    /// No identifier: isA() skips this class, so that a checked assignment to a LumPtr<LumNodeIterable> gives null.
    static constexpr unsigned int TYPE_ID = 0;

    /// A position at the first node, which keeps this collection alive.
    virtual LumNodeIterator getIterator() const;
    /// Null when the collection is empty. Borrowed.
    virtual LumNode* getFirstNode() const = 0;
    /// Null when the collection is empty. Borrowed.
    virtual LumNode* getLastNode() const = 0;
    /// The node after `node`, which must belong to the collection; null after the last and for null. Borrowed.
    virtual LumNode* getNextNode(const LumNode* node) const = 0;
    /// The node before `node`, which must belong to the collection; null before the first and for null. Borrowed.
    virtual LumNode* getPreviousNode(const LumNode* node) const = 0;
};

/// A live collection of nodes that can be counted and accessed by position.
class LUM_API LumNodeList : public LumNodeIterable {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x316E063Eu;

    bool isA(unsigned int typeId) const override;
    /// Cost: linear.
    virtual int getCount() const = 0;
    /// Null outside 0 to count-1.   Cost: linear.
    virtual LumNode* item(int index) const = 0;
};

/// The children of a node.
class LUM_API ChildNodeList : public LumNodeList {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xA76795D5u;

    /// @param node  the parent, which must outlive the list.
    explicit ChildNodeList(const LumNode* node) noexcept : node_(node) {}

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumNode* getFirstNode() const override;
    LumNode* getLastNode() const override;
    LumNode* getNextNode(const LumNode* node) const override;
    LumNode* getPreviousNode(const LumNode* node) const override;
    int getCount() const override;
    LumNode* item(int index) const override;

private:
    const LumNode* node_;
};

/// The descendants of a node in document order, without the node itself: all of them, or those that pass a filter.
class LUM_API TreeNodeList : public LumNodeList {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x9814666Du;

    /// Which descendants belong to the list.
    enum FilterMode : int {
        FILTER_NONE = 0,        ///< all
        FILTER_LOCAL_NAME = 1,  ///< elements by local name; "*" is any
        FILTER_NAME_NS = 2,     ///< elements by namespace and local name; "*" is any
    };

    /// @param root  the node whose descendants are listed; it must outlive the list.
    /// @param mode  tells which of the names count.
    /// @param namespaceUri  for FILTER_NAME_NS.
    /// @param localName  for both filters.
    TreeNodeList(const LumNode* root, FilterMode mode, LumName namespaceUri = LumName(), LumName localName = LumName());

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumNode* getFirstNode() const override;
    LumNode* getLastNode() const override;
    LumNode* getNextNode(const LumNode* node) const override;
    LumNode* getPreviousNode(const LumNode* node) const override;
    int getCount() const override;
    LumNode* item(int index) const override;

private:
    bool passes(const LumNode* node) const;

    const LumNode* root_;
    FilterMode mode_;
    LumName namespaceUri_;
    LumName localName_;
    LumName any_;  // "*"
};

/// Walks a subtree and reports nodes as they are entered, left, or both. It keeps no node alive.
/// Threads: one at a time.
class LUM_API LumTreeIterator {
public:
    /// When a node is reported.
    enum Mode : int {
        ENTER = 1,            ///< each node once, when it is entered (pre-order)
        LEAVE = 2,            ///< each node once, when it is left (post-order)
        ENTER_AND_LEAVE = 3,  ///< every node when entered; elements and nodes that had children again when left
    };

    /// Stands before the first step.
    /// @param root  must outlive the walk; it is reported too.
    /// @param mode  a Mode.
    LumTreeIterator(LumNode* root, int mode) noexcept : root_(root), mode_(mode) {}

    /// Null before the first step and after the last.
    LumNode* getCurrentNode() const noexcept { return current_; }
    /// Whether the current node is being left, its subtree done.
    bool isLeaving() const noexcept { return isLeaving_; }

    /// Both move and return the new current node. At the start previousNode() returns null, at the end nextNode() does.
    /// From the end the walk can be made backwards: it reports the same nodes in reverse order, and nodes that are
    /// reported only once are reported as being left.
    LumNode* nextNode();
    /// One step backwards; see nextNode().
    LumNode* previousNode();
    /// Whether there is more to report. One exception: when the root has been entered and has no children,
    /// hasNextNode() is false, although with ENTER_AND_LEAVE an element is still to be reported as left; nextNode() is
    /// the more reliable test.
    /// Cost: linear in the depth.
    bool hasNextNode() const;
    /// Whether previousNode() has a node to report.   Cost: linear in the depth.
    bool hasPreviousNode() const;

private:
    template <class Way>
    LumNode* step();
    template <class Way>
    bool hasStep() const;

    LumNode* root_;
    LumNode* current_ = nullptr;
    bool isLeaving_ = false;
    int mode_;
};

}  // namespace LumCommon
