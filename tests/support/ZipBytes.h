#pragma once

#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/streams/LumGzipStream.h>

#include <cstdint>
#include <istream>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/Recipe.h"
#include "support/Utf8.h"

namespace LumTest {

/// The low `bytes` bytes of a number, the lowest first.
inline std::string littleEndian(std::uint64_t value, unsigned bytes) { return numberBytes(value, bytes); }

/// Raw deflate data: what stands between the header and the trailer of a gzip member.
inline std::string deflated(const std::string& data) {
    std::ostringstream packed;
    {
        LumCommon::LumGzipOStreamBuf packer(packed);
        std::ostream(&packer) << data;
    }
    return packed.str().substr(10, packed.str().size() - 18);
}

/// A member as it is to be written. Fields of the header that differ from what the data ask for tell lies.
struct ZipMember {
    std::string name = {};
    std::string data = {};
    unsigned method = 0;
    unsigned flags = 0;
    std::string extra = {};
    std::uint64_t claimedData = honest;
    std::uint64_t claimedName = honest;
    std::uint64_t uncompressed = 0;

    static constexpr std::uint64_t honest = ~std::uint64_t{0};

    std::string header() const {
        const auto claim = [](std::uint64_t claimed, const std::string& real) {
            return claimed == honest ? real.size() : claimed;
        };
        return "PK\3\4" + littleEndian(20, 2) + littleEndian(flags, 2) + littleEndian(method, 2) + "TTDDcrc4" +
               littleEndian(claim(claimedData, data), 4) + littleEndian(uncompressed, 4) +
               littleEndian(claim(claimedName, name), 2) + littleEndian(extra.size(), 2) + name + extra;
    }
    std::string bytes() const { return header() + data; }
};

inline ZipMember deflatedMember(const std::string& name, const std::string& data) {
    return {.name = name, .data = deflated(data), .method = 8, .uncompressed = data.size()};
}

inline std::string descriptor(std::uint64_t compressed, std::uint64_t uncompressed = 0) {
    return "PK\7\10crc4" + littleEndian(compressed, 4) + littleEndian(uncompressed, 4);
}

/// What a central directory says of a member.
struct ZipRecord {
    std::string name = {};
    std::uint64_t offset = 0;
    std::uint64_t compressed = 0;
    unsigned method = 0;
    std::uint64_t uncompressed = 0;
    std::string extra = {};
    unsigned claimedName = 0;

    std::string bytes() const {
        return "PK\1\2" + littleEndian(20, 2) + littleEndian(20, 2) + littleEndian(8, 2) + littleEndian(method, 2) +
               "TTDDcrc4" + littleEndian(compressed, 4) + littleEndian(uncompressed, 4) +
               littleEndian(claimedName ? claimedName : name.size(), 2) + littleEndian(extra.size(), 2) +
               std::string(10, '\0') + littleEndian(offset, 4) + name + extra;
    }
};

/// The record of a member whose local header begins at `offset`.
inline ZipRecord recordOf(const ZipMember& member, std::uint64_t offset) {
    return {.name = member.name,
            .offset = offset,
            .compressed = member.data.size(),
            .method = member.method,
            .uncompressed = member.uncompressed};
}

inline std::string endRecord(std::uint64_t directorySize, std::uint64_t directoryOffset,
                             const std::string& comment = "") {
    return "PK\5\6" + std::string(8, '\0') + littleEndian(directorySize, 4) + littleEndian(directoryOffset, 4) +
           littleEndian(comment.size(), 2) + comment;
}

/// An archive with its central directory.
struct ZipArchive {
    std::string body = {};
    std::string directory = {};

    /// @param trailer  what follows the data, such as a descriptor.
    ZipArchive& add(const ZipMember& member, const std::string& trailer = "") {
        directory += recordOf(member, body.size()).bytes();
        body += member.bytes() + trailer;
        return *this;
    }
    std::string bytes(const std::string& comment = "") const {
        return body + directory + endRecord(directory.size(), body.size(), comment);
    }
};

inline const std::string zipEnd = "PK\5\6" + std::string(18, '\0');

inline std::string contentOf(std::istream* in) {
    return in ? std::string(std::istreambuf_iterator<char>(*in), {}) : "(null)";
}

/// Names and inflated data, in the archive's order.
using Members = std::vector<std::pair<std::string, std::string>>;

inline Members membersOf(const LumCommon::LumZipFile& zip) {
    Members members;
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        LumCommon::LumZipFileEntry* const entry = zip.getFileEntry(i);
        members.emplace_back(utf8(entry->getFileName()), contentOf(entry->getUncompressedStream(false)));
    }
    return members;
}

}  // namespace LumTest
