#pragma once

#include <lumcommon/core/Text.h>

namespace LumCommon::detail {

/// The case of all of Unicode in no language: under the rules of Turkish, which a user may have set, "I" and "i" are
/// not a pair, and no keyword with such a letter would be found. AsciiText.h has the case of ASCII alone.
UnicodeString toLowerCase(UnicodeString text);
UnicodeString toUpperCase(UnicodeString text);

}  // namespace LumCommon::detail
