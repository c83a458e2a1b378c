#pragma once

#include <cstdint>

namespace LumCommon::detail {

/// A place in a text: lines from 1, columns as the number of characters read on the line.
struct TextPosition {
    std::int64_t line = 1;
    std::int64_t column = 0;

    /// Moves over the units from `from` to `to`; line ends are line feeds by now. A surrogate pair is one character.
    /// @param mayHavePairs  false: there are none.
    /// Cost: linear, sixteen units a step.
    void advance(const char16_t* from, const char16_t* to, bool mayHavePairs) noexcept;
};

/// Notes how far from `from` each line feed before `to` is, at most 65,536 units.
/// @return after the last note.
const std::uint16_t* findLineFeeds(const char16_t* from, const char16_t* to, std::uint16_t* notes) noexcept;

}  // namespace LumCommon::detail
