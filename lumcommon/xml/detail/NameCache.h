#pragma once

#include <lumcommon/names/LumNameEnum.h>
#include <lumcommon/names/detail/UnitHash.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <vector>

namespace LumCommon::detail {

/// Whether an attribute of this name binds a prefix, or the default namespace.
constexpr bool bindsPrefix(LumNameEnum prefix, LumNameEnum localName) noexcept {
    return prefix == NAME_xmlns || (prefix == NAME_NULL && localName == NAME_xmlns);
}

/// A qualified name as it stands in the text, with its interned parts.
struct CachedName {
    const char16_t* units;
    std::uint32_t size;  // units
    LumNameEnum prefix;
    LumNameEnum localName;
    bool bindsPrefix;
    // The name that came after this one last time, and another that has. Documents repeat themselves: comparing with a
    // good guess is cheaper than finding the end of a name and hashing it.
    mutable const CachedName* following = nullptr;
    mutable const CachedName* followingElse = nullptr;
    // Notes of the reader of tags: the namespace of the prefix while the bindings are those of that number, and the
    // last tag that had an attribute of this name.
    mutable std::uint64_t bindings = 0;
    mutable std::uint64_t lastTag = 0;
    mutable LumNameEnum namespaceUri = NAME_NULL;

    // The first four units, the first in the lowest bits, and a mask of those that there are.
    std::uint64_t head = 0;
    std::uint64_t headMask = 0;

    /// Whether text begins with this name, and does not end with it.
    bool begins(const char16_t* text, const char16_t* end) const noexcept {
        const auto length = static_cast<std::size_t>(end - text);
        if (length <= size) return false;
        if (length < 4) return equals(text);
        return ((loadFourUnits(text) ^ head) & headMask) == 0 && (size <= 4 || equals(text));
    }
    /// Whether `size` units at `text` are this name.
    bool equals(const char16_t* text) const noexcept { return equalUnits(units, text, size); }
};

/// The qualified names that one parser has met: a name seen before costs one hash and one compare and takes no lock.
///
/// The identifiers in it stay good while the parser's namespace manager holds the shared name table.
/// Memory: about 120 bytes and the text for each different name.
class NameCache {
public:
    NameCache();

    /// The entry of exactly this text, else null.
    const CachedName* find(const char16_t* text, std::size_t size) const noexcept {
        const std::uint32_t h = hash(text, size);
        for (std::uint32_t i = h & mask_;; i = (i + 1) & mask_) {
            const Slot& slot = slots_[i];
            if (!slot.name) return nullptr;
            if (slot.hash == h && slot.name->size == size && slot.name->equals(text)) return slot.name;
        }
    }

    void clear();
    /// Adds a name that find() does not know. The entry stays at its place.
    const CachedName* add(const char16_t* text, std::size_t size, LumNameEnum prefix, LumNameEnum localName);

private:
    struct Slot {
        std::uint32_t hash = 0;
        const CachedName* name = nullptr;
    };

    std::uint32_t hash(const char16_t* text, std::size_t size) const noexcept {
        return static_cast<std::uint32_t>(hashUnits(text, size, key_));
    }
    void insert(Slot slot) noexcept;
    const char16_t* keep(const char16_t* text, std::size_t size);

    const HashKey key_;  // of this process: names that all fall into one slot would make parsing quadratic
    std::uint32_t mask_;
    std::vector<Slot> slots_;
    std::deque<CachedName> names_;
    std::vector<std::unique_ptr<char16_t[]>> blocks_;
    std::size_t blockLeft_ = 0;  // units left in the last block
    char16_t* blockNext_ = nullptr;
};

}  // namespace LumCommon::detail
