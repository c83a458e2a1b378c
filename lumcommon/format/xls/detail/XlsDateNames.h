#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/format/xls/XlsFormatCode.h>

#include <memory>
#include <string>
#include <string_view>

namespace LumCommon::detail {

/// The names of days and months in a language, as the data of ICU has them.
struct XlsDateNames {
    UnicodeString months[12], shortMonths[12];
    UnicodeString days[7], shortDays[7];  ///< from Sunday
    UnicodeString amPm[2];
};

/// The names for the sections of a code; null for English, and for sections that show none.
struct XlsCodeNames {
    std::unique_ptr<const XlsDateNames> sections[4];
};

/// Null if no section has names in another language than English.   Cost: that of loading the languages.
std::shared_ptr<const XlsCodeNames> xlsNamesFor(const FMT2& code);

/// The number of a language given by its name, such as "de-DE"; 0 if it has none.
unsigned xlsLanguageNumber(const std::string& name);

}  // namespace LumCommon::detail
