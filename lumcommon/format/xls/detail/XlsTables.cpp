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

constexpr std::u16string_view amPmForms[] = {u"AM/PM", u"am/pm", u"A/P", u"a/p"};
static_assert(std::size(amPmForms) == XLS_AMPM_FORMS);

}  // namespace

std::u16string_view xlsKeyword(int keyword) noexcept { return keywords[keyword]; }
int xlsPaletteColor(int number) noexcept { return palette[number - 1]; }
std::u16string_view xlsMonthName(int month) noexcept { return months[month - 1]; }
std::u16string_view xlsDayName(int weekday) noexcept { return days[weekday]; }
const XlsEra& xlsEra(int era) noexcept { return eras[era]; }
std::u16string_view xlsAmPm(int form) noexcept { return amPmForms[form - 1]; }

}  // namespace LumCommon::detail
