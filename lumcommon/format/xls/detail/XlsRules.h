#pragma once

#include <string_view>

namespace LumCommon::detail {

/// Which fraction stands for a decimal.
enum class XlsSearch {
    FIRST_NUMERATOR,  ///< the first numerator, counted from 1, that no later one improves on by more than 1e-8
    CONVERGENT,       ///< the last convergent of the continued fraction whose denominator has room
};

/// Everything in which the two ways of showing cells differ; what is not here is common to both.
struct XlsRules {
    // What codes mean.
    bool readsAllDateLetters;  ///< "aaa" and "aaaa" are weekdays, "b" is the Buddhist year, "e" a year in any language
    bool readsWholeTags;       ///< [$-de-DE] is the same as [$-407], and tags may choose numerals and a calendar
    bool readsLocalWords;      ///< General in Japanese, Chinese and Korean programs, AM/PM in Chinese ones
    bool secondsMakeMinutes;   ///< an "m" after seconds without minutes is a minute, not a month
    bool capitalizesAmPm;      ///< "am/pm" in any case is AM/PM

    // Cells.
    bool failedConditionIsGeneral;  ///< a number that the only section refuses is shown as General
    bool textCodesShowGeneral;      ///< so is a number if there are only sections for texts; else it goes through these
    bool conditionsImplySigns;      ///< a section whose condition only negative numbers meet shows no sign
    std::u16string_view refused;    ///< what stands for a number that cannot be shown

    // Numbers.
    XlsSearch search;
    bool absentPartsTakeLiterals;       ///< a whole number or a fraction that is absent hides the literals next to it
    int exponentDigits;                 ///< exponents have at least as many digits
    bool scalesMantissa;                ///< "%" and scaling commas count in scientific notation too
    bool zeroMantissaIsDigit;           ///< "#" shows the 0 of a mantissa
    std::string_view scientificDigits;  ///< General is scientific from 0.DIGITS times 10^scientificPoint upwards
    int scientificPoint;

    // Dates and times.
    int eras;                 ///< how many of the eras are known
    bool hasNegativeDates;    ///< the 1904 system has negative dates, not only negative times
    bool elapsesPlainFields;  ///< "h" beside "[h]" shows all hours too; likewise "m" and "s"
    bool translatesNames;     ///< days and months are those of the language of a tag
};

/// As XlsFormatString shows cells.
inline constexpr XlsRules XLS_CONTRACT_RULES{
    .readsAllDateLetters = false,
    .readsWholeTags = false,
    .readsLocalWords = false,
    .secondsMakeMinutes = false,
    .capitalizesAmPm = false,
    .failedConditionIsGeneral = false,
    .textCodesShowGeneral = false,
    .conditionsImplySigns = false,
    .refused = {},
    .search = XlsSearch::FIRST_NUMERATOR,
    .absentPartsTakeLiterals = false,
    .exponentDigits = 2,
    .scalesMantissa = true,
    .zeroMantissaIsDigit = false,
    .scientificDigits = "99999999999",
    .scientificPoint = 11,
    .eras = 4,
    .hasNegativeDates = false,
    .elapsesPlainFields = false,
    .translatesNames = false,
};

/// As spreadsheet programs show cells.
inline constexpr XlsRules XLS_SPREADSHEET_RULES{
    .readsAllDateLetters = true,
    .readsWholeTags = true,
    .readsLocalWords = true,
    .secondsMakeMinutes = true,
    .capitalizesAmPm = true,
    .failedConditionIsGeneral = true,
    .textCodesShowGeneral = true,
    .conditionsImplySigns = true,
    .refused = u"########",
    .search = XlsSearch::CONVERGENT,
    .absentPartsTakeLiterals = true,
    .exponentDigits = 1,
    .scalesMantissa = false,
    .zeroMantissaIsDigit = true,
    .scientificDigits = "1",
    .scientificPoint = 12,
    .eras = 5,
    .hasNegativeDates = true,
    .elapsesPlainFields = true,
    .translatesNames = true,
};

}  // namespace LumCommon::detail
