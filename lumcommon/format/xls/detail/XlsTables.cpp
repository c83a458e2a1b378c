#include <lumcommon/format/xls/detail/XlsTables.h>

#include <iterator>

namespace LumCommon::detail {

namespace {

constexpr std::u16string_view keywords[] = {
#include <lumcommon/format/xls/XlsKeywords.inc>
};
static_assert(std::size(keywords) == XLS_KEYWORDS);

constexpr int palette[] = {
#include <lumcommon/format/xls/XlsPalette.inc>
};
static_assert(std::size(palette) == XLS_PALETTE_COLORS);

constexpr std::u16string_view months[] = {
#define XLS_MONTH(name) name,
#include <lumcommon/format/xls/XlsNames.inc>
#undef XLS_MONTH
};
static_assert(std::size(months) == 12);

constexpr std::u16string_view days[] = {
#define XLS_DAY(name) name,
#include <lumcommon/format/xls/XlsNames.inc>
#undef XLS_DAY
};
static_assert(std::size(days) == 7);

constexpr XlsEra eras[] = {
#define XLS_ERA(initial, name, lastDay, yearBefore) {initial, name, lastDay, yearBefore},
#include <lumcommon/format/xls/XlsNames.inc>
#undef XLS_ERA
};
static_assert(std::size(eras) == XLS_ERAS);

// Arabic-Indic, extended Arabic-Indic, Devanagari, Bengali, Gurmukhi, Gujarati, Oriya, Tamil, Telugu, Kannada,
// Malayalam, Thai, Lao, Tibetan, Myanmar; then none for Ethiopic, which has no 0, Khmer and Mongolian.
constexpr char16_t zeros[] = {u'0',   u'0',   0x0660, 0x06F0, 0x0966, 0x09E6, 0x0A66, 0x0AE6, 0x0B66, 0x0BE6,
                              0x0C66, 0x0CE6, 0x0D66, 0x0E50, 0x0ED0, 0x0F20, 0x1040, u'0',   0x17E0, 0x1810};

constexpr std::u16string_view amPmForms[] = {u"AM/PM", u"am/pm", u"A/P", u"a/p", u"\u4E0A\u5348/\u4E0B\u5348"};
static_assert(std::size(amPmForms) == XLS_AMPM_FORMS);

}  // namespace

std::u16string_view xlsKeyword(int keyword) noexcept { return keywords[keyword]; }
int xlsPaletteColor(int number) noexcept { return palette[number - 1]; }
std::u16string_view xlsMonthName(int month) noexcept { return months[month - 1]; }
std::u16string_view xlsDayName(int weekday) noexcept { return days[weekday]; }

char16_t xlsNumeralZero(unsigned numerals) noexcept { return numerals < std::size(zeros) ? zeros[numerals] : u'0'; }

int xlsCalendarYears(unsigned calendar) noexcept {
    switch (calendar) {
        case 4:  // of the republic of China
            return -1911;
        case 5:  // of Korea
            return 2333;
        case 7:  // of Buddha
            return 543;
        default:
            return 0;
    }
}

const XlsEra& xlsEra(int era) noexcept { return eras[era]; }
std::u16string_view xlsAmPm(int form) noexcept { return amPmForms[form - 1]; }

}  // namespace LumCommon::detail
