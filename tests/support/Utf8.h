#pragma once

#include <lumcommon/core/Text.h>

#include <string>

namespace LumTest {

/// The text as gtest can print it; "(bogus)" for a bogus string, so that it differs from an empty one.
inline std::string utf8(const icu::UnicodeString& text) {
    std::string bytes;
    return text.isBogus() ? "(bogus)" : text.toUTF8String(bytes);
}

}  // namespace LumTest
