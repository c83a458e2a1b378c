#include <lumcommon/xml/detail/XmlChars.h>
#include <lumcommon/xml/detail/XmlDecoder.h>

#include <unicode/utf16.h>

#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace LumCommon::detail {

namespace {

using Bytes = const unsigned char*;

constexpr std::int32_t malformed = lastCodePoint + 1;  // in place of a code point

static_assert(std::endian::native == std::endian::little, "sequences are loaded as little-endian words");

/// Whether so many bytes of UTF-8 are more than the character needs.
inline bool isTooLong(std::int32_t c, std::ptrdiff_t bytes) noexcept {
    constexpr std::int32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    return bytes > 1 && bytes <= 4 && c < least[bytes];
}

/// One UTF-8 sequence. False, and nothing taken, when it is incomplete and more bytes may follow.
inline bool decodeUtf8Sequence(Bytes& from, Bytes end, bool isLast, std::int32_t& c) noexcept {
    const unsigned lead = *from;
    if (lead < 0x80) {
        c = static_cast<std::int32_t>(lead);
        ++from;
        return true;
    }
    int following = 3;
    std::int32_t value = lead & 0x07;
    if ((lead & 0xE0) == 0xC0) {
        following = 1;
        value = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        following = 2;
        value = lead & 0x0F;
    } else if ((lead & 0xF8) != 0xF0) {
        ++from;
        c = malformed;
        return true;
    }
    Bytes p = from + 1;
    for (; following > 0; --following, ++p) {
        if (p == end) {
            if (!isLast) return false;
            from = p;
            c = malformed;
            return true;
        }
        if ((*p & 0xC0) != 0x80) {
            from = p + 1;
            c = malformed;
            return true;
        }
        value = (value << 6) | (*p & 0x3F);
    }
    from = p;
    c = value > lastCodePoint ? malformed : value;
    return true;
}

inline unsigned unitAt(Bytes p, bool isLittleEndian) noexcept {
    return isLittleEndian ? static_cast<unsigned>(p[0] | (p[1] << 8)) : static_cast<unsigned>((p[0] << 8) | p[1]);
}

/// One character of UTF-16; the same promise.
inline bool decodeUtf16Sequence(Bytes& from, Bytes end, bool isLast, bool isLittleEndian, std::int32_t& c) noexcept {
    const std::ptrdiff_t size = end - from;
    if (size < 2) {
        if (!isLast) return false;
        from = end;
        c = malformed;
        return true;
    }
    const unsigned unit = unitAt(from, isLittleEndian);
    if (!U16_IS_LEAD(unit)) {
        from += 2;
        c = static_cast<std::int32_t>(unit);
        return true;
    }
    if (size < 4) {
        if (!isLast) return false;
        from = end;
        c = malformed;
        return true;
    }
    const unsigned second = unitAt(from + 2, isLittleEndian);
    from += 4;
    c = U16_IS_TRAIL(second) ? U16_GET_SUPPLEMENTARY(unit, second) : malformed;
    return true;
}

inline bool decodeUtf32Sequence(Bytes& from, Bytes end, bool isLast, bool isLittleEndian, std::int32_t& c) noexcept {
    if (end - from < 4) {
        if (!isLast) return false;
        from = end;
        c = malformed;
        return true;
    }
    const std::uint32_t low = unitAt(isLittleEndian ? from : from + 2, isLittleEndian);
    const std::uint32_t high = unitAt(isLittleEndian ? from + 2 : from, isLittleEndian);
    from += 4;
    c = high > (lastCodePoint >> 16) ? malformed : static_cast<std::int32_t>((high << 16) | low);
    return true;
}

/// Characters of two and three bytes, with single ones of one byte between them, as text beyond Latin is made of.
/// Stops before whatever is not as simple as that: a line end, a form that is too long, a surrogate, a fourth ASCII
/// character in a row, the last few bytes.
inline void decodeLetters(Bytes& from, Bytes end, char16_t*& to, const char16_t* toEnd) noexcept {
    Bytes p = from;
    char16_t* out = to;
    for (unsigned asciiRun = 0; end - p >= 8 && toEnd - out >= 4;) {
        std::uint64_t word;
        std::memcpy(&word, p, sizeof word);
        const std::uint64_t others = (word & 0xC0E0C0E0C0E0C0E0u) ^ 0x80C080C080C080C0u;
        if (const int count = std::countr_zero(others) / 16; count > 0) {
            // Up to four characters of two bytes. Below U+00A0 lie a line end and forms that are too long.
            const std::uint64_t units = ((word & 0x001F001F001F001Fu) << 6) | ((word >> 8) & 0x003F003F003F003Fu);
            const std::uint64_t low = ~(units + 0x7F607F607F607F60u) & 0x8000800080008000u;
            if (std::countr_zero(low) / 16 < count) break;
            std::memcpy(out, &units, sizeof units);
            p += 2 * count;
            out += count;
            asciiRun = 0;
            continue;
        }
        const auto lead = static_cast<std::uint32_t>(word) & 0xFFu;
        if (lead < 0x80) {
            if (lead == '\r' || ++asciiRun > 3) break;
            *out++ = static_cast<char16_t>(lead);
            ++p;
            continue;
        }
        if ((word & 0x00C0C0F0u) != 0x008080E0u) break;
        // Three bytes each. Below U+0800 lie forms that are too long.
        bool isPlain;
        auto sequence = static_cast<std::uint32_t>(word);
        do {
            const std::uint32_t unit =
                ((sequence & 0x0Fu) << 12) | ((sequence >> 2) & 0x0FC0u) | ((sequence >> 16) & 0x3Fu);
            isPlain = unit >= 0x800 && unit != 0x2028 && !U16_IS_SURROGATE(unit);
            if (!isPlain) break;
            *out++ = static_cast<char16_t>(unit);
            p += 3;
            if (end - p < 4 || out == toEnd) break;
            std::memcpy(&sequence, p, sizeof sequence);
        } while ((sequence & 0x00C0C0F0u) == 0x008080E0u);
        if (!isPlain) break;
        asciiRun = 0;
    }
    from = p;
    to = out;
}

}  // namespace

struct XmlDecoder::Run {
    Bytes from;
    Bytes fromEnd;
    bool isLast;
    char16_t* to;
    char16_t* toEnd;
};

inline bool XmlDecoder::readUtf8(Bytes& from, Bytes fromEnd, bool isLast, std::int32_t& c) const noexcept {
    const Bytes start = from;
    if (!decodeUtf8Sequence(from, fromEnd, isLast, c)) return false;
    if (isStrict && isTooLong(c, from - start)) c = malformed;
    return true;
}

bool XmlDecoder::decodeOne(Bytes& from, Bytes fromEnd, bool isLast, std::int32_t& c) const noexcept {
    switch (encoding) {
        case XmlEncoding::Utf8:
            return readUtf8(from, fromEnd, isLast, c);
        case XmlEncoding::Utf16LE:
        case XmlEncoding::Utf16BE:
            return decodeUtf16Sequence(from, fromEnd, isLast, encoding == XmlEncoding::Utf16LE, c);
        case XmlEncoding::Utf32LE:
        case XmlEncoding::Utf32BE:
            return decodeUtf32Sequence(from, fromEnd, isLast, encoding == XmlEncoding::Utf32LE, c);
        default:
            c = *from++;
            return true;
    }
}

void XmlDecoder::put(Run& run, std::int32_t c) noexcept {
    const bool isOtherFeed = !isStrict && (c == 0x85 || c == 0x2028);
    const bool isSecondHalf = isAfterReturn_ && (c == '\n' || (isOtherFeed && c == 0x85));
    isAfterReturn_ = c == '\r';
    if (isSecondHalf) return;
    if (c == '\r' || isOtherFeed) c = '\n';
    if (c == malformed || (isStrict && U_IS_SURROGATE(c))) c = isStrict ? notACharacter : replacementChar;
    if (c < 0x10000) {
        if (U16_IS_LEAD(c)) hasSurrogates = true;
        *run.to++ = static_cast<char16_t>(c);
    } else {
        hasSurrogates = true;
        *run.to++ = U16_LEAD(c);
        *run.to++ = U16_TRAIL(c);
    }
}

void XmlDecoder::decodeEach(Run& run, bool oneChar) noexcept {
    const char16_t* start = run.to;
    std::int32_t c;
    while (run.from != run.fromEnd && run.toEnd - run.to >= 2) {
        if (!decodeOne(run.from, run.fromEnd, run.isLast, c)) return;
        put(run, c);
        if (oneChar && run.to != start) return;
    }
}

void XmlDecoder::decodeUtf8(Run& run) noexcept {
    Bytes from = run.from;
    char16_t* to = run.to;
    // Two units of room are kept for the longest character.
    while (from != run.fromEnd && run.toEnd - to >= 2) {
#if defined(__SSE2__)
        if (!isAfterReturn_) {
            const __m128i zero = _mm_setzero_si128();
            const __m128i carriageReturn = _mm_set1_epi8('\r');
            while (run.fromEnd - from >= 16 && run.toEnd - to >= 16) {
                const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
                const auto special = static_cast<unsigned>(_mm_movemask_epi8(v)) |
                                     static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, carriageReturn)));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_unpacklo_epi8(v, zero));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8), _mm_unpackhi_epi8(v, zero));
                // All sixteen are written; only those before the first special byte count.
                const int good = special ? __builtin_ctz(special) : 16;
                from += good;
                to += good;
                if (special) break;
            }
            if (from == run.fromEnd || run.toEnd - to < 2) break;
        }
#endif
        if (!isAfterReturn_) {
            const Bytes start = from;
            decodeLetters(from, run.fromEnd, to, run.toEnd);
            if (from != start) continue;
        }
        std::int32_t c;
        if (!readUtf8(from, run.fromEnd, run.isLast, c)) break;
        run.to = to;
        put(run, c);
        to = run.to;
    }
    run.from = from;
    run.to = to;
}

void XmlDecoder::decodeBytes(Run& run) noexcept {
    while (run.from != run.fromEnd && run.to != run.toEnd) {
#if defined(__SSE2__)
        if (!isAfterReturn_) {
            const __m128i zero = _mm_setzero_si128();
            const __m128i carriageReturn = _mm_set1_epi8('\r');
            const __m128i nextLine = _mm_set1_epi8(static_cast<char>(0x85));
            while (run.fromEnd - run.from >= 16 && run.toEnd - run.to >= 16) {
                const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(run.from));
                const auto special = static_cast<unsigned>(
                    _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(v, carriageReturn), _mm_cmpeq_epi8(v, nextLine))));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(run.to), _mm_unpacklo_epi8(v, zero));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(run.to + 8), _mm_unpackhi_epi8(v, zero));
                const int good = special ? __builtin_ctz(special) : 16;
                run.from += good;
                run.to += good;
                if (special) break;
            }
            if (run.from == run.fromEnd || run.to == run.toEnd) break;
        }
#endif
        put(run, *run.from++);
    }
}

void XmlDecoder::decodeUtf16(Run& run) noexcept {
    const bool isLittleEndian = encoding == XmlEncoding::Utf16LE;
    std::int32_t c;
    while (run.from != run.fromEnd && run.toEnd - run.to >= 2) {
#if defined(__SSE2__)
        if (!isAfterReturn_) {
            const __m128i carriageReturn = _mm_set1_epi16('\r');
            const __m128i nextLine = _mm_set1_epi16(0x85);
            const __m128i lineSeparator = _mm_set1_epi16(0x2028);
            // A low surrogate alone is let through unless that is wrong.
            const __m128i leadMask = _mm_set1_epi16(static_cast<short>(isStrict ? 0xF800 : 0xFC00));
            const __m128i lead = _mm_set1_epi16(static_cast<short>(0xD800));
            while (run.fromEnd - run.from >= 16 && run.toEnd - run.to >= 8) {
                __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(run.from));
                if (!isLittleEndian) v = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
                const __m128i hits = _mm_or_si128(
                    _mm_or_si128(_mm_cmpeq_epi16(v, carriageReturn), _mm_cmpeq_epi16(v, nextLine)),
                    _mm_or_si128(_mm_cmpeq_epi16(v, lineSeparator), _mm_cmpeq_epi16(_mm_and_si128(v, leadMask), lead)));
                const auto special = static_cast<unsigned>(_mm_movemask_epi8(hits));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(run.to), v);
                const int good = special ? __builtin_ctz(special) / 2 : 8;
                run.from += 2 * good;
                run.to += good;
                if (special) break;
            }
            if (run.from == run.fromEnd || run.toEnd - run.to < 2) break;
        }
#endif
        if (!decodeUtf16Sequence(run.from, run.fromEnd, run.isLast, isLittleEndian, c)) break;
        put(run, c);
    }
}

void XmlDecoder::decode(Bytes& from, Bytes fromEnd, bool isLast, char16_t*& to, char16_t* toEnd,
                        bool oneChar) noexcept {
    Run run{from, fromEnd, isLast, to, toEnd};
    if (oneChar) {
        decodeEach(run, true);
    } else {
        switch (encoding) {
            case XmlEncoding::Utf8:
                decodeUtf8(run);
                break;
            case XmlEncoding::Utf16LE:
            case XmlEncoding::Utf16BE:
                decodeUtf16(run);
                break;
            case XmlEncoding::Utf32LE:
            case XmlEncoding::Utf32BE:
                decodeEach(run, false);
                break;
            default:
                decodeBytes(run);
        }
    }
    from = run.from;
    to = run.to;
}

}  // namespace LumCommon::detail
