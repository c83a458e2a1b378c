#pragma once

#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/detail/XlsDecimal.h>

namespace LumCommon::detail {

class XlsWriter;

/// Writes a piece that all kinds of sections write alike; nothing for other pieces.
void renderXlsCommon(const FMT& section, const XlsPiece& piece, XlsWriter& out);
/// Writes a number by a number section; a negative one begins with "-".
void renderXlsNumber(const FMT& section, const XlsDecimal& value, int generalChars, XlsWriter& out);
/// Writes a date or time by a section of that kind; the value comes from XlsDecimal::exact(). False, with nothing
/// written, if the value is not a date or time.
bool renderXlsDate(const FMT& section, const XlsDecimal& value, bool is1904, XlsWriter& out);
/// Writes a text by any section: "@" and General write it, the pieces of numbers and dates write nothing.
void renderXlsText(const FMT& section, const UnicodeString& value, XlsWriter& out);

}  // namespace LumCommon::detail
