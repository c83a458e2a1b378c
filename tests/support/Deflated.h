#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>

namespace LumTest {

enum class Wrapper : int { RAW = -15, GZIP = 15 + 16 };

inline Bytef* zlibBytes(const std::string& bytes) { return reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data())); }

/// Compressed in one go by zlib; `header` (for gzip) may be null.
inline std::string deflated(const std::string& bytes, Wrapper wrapper, gz_header* header = nullptr) {
    z_stream z{};
    EXPECT_EQ(deflateInit2(&z, 9, Z_DEFLATED, static_cast<int>(wrapper), 9, Z_DEFAULT_STRATEGY), Z_OK);
    if (header) {
        EXPECT_EQ(deflateSetHeader(&z, header), Z_OK);
    }
    std::string result(deflateBound(&z, bytes.size()), '\0');
    z.next_in = zlibBytes(bytes);
    z.avail_in = static_cast<uInt>(bytes.size());
    z.next_out = zlibBytes(result);
    z.avail_out = static_cast<uInt>(result.size());
    EXPECT_EQ(deflate(&z, Z_FINISH), Z_STREAM_END);
    result.resize(z.total_out);
    deflateEnd(&z);
    return result;
}

struct Inflated {
    std::string bytes;      // what could be made up to the end or the fault
    std::size_t usedBytes;  // of the data
    bool isComplete;
};

/// What zlib makes of the data, asked for it in large pieces.
inline Inflated inflated(const std::string& data, Wrapper wrapper) {
    z_stream z{};
    EXPECT_EQ(inflateInit2(&z, static_cast<int>(wrapper)), Z_OK);
    std::string bytes;
    z.next_in = zlibBytes(data);
    z.avail_in = static_cast<uInt>(data.size());
    int result = Z_OK;
    do {
        constexpr std::size_t pieceBytes = 1 << 16;
        bytes.resize(z.total_out + pieceBytes);
        z.next_out = zlibBytes(bytes) + z.total_out;
        z.avail_out = pieceBytes;
        result = inflate(&z, Z_NO_FLUSH);
    } while (result == Z_OK && z.avail_out == 0);
    bytes.resize(z.total_out);
    const Inflated answer{bytes, z.total_in, result == Z_STREAM_END};
    inflateEnd(&z);
    return answer;
}

/// What a stream that refills 4096 bytes at a time delivers of such data: not the piece with the fault.
inline std::string delivered(const Inflated& inflated) {
    return inflated.isComplete ? inflated.bytes : inflated.bytes.substr(0, inflated.bytes.size() / 4096 * 4096);
}

/// Bytes that compress to about a third, the same for the same size.
inline std::string compressible(std::size_t sizeBytes) {
    std::mt19937 random(7);
    std::string bytes;
    while (bytes.size() < sizeBytes) {
        const std::size_t from = bytes.empty() ? 0 : random() % bytes.size();
        bytes += bytes.substr(from, random() % 9);
        bytes += static_cast<char>(random() % 64);
    }
    bytes.resize(sizeBytes);
    return bytes;
}

}  // namespace LumTest
