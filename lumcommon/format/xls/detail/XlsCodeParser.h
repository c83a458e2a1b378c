#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/format/xls/XlsFormatCode.h>

namespace LumCommon::detail {

/// Parses a code into `out`, whose old content is dropped, and returns the number of sections.   Cost: linear.
int parseXlsCode(const UnicodeString& code, FMT2& out);

}  // namespace LumCommon::detail
