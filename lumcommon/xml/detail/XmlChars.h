#pragma once

#include <array>
#include <cstdint>

/// Character classes of XML 1.0 names without colons, and white space.
namespace LumCommon::detail {

enum XmlCharClass : std::uint8_t {
    CLASS_NAME_START = 1,
    CLASS_NAME = 2,  // may go on a name; name start characters have it too
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
    return (c >= 0xC0 && c <= 0x2FF) || (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) || c == 0x200C ||
           c == 0x200D || (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) ||
           (c >= 0x3001 && c <= 0xD7FF) || (c >= 0xF900 && c <= 0xEFFFF);
}

constexpr bool isXmlNameChar(std::int32_t c) noexcept {
    if (c < 0) return false;
    if (c < 128) return (xmlCharClasses[static_cast<unsigned>(c)] & CLASS_NAME) != 0;
    return isXmlNameStart(c) || c == 0xB7 || (c >= 0x300 && c <= 0x36F) || c == 0x203F || c == 0x2040;
}

}  // namespace LumCommon::detail
