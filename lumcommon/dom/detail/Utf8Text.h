#pragma once

#include <lumcommon/core/Text.h>

#include <string_view>

namespace LumCommon::detail {

/// Decodes what the serializer wrote in UTF-8. An unpaired surrogate, which is written as three bytes, comes back
/// unchanged; other malformed bytes become U+FFFD.
UnicodeString decodeUtf8(std::string_view bytes);

}  // namespace LumCommon::detail
