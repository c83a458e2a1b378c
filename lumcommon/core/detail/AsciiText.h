#pragma once

#include <algorithm>
#include <string_view>
#include <type_traits>

namespace LumCommon::detail {

// Letters, digits and case of ASCII, for code units and characters of any type. Keywords, protocol names and numbers in
// documents consist of these alone. Other characters are never letters here, whatever the locale; CaseMapping.h maps
// the case of all of Unicode.

template <class Unit>
constexpr bool isAsciiDigit(Unit c) noexcept {
    return c >= '0' && c <= '9';
}

template <class Unit>
constexpr bool isAsciiUpper(Unit c) noexcept {
    return c >= 'A' && c <= 'Z';
}

template <class Unit>
constexpr bool isAsciiLetter(Unit c) noexcept {
    return (c >= 'a' && c <= 'z') || isAsciiUpper(c);
}

template <class Unit>
constexpr bool isAsciiLetterOrDigit(Unit c) noexcept {
    return isAsciiLetter(c) || isAsciiDigit(c);
}

template <class Unit>
constexpr Unit toLowerAscii(Unit c) noexcept {
    return isAsciiUpper(c) ? static_cast<Unit>(c | 0x20) : c;
}

template <class Unit>
constexpr bool equalsIgnoringAsciiCase(std::basic_string_view<Unit> a,
                                       std::type_identity_t<std::basic_string_view<Unit>> b) noexcept {
    return std::ranges::equal(a, b, {}, toLowerAscii<Unit>, toLowerAscii<Unit>);
}

template <class Unit>
constexpr bool startsWithIgnoringAsciiCase(std::basic_string_view<Unit> text,
                                           std::type_identity_t<std::basic_string_view<Unit>> prefix) noexcept {
    return equalsIgnoringAsciiCase(text.substr(0, prefix.size()), prefix);
}

}  // namespace LumCommon::detail
