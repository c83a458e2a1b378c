#pragma once

#include <zlib.h>

#include <stdexcept>
#include <string>

namespace LumBench {

/// The bytes as raw deflate data, as the members of zip archives are stored.
inline std::string deflated(const std::string& bytes) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("zlib cannot deflate");
    }
    std::string result(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));  // zlib does not write to it
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int status = deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    if (status != Z_STREAM_END) throw std::runtime_error("zlib cannot deflate");
    return result;
}

/// Deflated data to bytes, taken in pieces of this size.
constexpr std::size_t inflatedPieceBytes = 32 * 1024;

/// A cheap sum by which two ways of reading the same bytes can be compared: of what stands at the end of each piece.
inline std::size_t sumOf(const char* bytes, std::size_t count) {
    return count == 0 ? 0 : count + static_cast<unsigned char>(bytes[count - 1]);
}

}  // namespace LumBench
