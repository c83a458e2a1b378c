#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/format/xls/XlsFormatCode.h>

namespace LumCommon::detail {

/// Parses a code into `out`, dropping its old content, and returns the number of sections.   Cost: linear.
int parseXlsCode(const UnicodeString& code, FMT2& out);

}  // namespace LumCommon::detail
