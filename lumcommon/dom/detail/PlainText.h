#pragma once

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>

#include <bit>
#include <cstring>
#endif

/// Copies the ASCII characters of UTF-16 text that are written as they are, by the widest instructions there are.
namespace LumCommon::detail {

/// What is escaped while text is written.
enum TextMode {
    TEXT_RAW,        ///< nothing
    TEXT_CONTENT,    ///< "&", "<" and ">"
    TEXT_ATTRIBUTE,  ///< these and the double quote
};

/// Whether a character is neither escaped nor dropped nor beyond ASCII.
constexpr bool isPlain(char16_t c, TextMode mode) {
    if (c < ' ') return c == '\t' || c == '\n' || c == '\r';
    if (c >= 0x80) return false;
    if (mode == TEXT_RAW) return true;
    return c != '&' && c != '<' && c != '>' && !(c == '"' && mode == TEXT_ATTRIBUTE);
}

/// How far past the last byte that counts the following may write.
constexpr std::size_t plainTextSlack = 32;

/// Copies up to the first character that is not plain.
template <TextMode mode>
char* copyPlainByUnit(const char16_t*& position, const char16_t* end, char* out) {
    const char16_t* from = position;
    while (from != end && isPlain(*from, mode)) *out++ = static_cast<char>(*from++);
    position = from;
    return out;
}

#if defined(__SSE2__)

/// The bytes of a packed run that may not be plain: control characters except the line feed, what is escaped, and what
/// is not ASCII. Packing with saturation turns units from U+0100 to U+7FFF into 0xFF and those above into 0, so that
/// one signed comparison with the space finds all but the escaped ones.
template <TextMode mode>
unsigned findSpecial(__m128i bytes) {
    __m128i found =
        _mm_andnot_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')), _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')));
    if constexpr (mode != TEXT_RAW) {
        // '&' is 0x26 and '"' is 0x22, '<' is 0x3C and '>' is 0x3E: without the bit in which they differ, one
        // comparison finds both.
        const __m128i amp = mode == TEXT_ATTRIBUTE
                                ? _mm_cmpeq_epi8(_mm_and_si128(bytes, _mm_set1_epi8(~4)), _mm_set1_epi8('"'))
                                : _mm_cmpeq_epi8(bytes, _mm_set1_epi8('&'));
        const __m128i angle = _mm_cmpeq_epi8(_mm_and_si128(bytes, _mm_set1_epi8(~2)), _mm_set1_epi8('<'));
        found = _mm_or_si128(found, _mm_or_si128(amp, angle));
    }
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}

/// Copies runs of 32 units. Must not be called unless the processor has AVX2.
char* copyPlainByAvx2(const char16_t*& position, const char16_t* end, TextMode mode, char* out);
extern const bool hasAvx2;

/// Copies the last units of a run, of which there are less than 8. Where `done` plain units before them have been
/// copied, and they are enough, the last 8 are copied in one step.
template <TextMode mode>
char* copyPlainTail(const char16_t*& position, const char16_t* end, std::ptrdiff_t done, char* out) {
    const std::ptrdiff_t rest = end - position;
    std::ptrdiff_t plain = 0;
    if (done >= 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(end - 8));
        const __m128i bytes = _mm_packus_epi16(units, units);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + rest - 8), bytes);
        plain = std::countr_zero(((findSpecial<mode>(bytes) & 0xFFu) | 0x100u) >> (8 - rest));
    } else if (rest >= 4) {
        const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(position));
        const __m128i last = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(end - 4));
        const __m128i bytes = _mm_packus_epi16(_mm_unpacklo_epi64(first, last), first);
        const unsigned special = findSpecial<mode>(bytes);
        const int firstBytes = _mm_cvtsi128_si32(bytes);
        const int lastBytes = _mm_cvtsi128_si32(_mm_srli_si128(bytes, 4));
        std::memcpy(out, &firstBytes, 4);
        std::memcpy(out + rest - 4, &lastBytes, 4);
        plain = special & 0xFu ? std::countr_zero(special) : rest - 4 + std::countr_zero((special >> 4 & 0xFu) | 0x10u);
    } else {
        return copyPlainByUnit<mode>(position, end, out);
    }
    position += plain;
    return out + plain;
}

#endif

/// The same as copyPlainByUnit(), but it may stop before a tab or a carriage return.
template <TextMode mode>
char* copyPlain(const char16_t*& position, const char16_t* end, char* out) {
#if defined(__SSE2__)
    const char16_t* const start = position;
    if (end - start >= 32 && hasAvx2) {
        out = copyPlainByAvx2(position, end, mode, out);
        if (end - position >= 32) return out;
    }
    const char16_t* from = position;
    while (end - from >= 16) {
        const __m128i bytes = _mm_packus_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)),
                                               _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 8)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
        const int plain = std::countr_zero(findSpecial<mode>(bytes) | 0x10000u);
        from += plain;
        out += plain;
        if (plain < 16) {
            position = from;
            return out;
        }
    }
    if (end - from >= 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i bytes = _mm_packus_epi16(units, units);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
        const int plain = std::countr_zero((findSpecial<mode>(bytes) & 0xFFu) | 0x100u);
        from += plain;
        out += plain;
        if (plain < 8) {
            position = from;
            return out;
        }
    }
    position = from;
    return from == end ? out : copyPlainTail<mode>(position, end, from - start, out);
#else
    return copyPlainByUnit<mode>(position, end, out);
#endif
}

}  // namespace LumCommon::detail
