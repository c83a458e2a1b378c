#pragma once

#include <lumcommon/core/Text.h>

#include <string_view>

namespace LumCommon::detail {

/// The text of what the serializer wrote in UTF-8. A surrogate without its partner, which is written as three bytes of
/// its own, comes back as it was; other malformed bytes become U+FFFD.
UnicodeString decodeUtf8(std::string_view bytes);

}  // namespace LumCommon::detail
