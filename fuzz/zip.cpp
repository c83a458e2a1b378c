// Any bytes may claim to be an archive. The first byte chooses the pieces in which the reader gets them.
// Laws: members follow one another within the input, so their data together are no longer than it; a member is at most
// 1032 times as long as its data; all ways of reading a member agree, and so does every kind of stream; the name of a
// member leads to the first one that has it.

#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/LumStrStream.h>

#include <sstream>
#include <string_view>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::Digest;

namespace {

/// Adds the content of the stream to the digest and returns its length.
std::size_t readAll(std::istream* in, Digest& digest) {
    FUZZ_LAW(in != nullptr);
    char piece[4096];
    std::size_t length = 0;
    while (in->read(piece, sizeof piece), in->gcount() > 0) {
        for (std::streamsize i = 0; i < in->gcount(); ++i) digest.add(static_cast<unsigned char>(piece[i]));
        length += static_cast<std::size_t>(in->gcount());
    }
    return length;
}

void readMember(LumZipFileEntry& entry, Digest& digest) {
    const std::size_t stored = entry.readCompressedData().size();
    FUZZ_LAW(stored <= entry.getCompressedSize());
    Digest fresh, own, again;
    std::unique_ptr<std::istream> copy(entry.getUncompressedStream(true));
    const std::size_t length = readAll(copy.get(), fresh);
    FUZZ_LAW(length <= stored * 1032);
    FUZZ_LAW(readAll(entry.getUncompressedStream(false), own) == length && own == fresh);
    entry.getUncompressedStream(false)->get();
    FUZZ_LAW(readAll(entry.getUncompressedStream(false), again) == length && again == fresh);
    FUZZ_LAW(readAll(entry.getCompressedStream(false), again) == stored);
    digest.add(entry.getFileName());
    digest.add(entry.getMethod());
    digest.add(entry.getCrc32());
    digest.add(entry.getUncompressedSize());
    digest.add(length);
    readAll(entry.getUncompressedStream(false), digest);
}

Digest readArchive(std::istream& in, std::size_t size) {
    Digest digest;
    LumZipFile zip(&in, false);
    std::size_t used = 0;
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        LumZipFileEntry* const entry = zip.getFileEntry(i);
        const LumZipFileEntry* const named = zip.getFileEntry(entry->getFileName());
        FUZZ_LAW(named && named->getPosition() <= entry->getPosition() && named->getFileName() == entry->getFileName());
        readMember(*entry, digest);
        used += entry->readCompressedData().size();
    }
    FUZZ_LAW(used <= size && zip.getFileEntryCount() <= size / 4);
    FUZZ_LAW(zip.getFileEntry(zip.getFileEntryCount()) == nullptr);
    return digest;
}

/// Reads the records that the walk does not use.
void readRecords(std::istream& in) {
    in.clear();
    in.seekg(0);
    const LumZipDirectoryEntry file(in);
    FUZZ_LAW(file.getFileName().length() <= file.getFields().nameLength);
    const LumZipEndDirectoryEntry end(in);
    FUZZ_LAW(in.good() || end.getCommentLength() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    const std::string_view bytes(reinterpret_cast<const char*>(input.data()), input.size());
    LumStrStream whole(bytes.data(), bytes.size(), true);  // a heap block of its exact size
    const bool isZip = LumZipFile::isZipFile(&whole);
    FUZZ_LAW(whole.tellg() == std::istream::pos_type(0));
    const Digest first = readArchive(whole, bytes.size());
    FUZZ_LAW(isZip || !bytes.starts_with("PK\3\4"));
    LumFuzz::PieceBuffer pieces(input.data(), input.size(), 1 + (how & 15u), 1 + (how >> 4));
    std::istream source(&pieces);
    LumMemStream memory(&source, 1 + how);
    FUZZ_LAW(readArchive(memory, bytes.size()) == first);
    readRecords(whole);
    return 0;
}
