#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

/// Character classes of XML 1.0 names without colons, white space, and the code points that have a meaning of their
/// own.
namespace LumCommon::detail {

inline constexpr std::int32_t endOfInput = -1;  // in place of a code point
inline constexpr std::int32_t lastCodePoint = 0x10FFFF;
inline constexpr std::int32_t replacementChar = 0xFFFD;  // for bytes that cannot be decoded
inline constexpr std::int32_t notACharacter = 0xFFFF;    // never text; content that holds it is malformed

enum XmlCharClass : std::uint8_t {
    CLASS_NAME_START = 1,
    CLASS_NAME = 2,  // may continue a name; name start characters have it too
    CLASS_COLON = 4,
    CLASS_SPACE = 8,
};

constexpr std::array<std::uint8_t, 128> makeXmlCharClasses() {
    std::array<std::uint8_t, 128> classes{};
    for (unsigned c = 0; c < 128; ++c) {
        const bool isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        const bool isOther = (c >= '0' && c <= '9') || c == '-' || c == '.';
        if (isLetter) classes[c] = CLASS_NAME_START | CLASS_NAME;
        if (isOther) classes[c] = CLASS_NAME;
        if (c == ':') classes[c] = CLASS_COLON;
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r') classes[c] = CLASS_SPACE;
    }
    return classes;
}

inline constexpr std::array<std::uint8_t, 128> xmlCharClasses = makeXmlCharClasses();

/// Beyond ASCII, the ranges of characters in names, ascending.
struct XmlNameRange {
    std::int32_t first;
    std::int32_t last;
    bool isStart;  // may begin a name; the others only continue one
};

inline constexpr XmlNameRange xmlNameRanges[] = {
    {0xB7, 0xB7, false},    {0xC0, 0x2FF, true},    {0x300, 0x36F, false},   {0x370, 0x37D, true},
    {0x37F, 0x1FFF, true},  {0x200C, 0x200D, true}, {0x203F, 0x2040, false}, {0x2070, 0x218F, true},
    {0x2C00, 0x2FEF, true}, {0x3001, 0xD7FF, true}, {0xF900, 0xEFFFF, true},
};
static_assert(std::ranges::adjacent_find(xmlNameRanges, [](const XmlNameRange& a, const XmlNameRange& b) {
                  return a.first > a.last || a.last >= b.first;
              }) == std::end(xmlNameRanges));

/// The range that holds a code point beyond ASCII; null when no name does.
constexpr const XmlNameRange* findXmlNameRange(std::int32_t c) noexcept {
    for (const XmlNameRange& range : xmlNameRanges) {
        if (c <= range.last) return c >= range.first ? &range : nullptr;
    }
    return nullptr;
}

/// @param c  a code point, or negative for the end of input, which belongs to no class.
constexpr bool isXmlSpace(std::int32_t c) noexcept { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

constexpr bool isXmlNameStart(std::int32_t c) noexcept {
    if (c < 0) return false;
    if (c < 128) return (xmlCharClasses[static_cast<unsigned>(c)] & CLASS_NAME_START) != 0;
    const XmlNameRange* const range = findXmlNameRange(c);
    return range && range->isStart;
}

constexpr bool isXmlNameChar(std::int32_t c) noexcept {
    if (c < 0) return false;
    if (c < 128) return (xmlCharClasses[static_cast<unsigned>(c)] & CLASS_NAME) != 0;
    return findXmlNameRange(c) != nullptr;
}

}  // namespace LumCommon::detail
