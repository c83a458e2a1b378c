#pragma once

#include <lumcommon/core/Text.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>

namespace LumCommon::detail {

/// A row of a message table; tables are sorted by code. In `text`, {0} to {9} stand for the arguments.
struct ErrorRow {
    std::uint16_t code;
    std::u16string_view text;
};

constexpr bool isInOrder(std::span<const ErrorRow> rows) noexcept {
    return std::ranges::adjacent_find(rows, std::ranges::greater_equal{}, &ErrorRow::code) == rows.end();
}

/// The text of a code; a view with a null data() when the table does not contain it.
std::u16string_view findErrorText(std::span<const ErrorRow> rows, std::uint16_t code) noexcept;

/// Replaces the placeholders in one pass, so that a "{" inside an argument is not mistaken for one; a placeholder
/// without an argument becomes empty. Unlike in a LumMessage, quotes are ordinary characters.
UnicodeString fillErrorText(std::u16string_view text, std::initializer_list<std::u16string_view> arguments);

}  // namespace LumCommon::detail
