#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <array>
#include <cstdint>

namespace LumCommon {

/// Japanese numerals (kansuji): the characters that write them, and the conversion of the digits in a text.
///
/// Only the ASCII digits are converted; every other character of a text, "." and "," included, is copied. A digit or
/// unit may be any character, also one beyond U+FFFF.
/// Nothing here throws, but for exhausted memory. Threads: one at a time; constant operations may run side by side.
class LUM_API Kansuji {
public:
    static constexpr int DIGIT_COUNT = 10;
    static constexpr int SMALL_UNIT_COUNT = 3;   ///< ten, hundred, thousand
    static constexpr int LARGE_UNIT_COUNT = 12;  ///< 10^4, 10^8, ... 10^48

    /// Places in the table of characters.
    enum Index : std::int32_t {
        INDEX_DIGIT = 0,
        INDEX_SMALL_UNIT = INDEX_DIGIT + DIGIT_COUNT,
        INDEX_LARGE_UNIT = INDEX_SMALL_UNIT + SMALL_UNIT_COUNT,
        INDEX_POINT = INDEX_LARGE_UNIT + LARGE_UNIT_COUNT,
        INDEX_COMMA,
        COUNT,
    };

    /// How a run of digits is written.
    enum Style : std::int32_t {
        STYLE_DIGITS,    ///< digit by digit: 1200 is U+4E00 U+4E8C U+3007 U+3007
        STYLE_GROUPING,  ///< digit by digit, with a large unit after every fourth digit from the right
        STYLE_READABLE,  ///< as it is read, with small and large units
    };

    /// The kanji digits and units.
    Kansuji();

    void setDigitKanji();
    /// The full-width digits, U+FF10 to U+FF19.
    void setDigitLatin();
    /// The first ten characters of the text become the digits 0 to 9; with fewer, the other digits stay.
    void setDigits(const UnicodeString& characters);
    /// The first three characters of the text become ten, hundred and thousand, the next twelve the large units; with
    /// fewer, the other units stay.
    void setUnits(const UnicodeString& characters);

    /// @param index  0 to COUNT - 1; U+FFFD outside.
    UChar32 getCharacter(int index) const noexcept;

    /// The digit for "0" to "9", the comma for ",", the point for ".", the full-width form of any other printable ASCII
    /// character; anything else unchanged.
    UChar32 toKansuji(UChar32 character) const noexcept;

    /// The text with every run of ASCII digits rewritten.
    ///
    /// Grouping: a run ends after a large unit behind which there are only zeros. Zeros at its start stay. Digits
    /// beyond the largest unit are grouped no more.
    ///
    /// Readable: zeros at the start of a run are dropped; zeros alone give one zero. A group of four zeros writes
    /// nothing, neither digits nor large unit. A run of more than 52 digits, which the twelve large units cannot hold,
    /// begins with its digits one by one until 52 are left; the largest unit then ends that beginning even when its own
    /// group is zeros.
    ///
    /// A bogus text, or a result beyond the length of a string, gives a bogus string.   Cost: O(length).
    UnicodeString convert(const UnicodeString& text, Style style) const;

private:
    std::array<UChar32, COUNT> characters_;
};

}  // namespace LumCommon
