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
/// White space is space, tab, line feed and carriage return. A number written with a "." is real even when its fraction
/// is zero ("10.0"), one written without is an integer where it fits into 32 bits.
///
/// Nothing here throws, but for exhausted memory. Every call that returns a token has consumed at least one unit of
/// text, until the end. Cost: linear in the text, also for nested parentheses, which take no stack. Threads: one at a
/// time.
class LUM_API LumTokenizer {
public:
    /// Kinds of tokens; a positive kind is the code of a single delimiter character.
    enum TokenKind : int {
        TOKEN_END = -1,
        TOKEN_NUMBER = -2,  ///< getNumber() is the number, getText() its suffix ("%", "pt") or empty
        TOKEN_NAME = -3,
        TOKEN_NONE = -4,    ///< nothing read yet
        TOKEN_STRING = -5,  ///< getText() is what stands between the quotes
        TOKEN_HASH = -6,    ///< getNumber() is the colour 00RRGGBB
    };

    /// The tokenizer keeps a copy of the text. The text ends at its first U+0000.
    explicit LumTokenizer(const UnicodeString& text);

    int getKind() const noexcept { return kind_; }
    const UnicodeString& getText() const noexcept { return text_; }
    double getNumber() const noexcept { return number_; }
    /// The index of the next unit to read, in UTF-16 code units from the start of the text.
    int getPosition() const noexcept { return position_; }
    /// Makes the next read see the current token again.
    void pushBack() noexcept { isPushedBack_ = true; }

    /// Reads one token and returns its kind.
    int nextToken();
    /// Reads one token as a value: a number, name, string or colour, a delimiter (integer, UNIT_CHAR), or null at the
    /// end. A number's suffix that is no unit becomes the next token.
    LumValue nextTokenValue();
    /// The same, but a sign directly before a number belongs to the number.
    LumValue nextTokenValueSigned();
    /// A signed value with a following exponent ("e" and a signed number) applied.
    LumValue nextTokenValueExp();
    /// The same as a double, without rounding to float.
    double nextTokenDoubleExp();
    /// As nextTokenValueExp(), but a group in parentheses or a function call (no white space before its parenthesis) is
    /// read whole: rgb(...) as the colour, url(...) as its URI (string, UNIT_URI), all else as a plain string of what
    /// is written. What is not closed ends with the text.
    LumValue nextTokenValueFunc();
    /// The next item of a list separated by `separator`; empty with kind TOKEN_END at the end. Quoted parts lose their
    /// quotes, and one that is not closed ends with the text; white space inside an item becomes one space.
    UnicodeString nextSeparatedValue(char16_t separator);
    /// Consumes the separator when it comes next, with the white space around it; else only the white space. False
    /// while a token is pushed back, as for scanSeparator().
    bool skipSeparator(char16_t separator);
    /// Whether the separator comes next; consumes nothing.
    bool scanSeparator(char16_t separator) const;

private:
    detail::UnitCursor getCursor() const noexcept;
    void setCursor(const detail::UnitCursor& cursor) noexcept;
    void setText(std::u16string_view text);
    /// Applies an exponent that comes next to number_ and gives its unit; false, and nothing read, when none comes.
    bool readExponent(LumValueUnitType& unit);
    /// Passes what follows an opening parenthesis up to and with the closing one, or to the end.
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
