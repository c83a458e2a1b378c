#pragma once

#include <lumcommon/core/Text.h>

#include <optional>
#include <string>

namespace LumCommon::detail {

/// A local path as the system expects it: in ICU's default codepage or, when that lacks one of the characters, in
/// UTF-8. A program that never called setlocale() has US-ASCII as its default, and substitution characters would name a
/// file that nobody asked for. A path with U+0000 gives nullopt: the system would ignore everything after it.
std::optional<std::string> toPlatformPath(const UnicodeString& path);

/// Text from the environment, decoded the way toPlatformPath encodes.
UnicodeString fromPlatformText(const char* bytes);

}  // namespace LumCommon::detail
