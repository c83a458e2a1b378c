#pragma once

#include <lumcommon/core/Text.h>

#include <string_view>

namespace LumCommon::detail {

/// The units of `text`; empty for a bogus string. Valid until `text` changes.
inline std::u16string_view viewOf(const UnicodeString& text) noexcept {
    return text.isEmpty() ? std::u16string_view()
                          : std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

inline UnicodeString& append(UnicodeString& to, std::u16string_view text) {
    return to.append(text.data(), static_cast<int32_t>(text.size()));
}

inline UnicodeString textOf(std::u16string_view text) {
    return UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

}  // namespace LumCommon::detail
