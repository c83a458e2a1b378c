#pragma once

#include <lumcommon/core/Text.h>

#include <string_view>

namespace LumCommon::detail {

/// How to write a number; the fields are the parameters of LumUtil::formatNumber().
struct NumberFormat {
    const UnicodeString& format;
    const UnicodeString& separator;
    int groupingSize;
    std::string_view language;  ///< ISO 639-1 code; empty for none
};

UnicodeString formatNumber(int number, const NumberFormat& how);

}  // namespace LumCommon::detail
