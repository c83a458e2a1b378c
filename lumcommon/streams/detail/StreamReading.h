#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <span>
#include <vector>

namespace LumCommon::detail {

/// Whether a stream that has no more bytes is broken instead of at its end.
bool isBroken(const std::istream& in) noexcept;

/// Reads up to `room.size()` bytes and returns their number. An exception, from the stream's buffer or because of its
/// exception mask, counts as the end and shows in the stream's state.
inline std::size_t readBytes(std::istream& in, std::span<char> room) noexcept {
    try {
        in.read(room.data(), static_cast<std::streamsize>(room.size()));
    } catch (...) {
        // The count is still right: the mask throws after counting, and a buffer that threw leaves a count of 0.
    }
    return static_cast<std::size_t>(in.gcount());
}

/// Fills `bytes` with up to `claimed` bytes, in pieces that grow with what has arrived, so that a false claim costs no
/// memory.
/// @param read  called with the room for the next piece; returns the number of bytes it has put there, fewer at the
///              end.
/// Failure: std::bad_alloc; `bytes` then holds the pieces read before.
template <class Byte, class Read>
void readClaimed(std::vector<Byte>& bytes, std::size_t claimed, Read read) {
    constexpr std::size_t firstPieceBytes = std::size_t{64} * 1024;
    bytes.clear();
    while (bytes.size() < claimed) {
        const std::size_t before = bytes.size();
        const std::size_t piece = std::min(claimed - before, std::max(before, firstPieceBytes));
        bytes.resize(before + piece);
        const std::size_t got = read(std::span(bytes).subspan(before));
        if (got < piece) {
            bytes.resize(before + got);
            bytes.shrink_to_fit();
            break;
        }
    }
}

/// The default number of bytes that a refilling buffer keeps for putting back.
inline constexpr std::size_t putbackBytes = 10;
/// The default number of bytes that it reads at a time.
inline constexpr std::size_t refillBytes = 4096;

}  // namespace LumCommon::detail
