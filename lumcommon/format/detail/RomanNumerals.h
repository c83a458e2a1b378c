#pragma once

namespace LumCommon::detail {

/// Roman numerals in one set of letters.
struct RomanNumerals {
    const char16_t* letters;  ///< for 1, 5, 10, 50, 100, 500, 1000, 5000, 10000
    int largest;
    char16_t firstSingle;  ///< the character for 1 if 1 to 12 have one each, otherwise 0
};

/// Writes a number one decimal digit after the other.
struct RomanWriter {
    char16_t* out;
    int number;
    const RomanNumerals& numerals;

    /// Writes the digit of 10^pair; false if nothing is left to write. As `level` is a constant, no division
    /// instruction is needed.
    template <int level, int pair>
    constexpr bool writeDigit() noexcept {
        if (number == 0) return false;
        if (numerals.firstSingle != 0 && number < 13) {
            *out++ = static_cast<char16_t>(numerals.firstSingle + number - 1);
            return false;
        }
        if (number >= level) write(number / level, numerals.letters + pair * 2, letterCount - pair * 2);
        number %= level;
        return true;
    }

private:
    static constexpr int letterCount = 9;

    /// @param letters  those for one, five and ten of this digit. A table need not hold letters that its largest number
    ///     does not use, so a letter is read only if the digit needs it.
    /// @param count  how many letters there are.
    constexpr void write(int digit, const char16_t* letters, int count) noexcept {
        const char16_t unit = letters[0];
        const char16_t five = digit >= 4 && count > 1 ? letters[1] : u'\0';
        const char16_t ten = digit == 9 && count > 2 ? letters[2] : u'\0';
        if (unit == 0) return;
        if (ten || (digit == 4 && five)) {
            *out++ = unit;
            *out++ = ten ? ten : five;
            return;
        }
        if (five) {
            *out++ = five;
            digit -= 5;
        }
        for (; digit > 0; --digit) *out++ = unit;
    }
};

/// Does the work of LumUtil::makeRoman().
constexpr char16_t* writeRoman(char16_t* out, int number, const RomanNumerals& numerals) noexcept {
    if (number < 1 || number > numerals.largest) return out;
    RomanWriter writer{out, number, numerals};
    (void)(writer.writeDigit<10000, 4>() && writer.writeDigit<1000, 3>() && writer.writeDigit<100, 2>() &&
           writer.writeDigit<10, 1>() && writer.writeDigit<1, 0>());
    return writer.out;
}

namespace Roman {
#define LUM_ROMAN(name, letters, largest, firstSingle) \
    inline constexpr RomanNumerals name{letters, largest, firstSingle};
#include <lumcommon/format/detail/RomanNumerals.inc>
#undef LUM_ROMAN
}  // namespace Roman

}  // namespace LumCommon::detail
