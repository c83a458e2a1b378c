#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>
#include <iosfwd>
#include <string>

#include "Json.h"

namespace lum {

/// Text of the command line: UTF-8 when it is that, else in the locale's encoding.
LumCommon::UnicodeString fromArgument(const std::string& argument);
/// U+FFFD stands for surrogates without partner; a bogus string is empty.
std::string toUtf8(const LumCommon::UnicodeString& text);
std::string toUtf8(LumCommon::LumName name);

/// Writes a line to standard output.
/// Failure: LumError 0x1007 when the output cannot take it.
void printLine(const std::string& text);
/// Writes the object on one line.
void printJson(const Json& object);
/// Copies the rest of a stream to standard output and returns the number of bytes.
/// Failure: LumError 0x1006 when the input fails.
std::uint64_t copyToOutput(std::istream& in);
/// Passes on what standard output still holds.   Failure: LumError 0x1007.
void flushOutput();
void flushOutputQuietly();

}  // namespace lum
