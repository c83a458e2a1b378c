#pragma once

#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/detail/NumberScan.h>

#include <string_view>

namespace LumCommon::detail {

/// A token as it stands in its source.
struct ScannedToken {
    int kind = LumTokenizer::TOKEN_NONE;
    double number = 0;
    bool hasFraction = false;  // the number was written with a "."
    std::u16string_view text;  // a name, what stands between quotes, the suffix of a number; else empty
};

/// Reads one token, see LumTokenizer::nextToken.
ScannedToken scanToken(UnitCursor& cursor);

/// Whether a sign comes next and belongs to the number behind it; then the cursor moves behind the sign.
bool skipSign(UnitCursor& cursor, char16_t& sign) noexcept;

/// The value of a token, null at the end. `isSuffixLeft` tells that the text of a number is no unit and so no part of
/// it. A name is interned.
LumValue makeTokenValue(const ScannedToken& token, bool& isSuffixLeft);

/// The value of a text that is one token, a number with its suffix, a name, a quoted string or a hash colour, and the
/// kind of that token; TOKEN_NONE and the null value for other texts, of which nothing is interned.
/// @param isSignAllowed  whether a sign may stand directly before a number.
LumValue parseSingleToken(const UnicodeString& text, bool isSignAllowed, int& kind);

}  // namespace LumCommon::detail
