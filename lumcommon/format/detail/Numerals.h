#pragma once

#include <lumcommon/core/Text.h>

#include <algorithm>
#include <cstdint>

namespace LumCommon::detail {

/// The most letters that a number takes in an alphabet of two or more letters.
constexpr int longestLetterSequence = 31;
/// The most letters that a number up to 39999 takes in Roman numerals (38888).
constexpr int longestRoman = 19;

/// Writes a number in bijective base `base`: with a to z, 26 is z and 27 is aa. `letterAt` gives the letter for an
/// index below the base. Nothing is written if number or base is below 1.
/// @return the end of what was written.   Cost: O(number) in base 1, else O(log number).
template <class Letter, class LetterAt>
constexpr Letter* writeLetters(Letter* out, int number, int base, LetterAt letterAt) {
    if (number < 1 || base < 1) return out;
    if (number <= base) {
        *out++ = letterAt(number - 1);
        return out;
    }
    int length = 1;
    for (std::int64_t reach = base; reach < number; reach = reach * base + base) ++length;
    Letter* const end = out + length;
    Letter* position = end;
    for (int rest = number; rest > 0; rest = (rest - 1) / base) *--position = letterAt((rest - 1) % base);
    return end;
}

/// Appends a number of at least 1 in Hebrew numerals; other numbers append nothing.
/// @param level  the power of 1000 that the number counts in, clamped to 0 to 9.
void appendHebrew(UnicodeString& text, int number, int level);
/// Appends a Hebrew list number: zero and two thousand are words. False for negative numbers, which have no numeral.
bool appendHebrewNumber(UnicodeString& text, int number);

/// Does the work of LumUtil::makeGrouping().
UnicodeString groupDigits(const UnicodeString& digits, const UnicodeString& separator, int size);

}  // namespace LumCommon::detail
