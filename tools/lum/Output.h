#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "Json.h"

namespace lum {

/// Text from the command line: read as UTF-8 if it is valid UTF-8, otherwise in the locale's encoding.
LumCommon::UnicodeString fromArgument(const std::string& argument);
/// The text of an operation that is bogus only when memory has run out.   Failure: std::bad_alloc then.
LumCommon::UnicodeString& checked(LumCommon::UnicodeString& text);
/// Unpaired surrogates become U+FFFD; a bogus string becomes an empty one.
std::string toUtf8(const LumCommon::UnicodeString& text);
std::string toUtf8(LumCommon::LumName name);

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

}  // namespace lum
