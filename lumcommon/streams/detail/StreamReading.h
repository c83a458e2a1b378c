#pragma once

#include <cstddef>
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

/// How many bytes a buffer that refills itself keeps for putting back, where nothing else is said.
inline constexpr std::size_t putbackBytes = 10;
/// How many it reads at a time.
inline constexpr std::size_t refillBytes = 4096;

}  // namespace LumCommon::detail
