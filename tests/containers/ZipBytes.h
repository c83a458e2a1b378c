#pragma once

#include <lumcommon/streams/LumGzipStream.h>

#include <cstdint>
#include <ostream>
#include <sstream>
#include <string>

namespace LumTest {

/// The low `bytes` bytes of a number, the lowest first.
inline std::string littleEndian(std::uint64_t value, unsigned bytes) {
    std::string result;
    for (; bytes != 0; --bytes, value >>= 8) result += static_cast<char>(value & 0xFF);
    return result;
}

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

inline const std::string zipEnd = "PK\5\6" + std::string(18, '\0');

}  // namespace LumTest
