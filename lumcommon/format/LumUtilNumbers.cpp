// Numbers as text: only the public functions; detail/ and core/ do the work.

#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/format/LumUtil.h>
#include <lumcommon/format/detail/NumberFormat.h>
#include <lumcommon/format/detail/Numerals.h>
#include <lumcommon/format/detail/RomanNumerals.h>
#include <lumcommon/values/detail/NumberText.h>

namespace LumCommon {

static_assert(LumUtil::LETTERS_MAX == detail::longestLetterSequence);
static_assert(LumUtil::ROMAN_MAX == detail::longestRoman);

UnicodeString LumUtil::formatNumber(int number, const UnicodeString& format, const UnicodeString& separator, int size) {
    return detail::formatNumber(number, {format, separator, size, {}});
}

UnicodeString LumUtil::formatNumber(int number, const UnicodeString& format, const UnicodeString& separator, int size,
                                    const LumLang& language, LumNameEnum) {
    return detail::formatNumber(number, {format, separator, size, language.getLanguage()});
}

UnicodeString LumUtil::toString(int number) {
    UnicodeString text;
    detail::appendDecimal(text, number);
    return text;
}

UnicodeString LumUtil::toString(long long number) {
    UnicodeString text;
    const auto bits = static_cast<unsigned long long>(number);
    if (number < 0) detail::append(text, u'-');
    toString64Sub(text, number < 0 ? 0 - bits : bits);
    return text;
}

UnicodeString LumUtil::toString(double number) {
    UnicodeString text;
    detail::appendReal(text, number);
    return text;
}

void LumUtil::toString64Sub(UnicodeString& text, unsigned long long number) { detail::appendDecimal(text, number); }

char16_t* LumUtil::makeRoman(char16_t* buffer, int number, const char16_t* table, int largest, char16_t firstSingle) {
    return detail::writeRoman(buffer, number, {table, largest, firstSingle});
}

char16_t* LumUtil::makeABCSeq1(char16_t* buffer, int number, char16_t firstLetter, int count) {
    return detail::writeLetters(buffer, number, count,
                                [firstLetter](int index) { return static_cast<char16_t>(firstLetter + index); });
}

char16_t* LumUtil::makeABCNum1(char16_t* buffer, int number, const char16_t* alphabet, int count) {
    return detail::writeLetters(buffer, number, count, [alphabet](int index) { return alphabet[index]; });
}

void LumUtil::makeHebrewNum(UnicodeString& text, int number, const UnicodeString&, int, int level) {
    detail::appendHebrew(text, number, level);
}

UnicodeString LumUtil::makeGrouping(const UnicodeString& digits, const UnicodeString& separator, int size) {
    return detail::groupDigits(digits, separator, size);
}

// Constant data needs no loading and no lock.
void LumUtil::loadAlphabets() {}

}  // namespace LumCommon
