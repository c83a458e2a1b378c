#pragma once

#include <lumcommon/core/Text.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace LumCommon::detail {

/// The texts of 1 to `last` in one numeral system, made at compile time. Most page and list numbers are small, and a
/// string that only points here costs half as much as writing one.
struct ReadyTexts {
    const char16_t* units = nullptr;  ///< of all texts, one after the other
    const std::uint16_t* starts = nullptr;
    int last = 0;

    bool has(int number) const noexcept { return number >= 1 && number <= last; }
    /// A string that refers to the constant data; changing the string copies it.
    UnicodeString get(int number) const {
        const std::uint16_t* const start = starts + number - 1;
        return UnicodeString(false, units + start[0], start[1] - start[0]);
    }
};

/// Holds the data that ReadyTexts points to. `write(out, number)` writes a text and returns its end.
template <int last, auto write>
class ReadyTextsStore {
    static constexpr std::size_t longest = 32;

    static consteval std::size_t countUnits() {
        std::size_t count = 0;
        for (int number = 1; number <= last; ++number) {
            char16_t text[longest] = {};
            count += static_cast<std::size_t>(write(static_cast<char16_t*>(text), number) - text);
        }
        return count;
    }

public:
    consteval ReadyTextsStore() {
        static_assert(countUnits() <= UINT16_MAX);
        char16_t* out = units_.data();
        for (int number = 1; number <= last; ++number) {
            out = write(out, number);
            starts_[static_cast<std::size_t>(number)] = static_cast<std::uint16_t>(out - units_.data());
        }
    }

    constexpr ReadyTexts get() const noexcept { return {units_.data(), starts_.data(), last}; }

private:
    std::array<char16_t, countUnits()> units_{};
    std::array<std::uint16_t, last + 1> starts_{};
};

}  // namespace LumCommon::detail
