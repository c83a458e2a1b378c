#pragma once

#include <lumcommon/xml/detail/XmlChars.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Searches for the few units at which a scanner has to stop, eight units a step where the processor can.
namespace LumCommon::detail {

/// The first unit that equals `wanted`; `end` when there is none.
inline const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t wanted) noexcept {
#if defined(__SSE2__)
    const __m128i wantedUnits = _mm_set1_epi16(static_cast<short>(wanted));
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(v, wantedUnits)))) {
            return p + __builtin_ctz(mask) / 2;
        }
    }
#endif
    while (p != end && *p != wanted) ++p;
    return p;
}

/// The first unit that ends a name in a tag of the usual form: "=", ">", "/", a blank or a control character; `end`
/// when there is none. What stands before it need not be a name.
inline const char16_t* findNameEnd(const char16_t* p, const char16_t* end) noexcept {
#if defined(__SSE2__)
    const __m128i slash = _mm_set1_epi16('/');
    const __m128i equals = _mm_set1_epi16('=');
    const __m128i greater = _mm_set1_epi16('>');
    const __m128i blank = _mm_set1_epi16(' ');
    const __m128i zero = _mm_setzero_si128();
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i isSpace = _mm_cmpeq_epi16(_mm_subs_epu16(v, blank), zero);
        const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, equals), _mm_cmpeq_epi16(v, greater)),
                                          _mm_or_si128(_mm_cmpeq_epi16(v, slash), isSpace));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(hits))) return p + __builtin_ctz(mask) / 2;
    }
#endif
    while (p != end && *p != '=' && *p != '>' && *p != '/' && *p > ' ') ++p;
    return p;
}

/// The first unit that ends a run of text: "<", "&", "]" or U+FFFF; `end` when there is none.
inline const char16_t* findTextEnd(const char16_t* p, const char16_t* end) noexcept {
#if defined(__SSE2__)
    const __m128i lessThan = _mm_set1_epi16('<');
    const __m128i ampersand = _mm_set1_epi16('&');
    const __m128i bracket = _mm_set1_epi16(']');
    const __m128i noCharacter = _mm_set1_epi16(static_cast<short>(notACharacter));
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, lessThan), _mm_cmpeq_epi16(v, ampersand)),
                                          _mm_or_si128(_mm_cmpeq_epi16(v, bracket), _mm_cmpeq_epi16(v, noCharacter)));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(hits))) return p + __builtin_ctz(mask) / 2;
    }
#endif
    while (p != end && *p != '<' && *p != '&' && *p != ']' && *p != notACharacter) ++p;
    return p;
}

/// The first unit at which an attribute value stops being plain text: the delimiter, "&", "<", or a unit below
/// U+0020; `end` when there is none.
inline const char16_t* findValueEnd(const char16_t* p, const char16_t* end, char16_t delimiter) noexcept {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi16(static_cast<short>(delimiter));
    const __m128i ampersand = _mm_set1_epi16('&');
    const __m128i lessThan = _mm_set1_epi16('<');
    const __m128i lastControl = _mm_set1_epi16(0x1F);
    const __m128i zero = _mm_setzero_si128();
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i isControl = _mm_cmpeq_epi16(_mm_subs_epu16(v, lastControl), zero);
        const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, quote), _mm_cmpeq_epi16(v, ampersand)),
                                          _mm_or_si128(_mm_cmpeq_epi16(v, lessThan), isControl));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(hits))) return p + __builtin_ctz(mask) / 2;
    }
#endif
    while (p != end && *p != delimiter && *p != '&' && *p != '<' && *p >= 0x20) ++p;
    return p;
}

}  // namespace LumCommon::detail
