#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace LumCommon::detail {

/// Selects one hash function of the family. An odd multiplier keeps all bits of the state in play.
struct HashKey {
    std::uint64_t seed;
    std::uint64_t multiplier;
};

/// The key of tables that are laid out at compile time.
inline constexpr HashKey fixedHashKey{0x243F6A8885A308D3u, 0x9E3779B97F4A7C15u};

/// The key of tables that are filled from input: drawn at random once per process, so that nobody can craft a document
/// whose names all collide.
const HashKey& processHashKey() noexcept;

/// The two halves of the 128-bit product, folded: every bit of the result depends on every bit of the factors.
constexpr std::uint64_t foldMultiply(std::uint64_t a, std::uint64_t b) noexcept {
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
    const std::uint64_t aLow = a & 0xFFFFFFFFu, aHigh = a >> 32, bLow = b & 0xFFFFFFFFu, bHigh = b >> 32;
    const std::uint64_t low = aLow * bLow;
    const std::uint64_t middle = aHigh * bLow + (low >> 32);  // at most 2^64 - 2^32: no carry is lost
    const std::uint64_t middle2 = aLow * bHigh + (middle & 0xFFFFFFFFu);
    const std::uint64_t high = aHigh * bHigh + (middle >> 32) + (middle2 >> 32);
    return high ^ ((middle2 << 32) | (low & 0xFFFFFFFFu));
#endif
}

/// The hash of numbers and names for the tables of the standard library. Names too are chosen by whoever writes a
/// document, by the order in which they come.
struct KeyedHash {
    HashKey key = processHashKey();

    std::size_t operator()(std::uint64_t number) const noexcept {
        return static_cast<std::size_t>(foldMultiply(number ^ key.seed, key.multiplier));
    }
    template <class Name>
    requires requires(const Name& name) { name.getEnum(); }
    std::size_t operator()(const Name& name) const noexcept { return (*this)(std::uint64_t{name.getEnum()}); }
};

/// Four units as one word, the first in the lowest bits.
constexpr std::uint64_t loadFourUnits(const char16_t* text) noexcept {
    if (!std::is_constant_evaluated() && std::endian::native == std::endian::little) {
        std::uint64_t word;
        std::memcpy(&word, text, sizeof word);
        return word;
    }
    return static_cast<std::uint64_t>(text[0]) | static_cast<std::uint64_t>(text[1]) << 16 |
           static_cast<std::uint64_t>(text[2]) << 32 | static_cast<std::uint64_t>(text[3]) << 48;
}

/// Whether two texts of `units` units are equal: for short texts, without a call.
constexpr bool equalUnits(const char16_t* a, const char16_t* b, std::size_t units) noexcept {
    if (units < 4) {
        for (std::size_t i = 0; i < units; ++i) {
            if (a[i] != b[i]) return false;
        }
        return true;
    }
    for (std::size_t i = 0; i + 4 < units; i += 4) {
        if (loadFourUnits(a + i) != loadFourUnits(b + i)) return false;
    }
    return loadFourUnits(a + units - 4) == loadFourUnits(b + units - 4);
}

/// Hash of UTF-16 text, eight units per multiplication. `text` may be null when `units` is 0.
constexpr std::uint64_t hashUnits(const char16_t* text, std::size_t units, const HashKey& key) noexcept {
    // The length is part of the state, so that the overlapping last words cannot make two lengths look alike.
    std::uint64_t state = key.seed ^ units;
    if (units < 4) {
        if (units == 0) return foldMultiply(state, key.multiplier);
        const std::uint64_t word = static_cast<std::uint64_t>(text[0]) |
                                   static_cast<std::uint64_t>(text[units / 2]) << 16 |
                                   static_cast<std::uint64_t>(text[units - 1]) << 32;
        return foldMultiply(state ^ word, key.multiplier);
    }
    const auto mix = [&key](std::uint64_t before, const char16_t* first, const char16_t* second) {
        return foldMultiply(before ^ loadFourUnits(first), key.multiplier ^ loadFourUnits(second));
    };
    if (units <= 8) return mix(state, text, text + units - 4);
    const char16_t* const last = text + units - 8;
    for (; text < last; text += 8) state = mix(state, text, text + 4);
    return mix(state, last, last + 4);
}

}  // namespace LumCommon::detail
