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
    std::u16string_view text;  // a name, the text between quotes, a number's suffix; else empty
};

/// Reads one token, see LumTokenizer::nextToken.
ScannedToken scanToken(UnitCursor& cursor);

/// Whether a sign comes next and belongs to the number after it; if so, moves past the sign. Sets `sign` to the unit
/// that comes next, white space aside.
bool skipSign(UnitCursor& cursor, char16_t& sign) noexcept;

/// The value of a token, null at the end. `isSuffixLeft` tells whether a number's suffix is not a unit and so does not
/// belong to it. Names are interned.
LumValue makeTokenValue(const ScannedToken& token, bool& isSuffixLeft);

/// The value of a text that is one token, a number with its suffix, a name, a quoted string or a hash colour, and the
/// kind of that token. Other texts give TOKEN_NONE and the null value, and nothing of them is interned.
/// @param isSignAllowed  whether a number may have a sign directly in front of it.
LumValue parseSingleToken(const UnicodeString& text, bool isSignAllowed, int& kind);

}  // namespace LumCommon::detail
