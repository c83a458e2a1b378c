#pragma once

#include <unicode/utf.h>

namespace LumCommon::detail {

/// Stands for input that cannot be decoded or is not a character.
constexpr char16_t replacementCharacter = 0xFFFD;

/// Whether a number is a Unicode code point other than a surrogate. U+0000 counts.
constexpr bool isUnicodeCharacter(UChar32 c) noexcept { return c >= 0 && c <= 0x10FFFF && !U_IS_SURROGATE(c); }

}  // namespace LumCommon::detail
