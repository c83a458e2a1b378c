#pragma once

#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace LumTest {

/// The text as gtest can print it; "(bogus)" for a bogus string, so that it differs from an empty one.
inline std::string utf8(const icu::UnicodeString& text) {
    if (text.isBogus()) return "(bogus)";
    // Of ICU's own form, long texts need memory, and are lost without it.
    std::string bytes(3 * static_cast<std::size_t>(text.length()), '\0');
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t size = 0;
    u_strToUTF8WithSub(bytes.data(), static_cast<std::int32_t>(bytes.size()), &size, text.getBuffer(), text.length(),
                       0xFFFD, nullptr, &status);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

/// A string that only refers to the literal: making it needs no memory, a copy of it does.
inline icu::UnicodeString operator""_text(const char16_t* units, std::size_t length) {
    return icu::UnicodeString(false, units, static_cast<std::int32_t>(length));
}

}  // namespace LumTest
