#pragma once

#include <lumcommon/core/detail/CheckedText.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace LumTest {

/// The text as gtest can print it; "(bogus)" for a bogus string, so that it differs from an empty one.
inline std::string utf8(const icu::UnicodeString& text) {
    return text.isBogus() ? "(bogus)" : LumCommon::detail::utf8Of(text);
}

/// A string that only refers to the literal: making it needs no memory, a copy of it does.
inline icu::UnicodeString operator""_text(const char16_t* units, std::size_t length) {
    return icu::UnicodeString(false, units, static_cast<std::int32_t>(length));
}

}  // namespace LumTest
