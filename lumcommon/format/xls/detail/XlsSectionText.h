#pragma once

#include <lumcommon/format/xls/XlsFormatCode.h>

namespace LumCommon::detail {

/// Sets FMT::text from the other fields.
/// @param prefix  the brackets of colour, condition, style and language.
void setXlsSectionText(FMT& section, const UnicodeString& prefix);

}  // namespace LumCommon::detail
