#pragma once

#include <lumcommon/core/detail/HexText.h>

#include <string_view>

namespace LumCommon::detail {

/// The byte that a percent escape at the front of `s` stands for; -1 if there is none.
constexpr int escapedByte(std::u16string_view s) {
    if (s.size() < 3 || s[0] != u'%' || hexDigitValue(s[1]) < 0 || hexDigitValue(s[2]) < 0) return -1;
    return hexDigitValue(s[1]) * 16 + hexDigitValue(s[2]);
}

}  // namespace LumCommon::detail
