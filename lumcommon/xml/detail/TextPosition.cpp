#include <lumcommon/xml/detail/TextPosition.h>

#include <unicode/utf16.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace LumCommon::detail {

void TextPosition::advance(const char16_t* from, const char16_t* to) noexcept {
    const char16_t* lineStart = nullptr;  // after the last line feed met
    bool hasSurrogates = false;
    const char16_t* p = from;
#if defined(__SSE2__)
    const __m128i lineFeed = _mm_set1_epi16('\n');
    const __m128i surrogateMask = _mm_set1_epi16(static_cast<short>(0xF800));
    const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
    for (; to - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const auto feeds = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(v, lineFeed)));
        hasSurrogates |= _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, surrogateMask), surrogate)) != 0;
        if (feeds) {
            line += __builtin_popcount(feeds) / 2;
            lineStart = p + (31 - __builtin_clz(feeds)) / 2 + 1;
        }
    }
#endif
    for (; p != to; ++p) {
        hasSurrogates |= U16_IS_SURROGATE(*p);
        if (*p == '\n') {
            ++line;
            lineStart = p + 1;
        }
    }
    if (lineStart) column = 0;
    const char16_t* start = lineStart ? lineStart : from;
    column += static_cast<std::int32_t>(to - start);
    if (hasSurrogates) {
        for (p = start; p + 1 < to; ++p) {
            if (U16_IS_LEAD(p[0]) && U16_IS_TRAIL(p[1])) {
                --column;
                ++p;
            }
        }
    }
}

}  // namespace LumCommon::detail
