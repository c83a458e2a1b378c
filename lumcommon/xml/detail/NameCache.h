#pragma once

#include <lumcommon/names/LumNameEnum.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <vector>

namespace LumCommon::detail {

/// A qualified name as it stands in the text, with its interned parts.
struct CachedName {
    const char16_t* units;
    std::uint32_t size;  // units
    LumNameEnum prefix;
    LumNameEnum localName;
    // The name that came after this one last time. Documents repeat themselves: comparing with a good guess is cheaper
    // than finding the end of a name and hashing it.
    mutable const CachedName* following = nullptr;

    /// Whether `size` units at `text` are this name.
    bool matches(const char16_t* text) const noexcept {
        if (size < 4) {
            for (std::uint32_t i = 0; i < size; ++i) {
                if (units[i] != text[i]) return false;
            }
            return true;
        }
        for (std::uint32_t i = 0; i + 4 < size; i += 4) {
            if (loadWord(units + i) != loadWord(text + i)) return false;
        }
        return loadWord(units + size - 4) == loadWord(text + size - 4);
    }

    static std::uint64_t loadWord(const char16_t* text) noexcept {
        std::uint64_t word;
        std::memcpy(&word, text, sizeof word);
        return word;
    }
};

/// The qualified names that one parser has met: a name seen before costs one hash and one compare and takes no lock.
///
/// The identifiers in it stay good while the parser's namespace manager holds the shared name table.
/// Memory: about 40 bytes and the text for each different name.
class NameCache {
public:
    NameCache();

    static std::uint32_t hash(const char16_t* text, std::size_t size, std::uint64_t seed) noexcept {
        std::uint64_t h = seed ^ size;
        while (size >= 4) {
            h = mix(h, CachedName::loadWord(text));
            text += 4;
            size -= 4;
        }
        if (size) {
            std::uint64_t last = 0;
            std::memcpy(&last, text, size * sizeof(char16_t));
            h = mix(h, last);
        }
        return static_cast<std::uint32_t>(h ^ (h >> 32));
    }

    /// The entry of exactly this text, else null.
    const CachedName* find(const char16_t* text, std::size_t size) const noexcept {
        const std::uint32_t h = hash(text, size, seed_);
        for (std::uint32_t i = h & mask_;; i = (i + 1) & mask_) {
            const Slot& slot = slots_[i];
            if (!slot.name) return nullptr;
            if (slot.hash == h && slot.name->size == size && slot.name->matches(text)) return slot.name;
        }
    }

    /// Adds a name that find() does not know. The entry stays at its place.
    const CachedName* add(const char16_t* text, std::size_t size, LumNameEnum prefix, LumNameEnum localName);

private:
    struct Slot {
        std::uint32_t hash = 0;
        const CachedName* name = nullptr;
    };

    static std::uint64_t mix(std::uint64_t h, std::uint64_t word) noexcept {
        h = (h ^ word) * 0x9E3779B97F4A7C15u;
        return h ^ (h >> 29);
    }
    void insert(Slot slot) noexcept;
    const char16_t* keep(const char16_t* text, std::size_t size);

    std::uint64_t seed_;
    std::uint32_t mask_;
    std::vector<Slot> slots_;
    std::deque<CachedName> names_;
    std::vector<std::unique_ptr<char16_t[]>> blocks_;
    std::size_t blockLeft_ = 0;  // units left in the last block
    char16_t* blockNext_ = nullptr;
};

}  // namespace LumCommon::detail
