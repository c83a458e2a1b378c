#pragma once

#include <lumcommon/core/Api.h>

#include <unicode/unistr.h>

namespace LumCommon {

/// The one string type of the library: UTF-16, absent values are ICU's bogus string (see LumBogusString).
using icu::UnicodeString;

}  // namespace LumCommon
