#include <lumcommon/dom/detail/PlainText.h>

#if defined(__SSE2__)

#include <immintrin.h>

#include <bit>

namespace LumCommon::detail {

const bool hasAvx2 = __builtin_cpu_supports("avx2");

__attribute__((target("avx2"))) char* copyPlainByAvx2(const char16_t*& position, const char16_t* end, TextMode mode,
                                                      char* out) {
    // The comparisons of findSpecial(); raw text has nothing equal to 0xFF once all bits are masked out.
    const __m256i ampMask = _mm256_set1_epi8(mode == TEXT_RAW ? 0 : mode == TEXT_ATTRIBUTE ? ~4 : ~0);
    const __m256i amp = _mm256_set1_epi8(mode == TEXT_RAW ? ~0 : mode == TEXT_ATTRIBUTE ? '"' : '&');
    const __m256i angleMask = _mm256_set1_epi8(mode == TEXT_RAW ? 0 : ~2);
    const __m256i angle = _mm256_set1_epi8(mode == TEXT_RAW ? ~0 : '<');
    const char16_t* from = position;
    while (end - from >= 32) {
        const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
        const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 16));
        const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
        const __m256i notAscii = _mm256_andnot_si256(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\n')),
                                                     _mm256_cmpgt_epi8(_mm256_set1_epi8(' '), bytes));
        const __m256i escaped = _mm256_or_si256(_mm256_cmpeq_epi8(_mm256_and_si256(bytes, ampMask), amp),
                                                _mm256_cmpeq_epi8(_mm256_and_si256(bytes, angleMask), angle));
        const auto special = static_cast<unsigned>(_mm256_movemask_epi8(_mm256_or_si256(notAscii, escaped)));
        const int plain = special ? std::countr_zero(special) : 32;
        from += plain;
        out += plain;
        if (special) break;
    }
    position = from;
    return out;
}

}  // namespace LumCommon::detail

#endif
