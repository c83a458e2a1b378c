#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/core/LumError.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"

#include <iostream>
#include <nlohmann/json.hpp>

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string file, member;
};

void describeFile(CLI::App& command, Arguments& arguments) {
    command.add_option("file", arguments.file, "An archive: a file, a URI, or - for standard input")->required();
}

void describeMember(CLI::App& command, Arguments& arguments) {
    describeFile(command, arguments);
    command.add_option("member", arguments.member, "The name of a member, as listed")->required();
}

[[noreturn]] void refuse(const std::string& what) {
    throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::Unnamed25, fromArgument(what));
}

/// Opens the archive in `zip`.   Failure: LumError 0x1003, also for what is no archive.
void openArchive(LumZipFile& zip, const std::string& file) {
    std::unique_ptr<std::istream> in = openInput(file);
    if (!LumZipFile::isZipFile(in.get())) refuse(file);
    zip.open(in.release(), true);
}

void list(const Arguments& arguments) {
    LumZipFile zip;
    openArchive(zip, arguments.file);
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        const LumZipFileEntry* const entry = zip.getFileEntry(i);
        printJson({{"name", toUtf8(entry->getFileName())},
                   {"method", entry->getMethod()},
                   {"flags", entry->getFlags()},
                   {"crc32", entry->getCrc32()},
                   {"compressedSize", entry->getCompressedSize()},
                   {"uncompressedSize", entry->getUncompressedSize()}});
    }
}

void cat(const Arguments& arguments) {
    LumZipFile zip;
    openArchive(zip, arguments.file);
    LumZipFileEntry* const entry = zip.getFileEntry(fromArgument(arguments.member));
    if (!entry) refuse(arguments.file + "!/" + arguments.member);
    std::istream* const in = entry->getUncompressedStream(false);
    if (!in) throw std::bad_alloc();
    const bool isDeflated = entry->getMethod() == LumZipFileEntry::METHOD_DEFLATE;
    const std::uint64_t expected = isDeflated ? entry->getUncompressedSize() : entry->getCompressedSize();
    constexpr std::uint64_t isInZip64Field = 0xFFFFFFFFu;
    if (copyToOutput(*in) < expected && expected != isInZip64Field) {
        throwCommonError(LumErrorCodeIO::UnexpectedEnd, LumCommonErrorSource::Unnamed25);
    }
}

}  // namespace

void addZipCommand(CLI::App& app, Action& action) {
    CLI::App* const zip = app.add_subcommand("zip", "Look into a zip archive");
    zip->require_subcommand(1);
    addCommand(*zip, action, "list", "Print the members as JSON, one object each", describeFile, list);
    addCommand(*zip, action, "cat", "Write the bytes of a member", describeMember, cat);
}

}  // namespace lum
