#pragma once

#include <lumcommon/core/Text.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>

namespace LumCommon::detail {

/// A row of a table of messages, which is in the order of the codes. In `text`, {0} to {9} stand for the arguments.
struct ErrorRow {
    std::uint16_t code;
    std::u16string_view text;
};

constexpr bool isInOrder(std::span<const ErrorRow> rows) noexcept {
    return std::ranges::adjacent_find(rows, std::ranges::greater_equal{}, &ErrorRow::code) == rows.end();
}

/// The text of a code; a view with a null data() when the table has none.
std::u16string_view findErrorText(std::span<const ErrorRow> rows, std::uint16_t code) noexcept;

/// Replaces the placeholders in one pass, so that a "{" inside an argument is not taken for one; a placeholder without
/// argument becomes empty. Unlike in a LumMessage, quotes are plain characters.
UnicodeString fillErrorText(std::u16string_view text, std::initializer_list<std::u16string_view> arguments);

}  // namespace LumCommon::detail
