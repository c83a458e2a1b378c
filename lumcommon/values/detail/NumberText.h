#pragma once

#include <lumcommon/core/Text.h>

#include <cstdint>

namespace LumCommon::detail {

/// Appends a number as "%g" prints it in the C locale, whatever locale the process has set. For integers see
/// DecimalText.h.
void appendReal(UnicodeString& text, double number);
/// Appends "#" and at least six upper-case hexadecimal digits.
void appendHexColor(UnicodeString& text, std::uint32_t rgb);

}  // namespace LumCommon::detail
