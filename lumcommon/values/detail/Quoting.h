#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/values/detail/NumberScan.h>

namespace LumCommon::detail {

/// How a string is quoted: a set of these bits.
enum QuoteBit : unsigned {
    QUOTE_BIT_DOUBLE = 1,    // double quotes
    QUOTE_BIT_SINGLE = 2,    // single quotes; with QUOTE_BIT_DOUBLE either kind
    QUOTE_BIT_DOUBLING = 4,  // a quote inside is written twice
    QUOTE_BIT_CSS = 8,       // CSS escapes
};

UnicodeString quoteString(const UnicodeString& text, unsigned mode);
/// The content of a quoted string. Bogus if the text, without surrounding white space, is not one string of the mode.
UnicodeString unquoteString(const UnicodeString& text, unsigned mode);
/// Reads one string. If the result is bogus the cursor stays.
UnicodeString scanString(UnitCursor& cursor, unsigned mode);
/// The URI as url("...").
UnicodeString quoteUri(const UnicodeString& uri);

}  // namespace LumCommon::detail
