#pragma once

#include <lumcommon/bridge/LumText.h>
#include <lumcommon/core/Text.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "Json.h"

namespace LumTool {

using LumCommon::toUtf8;

/// Text from the command line: read as UTF-8 if it is valid UTF-8, otherwise in the locale's encoding.
LumCommon::UnicodeString fromArgument(const std::string& argument);
/// The text of an operation that is bogus only when memory has run out.   Failure: std::bad_alloc then.
LumCommon::UnicodeString& checked(LumCommon::UnicodeString& text);

/// Writes to standard output.
/// Failure: LumError 0x1007 if it cannot be written; so for a line.
void print(std::string_view text);
void printLine(const std::string& text);
/// Writes the object on one line.
void printJson(const Json& object);
/// Copies the rest of a stream to standard output and returns the number of bytes.
/// Failure: LumError 0x1006 if the input fails.
std::uint64_t copyToOutput(std::istream& in);
/// Flushes standard output.   Failure: LumError 0x1007.
void flushOutput();
/// Flushes standard output and ignores failures.
void flushOutputQuietly();

}  // namespace LumTool
