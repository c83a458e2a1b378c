#pragma once

#include <cstddef>
#include <string_view>

namespace LumBench {

/// What every contender must find in an input before anything is timed.
struct Answer {
    std::size_t elements = 0;
    std::size_t attributes = 0;  ///< without namespace declarations: some parsers hide them
    std::size_t textUnits = 0;   ///< of character data, in UTF-16 code units
};

/// The number of UTF-16 units of a well-formed UTF-8 text: one per character, two beyond the basic plane.
inline std::size_t countUnits(std::string_view utf8) {
    std::size_t units = 0;
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        units += (byte & 0xC0u) != 0x80u;  // 10xxxxxx continues a character
        units += byte >= 0xF0u;            // 11110xxx begins one of four bytes
    }
    return units;
}

}  // namespace LumBench
