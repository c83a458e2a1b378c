#include <lumcommon/xml/detail/TextPosition.h>

#include <unicode/utf16.h>

#include <algorithm>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace LumCommon::detail {

namespace {

#if defined(__SSE2__)
__m128i loadUnits(const char16_t* p) noexcept { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
#endif

/// The number of line feeds, and whether there are surrogates.
std::int32_t countLineFeeds(const char16_t* p, const char16_t* to, bool& hasSurrogates) noexcept {
    std::int32_t count = 0;
    bool isWide = false;
#if defined(__SSE2__)
    const __m128i lineFeed = _mm_set1_epi16('\n');
    const __m128i surrogateMask = _mm_set1_epi16(static_cast<short>(0xF800));
    const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
    const __m128i zero = _mm_setzero_si128();
    __m128i wide = zero;
    __m128i sums = zero;
    while (to - p >= 16) {
        // As bytes the counts of a run stay below 256; then they are added up.
        const char16_t* const runEnd = p + std::min<std::ptrdiff_t>(to - p, 16 * 255) / 16 * 16;
        __m128i counts = zero;
        for (; p != runEnd; p += 16) {
            const __m128i a = loadUnits(p);
            const __m128i b = loadUnits(p + 8);
            const __m128i feeds = _mm_packs_epi16(_mm_cmpeq_epi16(a, lineFeed), _mm_cmpeq_epi16(b, lineFeed));
            counts = _mm_sub_epi8(counts, feeds);
            wide = _mm_or_si128(wide, _mm_cmpeq_epi16(_mm_and_si128(a, surrogateMask), surrogate));
            wide = _mm_or_si128(wide, _mm_cmpeq_epi16(_mm_and_si128(b, surrogateMask), surrogate));
        }
        sums = _mm_add_epi64(sums, _mm_sad_epu8(counts, zero));
    }
    count = _mm_cvtsi128_si32(sums) + _mm_cvtsi128_si32(_mm_srli_si128(sums, 8));
    isWide = _mm_movemask_epi8(wide) != 0;
#endif
    for (; p != to; ++p) {
        isWide |= U16_IS_SURROGATE(*p);
        count += *p == '\n';
    }
    hasSurrogates = isWide;
    return count;
}

}  // namespace

void TextPosition::advance(const char16_t* from, const char16_t* to) noexcept {
    bool hasSurrogates;
    const char16_t* start = from;
    if (const std::int32_t feeds = countLineFeeds(from, to, hasSurrogates)) {
        line += feeds;
        column = 0;
        for (start = to; start[-1] != '\n';) --start;
    }
    column += static_cast<std::int32_t>(to - start);
    if (hasSurrogates) {
        for (const char16_t* p = start; p + 1 < to; ++p) {
            if (U16_IS_LEAD(p[0]) && U16_IS_TRAIL(p[1])) {
                --column;
                ++p;
            }
        }
    }
}

const std::uint16_t* findLineFeeds(const char16_t* from, const char16_t* to, std::uint16_t* notes) noexcept {
    const char16_t* p = from;
#if defined(__SSE2__)
    const __m128i lineFeed = _mm_set1_epi16('\n');
    const __m128i surrogateMask = _mm_set1_epi16(static_cast<short>(0xF800));
    const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
    __m128i wide = _mm_setzero_si128();
    for (; to - p >= 16; p += 16) {
        const __m128i a = loadUnits(p);
        const __m128i b = loadUnits(p + 8);
        wide = _mm_or_si128(wide, _mm_cmpeq_epi16(_mm_and_si128(a, surrogateMask), surrogate));
        wide = _mm_or_si128(wide, _mm_cmpeq_epi16(_mm_and_si128(b, surrogateMask), surrogate));
        auto feeds = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_packs_epi16(_mm_cmpeq_epi16(a, lineFeed), _mm_cmpeq_epi16(b, lineFeed))));
        for (; feeds; feeds &= feeds - 1) *notes++ = static_cast<std::uint16_t>(p - from + __builtin_ctz(feeds));
    }
    if (_mm_movemask_epi8(wide)) return nullptr;
#endif
    for (; p != to; ++p) {
        if (U16_IS_SURROGATE(*p)) return nullptr;
        if (*p == '\n') *notes++ = static_cast<std::uint16_t>(p - from);
    }
    return notes;
}

}  // namespace LumCommon::detail
