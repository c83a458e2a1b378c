// What format/ does when memory runs out.

#include <support/FailingMemory.h>

namespace {

using namespace LumCommon;
using LumTest::utf8;
using LumTest::operator""_text;

const UnicodeString longText =
    u"words 'and more' words than the string object has room for, and 12345678901234567890123"_text;

TEST(FormatMemory, failsAloud) {
    const LumTest::MemoryRow<> rows[] = {
        {"the number lacks its prefix, its suffix or its groups",
         [](auto&) {
             return utf8(LumUtil::formatNumber(1234567,
                                               u"a prefix that the string object has no room for 1 and the suffix"_text,
                                               u","_text, 3)) +
                    utf8(LumUtil::formatNumber(2147483647, u"00000000000000000000000000001"_text, u" - "_text, 1)) +
                    utf8(LumUtil::formatNumber(39999, u"(((((((((((((((((((((((I)))))))))))))"_text, {}, 0)) +
                    utf8(LumUtil::formatNumber(1234567, u"\u05D0"_text, {}, 0)) +
                    utf8(LumUtil::formatNumber(999, u"i"_text, {}, 0)) +
                    utf8(LumUtil::formatNumber(702, u"a)"_text, {}, 0, LumLang(u"ru"_text), NAME_NULL)) +
                    utf8(LumUtil::makeGrouping(u"12345678901234567890"_text, u"::"_text, 2));
         }},
        {"the quoted or encoded text is cut",
         [](auto&) {
             const UnicodeString quoted = LumUtil::quoteString(u"a \"text\" of many words and of\n two lines"_text,
                                                               LumUtil::QUOTE_DOUBLE | LumUtil::QUOTE_CSS);
             const UnicodeString doubled =
                 LumUtil::quoteString(longText, LumUtil::QUOTE_SINGLE | LumUtil::QUOTE_DOUBLING);
             std::istringstream bytes(std::string(5000, 'b'));
             const UnicodeString uri =
                 LumUtil::encodeBase64(bytes, 5000, u"text/plain"_text, u"charset=a-charset-of-a-long-name"_text);
             return utf8(quoted) + utf8(LumUtil::unquoteString(quoted, LumUtil::QUOTE_DOUBLE | LumUtil::QUOTE_CSS)) +
                    utf8(doubled) +
                    utf8(LumUtil::unquoteString(u"  'a 'quoted' text that is too long for the object'"_text,
                                                LumUtil::QUOTE_SINGLE)) +
                    utf8(LumUtil::quoteUri(longText)) +
                    utf8(LumUtil::unquoteUri(u"url('http://host/a/long/p%61th')"_text)) + utf8(uri);
         }},
        {"the kanji are cut",
         [](auto&) {
             return utf8(Kansuji().convert(longText, Kansuji::STYLE_READABLE)) +
                    utf8(LumUtil::convertKansuji(1234567890, NAME_grouping, NAME_kanji, longText, {})) +
                    utf8(XlsFormatString::sethanzenNumS(longText, 1));
         }},
        {"the code of a cell lacks a section or a literal",
         [](auto&) {
             const XlsFormat format(
                 u"[Red][>=100]\"a literal of more words than the string has room for \"0.00;[$-411]ggge;"
                 u"[DBNum1]# ?/?\" and another one\";@\" a text that comes after the text \""_text);
             std::string told;
             for (const FMT& section : format.getSections().sections)
                 told += utf8(section.literals) + utf8(section.text);
             for (const double value : {123456.789, 5.0, -3.25}) told += utf8(format.format(value).text);
             told += utf8(format.format(longText).text) + utf8(format.format(CELLV(LumValue(longText))).text);
             told += utf8(XlsFormat(u"0"_text).format(longText).text) +
                     utf8(XlsFormatString::FormatString(u"yyyy-mm-dd hh:mm:ss.000 \"the end of it\""_text, 40000.5));
             UnicodeString filled;
             int color = 0;
             const auto fits = [](void*, const UnicodeString& text, LumLength, int, int) { return text.length() < 60; };
             XlsFormatString::fmtnum(CELLV(LumValue(1)), 1, u"\"a column\"* 0"_text, filled, color, fits,
                                     LumLength(1, UNIT_PT));
             return told + utf8(filled);
         }},
    };
    LumTest::forEveryFailure(rows);
}

}  // namespace
