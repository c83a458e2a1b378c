#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <istream>
#include <span>

namespace LumCommon::detail {

/// Reads up to `room.size()` bytes and returns their number. What the stream throws, be it its buffer or its exception
/// mask, counts as its end; its state tells.
inline std::size_t readBytes(std::istream& in, std::span<char> room) noexcept {
    try {
        in.read(room.data(), static_cast<std::streamsize>(room.size()));
    } catch (...) {
        // The count is right also then: the mask throws after counting, a buffer that threw has a count of 0.
    }
    return static_cast<std::size_t>(in.gcount());
}

/// What buffers that refill themselves keep for putting back, where nothing else is said.
inline constexpr std::size_t putbackBytes = 10;
/// What they read at a time.
inline constexpr std::size_t refillBytes = 4096;

/// Moves the last bytes before the read position, `most` of them, to the start of `buffer` and returns their number;
/// the next refill goes behind them.
inline std::size_t keepPutback(char* buffer, const char* areaStart, const char* readPosition,
                               std::size_t most = putbackBytes) noexcept {
    const std::size_t kept = std::min(static_cast<std::size_t>(readPosition - areaStart), most);
    if (kept != 0) std::memmove(buffer, readPosition - kept, kept);
    return kept;
}

}  // namespace LumCommon::detail
