#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/detail/XlsRules.h>

namespace LumCommon::detail {

/// Parses a code into `out`, dropping its old content, and returns the number of sections.   Cost: linear.
int parseXlsCode(const UnicodeString& code, const XlsRules& rules, FMT2& out);

}  // namespace LumCommon::detail
