#include <gtest/gtest.h>

#include <lumcommon/lang/LumScript.h>
#include <support/Utf8.h>

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

TEST(LumScript, comesFromCodesKeywordsAndTags) {
    struct Case {
        const char* fault;
        std::u16string text;
        int code;
        const char* name;
        const char* letter;
    };
    const Case cases[] = {
        {"ICU's code for Japanese", u"Jpan", LumScript::JAPANESE, "Jpan", "\u3042"},
        {"keyword auto", u"auto", LumScript::AUTO, "", "A"},
        {"empty text", u"", LumScript::AUTO, "", "A"},
        {"keyword in capitals", u"NONE", LumScript::UNKNOWN, "", "A"},
        {"Japanese with a country", u"ja-JP", LumScript::JAPANESE, "Jpan", "\u3042"},
        {"Korean", u"ko", LumScript::KOREAN, "Hang", "\uAC00"},
        {"not lower-cased", u"ZH-TW", 74, "Hant", "\u4E9C"},
        {"Hong Kong", u"zh-hk", 74, "Hant", "\u4E9C"},
        {"Taiwan and more", u"zh-TW-x", 73, "Hans", "\u4E9C"},
        {"Singapore", u"zh-SG", 73, "Hans", "\u4E9C"},
        {"underscore taken for a hyphen", u"zh_TW", 17, "Hani", "\u4E9C"},
        {"longer code taken for Chinese", u"zhx", USCRIPT_NUSHU, "Nshu", "A"},
        {"Inherited under its new name", u"Zinh", 1, "Qaai", "A"},
        {"ICU's long name", u"Old Italic", USCRIPT_OLD_ITALIC, "Ital", "A"},
        {"script of a language", u"ru", 8, "Cyrl", "\u0410"},
        {"no script", u"hello", LumScript::UNKNOWN, "", "A"},
        {"character beyond ASCII", u"Latn\u00E9", LumScript::UNKNOWN, "", "A"},
        {"cut at a zero", std::u16string(u"Latn\0", 5), LumScript::UNKNOWN, "", "A"},
        {"mixed kana", u"Hrkt", 54, "Hrkt", "\u3042"},
        {"letter", u"Hira", 20, "Hira", "\u3042"},
        {"letter", u"Kana", 22, "Kana", "\u30A2"},
        {"letter", u"Hang", 18, "Hang", "\uAC00"},
        {"letter", u"Arab", 2, "Arab", "\u0627"},
        {"letter", u"Deva", 10, "Deva", "\u0905"},
        {"letter", u"Grek", 14, "Grek", "\u0391"},
        {"letter", u"Hebr", 19, "Hebr", "\u05D0"},
        {"letter", u"Thai", 38, "Thai", "\u0E01"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(utf8(c.text.c_str()) + ": " + c.fault);
        const UnicodeString text(c.text.data(), static_cast<int>(c.text.size()));
        const LumScript script(text);
        EXPECT_EQ(script.getCode(), c.code);
        EXPECT_EQ(utf8(script.getScriptCode().getString()), c.name);
        EXPECT_EQ(utf8(script.getA()), c.letter);
        EXPECT_EQ(LumScript(LumName(text)), script);
    }
    EXPECT_EQ(LumScript(), LumScript::UNKNOWN);
    EXPECT_EQ(LumScript(UnicodeString(std::string(1 << 20, 'z').c_str())), LumScript::UNKNOWN);
}

TEST(LumScript, namesEveryCodeOfIcu) {
    const int end = u_getIntPropertyMaxValue(UCHAR_SCRIPT) + 1;
    EXPECT_GT(end, 150);
    for (int code = 0; code < end; ++code) {
        const std::string name = utf8(LumScript(code).getScriptCode().getString());
        EXPECT_EQ(name, code == LumScript::INHERITED ? "Qaai" : uscript_getShortName(UScriptCode(code)));
        EXPECT_EQ(LumScript(UnicodeString::fromUTF8(name)).getCode(), name == "Jpan" ? -8 : code);
    }
    for (const int code : {-100, -9, -7, -5, -3, -2, -1, end + 1000, INT32_MAX, INT32_MIN}) {
        EXPECT_TRUE(LumScript(code).getScriptCode().isNull()) << code;
        EXPECT_EQ(utf8(LumScript(code).getA()), "A") << code;
    }
}

TEST(LumScript, everyCharacterHasIcusScriptButForOurBlocks) {
    struct Range {
        UChar32 first, last;
        LumScript script;
    };
    // A block counts as a whole, with what Unicode has not assigned or calls common or inherited; its digits, which
    // several scripts use, are ICU's matter. The signs of Latin-1 stand in Latin text.
    constexpr Range ours[] = {
        {0x00A2, 0x00A5, LumScript::LATIN},      {0x00A7, 0x00AA, LumScript::LATIN},
        {0x00AE, 0x00AF, LumScript::LATIN},      {0x00B4, 0x00B5, LumScript::LATIN},
        {0x00B8, 0x00B8, LumScript::LATIN},      {0x00BA, 0x00BA, LumScript::LATIN},
        {0x0590, 0x05FF, LumScript::HEBREW},     {0x0600, 0x065F, LumScript::ARABIC},
        {0x066A, 0x06EF, LumScript::ARABIC},     {0x06FA, 0x06FF, LumScript::ARABIC},
        {0x0900, 0x097F, LumScript::DEVANAGARI},
    };
    const Range* range = std::begin(ours);
    for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
        while (range != std::end(ours) && c > range->last) ++range;
        UErrorCode error = U_ZERO_ERROR;
        const bool isOurs = range != std::end(ours) && c >= range->first;
        const int expected = isOurs ? range->script : static_cast<int>(uscript_getScript(c, &error));
        ASSERT_EQ(LumScript::getScript(c), expected) << std::hex << c;
    }
    for (const UChar32 c : {-1, INT32_MIN, 0x110000, INT32_MAX})
        EXPECT_EQ(LumScript::getScript(c), LumScript::UNKNOWN) << c;
}

TEST(LumScript, ofATextIsThatOfItsFirstCharacterWithOne) {
    struct Case {
        const char* fault;
        std::u16string text;
        int code;
    };
    const Case cases[] = {
        {"digits and spaces", u" 12 (3)", 0},
        {"common characters skipped", u"1. \u0416a", 8},
        {"last character left out", u"12a", 25},
        {"surrogate pair as two characters", u"\U00010330a", USCRIPT_GOTHIC},
        {"pair of a common character", u"\U0001F600\u0E01", 38},
        {"inherited counts", u"\u0301a", 1},
        {"lone surrogate at the end", u"1\xD800", USCRIPT_UNKNOWN},
        {"kana before Han", u"\u3042\u65E5", 20},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(LumScript::getScriptFromText(UnicodeString(c.text.data(), int(c.text.size()))).getCode(), c.code);
    }
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_EQ(LumScript::getScriptFromText(bogus), LumScript::COMMON);
    EXPECT_EQ(LumScript(bogus), LumScript::AUTO);
}

}  // namespace
