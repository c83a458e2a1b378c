#pragma once

#include <lumcommon/core/Text.h>

#include <istream>
#include <memory>
#include <string>

namespace lum {

/// The URI of what a command line names: that of the file when there is one with this very path, so that its name is
/// not decoded ("a%20b.xls") and what a document names relative to itself is found; else the argument as it is.
LumCommon::UnicodeString toUri(const std::string& file);
/// The URI of a file to write, which need not exist yet. An argument that begins with "file:" is a URI already.
LumCommon::UnicodeString toOutputUri(const std::string& file);

/// What help says of an argument that openInput takes.
constexpr const char* fileHelp = "A file, a URI, or - for standard input";

/// Throws LumError 0x1003 with what could not be opened.
[[noreturn]] void failToOpen(const LumCommon::UnicodeString& what);
[[noreturn]] void failToOpen(const std::string& what);

/// Opens what a command line names: a file, a URI, or - for standard input. The stream can seek; what cannot do so by
/// itself is kept in memory as far as it is read.
/// Failure: LumError 0x1003.
std::unique_ptr<std::istream> openInput(const std::string& file);

}  // namespace lum
