#pragma once

#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/detail/XlsDecimal.h>

namespace LumCommon::detail {

class XlsWriter;

/// What kinds of sections write in the same way; nothing for other pieces.
void renderXlsCommon(const FMT& section, const XlsPiece& piece, XlsWriter& out);
/// A number by a number section; a negative one begins with "-".
void renderXlsNumber(const FMT& section, const XlsDecimal& value, int generalChars, XlsWriter& out);
/// A date or time by such a section; the value is XlsDecimal::exact(). False, and nothing written, when the value is
/// not one.
bool renderXlsDate(const FMT& section, const XlsDecimal& value, bool is1904, XlsWriter& out);
/// A text by any section: "@" and General write it, what is of numbers and dates writes nothing.
void renderXlsText(const FMT& section, const UnicodeString& value, XlsWriter& out);

}  // namespace LumCommon::detail
