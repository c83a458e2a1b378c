#include <lumcommon/core/LumError.h>
#include <lumcommon/dom/AttrNodeMap.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/detail/ExactType.h>
#include <lumcommon/names/detail/UnitHash.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace LumCommon {

namespace {

using detail::asExactly;
using detail::isExactly;

std::uint64_t makeKey(LumName namespaceUri, LumName localName) noexcept {
    return std::uint64_t{namespaceUri.getEnum()} << 32 | localName.getEnum();
}

bool isQualifiedName(const UnicodeString& name, const UnicodeString& prefix, const UnicodeString& local) {
    const int colon = prefix.length();
    return name.length() == colon + 1 + local.length() && name[colon] == u':' && name.startsWith(prefix) &&
           name.endsWith(local);
}

bool hasSameNodeName(const LumNode* a, const LumNode* b) { return a->getNodeName() == b->getNodeName(); }

bool hasSameNameNS(const LumNode* a, const LumNode* b) {
    return a->getLocalName() == b->getLocalName() && a->getNamespaceUri() == b->getNamespaceUri();
}

}  // namespace

/// The first attribute of each namespace and local name. It holds attributes whose two names cannot change, and, by the
/// local name alone, those whose namespace is looked up in the tree when it is asked for.
struct AttrNodeMap::Index {
    explicit Index(unsigned count) : slots_(std::bit_ceil(4 * std::size_t{count})) {}

    /// False when the names of `node` may change, or when two attributes of one local name have a namespace that is
    /// looked up.
    bool add(LumNode* node) {
        LumName namespaceUri;
        if (const AttrNS* attr = asExactly<AttrNS>(*node)) {
            namespaceUri = attr->namespaceUri_.isNull() ? lookedUp : attr->namespaceUri_;
        } else if (!isExactly<Attr>(*node)) {
            return false;
        }
        if (2 * ++count_ > slots_.size()) grow();
        const bool isFirst =
            insert({makeKey(namespaceUri, static_cast<const Attr*>(node)->value_.getNameKey()), node, count_});
        hasLookedUp_ |= namespaceUri == lookedUp;
        return isFirst || namespaceUri != lookedUp;
    }
    LumNode* find(LumName namespaceUri, LumName localName) const {
        const Slot& stored = slots_[place(makeKey(namespaceUri, localName))];
        if (!hasLookedUp_) [[likely]] {
            return stored.node;
        }
        const Slot& open = slots_[place(makeKey(lookedUp, localName))];
        const bool isBefore = open.node && (!stored.node || open.number < stored.number);
        return isBefore && open.node->getNamespaceUri() == namespaceUri ? open.node : stored.node;
    }

    LumNode* last = nullptr;

private:
    static constexpr LumName lookedUp{LumNameEnum{0xFFFFFFFF}};  // in place of a namespace; no name has this identifier

    struct Slot {
        std::uint64_t key;
        LumNode* node = nullptr;  // null in a free slot
        std::size_t number = 0;   // in the order of the attributes
    };

    /// Where the key is, or else where it would go: the table always has free slots.
    std::size_t place(std::uint64_t key) const noexcept {
        // Keyed, so that nobody can craft names that all go to one place.
        const detail::HashKey& hashKey = detail::processHashKey();
        std::size_t at = static_cast<std::size_t>(detail::foldMultiply(key ^ hashKey.seed, hashKey.multiplier));
        for (;; ++at) {
            const Slot& slot = slots_[at &= slots_.size() - 1];
            if (!slot.node || slot.key == key) return at;
        }
    }
    /// False when there is an attribute of that key.
    bool insert(const Slot& slot) noexcept {
        Slot& there = slots_[place(slot.key)];
        if (there.node) return false;
        there = slot;
        return true;
    }
    void grow() {
        const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
        for (const Slot& slot : old) {
            if (slot.node) insert(slot);
        }
    }

    std::vector<Slot> slots_;  // as many as a power of two
    std::size_t count_ = 0;
    bool hasLookedUp_ = false;
};

AttrNodeMap::AttrNodeMap(LumElement* ownerElement) noexcept { link_.node = ownerElement; }

AttrNodeMap::AttrNodeMap(LumElement* ownerElement, LumNode* last, unsigned count) noexcept
    : count_(count & 0x3FFFFFFFu) {
    link_.node = last ? last : ownerElement;
}

AttrNodeMap::~AttrNodeMap() { forgetOwner(); }

bool AttrNodeMap::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNamedNodeMap::isA(typeId); }

UnicodeString AttrNodeMap::getTypeName() const { return u"AttrNodeMap"; }

/// The link, with or without an index: the last attribute, or the owner of an empty map.
LumNode* AttrNodeMap::last() const noexcept { return isIndexed_ ? link_.index->last : link_.node; }

void AttrNodeMap::setLink(LumNode* link) noexcept { (isIndexed_ ? link_.index->last : link_.node) = link; }

LumElement* AttrNodeMap::ownerElement() const noexcept {
    return static_cast<LumElement*>(isEmpty() ? last() : last()->parent_);
}

/// Empties the map and detaches it from its element, which is being destroyed.
void AttrNodeMap::forgetOwner() noexcept {
    LumNode* const lastAttr = isEmpty() ? nullptr : last();
    dropIndex();
    count_ = 0;
    link_.node = nullptr;
    release(lastAttr);
}

/// Detaches the attributes of an element that is being destroyed and gives up a count of each.
void AttrNodeMap::release(LumNode* last) noexcept {
    LumNode* attr = first(last);
    while (attr) {
        LumNode* const next = after(attr, last);
        attr->parent_ = attr->nextSibling_ = nullptr;
        if (attr->dropRef()) delete attr;
        attr = next;
    }
}

// Walking

LumNode* AttrNodeMap::getFirstNode() const { return isEmpty() ? nullptr : last()->nextSibling_; }

LumNode* AttrNodeMap::getLastNode() const { return isEmpty() ? nullptr : last(); }

LumNode* AttrNodeMap::getNextNode(const LumNode* node) const {
    return node && node != last() ? node->nextSibling_ : nullptr;
}

LumNode* AttrNodeMap::getPreviousNode(const LumNode* node) const {
    LumNode* previous = getFirstNode();
    if (!node || previous == node) return nullptr;
    while (previous && previous->nextSibling_ != node) previous = getNextNode(previous);
    return previous;
}

int AttrNodeMap::getCount() const { return static_cast<int>(count_); }

LumNode* AttrNodeMap::item(int index) const {
    if (index < 0 || index >= getCount()) return nullptr;
    LumNode* attr = getFirstNode();
    while (index-- > 0) attr = attr->nextSibling_;
    return attr;
}

// Finding

LumNode* AttrNodeMap::find(LumNode* last, LumName name) {
    for (LumNode* attr = first(last); attr; attr = after(attr, last)) {
        if (isExactly<Attr>(*attr)) [[likely]] {
            if (static_cast<const Attr*>(attr)->value_.getNameKey() == name.getEnum()) return attr;
        } else if (const AttrNS* attrNS = asExactly<AttrNS>(*attr)) {
            // The name is compared part by part, so that a lookup interns no names.
            const LumName local = attrNS->value_.getNameKey();
            const bool isFound =
                attrNS->prefix_.isNull()
                    ? local == name
                    : isQualifiedName(name.getString(), attrNS->prefix_.getString(), local.getString());
            if (isFound) return attr;
        } else if (attr->getNodeName() == name) {
            return attr;
        }
    }
    return nullptr;
}

bool AttrNodeMap::buildIndex() const {
    auto index = std::make_unique<Index>(unsigned{count_});
    index->last = last();
    for (LumNode* attr = getFirstNode(); attr; attr = getNextNode(attr)) {
        if (index->add(attr)) continue;
        isIndexUseless_ = 1;
        return false;
    }
    link_.index = index.release();
    isIndexed_ = 1;
    return true;
}

void AttrNodeMap::dropIndex() const noexcept {
    isIndexUseless_ = 0;
    if (!isIndexed_) return;
    const std::unique_ptr<Index> index(link_.index);
    link_.node = index->last;
    isIndexed_ = 0;
}

LumNode* AttrNodeMap::findByNameNS(LumName namespaceUri, LumName localName) const {
    if (isEmpty()) return nullptr;
    if (isIndexed_ || (count_ > indexThreshold && !isIndexUseless_ && buildIndex())) {
        return link_.index->find(namespaceUri, localName);
    }
    return findNS(last(), namespaceUri, localName);
}

LumNode* AttrNodeMap::findNS(LumNode* last, LumName namespaceUri, LumName localName) {
    for (LumNode* attr = first(last); attr; attr = after(attr, last)) {
        if (isExactly<Attr>(*attr)) [[likely]] {
            const bool isNamed = static_cast<const Attr*>(attr)->value_.getNameKey() == localName.getEnum();
            if (isNamed && namespaceUri.isNull()) return attr;
        } else if (const AttrNS* attrNS = asExactly<AttrNS>(*attr)) {
            const bool isNamed = attrNS->value_.getNameKey() == localName.getEnum();
            if (isNamed && attrNS->AttrNS::getNamespaceUri() == namespaceUri) return attr;
        } else if (attr->getLocalName() == localName && attr->getNamespaceUri() == namespaceUri) {
            return attr;
        }
    }
    return nullptr;
}

LumNode* AttrNodeMap::getNamedItem(LumName name) const { return find(isEmpty() ? nullptr : last(), name); }

LumNode* AttrNodeMap::getNamedItemNS(LumName namespaceUri, LumName localName) const {
    return findByNameNS(namespaceUri, localName);
}

void AttrNodeMap::getNamedItemLocal(LumName localName, std::vector<LumPtr<LumNode>>* out) const {
    if (!out) return;
    for (LumNode* attr = getFirstNode(); attr; attr = getNextNode(attr)) {
        if (attr->getLocalName() == localName) out->emplace_back(attr);
    }
}

// Changing

/// Puts `node` after the last attribute and returns it, as the new last one. The ring takes over one count.
LumNode* AttrNodeMap::link(LumNode* last, LumNode* node, LumNode* owner) noexcept {
    node->parent_ = owner;
    node->nextSibling_ = last ? last->nextSibling_ : node;
    if (last) last->nextSibling_ = node;
    return node;
}

/// Adds an attribute that is not in the map yet, as the last one. The map takes over one count.
void AttrNodeMap::append(LumAttr* attr) {
    LumNode* const node = attr;
    if (isIndexed_ && !link_.index->add(node)) {
        dropIndex();
        isIndexUseless_ = 1;
    }
    LumNode* const end = isEmpty() ? nullptr : last();
    setLink(link(end, node, ownerElement()));
    ++count_;
}

LumPtr<LumNode> AttrNodeMap::setItem(LumNode* node, LumCommonErrorSource source, bool isNodeName) {
    if (!node) throwCommonError(LumErrorCodeLumLIB::NullArgument, source);
    const LumNode* const owner = ownerElement();
    if (!owner || node->ownerDocument_ != owner->ownerDocument_) {
        throwCommonError(LumErrorCodeLumLIB::DifferentDocument, source);
    }
    if (node->getNodeType() != LumNode::ATTRIBUTE_NODE) throwCommonError(LumErrorCodeLumLIB::NotAnAttribute, source);
    if (node->parent_) throwCommonError(LumErrorCodeLumLIB::AttributeInUse, source);
    return replaceOrAppend(node, isNodeName ? hasSameNodeName : hasSameNameNS);
}

LumPtr<LumNode> AttrNodeMap::replaceOrAppend(LumNode* node, bool (*isSame)(const LumNode*, const LumNode*)) {
    LumNode* previous = last();
    LumNode* old = isEmpty() ? nullptr : previous->nextSibling_;
    // The attribute gets its owner before it is compared: a namespace that depends on the prefix is looked up there.
    node->parent_ = ownerElement();
    try {
        while (old && !isSame(old, node)) {
            previous = old;
            old = getNextNode(old);
        }
        if (!old) append(static_cast<LumAttr*>(node));
    } catch (...) {
        node->parent_ = nullptr;
        throw;
    }
    node->addRef();
    if (!old) return nullptr;
    dropIndex();
    node->nextSibling_ = old == previous ? node : old->nextSibling_;
    previous->nextSibling_ = node;
    if (old == last()) setLink(node);
    old->parent_ = old->nextSibling_ = nullptr;
    return LumPtr<LumNode>(old, false);
}

LumPtr<LumNode> AttrNodeMap::setNamedItem(LumNode* node) {
    return setItem(node, LumCommonErrorSource::AttrNodeMapSetNamedItem, true);
}

LumPtr<LumNode> AttrNodeMap::setNamedItemNS(LumNode* node) {
    return setItem(node, LumCommonErrorSource::AttrNodeMapSetNamedItemNS, false);
}

/// Takes `node`, which is null or in this map, out of it and hands over the map's count.
LumPtr<LumNode> AttrNodeMap::remove(LumNode* node) {
    if (!node) return nullptr;
    dropIndex();
    LumNode* previous = last();
    while (previous->nextSibling_ != node) previous = previous->nextSibling_;
    LumNode* const owner = node->parent_;
    previous->nextSibling_ = node->nextSibling_;
    if (last() == node) setLink(previous == node ? owner : previous);
    --count_;
    node->parent_ = node->nextSibling_ = nullptr;
    return LumPtr<LumNode>(node, false);
}

LumPtr<LumNode> AttrNodeMap::removeNamedItem(LumName name) { return remove(AttrNodeMap::getNamedItem(name)); }

LumPtr<LumNode> AttrNodeMap::removeNamedItemNS(LumName namespaceUri, LumName localName) {
    return remove(findByNameNS(namespaceUri, localName));
}

LumPtr<LumAttr> AttrNodeMap::removeAttrNode(LumAttr* attr) {
    LumNode* const node = attr;
    if (!node || isEmpty() || node->parent_ != ownerElement()) return nullptr;
    return LumPtr<LumAttr>(static_cast<LumAttr*>(remove(node).detach()), false);
}

}  // namespace LumCommon
