#pragma once

#include <lumcommon/core/detail/CodePoints.h>
#include <lumcommon/core/detail/XmlNameRanges.h>

#include <array>
#include <cstdint>

/// Character classes of XML 1.0 names without colons, white space, and the code points that have a meaning of their
/// own.
namespace LumCommon::detail {

inline constexpr std::int32_t endOfInput = -1;  // in place of a code point
inline constexpr std::int32_t lastCodePoint = 0x10FFFF;
inline constexpr std::int32_t replacementChar = replacementCharacter;
inline constexpr std::int32_t notACharacter = 0xFFFF;  // never text; content that holds it is malformed

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
