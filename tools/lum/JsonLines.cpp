#include "JsonLines.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "Output.h"

namespace lum {

using namespace LumCommon;

namespace {

constexpr std::size_t bytesPerUnit = 6;  // "\u0001"

constexpr bool isPlain(char16_t c) { return c >= 0x20 && c < 0x80 && c != u'"' && c != u'\\'; }

/// Copies `count` characters if all are plain; else what is at `out` means nothing. The compiler turns both loops into
/// vector instructions.
template <std::ptrdiff_t count>
bool copyBlock(const char16_t* from, char* out) {
    unsigned special = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) special |= isPlain(from[i]) ? 0 : 1;
    for (std::ptrdiff_t i = 0; i < count; ++i) out[i] = static_cast<char>(from[i]);
    return special == 0;
}

/// Four characters in one word.
template <>
bool copyBlock<4>(const char16_t* from, char* out) {
    constexpr std::uint64_t each = 0x0001000100010001, top = 0x8000 * each;
    std::uint64_t units;
    std::memcpy(&units, from, sizeof units);
    // With its highest bit set, a unit keeps it unless it is less than what is subtracted.
    const std::uint64_t plain =
        ((units | top) - 0x20 * each) & (((units ^ '"' * each) | top) - each) & (((units ^ '\\' * each) | top) - each);
    if ((units & 0xFF80 * each) != 0 || (plain & top) != top) return false;
    units = (units | units >> 8) & 0x0000FFFF0000FFFF;
    const auto bytes = static_cast<std::uint32_t>(units | units >> 16);
    std::memcpy(out, &bytes, sizeof bytes);
    return true;
}

/// The same for any number of characters from 4 on: the last block may have some that were copied before.
bool copyShort(const char16_t* from, const char16_t* end, char* out) {
    for (; end - from > 4; from += 4, out += 4) {
        if (!copyBlock<4>(from, out)) return false;
    }
    const std::ptrdiff_t again = 4 - (end - from);
    return copyBlock<4>(from - again, out - again);
}

/// Copies a run of plain characters.
char* copyPlain(const char16_t*& from, const char16_t* end, char* out) {
    for (; end - from >= 16 && copyBlock<16>(from, out); from += 16) out += 16;
    for (; end - from >= 4 && copyBlock<4>(from, out); from += 4) out += 4;
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
    const char16_t* const from = text.getBuffer();
    const char16_t* const end = from + units;
    if (units >= 4 && units < 16 && copyShort(from, end, out)) {
        out += units;
    } else if (units > 0) {
        out = appendText(out, from, end);
    }
    *out++ = '"';
    used_ += static_cast<std::size_t>(out - start);
}

void JsonLines::addNewNames(NamesSlot& slot, const Names& names) {
    const std::size_t before = used_;
    add("\"prefix\":");
    quote(names.prefix.getString());
    add(",\"name\":");
    quote(names.name.getString());
    add(",\"namespace\":");
    quote(names.namespaceUri.getString());
    const std::size_t length = used_ - before;
    if (length > sizeof(slot.json)) return;
    std::memcpy(slot.json, buffer_.data() + before, length);
    slot.length = static_cast<std::uint32_t>(length);
    slot.names = names;
}

void JsonLines::flush() {
    const std::size_t count = used_;
    used_ = 0;
    print({buffer_.data(), count});
}

}  // namespace lum
