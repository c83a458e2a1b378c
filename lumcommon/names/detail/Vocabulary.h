#pragma once

#include <lumcommon/names/detail/UnitHash.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace LumCommon::detail {

/// A fixed list of strings with the lookup from string to position, laid out at compile time. Position 0 is the empty
/// string and stands for "not in the list"; of equal strings the first counts.
///
/// The table is at most half full and keeps 16 bits of each hash beside the position, so that a string that is not in
/// the list is nearly always rejected without looking at any string.
template <std::size_t RowCount>
class Vocabulary {
public:
    using Rows = std::array<std::u16string_view, RowCount>;

    consteval explicit Vocabulary(const Rows& rows) : rows_(rows) {
        for (std::size_t id = 1; id < RowCount; ++id) {
            const std::uint64_t hash = hashUnits(rows[id].data(), rows[id].size(), fixedHashKey);
            std::size_t place = placeOf(hash);
            while (slots_[place].id != 0 && rows[slots_[place].id] != rows[id]) place = (place + 1) & mask;
            if (slots_[place].id == 0) slots_[place] = {static_cast<std::uint16_t>(id), markOf(hash)};
        }
    }

    /// The position of the text, 0 when it is not in the list.
    std::uint16_t find(const char16_t* text, std::size_t units) const noexcept {
        const std::uint64_t hash = hashUnits(text, units, fixedHashKey);
        const std::uint16_t mark = markOf(hash);
        for (std::size_t place = placeOf(hash); slots_[place].id != 0; place = (place + 1) & mask) {
            if (slots_[place].mark == mark && rows_[slots_[place].id] == std::u16string_view(text, units)) {
                return slots_[place].id;
            }
        }
        return 0;
    }

    /// The string at a position; empty outside the list.
    constexpr std::u16string_view at(std::size_t position) const noexcept {
        return position < RowCount ? rows_[position] : std::u16string_view();
    }

private:
    static_assert(RowCount <= 0xFFFF);
    static constexpr std::size_t slotCount = std::bit_ceil(2 * RowCount);
    static constexpr std::size_t mask = slotCount - 1;

    struct Slot {
        std::uint16_t id;  // 0: free
        std::uint16_t mark;
    };

    static constexpr std::size_t placeOf(std::uint64_t hash) noexcept { return static_cast<std::size_t>(hash) & mask; }
    static constexpr std::uint16_t markOf(std::uint64_t hash) noexcept {
        return static_cast<std::uint16_t>(hash >> 48);
    }

    Rows rows_;
    std::array<Slot, slotCount> slots_{};
};

}  // namespace LumCommon::detail
