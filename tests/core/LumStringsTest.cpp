#include <gtest/gtest.h>
#include <lumcommon/core/LumCStr.h>
#include <lumcommon/core/LumMessage.h>
#include <lumcommon/core/LumUUID.h>
#include <support/Utf8.h>

#include <numeric>
#include <set>

namespace {

using namespace LumCommon;
using LumTest::utf8;

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

TEST(LumCStr, convertsToTheAskedCodepage) {
    struct Case {
        const char* fault;
        const char16_t* text;
        const char* codepage;
        std::string bytes;
    };
    const Case cases[] = {
        {"single bytes expected for each unit", u"\u00E9\u65E5\U0001F600", "UTF-8",
         "\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80"},
        {"always UTF-8", u"\u00E9", "ISO-8859-1", "\xE9"},
        {"last byte lost to a terminator", u"\u65E5\u672C", "Shift_JIS", "\x93\xFA\x96\x7B"},
        {"character that the codepage lacks dropped", u"a\u65E5b", "US-ASCII",
         "a\x1A"
         "b"},
        {"unknown codepage not refused", u"abc", "no-such-codepage", ""},
        {"empty text", u"", "UTF-8", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        LumCStr text{UnicodeString(c.text)};
        EXPECT_EQ(text.getMBString(c.codepage), c.bytes);
    }
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

TEST(LumMessage, fillsPlaceholdersOnce) {
    EXPECT_EQ(utf8(LumMessage(u"{0}-{1}-{2}-{3}", u"a", u"{0}", u"", u"d")), "a-{0}--d");
    EXPECT_EQ(utf8(LumMessage(u"{1} {0}", u"a", u"b")), "b a");
    EXPECT_EQ(utf8(LumMessage(u"broken {0", u"a")), "");
}

}  // namespace
