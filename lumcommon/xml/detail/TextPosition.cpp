#include <lumcommon/xml/detail/TextPosition.h>

#include <unicode/utf16.h>

#include <algorithm>
#include <bit>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace LumCommon::detail {

namespace {

#if defined(__SSE2__)
/// Sixteen bytes for sixteen units, 0xFF for each line feed.
__m128i lineFeeds(const char16_t* p) noexcept {
    const __m128i lineFeed = _mm_set1_epi16('\n');
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
    return _mm_packs_epi16(_mm_cmpeq_epi16(a, lineFeed), _mm_cmpeq_epi16(b, lineFeed));
}
#endif

std::int32_t countLineFeeds(const char16_t* p, const char16_t* to) noexcept {
    std::int32_t count = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    __m128i sums = zero;
    while (to - p >= 16) {
        // As bytes the counts of a run stay below 256; then they are added up.
        const char16_t* const runEnd = p + std::min<std::ptrdiff_t>(to - p, 16 * 255) / 16 * 16;
        __m128i counts = zero;
        for (; p != runEnd; p += 16) counts = _mm_sub_epi8(counts, lineFeeds(p));
        sums = _mm_add_epi64(sums, _mm_sad_epu8(counts, zero));
    }
    count = _mm_cvtsi128_si32(sums) + _mm_cvtsi128_si32(_mm_srli_si128(sums, 8));
#endif
    for (; p != to; ++p) count += *p == '\n';
    return count;
}

}  // namespace

void TextPosition::advance(const char16_t* from, const char16_t* to, bool mayHavePairs) noexcept {
    const char16_t* start = from;
    if (const std::int32_t feeds = countLineFeeds(from, to)) {
        line += feeds;
        column = 0;
        for (start = to; start[-1] != '\n';) --start;
    }
    column += to - start;
    if (!mayHavePairs) return;
    for (const char16_t* p = start; p + 1 < to; ++p) {
        if (U16_IS_LEAD(p[0]) && U16_IS_TRAIL(p[1])) {
            --column;
            ++p;
        }
    }
}

const std::uint16_t* findLineFeeds(const char16_t* from, const char16_t* to, std::uint16_t* notes) noexcept {
    const char16_t* p = from;
#if defined(__SSE2__)
    for (; to - p >= 16; p += 16) {
        auto feeds = static_cast<unsigned>(_mm_movemask_epi8(lineFeeds(p)));
        // Noted whether there is one or not: nobody can foretell it.
        *notes = static_cast<std::uint16_t>(p - from + std::countr_zero(feeds | 0x8000));
        notes += feeds != 0;
        while ((feeds &= feeds - 1) != 0) *notes++ = static_cast<std::uint16_t>(p - from + std::countr_zero(feeds));
    }
#endif
    for (; p != to; ++p) {
        if (*p == '\n') *notes++ = static_cast<std::uint16_t>(p - from);
    }
    return notes;
}

}  // namespace LumCommon::detail
