#pragma once

#include <gtest/gtest.h>
#include <iconv.h>
#include <unicode/unistr.h>

#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "support/TempFolder.h"

namespace LumTest {

/// What iconv makes of some bytes.
struct IconvResult {
    std::string bytes;
    bool isComplete;  // false: the input ends inside a character
};

/// Nothing when iconv refuses a byte or a character, or does not know a charset.
inline std::optional<IconvResult> convertByIconv(const char* from, const char* to, std::string_view bytes) {
    const iconv_t handle = iconv_open(to, from);
    if (handle == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
    IconvResult result{std::string(8 * bytes.size() + 64, '\0'), true};
    std::string input(bytes);
    char* in = input.data();
    char* out = result.bytes.data();
    std::size_t inLeft = input.size(), outLeft = result.bytes.size();
    bool isGood = iconv(handle, &in, &inLeft, &out, &outLeft) != static_cast<std::size_t>(-1);
    if (!isGood && errno == EINVAL) {
        isGood = true;
        result.isComplete = false;
    }
    if (isGood && result.isComplete) iconv(handle, nullptr, nullptr, &out, &outLeft);
    iconv_close(handle);
    result.bytes.resize(result.bytes.size() - outLeft);
    return isGood ? std::optional(result) : std::nullopt;
}

inline std::string readTestFile(const std::string& name) { return readFile(LUM_TEST_DATA "/" + name); }

/// One text in a legacy charset and in UTF-16; iconv made the bytes.
struct Twins {
    std::string bytes;
    std::u16string units;
};

/// The text of a UTF-8 file in a charset. Characters that the charset lacks are left out of both twins.
inline Twins makeTwins(const std::string& file, const char* iconvName) {
    const icu::UnicodeString all = icu::UnicodeString::fromUTF8(readTestFile(file));
    std::map<UChar32, bool> isKnown;
    icu::UnicodeString kept;
    for (int i = 0; i < all.length(); i = all.moveIndex32(i, 1)) {
        const UChar32 character = all.char32At(i);
        if (!isKnown.contains(character)) {
            std::string one;
            icu::UnicodeString(character).toUTF8String(one);
            isKnown[character] = convertByIconv("UTF-8", iconvName, one).has_value();
        }
        if (isKnown[character]) kept.append(character);
    }
    std::string utf8;
    kept.toUTF8String(utf8);
    const std::optional<IconvResult> legacy = convertByIconv("UTF-8", iconvName, utf8);
    EXPECT_TRUE(legacy.has_value()) << iconvName;
    EXPECT_GT(kept.length(), all.length() * 9 / 10) << "the charset does not fit the language";
    return {legacy ? legacy->bytes : std::string(),
            std::u16string(kept.getBuffer(), static_cast<std::size_t>(kept.length()))};
}

inline std::u16string toUnits(std::string_view bytes) {
    EXPECT_EQ(bytes.size() % 2, 0u) << "half a unit";
    std::u16string units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * 2);
    return units;
}

inline std::string_view asBytes(const std::u16string& units) {
    return {reinterpret_cast<const char*>(units.data()), units.size() * 2};
}

}  // namespace LumTest
