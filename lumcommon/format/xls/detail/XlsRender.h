#pragma once

#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/detail/XlsDecimal.h>
#include <lumcommon/format/xls/detail/XlsGeneral.h>
#include <lumcommon/format/xls/detail/XlsRules.h>

namespace LumCommon::detail {

class XlsWriter;
struct XlsDateNames;

/// What decides how a number is shown, apart from its code.
struct XlsNumberStyle {
    const XlsRules* rules = &XLS_CONTRACT_RULES;
    bool is1904 = false;
    int generalChars = XLS_GENERAL_CHARS;
};

/// Writes a piece that all kinds of sections write alike; nothing for other pieces.
void renderXlsCommon(const FMT& section, const XlsPiece& piece, XlsWriter& out);
/// Writes a number by a number section; a negative one begins with "-".
void renderXlsNumber(const FMT& section, const XlsDecimal& value, const XlsNumberStyle& style, XlsWriter& out);
/// The part of this for fractions; the sign has been written and the magnitude scaled.
void renderXlsFraction(const FMT& section, const XlsDecimal& magnitude, const XlsRules& rules, XlsWriter& out);
/// Writes a number as General shows it.
void renderXlsGeneral(const FMT& section, const XlsDecimal& magnitude, int maxChars, const XlsRules& rules,
                      XlsWriter& out);
/// Writes a date or time by a section of that kind; the value comes from XlsDecimal::exact(). False, with nothing
/// written, if the value is not a date or time.
/// @param names  of days and months; null for English ones.
bool renderXlsDate(const FMT& section, const XlsDecimal& value, const XlsNumberStyle& style, const XlsDateNames* names,
                   XlsWriter& out);
/// Writes a text by any section: "@" and General write it, the pieces of numbers and dates write nothing.
void renderXlsText(const FMT& section, const UnicodeString& value, XlsWriter& out);

}  // namespace LumCommon::detail
