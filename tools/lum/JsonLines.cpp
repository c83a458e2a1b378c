#include "JsonLines.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "Json.h"
#include "Output.h"

namespace LumTool {

using namespace LumCommon;

namespace {

constexpr std::size_t bytesPerUnit = 6;  // "\u0001"
constexpr std::ptrdiff_t chunkUnits = 2048;

constexpr bool isPlain(char16_t c) { return c >= 0x20 && c < 0x80 && c != u'"' && c != u'\\'; }

/// Copies 4, 8 or 16 characters, of which those mean something that are plain.
/// @return  a bit for each that is not, the first one lowest.
template <int count>
unsigned copyBlock(const char16_t* from, char* out) {
#if defined(__SSE2__)
    const auto* const units = reinterpret_cast<const __m128i*>(from);
    const __m128i low = count == 4 ? _mm_loadl_epi64(units) : _mm_loadu_si128(units);
    const __m128i high = count == 16 ? _mm_loadu_si128(units + 1) : low;
    const __m128i bytes = _mm_packus_epi16(low, high);                   // what is above 0xFF becomes 0xFF or 0
    const __m128i control = _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20));  // signed: all from 0x80 on, too
    const __m128i special =
        _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
    std::memcpy(out, &bytes, count);
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(control, special))) & ((1u << count) - 1);
#else
    unsigned special = 0;
    for (int i = 0; i < count; ++i) {
        out[i] = static_cast<char>(from[i]);
        special |= isPlain(from[i]) ? 0u : 1u << i;
    }
    return special;
#endif
}

/// How each ASCII character is written.
struct Form {
    char text[7] = {};
    std::uint8_t length = 0;
};

constexpr std::array<Form, 0x80> forms = [] {
    constexpr std::string_view digits = "0123456789abcdef", shortForms = "\"\"\\\\\bb\ff\nn\rr\tt";
    std::array<Form, 0x80> all;
    for (unsigned c = 0; c < all.size(); ++c) {
        all[c] = isPlain(static_cast<char16_t>(c)) ? Form{{static_cast<char>(c)}, 1}
                                                   : Form{{'\\', 'u', '0', '0', digits[c >> 4], digits[c & 15]}, 6};
    }
    for (std::size_t i = 0; i < shortForms.size(); i += 2) {  // a character and its letter
        all[static_cast<unsigned char>(shortForms[i])] = {{'\\', shortForms[i + 1]}, 2};
    }
    return all;
}();

/// One character. An unpaired surrogate becomes U+FFFD. Up to eight bytes are written, whatever the length is.
inline char* putCharacter(char* out, const char16_t*& from, const char16_t* end) {
    UChar32 c = *from++;
    if (c < 0x80) {
        std::memcpy(out, &forms[static_cast<std::size_t>(c)], sizeof(Form));
        return out + forms[static_cast<std::size_t>(c)].length;
    }
    if (U16_IS_LEAD(c) && from != end && U16_IS_TRAIL(*from)) c = U16_GET_SUPPLEMENTARY(c, *from++);
    if (U_IS_SURROGATE(c)) c = 0xFFFD;
    std::size_t length = 0;
    U8_APPEND_UNSAFE(out, length, c);
    return out + length;
}

template <int count>
char* putBlocks(char* out, const char16_t*& from, const char16_t* end) {
    while (end - from >= count) {
        const unsigned special = copyBlock<count>(from, out);
        const int plain = special == 0 ? count : std::countr_zero(special);
        from += plain;
        out += plain;
        if (special != 0) out = putCharacter(out, from, end);
    }
    return out;
}

char* putText(char* out, const char16_t* from, const char16_t* end) {
    out = putBlocks<16>(out, from, end);
    out = putBlocks<4>(out, from, end);
    while (from != end) out = putCharacter(out, from, end);
    return out;
}

}  // namespace

JsonLines::~JsonLines() {
    try {
        flush();
    } catch (...) {
        // Something else has ended the output, and is being reported.
    }
}

char* JsonLines::putLong(char* out, int number) noexcept { return std::to_chars(out, out + numberRoom, number).ptr; }

bool JsonLines::copyShort(const char16_t* from, std::size_t units, char* out) noexcept {
    // Two blocks that overlap take the place of a loop.
    const auto copyEnds = [=](auto copy, std::size_t size) {
        return (copy(from, out) | copy(from + units - size, out + units - size)) == 0;
    };
    if (units >= 16) return copyEnds(copyBlock<16>, 16);
    if (units >= 8) return copyEnds(copyBlock<8>, 8);
    if (units >= 4) return copyEnds(copyBlock<4>, 4);
    const char16_t first = from[0], middle = from[units / 2], last = from[units - 1];
    out[0] = static_cast<char>(first);
    out[units / 2] = static_cast<char>(middle);
    out[units - 1] = static_cast<char>(last);
    return isPlain(first) && isPlain(middle) && isPlain(last);
}

char* JsonLines::quoteAny(char* out, const UnicodeString& text) {
    const std::ptrdiff_t units = text.length();
    const char16_t* const from = text.getBuffer();
    if (units > chunkUnits) return quoteLong(out, from, from + units);
    out = put(room(out, bytesPerUnit * static_cast<std::size_t>(units) + 2), "\"");
    return put(putText(out, from, from + units), "\"");
}

char* JsonLines::quoteLong(char* out, const char16_t* from, const char16_t* end) {
    out = put(room(out, 1), "\"");
    while (from != end) {
        const char16_t* stop = end - from > chunkUnits ? from + chunkUnits : end;
        if (stop != end && U16_IS_LEAD(stop[-1])) --stop;
        out = putText(room(out, bytesPerUnit * chunkUnits), from, stop);
        from = stop;
    }
    return put(room(out, 1), "\"");
}

char* JsonLines::putAnyLength(char* out, std::string_view json) {
    if (json.size() > bufferBytes - slack) {
        out = handOver(out);
        print(json);
        return out;
    }
    out = room(out, json.size());
    return out + json.copy(out, json.size());
}

std::string JsonLines::jsonOf(const Names& names, const Frame& frame) {
    const auto quoted = [](std::uint64_t id) {
        return Json(toUtf8(LumName(static_cast<LumNameEnum>(id & 0xFFFFFFFF)))).toString();
    };
    std::string json(frame.before);
    json.append("\"prefix\":").append(quoted(names.low >> 32)).append(",\"name\":").append(quoted(names.low));
    json.append(",\"namespace\":").append(quoted(names.high >> 32)).append(frame.after);
    return json;
}

const JsonLines::NamesSlot* JsonLines::findOther(const Names& names, std::size_t home, const Frame& frame) {
    NamesSlot* free = nullptr;
    for (std::size_t i = 0; i < probes; ++i) {
        NamesSlot& slot = names_[(home + i) % names_.size()];
        if (slot.names == names) return &slot;
        if (!free && slot.length == 0) free = &slot;
    }
    const std::string json = jsonOf(names, frame);
    if (json.size() > sizeof(free->json)) return nullptr;
    if (!free) free = &names_[(home + replaced_++ % probes) % names_.size()];
    free->names = names;
    free->length = static_cast<std::uint32_t>(json.copy(free->json, sizeof(free->json)));
    return free;
}

char* JsonLines::handOver(char* end) {
    const char* const begin = buffer_.get();
    next_ = buffer_.get();
    print({begin, static_cast<std::size_t>(end - begin)});
    return next_;
}

}  // namespace LumTool
