#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/detail/Numerals.h>

#include <iterator>
#include <string_view>

namespace LumCommon::detail {

namespace {

struct HebrewRow {
    int number;
    std::u16string_view letters;
};

constexpr HebrewRow HEBREW[] = {
#define LUM_HEBREW(number, letters) {number, letters},
#include <lumcommon/format/detail/HebrewLetters.inc>
#undef LUM_HEBREW
};
constexpr bool hebrewRowsFollow() {
    int i = 0;
    for (int unit = 1; unit <= 100; unit *= 10) {
        for (int digit = 1; digit <= 9; ++digit) {
            if (HEBREW[i++].number != digit * unit) return false;
        }
    }
    return i == std::ssize(HEBREW);
}
static_assert(hebrewRowsFollow());

constexpr std::u16string_view hebrewZero = u"\u05D0\u05E4\u05E1";
constexpr std::u16string_view hebrewThousand = u"\u05D0\u05DC\u05E3";
constexpr std::u16string_view hebrewTwoThousand = u"\u05D0\u05DC\u05E4\u05D9\u05D9\u05DD";
constexpr std::u16string_view hebrewThousands = u" \u05D0\u05DC\u05E4\u05D9";
constexpr char16_t hebrewPluralEnd = u'\u05DD';
constexpr int highestHebrewLevel = 9;

/// @param row  0: units, 1: tens, 2: hundreds.   @param digit  0 to 9; 0 writes nothing.
void appendHebrewDigit(UnicodeString& text, int row, int digit) {
    if (digit > 0) append(text, HEBREW[row * 9 + digit - 1].letters);
}

/// Appends 0 to 999.
void appendHebrewLetters(UnicodeString& text, int number) {
    appendHebrewDigit(text, 2, number / 100);
    int tens = number % 100 / 10;
    int units = number % 10;
    if (number % 100 == 15 || number % 100 == 16) {  // with a ten they would spell a name of God
        appendHebrewDigit(text, 0, 9);
        units += 1;
        tens = 0;
    }
    appendHebrewDigit(text, 1, tens);
    appendHebrewDigit(text, 0, units);
}

}  // namespace

void appendHebrew(UnicodeString& text, int number, int level) {
    if (number < 1) return;
    level = std::clamp(level, 0, highestHebrewLevel);
    int thousands = 0;
    for (; number % 1000 == 0; number /= 1000) ++thousands;
    if (number > 999) {
        appendHebrew(text, number / 1000, level + thousands + 1);  // at most three deep: an int has ten digits
        append(text, u' ');
    }
    const int rest = number % 1000;
    if (thousands > 0) thousands += level;
    if (thousands > 0 && rest == 1) {
        append(text, hebrewThousand);
        --thousands;
    } else {
        appendHebrewLetters(text, rest);
    }
    if (thousands == 0) return;
    for (int i = 0; i < thousands; ++i) append(text, hebrewThousands);
    append(text, hebrewPluralEnd);
}

bool appendHebrewNumber(UnicodeString& text, int number) {
    constexpr int million = 1000000;
    if (number < 0) return false;
    if (number == 0) {
        append(text, hebrewZero);
    } else if (number % million == 2000) {
        if (number >= million) {
            appendHebrew(text, number / million, 2);
            append(text, u' ');
        }
        append(text, hebrewTwoThousand);
    } else {
        appendHebrew(text, number, 0);
    }
    return true;
}

UnicodeString groupDigits(const UnicodeString& digits, const UnicodeString& separator, int size) {
    if (separator.isEmpty() || size < 1 || digits.isEmpty()) return copyOf(digits);
    const std::int32_t characters = digits.countChar32();
    const std::int64_t separators = (characters - 1) / size;
    const std::int64_t length = digits.length() + separators * separator.length();
    UnicodeString result;
    if (length > INT32_MAX) {
        result.setToBogus();
        return result;
    }
    result = checked(UnicodeString(static_cast<std::int32_t>(length), 0, 0));
    const std::u16string_view units = viewOf(digits);
    std::int32_t position = 0;
    for (std::int32_t group = (characters - 1) % size + 1;; group = size) {
        const std::int32_t next = digits.moveIndex32(position, group);
        append(result, units.substr(static_cast<std::size_t>(position), static_cast<std::size_t>(next - position)));
        if (next == digits.length()) return result;
        append(result, separator);
        position = next;
    }
}

}  // namespace LumCommon::detail
