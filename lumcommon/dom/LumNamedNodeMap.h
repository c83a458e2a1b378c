#pragma once

#include <lumcommon/dom/LumNodeIterable.h>

#include <vector>

namespace LumCommon {

/// A collection of nodes found by name.
class LUM_API LumNamedNodeMap : public LumNodeIterable {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x953D7483u;

    bool isA(unsigned int typeId) const override;
    /// Cost: linear.
    virtual int getCount() const = 0;
    /// Null outside 0 to count-1.   Cost: linear.
    virtual LumNode* item(int index) const = 0;
    /// The first node with that qualified name, else null.   Cost of all lookups: linear.
    virtual LumNode* getNamedItem(LumName name) const = 0;
    /// The first node with that namespace and local name, else null.
    virtual LumNode* getNamedItemNS(LumName namespaceUri, LumName localName) const = 0;
    /// Appends every node with that local name, in order, to `*out`, which may be null.
    virtual void getNamedItemLocal(LumName localName, std::vector<LumPtr<LumNode>>* out) const = 0;
    /// Adds the node, or replaces the one with the same name. Returns the replaced node, null when there was none.
    virtual LumPtr<LumNode> setNamedItem(LumNode* node) = 0;
    /// The same by namespace and local name.
    virtual LumPtr<LumNode> setNamedItemNS(LumNode* node) = 0;
    /// Returns the removed node, null when there was none.
    virtual LumPtr<LumNode> removeNamedItem(LumName name) = 0;
    /// The same by namespace and local name.
    virtual LumPtr<LumNode> removeNamedItemNS(LumName namespaceUri, LumName localName) = 0;
};

}  // namespace LumCommon
