#include <gtest/gtest.h>

#include <lumcommon/format/LumUtil.h>
#include <support/CommaLocale.h>
#include <support/Utf8.h>

#include <climits>
#include <cmath>
#include <sstream>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

constexpr unsigned either = LumUtil::QUOTE_DOUBLE | LumUtil::QUOTE_SINGLE;
constexpr unsigned doubled = LumUtil::QUOTE_SINGLE | LumUtil::QUOTE_DOUBLING;
constexpr unsigned css = LumUtil::QUOTE_CSS;

TEST(LumUtil, quotes) {
    struct Case {
        const char* fault;
        const char* text;
        unsigned mode;
        const char* quoted;
    };
    constexpr Case cases[] = {
        {"apostrophe decides", "it's", either, "\"it's\""},
        {"quotation mark ignored", "a\"b", either, "'a\"b'"},
        {"both kinds", "a\"b'", either, "\"a\"b'\""},
        {"no quotes asked", "a'b", 0, "a'b"},
        {"not doubled", "it's", doubled, "'it''s'"},
        {"doubled without quotes", "it's", LumUtil::QUOTE_DOUBLING, "it's"},
        {"backslash before a digit", "\\A", either | css, "\"\\5C A\""},
        {"space swallowed", "\n x", either | css, "\"\\A  x\""},
        {"space that is not needed", "\\x\n", either | css, "\"\\5Cx\\A\""},
        {"form feed and return", "\f\r", css, "\\C \\D"},
        {"other quote escaped", "'\"", LumUtil::QUOTE_SINGLE | css, "'\\27\"'"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(utf8(LumUtil::quoteString(UnicodeString::fromUTF8(c.text), c.mode)), c.quoted) << c.fault;
    EXPECT_EQ(utf8(LumUtil::quoteUri(u"a\"b")), "url(\"a%22b\")");
    EXPECT_EQ(utf8(LumUtil::unquoteUri(u"url( 'a.png' )")), "a.png");
}

TEST(LumUtil, unquotes) {
    struct Case {
        const char* fault;
        std::string text;
        unsigned mode;
        const char* result;
    };
    const Case cases[] = {
        {"white space around", " 'a' \n", either, "a"},
        {"wrong quote", "'a'", LumUtil::QUOTE_DOUBLE, "a"},
        {"wrong quote where escapes matter", "'a'", LumUtil::QUOTE_DOUBLE | css, "(bogus)"},
        {"no quote", "abc", either, "(bogus)"},
        {"quote inside a plain string", "'a'b'", either, "a'b"},
        {"quote inside a doubling string", "'a'b'", doubled, "(bogus)"},
        {"one quote twice used", "'", either, "(bogus)"},
        {"doubled quote", "'it''s'", doubled, "it's"},
        {"open", "'it''", doubled, "(bogus)"},
        {"empty text", "", either, "(bogus)"},
        {"empty text without quotes", "", 0, ""},
        {"escape and its space", "\\41 B", css, "AB"},
        {"seventh digit", "\\0000410", css, "A0"},
        {"escaped close", "\"a\\\"", either | css, "(bogus)"},
        {"line continuation", "\"a\\\r\nb\\\nc\"", either | css, "abc"},
        {"no character", "\\0 \\110000 \\D800 x", css, "\uFFFD\uFFFD\uFFFDx"},
        {"supplementary character", "\\1F600", css, "\U0001F600"},
        {"backslash at the end", "a\\", css, "a\\"},
        {"cut at U+0000", std::string("'a'\0", 4), either, "(bogus)"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(utf8(LumUtil::unquoteString(UnicodeString::fromUTF8(c.text), c.mode)), c.result) << c.fault;
}

TEST(LumUtil, whatIsQuotedUnquotesToItself) {
    const UnicodeString units(u"a1 '\"\\\n\r\f\t\U0001F600");
    const int count = units.length();
    for (const unsigned mode : {doubled, either | css, LumUtil::QUOTE_DOUBLE | css, LumUtil::QUOTE_SINGLE | css,
                                either | LumUtil::QUOTE_DOUBLING}) {
        for (int i = 0; i < count * count * count; ++i) {
            const char16_t content[] = {units[i % count], units[i / count % count], units[i / count / count]};
            const UnicodeString text(content, 3);
            const UnicodeString quoted = LumUtil::quoteString(text, mode);
            ASSERT_EQ(LumUtil::unquoteString(quoted, mode), text) << utf8(quoted) << " in mode " << mode;
        }
    }
}

TEST(LumUtil, parsesStringsInPlace) {
    const char16_t* const source = u"'a' b";
    const char16_t* end = nullptr;
    EXPECT_EQ(utf8(LumUtil::parseString(source, end, either)), "a");
    EXPECT_EQ(end, source + 3);
    EXPECT_EQ(utf8(LumUtil::parseString(source, end, LumUtil::QUOTE_DOUBLE)), "(bogus)");
    EXPECT_EQ(end, source);
    EXPECT_EQ(utf8(LumUtil::parseString(source, end, 0)), "'a' b");
    EXPECT_EQ(end, source + 5);
}

TEST(LumUtil, scansNumbersInEveryLocale) {
    struct Case {
        const char* fault;
        const char16_t* text;
        double value;
        int consumed;
        bool hasFraction;
    };
    constexpr Case cases[] = {
        {"sign", u" -12.5x", -12.5, 6, true},     {"plus", u"+3", 3, 2, false},
        {"leading point", u".25", 0.25, 3, true}, {"trailing point", u"3.", 3, 2, true},
        {"second point", u"1.2.3", 1.2, 3, true}, {"exponent", u"1e3", 1, 1, false},
        {"comma", u"1,5", 1, 1, false},           {"sign alone", u" - 1", 0, 0, false},
        {"point alone", u".", 0, 0, false},       {"leading zeros", u"0007", 7, 4, false},
        {"only zeros", u"000", 0, 3, false},      {"other digits", u"\u0661", 0, 0, false},
    };
    const LumTest::CommaLocale locale;
    if (!locale.isActive()) GTEST_LOG_(WARNING) << "no locale with a decimal comma, and none could be compiled";
    const char16_t* end = nullptr;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        bool hasFraction = !c.hasFraction;
        EXPECT_EQ(LumUtil::parseNumber(c.text, end, &hasFraction), c.value);
        EXPECT_EQ(end - c.text, c.consumed);
        EXPECT_EQ(hasFraction, c.hasFraction);
    }
    std::u16string digits(400, u'9');
    EXPECT_TRUE(std::isinf(LumUtil::parseNumber(digits.c_str(), end)));
    EXPECT_EQ(end, digits.c_str() + 400);
    digits = u"0." + std::u16string(400, u'0') + u"1";
    EXPECT_EQ(LumUtil::parseNumber(digits.c_str(), end), 0);
    EXPECT_EQ(*end, u'\0');
}

TEST(LumUtil, scansHexadecimalNumbers) {
    struct Case {
        const char* fault;
        const char16_t* text;
        int maxDigits;
        std::uint32_t value;
        int consumed;
    };
    constexpr Case cases[] = {
        {"both cases", u"fFg", -1, 0xFF, 2},        {"limit", u"12345", 2, 0x12, 2},
        {"no digit allowed", u"1", 0, 0, 0},        {"no digit there", u" g", -1, 0, 0},
        {"wraps", u"100000001", -1, 0xFFFFFFFF, 9}, {"leading zeros", u"0000000001", -1, 1, 10},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const char16_t* end = nullptr;
        EXPECT_EQ(LumUtil::parseHexNum(c.text, end, c.maxDigits), c.value);
        EXPECT_EQ(end - c.text, c.consumed);
    }
}

std::string decode(const UnicodeString& text, int length) {
    std::ostringstream out;
    EXPECT_TRUE(LumUtil::decodeBase64(text, length, out));
    return out.str();
}

TEST(LumUtil, writesAndReadsBase64) {
    // RFC 4648, section 10: one vector for each length of padding.
    const std::pair<const char*, const char*> vectors[] = {
        {"", ""}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}};
    for (const auto& [bytes, text] : vectors) {
        std::istringstream in(bytes);
        EXPECT_EQ(utf8(LumUtil::encodeBase64(in, 100)), text);
        EXPECT_EQ(decode(text, 100), bytes);
    }
    // Around the size of a block, with every byte value.
    for (const std::size_t size : {3071u, 3072u, 3073u, 6145u}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7);
        std::istringstream in(bytes + "rest");
        EXPECT_EQ(decode(LumUtil::encodeBase64(in, static_cast<int>(size)), INT_MAX), bytes);
        EXPECT_EQ(in.get(), 'r') << "read further than asked";
    }
    std::istringstream in("foo");
    EXPECT_EQ(utf8(LumUtil::encodeBase64(in, 3, u"text/plain", u"charset=utf-8")),
              "data:text/plain;charset=utf-8;base64,Zm9v");
    EXPECT_EQ(utf8(LumUtil::encodeBase64(in, -1, u"image/png", u"")), "data:image/png;base64,");
    for (const auto& [value, digit] : {std::pair{25u, u'Z'}, {26u, u'a'}, {52u, u'0'}, {62u, u'+'}, {63u, u'/'}})
        EXPECT_EQ(LumUtil::stEncode(value), digit);
}

TEST(LumUtil, decodesGarbageWithoutHarm) {
    struct Case {
        const char* fault;
        const char* text;
        int length;
        const char* bytes;
    };
    constexpr Case cases[] = {
        {"line ends", "Zm\r\n9v", 100, "foo"},
        {"no padding", "Zm8", 100, "fo"},
        {"text after the padding", "Zg==Zg==", 100, "f"},
        {"one digit", "Z", 100, ""},
        {"other characters", "\u00E9Z\u4E00m-9_v", 100, "foo"},
        {"length not kept to", "Zm9vYmFy", 4, "foo"},
        {"negative length", "Zm9v", -1, ""},
    };
    for (const Case& c : cases) EXPECT_EQ(decode(UnicodeString::fromUTF8(c.text), c.length), c.bytes) << c.fault;
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    EXPECT_FALSE(LumUtil::decodeBase64(u"Zm9v", 4, out));
}

}  // namespace
