#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace LumTest {

/// The text so many times, with the number of each time, from 0, in the place of every "@" in it.
inline std::string repeat(std::string_view unit, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i)
        for (const char c : unit) c == '@' ? text += std::to_string(i) : text += c;
    return text;
}

}  // namespace LumTest
