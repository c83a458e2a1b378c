#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/core/detail/AsciiText.h>

#include <cstdint>

namespace LumCommon::detail {

/// White space between tokens.
constexpr bool isTokenSpace(char16_t c) noexcept { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }
constexpr bool isQuote(char16_t c) noexcept { return c == u'"' || c == u'\''; }

/// A reading position in UTF-16 text that ends at a limit or at U+0000, whichever comes first. With a null limit only
/// U+0000 ends it, so the text need not be measured beforehand.
class UnitCursor {
public:
    UnitCursor(const char16_t* position, const char16_t* limit) noexcept : position_(position), limit_(limit) {}

    const char16_t* get() const noexcept { return position_; }
    bool isAtEnd() const noexcept { return position_ == limit_ || *position_ == 0; }
    /// The next unit; U+0000 at the end.
    char16_t peek() const noexcept { return position_ == limit_ ? u'\0' : *position_; }
    /// The unit after the next one; U+0000 at the end.
    char16_t peekSecond() const noexcept { return isAtEnd() ? u'\0' : UnitCursor(position_ + 1, limit_).peek(); }
    /// Moves past the next unit. Must not be called at the end.
    void advance() noexcept { ++position_; }
    void skipTokenSpace() noexcept {
        while (isTokenSpace(peek())) advance();
    }
    /// Whether a digit, or "." and a digit, comes next: how a number begins after its sign.
    bool isAtNumber() const noexcept { return isAsciiDigit(peek()) || (peek() == u'.' && isAsciiDigit(peekSecond())); }
    bool isAtSignedNumber() const noexcept {
        if (peek() != u'+' && peek() != u'-') return isAtNumber();
        return UnitCursor(position_ + 1, limit_).isAtNumber();
    }

private:
    const char16_t* position_;
    const char16_t* limit_;
};

struct ScannedNumber {
    double value = 0;
    bool hasFraction = false;  // a "." was read
};

/// Reads white space, an optional sign, digits, and an optional "." with or without further digits ("12." is 12). There
/// is no exponent, and the point is "." in every locale. If no number follows, the value is 0 and the cursor stays.
ScannedNumber scanNumber(UnitCursor& cursor);

/// Reads white space and at most `maxDigits` hexadecimal digits (-1: any number). A number beyond 32 bits gives
/// 0xFFFFFFFF. If no digit follows, the value is 0 and the cursor stays.
std::uint32_t scanHexNumber(UnitCursor& cursor, int maxDigits);

}  // namespace LumCommon::detail
