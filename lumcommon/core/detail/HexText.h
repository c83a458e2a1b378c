#pragma once

#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>

#include <cstdint>

namespace LumCommon::detail {

/// The value of a hexadecimal digit in either case, -1 for any other character.
template <class Unit>
constexpr int hexDigitValue(Unit c) noexcept {
    if (isAsciiDigit(c)) return static_cast<int>(c) - '0';
    const int lower = static_cast<int>(c) | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// The upper-case digit for the lowest four bits.
constexpr char16_t hexDigit(std::uint32_t value) noexcept { return u"0123456789ABCDEF"[value & 0xFu]; }

/// Appends the two digits of a byte.
inline UnicodeString& appendHexByte(UnicodeString& text, std::uint8_t byte) {
    return append(append(text, hexDigit(byte >> 4)), hexDigit(byte));
}

}  // namespace LumCommon::detail
