#pragma once

#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/detail/XlsDateNames.h>
#include <lumcommon/format/xls/detail/XlsRender.h>

namespace LumCommon::detail {

/// Where in a text a fill goes, in UTF-16 units; `at` is -1 if there is no fill.
struct XlsFill {
    std::int32_t at = -1;
    UChar32 character = 0;
};

/// XlsFormatString::fmtsel() for a number and for a text.
int selectXlsNumber(const FMT2& code, double value);
int selectXlsText(const FMT2& code);
bool xlsConditionHolds(double value, int condition, double operand);

/// Shows a cell; returns the section used or an XlsFormat::Failure, and sets the text, the colour and the fill.
/// @param names  of the sections; null for English ones.
int showXlsNumber(const FMT2& code, double value, const XlsNumberStyle& style, const XlsCodeNames* names,
                  UnicodeString& text, int& color, XlsFill& fill);
int showXlsText(const FMT2& code, const UnicodeString& value, UnicodeString& text, int& color);

}  // namespace LumCommon::detail
