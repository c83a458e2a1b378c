#pragma once

#include <cstddef>
#include <string_view>

namespace LumCommon::detail {

constexpr char16_t lowered(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

/// @param prefix  in lower case. Letters outside ASCII never match, whatever the locale makes of them.
constexpr bool startsWithIgnoringCase(std::u16string_view s, std::u16string_view prefix) {
    if (s.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (lowered(s[i]) != prefix[i]) return false;
    }
    return true;
}

/// The value of a hexadecimal digit, -1 for any other unit.
constexpr int hexValue(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    const char16_t lower = lowered(unit);
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

/// The byte that a percent escape at the front stands for, -1 when there is none.
constexpr int escapedByte(std::u16string_view s) {
    if (s.size() < 3 || s[0] != u'%' || hexValue(s[1]) < 0 || hexValue(s[2]) < 0) return -1;
    return hexValue(s[1]) * 16 + hexValue(s[2]);
}

}  // namespace LumCommon::detail
