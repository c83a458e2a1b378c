#pragma once

#include <lumcommon/format/xls/detail/XlsDecimal.h>

#include <string>

namespace LumCommon::detail {

constexpr int XLS_GENERAL_CHARS = 11;

/// "E", the sign, and at least two digits.
std::string xlsExponent(std::int64_t exponent);
/// A magnitude as General shows it in at most that many characters; the shortest form where none fits.
std::string xlsGeneral(const XlsDecimal& magnitude, int maxChars);

}  // namespace LumCommon::detail
