#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/ErrorText.h>

#include <algorithm>
#include <cstddef>

namespace LumCommon::detail {

std::u16string_view findErrorText(std::span<const ErrorRow> rows, std::uint16_t code) noexcept {
    const auto row = std::ranges::lower_bound(rows, code, {}, &ErrorRow::code);
    return row != rows.end() && row->code == code ? row->text : std::u16string_view();
}

UnicodeString fillErrorText(std::u16string_view text, std::initializer_list<std::u16string_view> arguments) {
    UnicodeString result;
    for (std::size_t brace; (brace = text.find(u'{')) != text.npos; text.remove_prefix(brace + 3)) {
        append(result, text.substr(0, brace));
        const auto index = static_cast<std::size_t>(text[brace + 1] - u'0');
        if (index < arguments.size()) append(result, arguments.begin()[index]);
    }
    return append(result, text);
}

}  // namespace LumCommon::detail
