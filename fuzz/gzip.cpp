// Any bytes may claim to be gzip or deflate data. The first two choose piece sizes.
// Laws: reading ends; deflate yields at most 1032 bytes for one; data that are not gzip come back unchanged; the pieces
// in which the bytes arrive change nothing; reading again after a reset gives the same; an inflating stream and a
// temporary file agree on complete data; what is written is complete gzip data that zlib and the reader give back
// unchanged, however it was cut.

#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/streams/LumInflaterStream.h>
#include <lumcommon/streams/LumStrStream.h>
#include <lumcommon/streams/LumTempFile.h>

#include <zlib.h>

#include <iterator>
#include <sstream>
#include <string>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::PieceBuffer;

namespace {

std::string readAll(std::streambuf& buffer) { return {std::istreambuf_iterator<char>(&buffer), {}}; }

void readAsGzip(const Choices& input, std::size_t firstPiece, std::size_t secondPiece) {
    const std::string bytes(reinterpret_cast<const char*>(input.data()), input.size());
    LumStrStream whole(bytes.data(), bytes.size(), true);
    const bool isGzip = LumGzipStreamBuf::checkHeader(whole);
    whole.clear();
    whole.seekg(0);
    LumGzipStreamBuf fromWhole(whole);
    const std::string result = readAll(fromWhole);
    FUZZ_LAW(result.size() <= 1032 * bytes.size());
    if (!isGzip) {
        FUZZ_LAW(result == bytes);
        return;
    }
    PieceBuffer pieces(input.data(), input.size(), firstPiece, secondPiece);
    std::istream inPieces(&pieces);
    LumGzipStreamBuf fromPieces(inPieces);
    FUZZ_LAW(readAll(fromPieces) == result);
}

void readAsDeflate(const Choices& input) {
    const std::string bytes(reinterpret_cast<const char*>(input.data()), input.size());
    LumInflaterStreamBuf buffer(bytes.data(), bytes.size(), true);
    const std::string result = readAll(buffer);
    FUZZ_LAW(result.size() <= 1032 * bytes.size());
    buffer.reset();
    FUZZ_LAW(readAll(buffer) == result);
    std::ostringstream out;
    const bool isComplete = LumTempFile::inflate(out, input.data(), input.size());
    const std::string written = out.str();
    // Of truncated data, a file gets everything that could be inflated, but a stream only whole pieces.
    FUZZ_LAW(isComplete ? written == result : written.compare(0, result.size(), result) == 0);
}

/// What zlib makes of one complete member.
std::string inflated(const std::string& member, std::size_t size) {
    z_stream stream{};
    FUZZ_LAW(inflateInit2(&stream, 15 + 16) == Z_OK);
    std::string result(size + 1, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(member.data()));
    stream.avail_in = static_cast<uInt>(member.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    FUZZ_LAW(inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_in == 0);
    result.resize(stream.total_out);
    inflateEnd(&stream);
    return result;
}

void writeGzip(const Choices& input, std::size_t firstPiece, std::size_t secondPiece) {
    const std::string bytes(reinterpret_cast<const char*>(input.data()), input.size());
    std::ostringstream out;
    {
        LumGzipOStreamBuf buffer(out);
        for (std::size_t at = 0; at < bytes.size(); std::swap(firstPiece, secondPiece)) {
            const std::size_t piece = std::min(64 * firstPiece + 1, bytes.size() - at);
            FUZZ_LAW(buffer.sputn(bytes.data() + at, static_cast<std::streamsize>(piece)) ==
                     static_cast<std::streamsize>(piece));
            at += piece;
            if (piece % 2 != 0) FUZZ_LAW(buffer.encodeBuffer(Z_NO_FLUSH) == 0);
        }
        FUZZ_LAW(buffer.is_open() && buffer.pubsync() == 0 && !buffer.is_open());
        FUZZ_LAW(buffer.pubsync() == 0 && buffer.sputc('x') == EOF && buffer.encodeBuffer(Z_NO_FLUSH) == -1);
    }
    const std::string member = out.str();
    FUZZ_LAW(inflated(member, bytes.size()) == bytes);
    std::istringstream in(member);
    LumGzipStreamBuf reader(in);
    FUZZ_LAW(readAll(reader) == bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const std::size_t firstPiece = input.byte();
    const std::size_t secondPiece = input.byte();
    readAsGzip(input, firstPiece, secondPiece);
    readAsDeflate(input);
    writeGzip(input, firstPiece, secondPiece);
    return 0;
}
