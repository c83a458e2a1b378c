#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/values/LumValue.h>

#include <cstddef>
#include <vector>

namespace LumCommon {

namespace detail {
class ValuePrinter;
}

/// A value that carries the name under which a LumNamedValueMap holds it, in the name bits of its type word.
class LUM_API LumNamedValue : public LumValue {
public:
    /// The null value under the null name.
    LumNamedValue() noexcept = default;
    /// A copy of `value` with this name in its name bits.
    LumNamedValue(LumName name, const LumValue& value) : LumValue(value) { setNameKey(name.getEnum()); }

    /// The name that the name bits hold.
    LumName getName() const noexcept { return LumName(getNameKey()); }
};

/// Orders named values by the identifiers of their names; nothing else is compared.
struct LessLumValueName {
    /// True when the name of `a` has the smaller identifier.
    bool operator()(const LumNamedValue& a, const LumNamedValue& b) const noexcept { return a.getName() < b.getName(); }
};

/// The components of a compound property value: an ordered set of named values, at most one for each name, in the
/// order of the names' identifiers.
/// Threads: one thread at a time; a map inside a LumValue is shared by all copies of that value.
class LUM_API LumNamedValueMap : public LumRCObject {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xE7D947B0u;

    /// An empty map.
    LumNamedValueMap() = default;
    /// Also releases maps nested in the entries, to any depth, with constant stack use.
    ~LumNamedValueMap() override;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

    /// A new map with copies of all entries.
    [[nodiscard]] LumPtr<LumNamedValueMap> clone() const;
    /// The number of entries.
    int getCount() const;
    /// The entry at that position in name order; outside 0 to count-1, a null value with a null name.
    LumNamedValue item(int index) const;
    /// The entry with that name; if absent, the null value under the requested name.   Cost: logarithmic.
    LumNamedValue getNamedItem(LumName name) const;
    /// Adds the value under the name or replaces the value there.   Cost: linear in the count.
    void setNamedItem(LumName name, const LumValue& value);
    /// The same under the name that the value carries.
    void setNamedItem(const LumNamedValue& value);
    /// Removes the entry if there is one.   Cost: linear in the count.
    void removeNamedItem(LumName name);
    /// Removes the entry if there is one and its value equals `value`.
    void removeNamedItem(LumName name, const LumValue& value);

private:
    friend class LumNamedValueMapIterator;
    friend class detail::ValuePrinter;  // reads entries in place

    std::vector<LumNamedValue>::const_iterator find(LumName name) const;
    void releaseNestedMaps(LumNamedValueMap*& pending) noexcept;

    LumNamedValueMap* nextPending_ = nullptr;  // links maps waiting to be released
    std::vector<LumNamedValue> entries_;       // sorted; maps are small and read far more often than written
};

/// Walks a LumNamedValueMap in name order. The map must outlive the iterator and stay unchanged.
class LUM_API LumNamedValueMapIterator {
public:
    /// Stands before the first entry. Null is walked like an empty map.
    explicit LumNamedValueMapIterator(const LumNamedValueMap* map);

    /// Returns the current entry and moves forward; a null entry at the end.
    LumNamedValue next();
    /// Moves back and returns the entry that is then current; a null entry at the start.
    LumNamedValue previous();
    /// Whether next() has an entry to return.
    bool hasNext() const;
    /// Whether previous() has an entry to return.
    bool hasPrevious() const;
    /// Goes back before the first entry.
    void setToStart();
    /// Goes behind the last entry.
    void setToEnd();

private:
    const LumNamedValueMap* map_;
    std::size_t position_ = 0;
};

}  // namespace LumCommon
