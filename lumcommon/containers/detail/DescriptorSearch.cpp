#include <lumcommon/containers/detail/DescriptorSearch.h>
#include <lumcommon/containers/detail/ZipFields.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

namespace LumCommon::detail {

namespace {

constexpr std::size_t windowBytes = std::size_t{64} * 1024;
constexpr auto signatureBytes = zipSignatureBytes(LumZipEntry::SIGNATURE_EXTHEADER);
constexpr std::string_view signature(signatureBytes.data(), signatureBytes.size());

/// Finds the first descriptor that is entirely in `window` and states its own distance.
/// @param distance  of the window from the member's data; receives that of the descriptor.
bool findIn(std::string_view window, std::uint64_t& distance, LumZipMemberFields& found) {
    for (std::size_t at = 0; (at = window.find(signature, at)) != window.npos; ++at) {
        if (window.size() - at < ZipDescriptor::bytes) return false;
        const RecordView record(window.substr(at));
        if (record.get(ZipDescriptor::compressedSize) == distance + at) {
            found.crc32 = record.get(ZipDescriptor::crc32);
            found.compressedSize = record.get(ZipDescriptor::compressedSize);
            found.uncompressedSize = record.get(ZipDescriptor::uncompressedSize);
            distance += at;
            return true;
        }
    }
    return false;
}

bool search(std::istream& in, std::uint64_t& distance, LumZipMemberFields& found) {
    std::vector<char> window(windowBytes);
    std::size_t kept = 0;  // bytes at the front that may begin a descriptor
    while (distance <= std::numeric_limits<std::uint32_t>::max()) {
        const std::size_t size = kept + readBytes(in, std::span(window).subspan(kept));
        if (findIn({window.data(), size}, distance, found)) return true;
        if (size < window.size()) break;
        kept = ZipDescriptor::bytes - 1;
        std::copy(window.end() - static_cast<std::ptrdiff_t>(kept), window.end(), window.begin());
        distance += size - kept;
    }
    return false;
}

}  // namespace

bool findDescriptor(std::istream& in, LumZipMemberFields& fields) {
    const std::streamoff start = tellPosition(in);
    if (start < 0) return false;
    std::uint64_t distance = 0;
    const bool isFound = search(in, distance, fields);
    // Everything in between was read, so the sum is a position of the stream and cannot overflow.
    rewindTo(in, start + static_cast<std::streamoff>(isFound ? distance : 0));
    return isFound;
}

}  // namespace LumCommon::detail
