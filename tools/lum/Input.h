#pragma once

#include <lumcommon/core/Text.h>

#include <istream>
#include <memory>
#include <string>

namespace lum {

/// The URI of what a command line names. If there is a file with exactly this path, its URI, so that its name is not
/// decoded ("a%20b.xls") and references relative to the document are found; otherwise the argument itself.
LumCommon::UnicodeString toUri(const std::string& file);
/// The URI of a file to write, which need not exist yet. An argument that begins with "file:" is a URI already.
LumCommon::UnicodeString toOutputUri(const std::string& file);

/// The help text for an argument of openInput().
constexpr const char* fileHelp = "A file, a URI, or - for standard input";

/// Throws LumError 0x1003, which names what could not be opened.
[[noreturn]] void failToOpen(const LumCommon::UnicodeString& what);
[[noreturn]] void failToOpen(const std::string& what);

/// Opens what a command line names: a file, a URI, or - for standard input. The stream can seek: if its
/// source cannot, the part that has been read is kept in memory.
/// Failure: LumError 0x1003.
std::unique_ptr<std::istream> openInput(const std::string& file);

}  // namespace lum
