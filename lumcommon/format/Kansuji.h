#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <array>
#include <cstdint>

namespace LumCommon {

/// Japanese numerals (kansuji): the characters that write them, and the conversion of the digits in a text.
///
/// Only the ASCII digits are converted; every other character of a text, "." and "," included, is copied. A digit or
/// unit may be any character, including one beyond U+FFFF.
/// Nothing here throws except when memory runs out. Threads: one thread at a time; const members may run concurrently.
class LUM_API Kansuji {
public:
    /// The number of decimal digits.
    static constexpr int DIGIT_COUNT = 10;
    static constexpr int SMALL_UNIT_COUNT = 3;   ///< ten, hundred, thousand
    static constexpr int LARGE_UNIT_COUNT = 12;  ///< 10^4, 10^8, ... 10^48

    /// Indexes into the table of characters.
    enum Index : std::int32_t {
        INDEX_DIGIT = 0,                                         ///< zero, the first of the digits
        INDEX_SMALL_UNIT = INDEX_DIGIT + DIGIT_COUNT,            ///< ten, the first of the units within four digits
        INDEX_LARGE_UNIT = INDEX_SMALL_UNIT + SMALL_UNIT_COUNT,  ///< the first of the units of four digits each
        INDEX_POINT = INDEX_LARGE_UNIT + LARGE_UNIT_COUNT,       ///< the decimal point
        INDEX_COMMA,                                             ///< the separator of groups
        COUNT,                                                   ///< the number of characters in a row
    };

    /// How a run of digits is written.
    enum Style : std::int32_t {
        STYLE_DIGITS,    ///< digit by digit: 1200 is U+4E00 U+4E8C U+3007 U+3007
        STYLE_GROUPING,  ///< digit by digit, with a large unit after every fourth digit from the right
        STYLE_READABLE,  ///< as it is read, with small and large units
    };

    /// Starts with the kanji digits and units.
    Kansuji();

    /// Sets the kanji digits.
    void setDigitKanji();
    /// Sets the full-width digits, U+FF10 to U+FF19.
    void setDigitLatin();
    /// The first ten characters of the text become the digits 0 to 9; if there are fewer, the other digits stay.
    void setDigits(const UnicodeString& characters);
    /// The first three characters of the text become ten, hundred and thousand, the next twelve the large units; if
    /// there are fewer, the other units stay.
    void setUnits(const UnicodeString& characters);

    /// The character at an Index; U+FFFD outside 0 to COUNT - 1.
    UChar32 getCharacter(int index) const noexcept;

    /// The digit for "0" to "9", the comma for ",", the point for ".", the full-width form of any other printable ASCII
    /// character; anything else unchanged.
    UChar32 toKansuji(UChar32 character) const noexcept;

    /// The text with every run of ASCII digits rewritten.
    ///
    /// Grouping: a run ends after a large unit that only zeros follow. Leading zeros stay. Digits beyond the largest
    /// unit are not grouped.
    ///
    /// Readable: leading zeros of a run are dropped; zeros alone give one zero. A group of four zeros writes nothing,
    /// neither digits nor large unit. A run of more than 52 digits, more than the twelve large units can express, is
    /// written digit by digit until 52 are left; the largest unit is then written even if its own group is all zeros.
    ///
    /// A bogus text, or a result longer than a string can be, gives a bogus string.   Cost: O(length).
    UnicodeString convert(const UnicodeString& text, Style style) const;

private:
    std::array<UChar32, COUNT> characters_;
};

}  // namespace LumCommon
