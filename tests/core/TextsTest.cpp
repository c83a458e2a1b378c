// Messages of errors and what core/ makes of strings.

#include <gtest/gtest.h>
#include <lumcommon/core/LumCStr.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/core/LumMessage.h>
#include <lumcommon/core/LumUUID.h>
#include <support/DataRows.h>
#include <support/ExpectError.h>
#include <support/Utf8.h>

#include <array>
#include <cstdio>
#include <numeric>
#include <set>
#include <stdexcept>

namespace {

using namespace LumCommon;
using LumTest::Fields;
using LumTest::utf8;

int integerOf(const UnicodeString& field, int base = 10) { return std::stoi(utf8(field), nullptr, base); }

/// What is thrown for the code in the first field and the other texts.
template <class Code, class... Text>
std::string thrown(LumCommonErrorSource source, const UnicodeString& code, const Text&... texts) {
    try {
        throwCommonError(static_cast<Code>(integerOf(code, 16)), source, texts...);
    } catch (const LumError& error) {
        return LumTest::describe(error);
    }
}

std::string libraryError(const Fields& f) {
    return thrown<LumErrorCodeLumLIB>(LumCommonErrorSource::NodeAppendChild, f[0], f[1], f[2]);
}

std::string fileError(const Fields& f) {
    return thrown<LumErrorCodeIO>(LumCommonErrorSource::TempFile, f[0], UnicodeString(u"f"));
}

std::string source(const Fields& fields) {
    return utf8(getCommonErrorSource(static_cast<LumCommonErrorSource>(integerOf(fields[0]))));
}

std::string position(const Fields& fields) {
    LumError error(1, u"m", u"", integerOf(fields[0]), integerOf(fields[1]), fields[2]);
    const std::string result = utf8(error.getPositionDescription()) + " ~ " + utf8(error.getMessage());
    error.setMessage(u"p: " + error.getMessage());
    EXPECT_EQ(utf8(error.message), "p: m") << "the position is doubled";
    return result;
}

std::string bytes(const Fields& fields) {
    std::string hexadecimal;
    LumCStr text(fields[0]);
    for (const char byte : text.getMBString(utf8(fields[1]).c_str())) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        hexadecimal += digits;
    }
    return hexadecimal;
}

TEST(CoreTexts, areWhatTheFileSays) {
    LumTest::checkRows("core/texts.txt",
                       {{"library", libraryError},
                        {"file", fileError},
                        {"source", source},
                        {"position", position},
                        {"bytes", bytes},
                        {"message", [](const Fields& f) { return utf8(LumMessage(f[0], f[1], f[2], f[3], f[4])); }}});
}

TEST(LumError, wrapsStandardExceptions) {
    EXPECT_EQ(LumTest::describe(LumError(std::bad_alloc(), u"X::load")), "801 Out of memory. in X::load");
    EXPECT_EQ(LumTest::describe(LumError(std::runtime_error("gone"), u"")), "802 C++ exception: gone in ");
}

TEST(LumError, appendMessageStartsALineOnlyAfterText) {
    LumError e(1, u"", u"", -1, -1, u"");
    e.appendMessage(u"");
    EXPECT_EQ(utf8(e.message), "");
    e.appendMessage(u"a");
    EXPECT_EQ(utf8(e.message), "a");
    e.appendMessage(e.message);
    EXPECT_EQ(utf8(e.message), "a\na") << "a message appended to itself";
}

TEST(LumUUID, printsItsBytesInOrder) {
    std::array<std::uint8_t, 16> bytes;
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    EXPECT_EQ(utf8(LumUUID(bytes).toString()), "000102030405060708090A0B0C0D0E0F");
    bytes.fill(0xF0);
    EXPECT_EQ(utf8(LumUUID(bytes.data()).toString()), "F0F0F0F0F0F0F0F0F0F0F0F0F0F0F0F0");
    std::set<std::string> made;
    for (int i = 0; i < 100; ++i) made.insert(utf8(LumUUID().toString()));
    EXPECT_EQ(made.size(), 100u);
}

TEST(LumCStr, keepsTheCopyUntilTextOrCodepageChange) {
    LumCStr text{UnicodeString(u"\u00E9")};
    const std::string& narrow = text.getMBString("UTF-8");
    const char* const data = narrow.data();
    EXPECT_EQ(&text.getMBString("UTF-8"), &narrow);
    EXPECT_EQ(narrow.data(), data);
    EXPECT_EQ(text.getMBString("ISO-8859-1"), "\xE9") << "the codepage is not part of the cache's key";
    text.append(u'x');
    EXPECT_EQ(text.getMBString("ISO-8859-1"), "\xE9x") << "a change of the text went unseen";
    text = u"new";
    EXPECT_EQ(text.getMBString("ISO-8859-1"), "new") << "an assigned text keeps the old copy";
    LumCStr ascii{UnicodeString(u"abc")};
    EXPECT_EQ(ascii.getMBString("UTF-16BE").size(), 6u);
    EXPECT_EQ(ascii.getMBString(), "abc") << "the platform default is taken for the last codepage";
}

}  // namespace
