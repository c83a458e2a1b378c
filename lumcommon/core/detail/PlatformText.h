#pragma once

#include <lumcommon/core/Text.h>

#include <optional>
#include <string>
#include <string_view>

namespace LumCommon::detail {

/// A local path as the system expects it: in ICU's default codepage or, when that lacks one of the characters, in
/// UTF-8. A program that never called setlocale() has US-ASCII as its default, and substitution characters would name a
/// file that nobody asked for. A path with U+0000 gives nullopt: the system would ignore everything after it.
/// A unit U+DC80 to U+DCFF that is not part of a pair stands for the byte 80 to FF; a path with one is in UTF-8 apart
/// from these. No text has such a unit, so every name that the system allows can be told.
std::optional<std::string> toPlatformPath(const UnicodeString& path);

/// The path for which toPlatformPath() gives these bytes, as readable as it can be.
UnicodeString fromPlatformPath(std::string_view bytes);
/// The same with every byte from 80 on told as a byte.
UnicodeString asPlatformBytes(std::string_view bytes);

/// Text from the environment, decoded the way toPlatformPath encodes.
UnicodeString fromPlatformText(const char* bytes);

}  // namespace LumCommon::detail
