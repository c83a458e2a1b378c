#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>

#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace LumCommon {

class NamespaceManager;

/// The prefix declarations of one scope: an ordered map from prefix to namespace URI, in the order of the prefixes'
/// identifiers. The null prefix is an ordinary key: it declares the default namespace or, with a null URI, cancels it.
/// A map that belongs to an open scope of a NamespaceManager reports every change to it.
/// Threads: one at a time, together with the manager.
class LUM_API NamespaceMap : public LumRCObject {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xFD41C124u;
    /// From prefix to URI, in the order of the identifiers of the prefixes.
    using Entries = std::map<LumName, LumName>;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

    /// The number of entries.
    int getCount() const;
    /// The entry at a position in key order; null outside 0 to count-1.
    /// Cost: constant next to the position last asked for, so a walk over all positions is linear; otherwise linear.
    LumName getNamespacePrefix(int index) const;
    /// The URI of the same entry; null outside 0 to count-1.   Cost: as above.
    LumName getNamespaceUri(int index) const;
    /// The URI bound to the null prefix, null when there is no such entry.
    LumName getDefaultNamespace() const;
    /// Whether the prefix has an entry, even one with a null URI.
    bool hasNamespace(LumName prefix) const;
    /// The URI of the prefix, null when there is no entry.
    LumName lookupNamespace(LumName prefix) const;
    /// The first non-null prefix in key order whose URI is `uri`, else null.   Cost: logarithmic.
    LumName lookupPrefix(LumName uri) const;
    /// Adds the entry or overwrites the URI of the prefix.
    void addNamespace(LumName prefix, LumName uri);
    /// Removes the prefix's entry when its URI is `uri`.
    void removeNamespace(LumName prefix, LumName uri);

    /// All entries. The reference is valid as long as the map, and sees its changes.
    const Entries& getEntries() const noexcept { return entries_; }

private:
    friend class NamespaceManager;  // sets itself as the manager of its scopes' maps

    Entries::const_iterator entryAt(std::size_t index) const;
    void insert(Entries::iterator entry, LumName prefix, LumName uri);

    NamespaceManager* manager_ = nullptr;  // while the map's scope is open
    Entries entries_;
    std::set<std::pair<LumName, LumName>> prefixesByUri_;  // (URI, prefix) of every entry whose prefix is not null
    // The position last asked for; the end before the first call and after every change of positions.
    mutable Entries::const_iterator cursor_ = entries_.end();
    mutable std::size_t cursorIndex_ = 0;
};

/// Walks a NamespaceMap in key order. The map must outlive the iterator and stay unchanged; null (a scope
/// without declarations) is walked as an empty map.
class LUM_API NamespaceMapIterator {
public:
    /// Stands before the first entry.
    explicit NamespaceMapIterator(const NamespaceMap* map);

    /// The entry at the current position; then moves forward. A null pair at the end.
    std::pair<LumName, LumName> next();
    /// Moves back and returns the entry now current. A null pair at the start.
    std::pair<LumName, LumName> previous();
    /// Whether next() has an entry to return.
    bool hasNext() const;
    /// Whether previous() has an entry to return.
    bool hasPrevious() const;
    /// Goes back before the first entry.
    void setToStart();
    /// Goes behind the last entry.
    void setToEnd();

private:
    const NamespaceMap* map_;
    NamespaceMap::Entries::const_iterator position_;
};

}  // namespace LumCommon
