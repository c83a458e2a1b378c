#include <gtest/gtest.h>

#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/XlsFormatString.h>
#include <support/CommaLocale.h>
#include <support/Utf8.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

constexpr double infinity = std::numeric_limits<double>::infinity();

/// What the table of pairs cannot say: how a cell fails, and which section and colour it has.
TEST(XlsFormat, saysWhichSectionWasUsed) {
    struct Case {
        const char* fault;
        const char16_t* code;
        double value;
        const char* text;
        int section;
        int color;
    };
    const Case cases[] = {
        {"not a number has a section", u"0;0;0", std::nan(""), "#NUM!", -1, -1},
        {"infinity is formatted", u"[Red]0.00", infinity, "#NUM!", -1, -1},
        {"first of two without its condition takes all", u"0;[>2]0.0", -3, "", -1, -1},
        {"second of two takes what is not negative", u"0;[>2]0.0", 3, "3", 0, -1},
        {"colour of a cell that fails", u"[Red]yyyy", -1, "", -3, -1},
        {"date beyond the last", u"yyyy", 2958466, "", -3, -1},
        {"midnight behind the last day", u"yyyy hh", 2958465.9999999, "", -3, -1},
        {"date whose time is not shown goes on to the next day", u"d", 1.9999999, "1", 0, -1},
        {"huge serial", u"[h]", 1e300, "", -3, -1},
        {"colour of another section", u"0;[Blue]0;[Color10]0", 0, "0", 2, 0x008000},
        {"second colour wins", u"[Blue][Red]0", 1, "1", 0, 0x0000FF},
        {"palette is counted from 0", u"[Color56]0", 1, "1", 0, 0x333333},
        {"colour beyond the palette", u"[Color57]0", 1, "1", 0, -1},
        {"colour with more digits than an integer", u"[Color99999999999]0", 1, "1", 0, -1},
        {"text section takes numbers", u"\"t\"@;0", 5, "5", 1, -1},
        {"code for texts alone", u"\"<\"@\">\"", -2.5, "<-2.5>", 0, -1},
        {"fifth section", u"0;0;0;@;\"x\"", -1, "1", 1, -1},
        {"unknown bracket is shown", u"[NatNum1][x]0", 1, "1", 0, -1},
        {"bracket without end", u"0[x", 12, "12[x", 0, -1},
        {"quote without end", u"0\";0", 12, "12;0", 0, -1},
        {"skip and fill at the end", u"0_", 1, "1", 0, -1},
        {"sign of a section with nothing in it", u"", -5, "", 0, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const XlsFormat::Result result = XlsFormat(c.code).format(c.value);
        EXPECT_EQ(utf8(result.text), c.text);
        EXPECT_EQ(result.section, c.section);
        EXPECT_EQ(result.color, c.color);
    }
}

TEST(XlsFormat, readsWhatCodesLeaveOpen) {
    struct Case {
        const char* fault;
        const char16_t* code;
        double value;
        const char* text;
    };
    constexpr Case cases[] = {
        {"minutes after AM/PM", u"h AM/PM:mm", 0.53125, "12 PM:45"},
        {"a second month after minutes", u"h:mm m", 0.53125, "12:45 1"},
        {"seconds make minutes of a name", u"mmm ss", 0.5, "Jan 00"},
        {"elapsed seconds leave a month", u"m [s]", 0.0625, "30 5400"},
        {"fourth decimal of seconds", u"s.0000", 1.5 / 86400, "1.5000"},
        {"fields with other decimals", u"s.0 s.000", 1.26 / 86400, "1.2 1.260"},
        {"point that follows no second", u"h.00", 0.5, "12.00"},
        {"placeholder in a date", u"0#?%yy", 1, "0#?%00"},
        {"letters of either case are two fields", u"YyYy", 1, "1900"},
        {"era without a tag", u"ge.m.d", 32516, "H1.1.8"},
        {"year of an era in another section", u"[$-411]0;e", -32516, "1"},
        {"rr", u"rr", 32515,
         "\xE6\x98\xAD\xE5\x92\x8C"
         "64"},
        {"language of a tag is not a number", u"[$-ja-JP-x-gannen]e", 32516, "1"},
        {"exponent without placeholders", u"0E+", 12345, "1E+04"},
        {"exponent before any placeholder", u"E+0", 5, "E+5"},
        {"second exponent", u"0E+0E+0", 5, "5E+0E+0"},
        {"mantissa without integer", u".00E+0", 12345, ".12E+05"},
        {"second point", u"0.0.0", 1.25, "1.2.5"},
        {"comma before any placeholder", u",0", 1234, ",1234"},
        {"comma among the decimals", u"0.0,0", 1234.56, "1,234.56"},
        {"denominator that ends the number", u"# ?/?x#", 0.5, " 1/2x#"},
        {"commas behind a fraction do not scale", u"# ?/?#,,#", 1500000, "1 1/2 #"},
        {"denominator beyond nine digits", u"?/99999999999", 1, "999999999/999999999"},
        {"spaces around the bar", u"# ?  /  ?", 1.5, "1 1  /  2"},
        {"other literals around the bar", u"#\\:#=/=#", 1.5, "1:1=/=2"},
        {"skips and digits around the bar", u"# ?_)1/\"x\"4", 1.5, "1 2 1/x4"},
        {"comma between mantissa and exponent", u"#,E+0", 12345, "1E+04"},
        {"six places of a denominator", u"# ?\?\?\?\?\?/?\?\?\?\?\?", 1 / 123457.0, "      1/123457"},
        {"bar behind a point", u"0.0/0", 1.25, "1.2/5"},
        {"no fraction with zeros for it", u"# 0/0", 3, "3 0/1"},
        {"improper fraction of zero", u"?/?", 0, "0/1"},
        {"numerator larger than any integer", u"?/?", 1e25, "10000000000000000000000000/1"},
        {"literal one among placeholders", u"0 1 0", 12, "1 1 2"},
        {"largest double in percent", u"0E+0%", 1.7976931348623157e308, "2E+310%"},
        {"surrogates skipped by halves",
         u"_\xD83D\xDE00"
         u"0",
         1, " 1"},
        {"numerals for a large number", u"[DBNum1]General", 2000300000000.0,
         "\xE4\xBA\x8C\xE5\x85\x86\xE4\xB8\x89\xE5\x84\x84"},
        {"decimals of numerals", u"[DBNum1]General", 10.25, "\xE5\x8D\x81.\xE4\xBA\x8C\xE4\xBA\x94"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(utf8(XlsFormat(c.code).format(c.value).text), c.text);
    }
}

TEST(XlsFormat, givesTheSameIntoAUsedResult) {
    const XlsFormat format(u"[Red]0.0;0");
    XlsFormat::Result result;
    format.format(1.25, result);
    format.format(std::nan(""), result);
    EXPECT_EQ(result.color, XlsFormat::NO_COLOR);
    format.format(u"abc", result);
    EXPECT_EQ(utf8(result.text), "abc");
    format.format(-7.0, result);
    EXPECT_EQ(utf8(result.text), "7");
    EXPECT_EQ(utf8(XlsFormat().format(0.5).text), "0.5");
}

TEST(XlsFormat, takesCellsAndTypedValues) {
    EXPECT_EQ(utf8(XlsFormat(u"0.0").format(CELLV(u"x")).text), "x");
    EXPECT_EQ(utf8(XlsFormat(u"0.0").format(CELLV(LumValue(7))).text), "7.0");
    // The float next to 0.1 is 0.100000001490116...
    EXPECT_EQ(utf8(XlsFormat().format(CELLV(LumValue(0.1f, UNIT_PT))).text), "0.1");
    EXPECT_EQ(utf8(XlsFormat(u"0;0;0;<General>").format(u"a").text), "<a>");
    EXPECT_EQ(utf8(XlsFormat(u"<@>").format(CELLV(LumValue(UnicodeString(u"a")))).text), "<a>");
}

TEST(XlsFormat, doesNotFollowTheLocale) {
    const LumTest::CommaLocale locale;
    if (!locale.isActive()) GTEST_SKIP() << "no locale with a decimal comma, and none could be compiled";
    EXPECT_EQ(utf8(XlsFormat(u"[>1.5]#,##0.00").format(1234.5).text), "1,234.50");
    EXPECT_EQ(utf8(XlsFormat(u"# ?/?").format(0.25).text), " 1/4");
    EXPECT_EQ(XlsFormatString::convDblStr(0.1), "0.1");
}

/// The same repeated so often would take hours if any step looked back at what it has read.
TEST(XlsFormat, takesLongCodes) {
    constexpr const char16_t* pieces[] = {
        u"0",   u"#",       u"?",   u"1",     u",",        u".",       u"%",    u"/",    u"@",   u";",
        u"[",   u"]",       u"\"",  u"\\",    u"_",        u"*",       u"E+",   u"e",    u"g",   u"r",
        u"m",   u"ms",      u"h:m", u"A/P",   u"[h]",      u"[a",      u"0,",   u"?/",   u"?/9", u"[>1",
        u"[$-", u"[$-411]", u"s.0", u"[Red]", u"[DBNum1]", u"General", u"x\\;", u"0.0,",
    };
    for (const char16_t* piece : pieces) {
        SCOPED_TRACE(utf8(piece));
        UnicodeString code;
        while (code.length() < 300'000) code.append(piece, -1);
        const XlsFormat format(code);
        for (const double value : {1234.5678, -0.001, 1.7976931348623157e308}) {
            EXPECT_LE(format.format(value).text.length(), 16 * code.length());
        }
        EXPECT_LE(format.format(u"ab").text.length(), 2 * code.length());
    }
}

TEST(XlsFormat, repeatsTextsUpToTheLimit) {
    const UnicodeString text(1 << 17, u'x', 1 << 17);
    constexpr int most = XlsFormat::MAX_REPEATED_UNITS / (1 << 17) + 1;  // the last one exceeds it
    for (const int more : {-1, 0, 1, 10'000}) {
        const UnicodeString code(most + more, u'@', most + more);
        EXPECT_EQ(XlsFormat(code).format(text).text.length(), text.length() * (most + std::min(more, 0))) << more;
    }
}

TEST(XlsFormat, readsCodesUpToTheLimit) {
    for (const int more : {-1, 0, 1}) {
        const UnicodeString code(XlsFormat::MAX_CODE_UNITS + more, u'0', XlsFormat::MAX_CODE_UNITS + more);
        EXPECT_EQ(XlsFormat(code).format(1).text.length(), XlsFormat::MAX_CODE_UNITS + std::min(more, 0));
    }
}

}  // namespace
