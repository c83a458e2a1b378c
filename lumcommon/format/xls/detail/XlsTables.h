#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace LumCommon::detail {

/// What may stand in the brackets of a code; the order is that of XlsKeywords.inc.
enum XlsKeyword : int {
    XLS_BLACK = 0,
    XLS_CYAN = 7,
    XLS_COLOR = 8,
    XLS_FIRST_OPERATOR = 9,
    XLS_LAST_OPERATOR = 14,
    XLS_HOURS = 15,
    XLS_MINUTES = 16,
    XLS_SECONDS = 17,
    XLS_DBNUM1 = 18,
    XLS_DBNUM3 = 20,
    XLS_CURRENCY = 21,
    XLS_KEYWORDS = 22,
};
constexpr int XLS_PALETTE_COLORS = 56;

std::u16string_view xlsKeyword(int keyword) noexcept;
/// 0xRRGGBB of palette number 1 to 56.
int xlsPaletteColor(int number) noexcept;
/// 1 to 12.
std::u16string_view xlsMonthName(int month) noexcept;
/// 0 is Sunday.
std::u16string_view xlsDayName(int weekday) noexcept;
/// The length of the short names of days and months, which are the beginnings of the full ones.
constexpr std::size_t xlsShortName = 3;

/// The number of the language that "e" and eras belong to.
constexpr unsigned XLS_JAPANESE = 0x411;

/// The tag of Japanese dates in which the first year of an era has a name.
constexpr std::u16string_view xlsFirstYearNamed = u"ja-JP-x-gannen";
/// General in Japanese, Chinese and Korean programs.
constexpr std::u16string_view xlsLocalGenerals[] = {u"G/\u6A19\u6E96", u"G/\u901A\u7528\u683C\u5F0F",
                                                    u"G/\uD45C\uC900"};
/// The digit 0 in the numerals of a tag; U+0030 if the number is unknown.
char16_t xlsNumeralZero(unsigned numerals) noexcept;
/// How many years the calendar of a tag is ahead of the common one; 0 if the number is unknown.
int xlsCalendarYears(unsigned calendar) noexcept;

struct XlsEra {
    char16_t initial;
    std::u16string_view name;  ///< its first character is the middle form
    std::int32_t lastDay;      ///< in the 1900 system
    int yearBefore;            ///< the year before its first
};
constexpr int XLS_ERAS = 5;
const XlsEra& xlsEra(int era) noexcept;

/// The forms of AM/PM, from 1; an empty view for others.
std::u16string_view xlsAmPm(int form) noexcept;
constexpr int XLS_AMPM_FORMS = 5;
/// The first forms are AM/PM and am/pm, the next A/P and a/p, the last is Chinese.
constexpr int XLS_AMPM_WORDS = 2;
constexpr int XLS_AMPM_CHINESE = 5;

}  // namespace LumCommon::detail
