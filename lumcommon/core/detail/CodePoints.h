#pragma once

#include <unicode/utf.h>

namespace LumCommon::detail {

/// Stands for what could not be decoded or is no character.
constexpr char16_t replacementCharacter = 0xFFFD;

/// Whether a number stands for a character of Unicode. U+0000 counts.
constexpr bool isUnicodeCharacter(UChar32 c) noexcept { return c >= 0 && c <= 0x10FFFF && !U_IS_SURROGATE(c); }

}  // namespace LumCommon::detail
