#include "JsonLines.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "Output.h"

namespace lum {

using namespace LumCommon;

namespace {

constexpr std::size_t bytesPerUnit = 6;  // "\u0001"

constexpr bool isPlain(char16_t c) { return c >= 0x20 && c < 0x80 && c != u'"' && c != u'\\'; }

/// Copies a run of plain characters. The compiler turns both inner loops into vector instructions.
char* copyPlain(const char16_t*& from, const char16_t* end, char* out) {
    constexpr std::ptrdiff_t step = 16;
    for (; end - from >= step; from += step, out += step) {
        unsigned special = 0;
        for (std::ptrdiff_t i = 0; i < step; ++i) special |= isPlain(from[i]) ? 0 : 1;
        if (special) break;
        for (std::ptrdiff_t i = 0; i < step; ++i) out[i] = static_cast<char>(from[i]);
    }
    while (from != end && isPlain(*from)) *out++ = static_cast<char>(*from++);
    return out;
}

char* appendEscape(char* out, char16_t c) {
    constexpr std::string_view shortForms = "\"\"\\\\\bb\ff\nn\rr\tt";  // a character and its letter
    *out++ = '\\';
    for (std::size_t i = 0; i < shortForms.size(); i += 2) {
        if (shortForms[i] != static_cast<char>(c)) continue;
        *out++ = shortForms[i + 1];
        return out;
    }
    constexpr std::string_view digits = "0123456789abcdef";
    for (const char digit : {'u', '0', '0', digits[c >> 4], digits[c & 15]}) *out++ = digit;
    return out;
}

/// An unpaired surrogate becomes U+FFFD.
char* appendText(char* out, const char16_t* from, const char16_t* end) {
    for (;;) {
        out = copyPlain(from, end, out);
        if (from == end) return out;
        UChar32 c = *from++;
        if (c < 0x80) {
            out = appendEscape(out, static_cast<char16_t>(c));
            continue;
        }
        if (U16_IS_LEAD(c) && from != end && U16_IS_TRAIL(*from)) c = U16_GET_SUPPLEMENTARY(c, *from++);
        if (U_IS_SURROGATE(c)) c = 0xFFFD;
        std::size_t length = 0;
        U8_APPEND_UNSAFE(out, length, c);
        out += length;
    }
}

}  // namespace

JsonLines::~JsonLines() {
    try {
        flush();
    } catch (...) {
        // Something else has ended the output, and is being reported.
    }
}

void JsonLines::add(int number) {
    constexpr std::size_t longest = 16;
    char* const out = room(longest);
    used_ += static_cast<std::size_t>(std::to_chars(out, out + longest, number).ptr - out);
}

void JsonLines::quote(const UnicodeString& text) {
    const auto units = static_cast<std::size_t>(std::max(text.length(), 0));
    char* const start = room(bytesPerUnit * units + 2);
    char* out = start;
    *out++ = '"';
    if (units > 0) out = appendText(out, text.getBuffer(), text.getBuffer() + units);
    *out++ = '"';
    used_ += static_cast<std::size_t>(out - start);
}

void JsonLines::quoteNew(NameSlot& slot, LumName name) {
    const std::size_t before = used_;
    quote(name.getString());
    const std::size_t length = used_ - before;
    if (length > sizeof(slot.json)) return;
    std::memcpy(slot.json, buffer_.data() + before, length);
    slot.length = static_cast<std::uint8_t>(length);
    slot.name = name;
}

void JsonLines::flush() {
    const std::size_t count = used_;
    used_ = 0;
    print({buffer_.data(), count});
}

}  // namespace lum
