// Any bytes may claim to be gzip or deflate data. The first two choose piece sizes.
// Laws: reading ends; deflate yields at most 1032 bytes for one; data that are not gzip come back unchanged; the pieces
// in which the bytes arrive change nothing; reading again after a reset gives the same; an inflating stream and a
// temporary file agree on complete data.

#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/streams/LumInflaterStream.h>
#include <lumcommon/streams/LumStrStream.h>
#include <lumcommon/streams/LumTempFile.h>

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const std::size_t firstPiece = input.byte();
    const std::size_t secondPiece = input.byte();
    readAsGzip(input, firstPiece, secondPiece);
    readAsDeflate(input);
    return 0;
}
