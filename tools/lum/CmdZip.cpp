#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/core/LumError.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "Progress.h"
#include "Words.h"

#include <iostream>

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string file, member;
};

constexpr const char* archiveHelp = "An archive: a file, a URI, or - for standard input";

void describeMember(Syntax& syntax, Arguments& arguments) {
    syntax.required("file", arguments.file, archiveHelp);
    syntax.required("member", arguments.member, "The name of a member, as listed");
}

/// Opens the archive in `zip`.   Failure: ExplainedError 0x1003, also if it is not an archive.
void openArchive(LumZipFile& zip, const std::string& file) {
    std::unique_ptr<std::istream> in = openInput(file);
    if (!LumZipFile::isZipFile(in.get())) failBecause(file + " is no zip archive", whatElse(*in));
    zip.open(in.release(), true);
}

void list(const std::string& file) {
    LumZipFile zip;
    openArchive(zip, file);
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        const LumZipFileEntry* const entry = zip.getFileEntry(i);
        printJson({{"name", toUtf8(entry->getFileName())},
                   {"method", entry->getMethod()},
                   {"flags", entry->getFlags()},
                   {"crc32", entry->getCrc32()},
                   {"compressedSize", entry->getCompressedSize()},
                   {"uncompressedSize", entry->getUncompressedSize()},
                   {"methodName", wordOfZipMethod(entry->getMethod())}});
    }
}

void cat(const Arguments& arguments) {
    LumZipFile zip;
    openArchive(zip, arguments.file);
    LumZipFileEntry* const entry = zip.getFileEntry(fromArgument(arguments.member));
    if (!entry) failBecause(arguments.file + " has no member " + arguments.member);
    std::istream* const in = entry->getUncompressedStream(false);
    if (!in) throw std::bad_alloc();
    const Progress progress(arguments.file, Progress::Output::Standard);
    const bool isDeflated = entry->getMethod() == LumZipFileEntry::METHOD_DEFLATE;
    const std::uint64_t expected = isDeflated ? entry->getUncompressedSize() : entry->getCompressedSize();
    constexpr std::uint64_t isInZip64Field = 0xFFFFFFFFu;
    if (copyToOutput(*in) < expected && expected != isInZip64Field) {
        throwCommonError(LumErrorCodeIO::UnexpectedEnd, LumCommonErrorSource::Unnamed25);
    }
}

}  // namespace

Command makeZipCommand() {
    return {"zip",
            "Look into a zip archive",
            {},
            {},
            {makeCommand("list", "Print the members, one JSON object per member", "file", archiveHelp, list),
             makeCommand("cat", "Write the bytes of a member", describeMember, cat)}};
}

}  // namespace LumTool
