#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/detail/ColorTable.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace LumCommon::detail {

namespace {

struct ColorRow {
    LumNameEnum name;
    std::uint32_t rgb;
};

constexpr ColorRow colorRows[] = {
#define LUM_COLOR(name, rgb) {NAME_##name, rgb},
#include <lumcommon/values/detail/ColorTable.inc>
#undef LUM_COLOR
};
static_assert(std::size(colorRows) == 147 + 2);
static_assert(std::ranges::adjacent_find(colorRows, std::ranges::greater_equal{}, &ColorRow::name) ==
              std::end(colorRows));

/// Whether another keyword with the same value is printed instead of this one.
constexpr bool isSecondSpelling(LumNameEnum name) noexcept {
    switch (name) {
        case NAME_aqua:
        case NAME_fuchsia:
        case NAME_darkgrey:
        case NAME_darkslategrey:
        case NAME_dimgrey:
        case NAME_grey:
        case NAME_lightgrey:
        case NAME_lightslategrey:
        case NAME_slategrey:
            return true;
        default:
            return false;
    }
}

constexpr std::size_t secondSpellings = 9;

/// The rows of the keywords that are printed, in the order of their values.
constexpr auto rowsByValue = [] {
    std::array<ColorRow, std::size(colorRows) - secondSpellings> rows{};
    std::copy_if(std::begin(colorRows), std::end(colorRows), rows.begin(),
                 [](const ColorRow& row) { return !isSecondSpelling(row.name); });
    std::ranges::sort(rows, {}, &ColorRow::rgb);
    return rows;
}();
static_assert(std::ranges::adjacent_find(rowsByValue, std::ranges::greater_equal{}, &ColorRow::rgb) ==
              std::end(rowsByValue));

}  // namespace

std::uint32_t findColor(LumNameEnum name) noexcept {
    const auto* const row = std::ranges::lower_bound(colorRows, name, {}, &ColorRow::name);
    return row != std::end(colorRows) && row->name == name ? row->rgb : LumColor::RGB_INVALID;
}

LumNameEnum findColorName(std::uint32_t rgb) noexcept {
    const auto row = std::ranges::lower_bound(rowsByValue, rgb, {}, &ColorRow::rgb);
    return row != rowsByValue.end() && row->rgb == rgb ? row->name : NAME_NULL;
}

}  // namespace LumCommon::detail
