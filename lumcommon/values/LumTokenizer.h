#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/values/LumValue.h>

#include <string_view>

namespace LumCommon {

namespace detail {
class UnitCursor;
}

/// Splits the text of a property into tokens and builds values, signed numbers, function calls and lists of them.
///
/// White space is space, tab, line feed and carriage return. A number written with a "." is real even if its fraction
/// is zero ("10.0"); one written without is an integer if it fits into 32 bits.
///
/// Nothing here throws except when memory runs out. Until the end is reached, every call that returns a token consumes
/// at least one unit of text. Cost: linear in the text; nested parentheses take no stack.
/// Threads: one thread at a time.
class LUM_API LumTokenizer {
public:
    /// Kinds of tokens; a positive kind is the code of a single delimiter character.
    enum TokenKind : int {
        TOKEN_END = -1,     ///< there are no more tokens
        TOKEN_NUMBER = -2,  ///< getNumber() is the number, getText() its suffix ("%", "pt") or empty
        TOKEN_NAME = -3,    ///< getText() is the identifier
        TOKEN_NONE = -4,    ///< nothing read yet
        TOKEN_STRING = -5,  ///< getText() is the text between the quotes
        TOKEN_HASH = -6,    ///< getNumber() is the colour 00RRGGBB
    };

    /// Keeps a copy of the text up to its first U+0000.
    explicit LumTokenizer(const UnicodeString& text);

    /// A TokenKind, or the code of the delimiter, of the token read last; TOKEN_NONE before the first.
    int getKind() const noexcept { return kind_; }
    /// The text of the token read last; the reference is valid until the next read.
    const UnicodeString& getText() const noexcept { return text_; }
    /// The number of the token read last; see TokenKind for which have one.
    double getNumber() const noexcept { return number_; }
    /// The index of the next unit to read, in UTF-16 code units from the start of the text.
    int getPosition() const noexcept { return position_; }
    /// Makes the next read see the current token again.
    void pushBack() noexcept { isPushedBack_ = true; }

    /// Reads one token and returns its kind.
    int nextToken();
    /// Reads one token as a value: a number, name, string or colour, a delimiter (integer, UNIT_CHAR), or null at the
    /// end. A number's suffix that is not a unit becomes the next token.
    LumValue nextTokenValue();
    /// The same, but a sign directly in front of a number belongs to the number.
    LumValue nextTokenValueSigned();
    /// A signed value with a following exponent ("e" and a signed number) applied.
    LumValue nextTokenValueExp();
    /// The same as a double, without rounding to float.
    double nextTokenDoubleExp();
    /// Like nextTokenValueExp(), but a group in parentheses or a function call (no white space before its parenthesis)
    /// is read as a whole: rgb(...) as the colour, url(...) as its URI (string, UNIT_URI), anything else as a plain
    /// string, as written. An unclosed group ends with the text.
    LumValue nextTokenValueFunc();
    /// The next item of a list separated by `separator`; empty with kind TOKEN_END at the end. Quoted parts lose their
    /// quotes, and an unclosed one ends with the text; a run of white space inside an item becomes one space.
    UnicodeString nextSeparatedValue(char16_t separator);
    /// Skips white space and, if it comes next, the separator with the white space after it. Returns whether the
    /// separator was there; false while a token is pushed back, as for scanSeparator().
    bool skipSeparator(char16_t separator);
    /// Whether the separator comes next; consumes nothing.
    bool scanSeparator(char16_t separator) const;

private:
    detail::UnitCursor getCursor() const noexcept;
    void setCursor(const detail::UnitCursor& cursor) noexcept;
    void setText(std::u16string_view text);
    /// If an exponent follows, applies it to number_ and sets `unit` to its unit; otherwise false, and nothing is read.
    bool readExponent(LumValueUnitType& unit);
    /// Skips what follows an opening parenthesis through the closing one, or to the end.
    void skipGroup();
    /// Adds a quoted part or a run of other characters to the item being read.
    void appendItemPart(detail::UnitCursor& cursor, char16_t separator);

    int kind_ = TOKEN_NONE;
    double number_ = 0;
    bool hasFraction_ = false;  // the number was written with a "."
    UnicodeString text_;
    UnicodeString source_;
    int position_ = 0;  // into source_
    bool isPushedBack_ = false;
};

}  // namespace LumCommon
