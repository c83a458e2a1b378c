#pragma once

#include <lumcommon/xml/detail/XmlChars.h>

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Searches for the few units at which a scanner has to stop, sixteen units a step where the processor can.
namespace LumCommon::detail {

#if defined(__SSE2__)
namespace scan {

/// Sixteen units as bytes. Those above U+00FF become 0xFF, and 0 from U+8000, which the tests below must tolerate.
inline __m128i loadNarrow(const char16_t* p) noexcept {
    return _mm_packus_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                            _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8)));
}
inline __m128i isEqual(__m128i units, char c) noexcept { return _mm_cmpeq_epi8(units, _mm_set1_epi8(c)); }
inline __m128i isAtMost(__m128i units, char c) noexcept {
    return _mm_cmpeq_epi8(_mm_min_epu8(units, _mm_set1_epi8(c)), units);
}
/// The place of the first hit; 16 when there is none.
inline std::size_t firstHit(__m128i hits) noexcept {
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(hits));
    return static_cast<std::size_t>(__builtin_ctz(mask | 0x10000u));
}

}  // namespace scan
#endif

/// The first unit that equals `wanted` or U+FFFF; `end` when there is none.
inline const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t wanted) noexcept {
#if defined(__SSE2__)
    const __m128i wantedUnits = _mm_set1_epi16(static_cast<short>(wanted));
    const __m128i noCharacter = _mm_set1_epi16(static_cast<short>(notACharacter));
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i hits = _mm_or_si128(_mm_cmpeq_epi16(v, wantedUnits), _mm_cmpeq_epi16(v, noCharacter));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(hits))) return p + __builtin_ctz(mask) / 2;
    }
#endif
    while (p != end && *p != wanted && *p != notACharacter) ++p;
    return p;
}

/// Whether a unit ends a name in a tag of the usual form: "=", ">", "/", a blank or a control character.
inline bool endsName(char16_t unit) noexcept {
    constexpr std::uint64_t ends = (std::uint64_t{2} << ' ') - 1 + (std::uint64_t{1} << '/') +
                                   (std::uint64_t{1} << '=') + (std::uint64_t{1} << '>');
    return unit < 64 && (ends >> unit & 1) != 0;
}

/// The first unit that ends a name; `end` when there is none. What stands before it need not be a name.
inline const char16_t* findNameEnd(const char16_t* p, const char16_t* end) noexcept {
#if defined(__SSE2__)
    while (end - p >= 16) {
        const __m128i units = scan::loadNarrow(p);
        const std::size_t place =
            scan::firstHit(_mm_or_si128(_mm_or_si128(scan::isEqual(units, '='), scan::isEqual(units, '>')),
                                        _mm_or_si128(scan::isEqual(units, '/'), scan::isAtMost(units, ' '))));
        p += place;
        if (place == 16) continue;
        if (*p < 0x8000) return p;
        ++p;
    }
#endif
    while (p != end && !endsName(*p)) ++p;
    return p;
}

/// The first unit that is no character of XML, halves of surrogate pairs left aside; `end` when there is none.
inline const char16_t* findInvalidUnit(const char16_t* p, const char16_t* end) noexcept {
#if defined(__SSE2__)
    const auto isAtMost = [](__m128i units, int most) {
        return _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(static_cast<short>(most))), _mm_setzero_si128());
    };
    const auto isUnit = [](__m128i units, int unit) {
        return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
    };
    const auto isWrong = [&](__m128i units) {
        const __m128i space = _mm_or_si128(_mm_or_si128(isUnit(units, '\n'), isUnit(units, '\t')), isUnit(units, '\r'));
        return _mm_or_si128(_mm_andnot_si128(space, isAtMost(units, 0x1F)),
                            isUnit(_mm_or_si128(units, _mm_set1_epi16(1)), notACharacter));
    };
    for (; end - p >= 16; p += 16) {
        const __m128i a = isWrong(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
        const __m128i b = isWrong(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8)));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(a, b)))) {
            return p + __builtin_ctz(mask);
        }
    }
#endif
    while (p != end && (*p >= 0x20 || isXmlSpace(*p)) && *p < 0xFFFE) ++p;
    return p;
}

/// The first unit that ends a run of text: "<", "&", "]" or U+FFFF; `end` when there is none.
inline const char16_t* findTextEnd(const char16_t* p, const char16_t* end) noexcept {
#if defined(__SSE2__)
    const __m128i noCharacter = _mm_set1_epi16(static_cast<short>(notACharacter));
    for (; end - p >= 16; p += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
        const __m128i units = _mm_packus_epi16(a, b);
        const __m128i none = _mm_packs_epi16(_mm_cmpeq_epi16(a, noCharacter), _mm_cmpeq_epi16(b, noCharacter));
        const std::size_t place =
            scan::firstHit(_mm_or_si128(_mm_or_si128(scan::isEqual(units, '<'), scan::isEqual(units, '&')),
                                        _mm_or_si128(scan::isEqual(units, ']'), none)));
        if (place != 16) return p + place;
    }
#endif
    while (p != end && *p != '<' && *p != '&' && *p != ']' && *p != notACharacter) ++p;
    return p;
}

/// The first unit at which an attribute value stops being plain text: the delimiter, "&", "<", a unit below
/// U+0020, or U+FFFF; `end` when there is none.
/// @param delimiter  an ASCII character.
inline const char16_t* findValueEnd(const char16_t* p, const char16_t* end, char16_t delimiter) noexcept {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi16(static_cast<short>(delimiter));
    const __m128i ampersand = _mm_set1_epi16('&');
    const __m128i lessThan = _mm_set1_epi16('<');
    const __m128i one = _mm_set1_epi16(1);
    const __m128i controls = _mm_set1_epi16(0x20);
    const __m128i zero = _mm_setzero_si128();
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        // One more than a unit is at most 0x20 for control characters, and 0 for U+FFFF.
        const __m128i isControl = _mm_cmpeq_epi16(_mm_subs_epu16(_mm_add_epi16(v, one), controls), zero);
        const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, quote), _mm_cmpeq_epi16(v, ampersand)),
                                          _mm_or_si128(_mm_cmpeq_epi16(v, lessThan), isControl));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(hits))) return p + __builtin_ctz(mask) / 2;
    }
#endif
    while (p != end && *p != delimiter && *p != '&' && *p != '<' && *p >= 0x20 && *p != notACharacter) ++p;
    return p;
}

}  // namespace LumCommon::detail
