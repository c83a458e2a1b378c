#pragma once

#include <lumcommon/format/xls/detail/XlsDecimal.h>
#include <lumcommon/format/xls/detail/XlsRules.h>

#include <string>

namespace LumCommon::detail {

constexpr int XLS_GENERAL_CHARS = 11;

/// An exponent as text: "E", the sign, and at least so many digits, 1 or 2.
std::string xlsExponent(std::int64_t exponent, int digits = 2);
/// A magnitude as General shows it in at most `maxChars` characters; the shortest form if none fits.
std::string xlsGeneral(const XlsDecimal& magnitude, int maxChars, const XlsRules& rules);

}  // namespace LumCommon::detail
