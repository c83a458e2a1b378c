#pragma once

#include <lumcommon/core/detail/CheckedText.h>

#include <algorithm>
#include <charconv>
#include <concepts>
#include <limits>

namespace LumCommon::detail {

/// The greatest length of a Number in decimal, in units, including its sign.
template <std::integral Number>
constexpr int longestDecimal = std::numeric_limits<Number>::digits10 + 1 + std::numeric_limits<Number>::is_signed;

/// Writes an integer as "%d" prints it in the C locale, and returns the end.
template <std::integral Number>
char16_t* writeDecimal(char16_t* out, Number number) noexcept {
    char digits[longestDecimal<Number>];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return std::copy(static_cast<const char*>(digits), end, out);
}

template <std::integral Number>
UnicodeString& appendDecimal(UnicodeString& text, Number number) {
    char16_t units[longestDecimal<Number>];
    return append(text, std::u16string_view(units, writeDecimal(units, number)));
}

}  // namespace LumCommon::detail
