#pragma once

#include <lumcommon/core/Text.h>

#include <optional>
#include <string>

namespace LumCommon::detail {

/// A local path as the system wants it: in ICU's default codepage and, when that lacks one of the characters, in UTF-8.
/// A program that never called setlocale() runs with US-ASCII as default; substitution characters would name a file
/// that nobody asked for. A path with U+0000 gives nullopt: the system would see only what stands before it.
std::optional<std::string> toPlatformPath(const UnicodeString& path);

/// Text from the environment, read as toPlatformPath writes it.
UnicodeString fromPlatformText(const char* bytes);

}  // namespace LumCommon::detail
