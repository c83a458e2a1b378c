#pragma once

#include <lumcommon/core/Text.h>

#include <cstdint>

namespace LumCommon::detail {

/// Append a number as "%d" and "%g" print it in the C locale, whatever locale the process has set.
void appendInteger(UnicodeString& text, std::int32_t number);
void appendInteger(UnicodeString& text, std::uint64_t number);
void appendReal(UnicodeString& text, double number);
/// Append "#" and at least six upper-case hexadecimal digits.
void appendHexColor(UnicodeString& text, std::uint32_t rgb);

}  // namespace LumCommon::detail
