#pragma once

#include <lumcommon/core/Text.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace LumCommon::detail {

/// The charset of a Windows code page by its number: "UTF-8" for 65001, else "cpNNN", with "-" before the digits of a
/// negative number, which no charset has.
std::string charsetOfCodePage(std::int64_t codePage);

/// The text of bytes in a charset, up to its first U+0000. A name of the form "cpNNN" means the Windows code page of
/// that number where there is one. Malformed bytes become U+FFFD; an unknown charset is read as ISO 8859-1.
UnicodeString fromCodePage(std::string_view bytes, const std::string& charset);

}  // namespace LumCommon::detail
