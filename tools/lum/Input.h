#pragma once

#include <lumcommon/core/LumError.h>
#include <lumcommon/core/Text.h>

#include <functional>
#include <istream>
#include <memory>
#include <string>

namespace LumTool {

/// The URI of what a command line names. If there is a file with exactly this path, its URI, so that its name is not
/// decoded ("a%20b.xls") and references relative to the document are found; otherwise the argument itself.
/// Failure: ExplainedError 0x1003 for a folder, a file that may not be read, or a path that leads nowhere.
LumCommon::UnicodeString toUri(const std::string& file);
/// The URI of a file to write, which need not exist yet. An argument that begins with "file:" is a URI already.
/// Failure: ExplainedError 0x1003 for a folder, and for a file in a folder that does not exist.
LumCommon::UnicodeString toOutputUri(const std::string& file);

/// The help text for an argument of openInput().
constexpr const char* fileHelp = "A file, a URI, or - for standard input";

/// An error of the library, with what the tool knows about its cause.
struct ExplainedError {
    LumCommon::LumError error;
    std::string reason;  ///< empty if nothing is known
};

/// Throws an ExplainedError 0x1003, which names what could not be opened.
[[noreturn]] void failToOpen(const std::string& what, const std::string& reason = {});
/// The same for what was opened and is not what it should be: "FILE is no zip archive".
[[noreturn]] void failBecause(const std::string& message, const std::string& reason = {});
/// Says what a file is when it is a zip archive, a compound file or empty, in the words "it is ...";
/// empty for others. The stream must seek; it is read from its start.
std::string whatElse(std::istream& in);

/// Runs work that reads the XML document `file`. A LumError becomes an ExplainedError where the file tells the reason.
void withReasons(const std::string& file, const std::function<void()>& work);

/// Opens what a command line names: a file, a URI, or - for standard input. The stream can seek: if its
/// source cannot, the part that has been read is kept in memory.
/// Failure: ExplainedError 0x1003.
std::unique_ptr<std::istream> openInput(const std::string& file);

}  // namespace LumTool
