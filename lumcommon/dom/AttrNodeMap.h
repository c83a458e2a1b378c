#pragma once

#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumNamedNodeMap.h>

namespace LumCommon {

/// The attributes of one element, in the order they were added. It holds one count of each.
/// Lookups compare name identifiers one attribute after another; past 32 attributes getNamedItemNS uses an index, so
/// that an element with a hundred thousand attributes is built in linear time. When the element dies, the map becomes
/// empty, even if somebody still holds it.
/// Errors: setNamedItem and setNamedItemNS throw 0x803 (null), 0x806 (other document), 0x807 (not an attribute) and
/// 0x808 (already owned, even if by this element) before they change anything.
class LUM_API AttrNodeMap : public LumNamedNodeMap {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xF49D3AEAu;

    /// @param ownerElement  the element whose getAttributes() returns this map; not counted.
    explicit AttrNodeMap(LumElement* ownerElement) noexcept;
    /// Gives the counts of the attributes back.
    ~AttrNodeMap() override;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumNode* getFirstNode() const override;
    LumNode* getLastNode() const override;
    LumNode* getNextNode(const LumNode* node) const override;
    LumNode* getPreviousNode(const LumNode* node) const override;
    int getCount() const override;
    LumNode* item(int index) const override;
    LumNode* getNamedItem(LumName name) const override;
    LumNode* getNamedItemNS(LumName namespaceUri, LumName localName) const override;
    void getNamedItemLocal(LumName localName, std::vector<LumPtr<LumNode>>* out) const override;
    LumPtr<LumNode> setNamedItem(LumNode* node) override;
    LumPtr<LumNode> setNamedItemNS(LumNode* node) override;
    LumPtr<LumNode> removeNamedItem(LumName name) override;
    LumPtr<LumNode> removeNamedItemNS(LumName namespaceUri, LumName localName) override;
    /// Null when `attr` is not in the map.
    virtual LumPtr<LumAttr> removeAttrNode(LumAttr* attr);

private:
    friend class LumElement;

    struct Index;

    /// Takes over the attributes that the element has without a map.
    AttrNodeMap(LumElement* ownerElement, LumNode* last, unsigned count) noexcept;
    // Rings of attributes, with or without a map. `last` is the last attribute, null when there are none.
    static LumNode* first(LumNode* last) noexcept { return last ? last->nextSibling_ : nullptr; }
    static LumNode* after(const LumNode* node, const LumNode* last) noexcept {
        return node == last ? nullptr : node->nextSibling_;
    }
    static LumNode* find(LumNode* last, LumName name);
    static LumNode* findNS(LumNode* last, LumName namespaceUri, LumName localName);
    static LumNode* link(LumNode* last, LumNode* node, LumNode* owner) noexcept;
    static void release(LumNode* last) noexcept;

    bool isEmpty() const noexcept { return count_ == 0; }
    LumNode* last() const noexcept;
    void setLink(LumNode* link) noexcept;
    LumElement* ownerElement() const noexcept;
    LumNode* findByNameNS(LumName namespaceUri, LumName localName) const;
    bool buildIndex() const;
    void dropIndex() const noexcept;
    void append(LumAttr* attr);
    LumPtr<LumNode> setItem(LumNode* node, LumCommonErrorSource source, bool isNodeName);
    LumPtr<LumNode> replaceOrAppend(LumNode* node, bool (*isSame)(const LumNode*, const LumNode*));
    LumPtr<LumNode> remove(LumNode* node);
    void forgetOwner() noexcept;

    static constexpr unsigned indexThreshold = 32;

    // Documents have many elements, and most have few attributes: one pointer serves three purposes, so that the map
    // stays at three words.
    mutable unsigned count_ : 30 = 0;
    mutable unsigned isIndexed_ : 1 = 0;
    mutable unsigned isIndexUseless_ : 1 = 0;  // some attribute's namespace depends on its place in the tree
    union Link {
        LumNode* node;  // the owner element while the map is empty, else the last attribute of the ring
        Index* index;   // when isIndexed_: finds attributes by name, and has the last attribute
    };
    mutable Link link_;
};

}  // namespace LumCommon
