#pragma once

#include <lumcommon/core/Text.h>

namespace LumCommon::detail {

/// Case mapping for all of Unicode, independent of the user's language: under Turkish rules "I" and "i" are not a pair,
/// and keywords with either letter would not be found. AsciiText.h handles ASCII alone.
UnicodeString toLowerCase(const UnicodeString& text);
UnicodeString toUpperCase(const UnicodeString& text);

}  // namespace LumCommon::detail
