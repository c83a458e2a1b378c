// Any bytes may claim to be a compound file. The first byte chooses how streams are read.
// Laws: tables and directory are no larger than the file; a stream has no more bytes than it states, and no byte twice,
// so no more than the file; all ways of reading it agree; a seek tells correctly where a byte is; a name leads to an
// entry that has it.

#include <lumcommon/containers/LumOleStreamBuf.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/streams/JZIOobj.h>
#include <lumcommon/streams/LumStrStream.h>
#include <unicode/locid.h>

#include <string>
#include <string_view>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

constexpr long mostStreams = 24;  // per input; the others are like them

std::string readAll(OleStream& stream, unsigned pieceBytes, std::size_t fileBytes) {
    std::string result;
    std::string piece(pieceBytes, '\0');
    unsigned got = 0;
    while ((got = stream.OLEread(reinterpret_cast<unsigned char*>(piece.data()), pieceBytes)) != 0) {
        result.append(piece, 0, got);
        FUZZ_LAW(result.size() <= fileBytes && result.size() <= stream.GetStreamSize());
    }
    return result;
}

void checkStream(OleCompFile& file, long index, unsigned pieceBytes, std::string_view bytes) {
    OleStream stream(&file);
    if (!stream.GetStreamChain(static_cast<int>(index))) return;
    const std::string whole = readAll(stream, 1u << 16, bytes.size());
    FUZZ_LAW(stream.OLEtell() == static_cast<long>(whole.size()));
    FUZZ_LAW(stream.OLEseek(0, SEEK_SET) >= 0 || whole.empty());
    FUZZ_LAW(readAll(stream, pieceBytes, bytes.size()) == whole);
    OleStream fresh(&file);
    FUZZ_LAW(fresh.GetStreamChain(static_cast<int>(index)));
    const int limit = static_cast<int>(pieceBytes * 50);
    LumOleStreamBuf buffer(&fresh, limit);
    std::string limited(whole.size() + 1, '\0');
    limited.resize(
        static_cast<std::size_t>(buffer.sgetn(limited.data(), static_cast<std::streamsize>(limited.size()))));
    FUZZ_LAW(limited == whole.substr(0, static_cast<std::size_t>(limit)));
    for (std::size_t at = whole.size(); at != 0; at /= 2) {
        const long offset = fresh.OLEseek(static_cast<int>(at - 1), SEEK_SET);
        FUZZ_LAW(offset >= 0 && bytes[static_cast<std::size_t>(offset)] == whole[at - 1]);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    const std::string_view bytes(reinterpret_cast<const char*>(input.data()), input.size());
    LumStrStream in(bytes.data(), bytes.size(), true);
    JZStreamIOobj io(&in);
    OleCompFile file;
    const bool isOpen = file.OLEopen(&io);
    FUZZ_LAW(isOpen == (file.getDirCount() != 0));
    FUZZ_LAW(static_cast<std::size_t>(file.getDirCount()) <= bytes.size() / 128);
    FUZZ_LAW(file.getNextBlock(static_cast<long>(bytes.size()), false) == -1);
    long streams = 0;
    for (long i = 0; i < file.getDirCount() && streams < mostStreams; ++i) {
        const OleDirInfo* const entry = file.getDirInfo(i);
        FUZZ_LAW(entry->getIndex() == i);
        if (entry->getType() == OleDirInfo::STREAM) {
            ++streams;
            checkStream(file, i, 1 + how, bytes);
        }
        std::string name;
        entry->getName().toUTF8String(name);
        const long found = file.findDirEntryByName(file.getDirInfo(0), name.c_str());
        if (found >= 0 && UnicodeString::fromUTF8(name) == entry->getName()) {  // no lone surrogates
            FUZZ_LAW(UnicodeString(file.getDirInfo(found)->getName()).toUpper("") ==
                     UnicodeString(entry->getName()).toUpper(""));
        }
    }
    in.clear();
    in.seekg(0);
    const int kind = OleCompFile::detectOLEDocument(in);
    FUZZ_LAW(kind >= 0 && kind <= (isOpen ? 4 : 0));
    return 0;
}
