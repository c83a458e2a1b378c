#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumNameEnum.h>

#include <cstddef>

namespace LumCommon::detail {

/// The built-in name with this text; the null name when there is none, and for the empty text.   Threads: any.
LumNameEnum findBuiltinName(const char16_t* text, std::size_t units) noexcept;

/// The strings of the names 0 (empty) to 1597. They are created on the first call and never destroyed.   Threads: any.
const UnicodeString* builtinNameStrings();

}  // namespace LumCommon::detail
