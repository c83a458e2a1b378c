#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/xls/detail/XlsDateNames.h>

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/uloc.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

using icu::DateFormatSymbols;
using Kind = XlsPieceKind;

constexpr unsigned primaryLanguages = 0x3FF;
constexpr unsigned english = 0x09;
/// A number that begins with these bits means the names of months as they are inflected after a day. Numbers without a
/// language, such as F800, mean the settings of the system, which are English here.
constexpr unsigned inflected = 0xFC00;

bool hasNames(const FMT& section) {
    return std::ranges::any_of(section.pieces, [](const XlsPiece& piece) {
        return piece.kind == Kind::WEEKDAY || (piece.kind == Kind::MONTH && piece.count > 2) ||
               piece.kind == Kind::AM_PM;
    });
}

template <std::size_t size>
void copyNames(const UnicodeString* names, std::int32_t count, std::int32_t first, auto(&out)[size]) {
    for (std::size_t i = 0; i < size; ++i) {
        const auto at = static_cast<std::int32_t>(i) + first;
        if (at < count) assign(out[i], names[at]);
    }
}

std::unique_ptr<const XlsDateNames> namesOf(unsigned language) {
    const bool isInflected = (language & inflected) == inflected;
    const unsigned number = isInflected ? language & primaryLanguages : language;
    const unsigned primary = number & primaryLanguages;
    if (primary == 0 || primary == english) return nullptr;
    char name[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = uloc_getLocaleForLCID(number, name, static_cast<std::int32_t>(sizeof name), &status);
    checkMemory(status);
    if (U_FAILURE(status) || length <= 0 || status == U_STRING_NOT_TERMINATED_WARNING) return nullptr;
    const DateFormatSymbols symbols(icu::Locale(name), status);
    checkMemory(status);
    if (U_FAILURE(status)) return nullptr;

    auto names = std::make_unique<XlsDateNames>();
    std::int32_t count = 0;
    const auto context = isInflected ? DateFormatSymbols::FORMAT : DateFormatSymbols::STANDALONE;
    const UnicodeString* found = symbols.getMonths(count, context, DateFormatSymbols::WIDE);
    copyNames(found, count, 0, names->months);
    found = symbols.getMonths(count, context, DateFormatSymbols::ABBREVIATED);
    copyNames(found, count, 0, names->shortMonths);
    found = symbols.getWeekdays(count, DateFormatSymbols::STANDALONE, DateFormatSymbols::WIDE);
    copyNames(found, count, 1, names->days);  // the first one is empty
    found = symbols.getWeekdays(count, DateFormatSymbols::STANDALONE, DateFormatSymbols::ABBREVIATED);
    copyNames(found, count, 1, names->shortDays);
    found = symbols.getAmPmStrings(count);
    copyNames(found, count, 0, names->amPm);
    return names;
}

}  // namespace

std::shared_ptr<const XlsCodeNames> xlsNamesFor(const FMT2& code) {
    std::shared_ptr<XlsCodeNames> result;
    for (int i = 0; i < code.count; ++i) {
        const FMT& section = code.sections[static_cast<std::size_t>(i)];
        if (section.kind != FMT::DATE_TIME || section.locale == 0 || !hasNames(section)) continue;
        std::unique_ptr<const XlsDateNames> names = namesOf(section.locale);
        if (!names) continue;
        if (!result) result = std::make_shared<XlsCodeNames>();
        result->sections[i] = std::move(names);
    }
    return result;
}

unsigned xlsLanguageNumber(const std::string& name) {
    // Longer than any name of a language that has a number.
    constexpr std::size_t longest = 64;
    if (name.empty() || name.size() > longest) return 0;
    char locale[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t parsed = 0;
    uloc_forLanguageTag(name.c_str(), locale, static_cast<std::int32_t>(sizeof locale), &parsed, &status);
    checkMemory(status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING || parsed == 0) return 0;
    return uloc_getLCID(locale) & 0xFFFFu;
}

}  // namespace LumCommon::detail
