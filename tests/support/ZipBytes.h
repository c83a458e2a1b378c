#pragma once

#include <lumcommon/containers/LumZipFile.h>

#include <cstdint>
#include <istream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "support/Deflated.h"
#include "support/Recipe.h"
#include "support/Utf8.h"

namespace LumTest {

/// A member as it is to be written. Fields of the header that differ from what the data ask for tell lies.
struct ZipMember {
    std::string name = {};
    std::string data = {};
    unsigned method = 0;
    unsigned flags = 0;
    std::string extra = {};
    std::uint64_t claimedData = honest;
    std::uint64_t uncompressed = 0;

    static constexpr std::uint64_t honest = ~std::uint64_t{0};

    std::string header() const {
        return "PK\3\4" + numberBytes(20, 2) + numberBytes(flags, 2) + numberBytes(method, 2) + "TTDDcrc4" +
               numberBytes(claimedData == honest ? data.size() : claimedData, 4) + numberBytes(uncompressed, 4) +
               numberBytes(name.size(), 2) + numberBytes(extra.size(), 2) + name + extra;
    }
    std::string bytes() const { return header() + data; }
};

inline ZipMember deflatedMember(const std::string& name, const std::string& data) {
    return {.name = name, .data = deflated(data, Wrapper::RAW), .method = 8, .uncompressed = data.size()};
}

/// An archive with its central directory.
struct ZipArchive {
    std::string body = {};
    std::string directory = {};

    ZipArchive& add(const ZipMember& member) {
        directory += "PK\1\2" + numberBytes(20, 2) + numberBytes(20, 2) + numberBytes(8, 2) +
                     numberBytes(member.method, 2) + "TTDDcrc4" + numberBytes(member.data.size(), 4) +
                     numberBytes(member.uncompressed, 4) + numberBytes(member.name.size(), 2) + std::string(12, '\0') +
                     numberBytes(body.size(), 4) + member.name;
        body += member.bytes();
        return *this;
    }
    std::string bytes(const std::string& comment = "") const {
        return body + directory + "PK\5\6" + std::string(8, '\0') + numberBytes(directory.size(), 4) +
               numberBytes(body.size(), 4) + numberBytes(comment.size(), 2) + comment;
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
