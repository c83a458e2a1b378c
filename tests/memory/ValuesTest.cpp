// What values/ does when memory runs out.

#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>
#include <support/FailingMemory.h>
#include <support/Utf8.h>

namespace {

using namespace LumCommon;
using LumTest::utf8;
using LumTest::operator""_text;

const UnicodeString longText = u"words that need more memory than the string object has inside it"_text;

std::string tell(const LumValue& value) {
    return utf8(value.toString()) + "|" + std::to_string(value.getTypeWord() & 0xFF);
}

TEST(ValuesMemory, failsAloud) {
    const LumTest::MemoryRow rows[] = {
        {"a string value is empty",
         [] {
             const LumValue value(longText), copy(value);
             LumValue assigned(1);
             assigned = copy;
             return tell(assigned) + tell(value + LumValue(2)) + (value == copy ? "=" : "!");
         }},
        {"a parsed value is another one",
         [] {
             return tell(LumValue::parse(u"'quoted text that is too long for the string object'"_text)) +
                    tell(LumValue::parse(u"an-identifier-that-is-too-long-for-the-string-object"_text)) +
                    tell(LumValue::parseNonNumeric(longText)) + tell(LumValue::parseColor(longText));
         }},
        {"an item of a compound is lost",
         [] {
             LumValue value(longText), inner(u"x"_text);
             inner.setNamedItem(LumName(u"within"_text), longText);
             value.setNamedItem(LumName(u"a-name-of-an-item-that-is-too-long-for-the-object"_text), inner);
             value.setNamedItem(NAME_page, LumValue(3));
             value.getNamedValueMap()->removeNamedItem(NAME_page);
             const LumPtr<LumNamedValueMap> map = value.getNamedValueMap()->clone();
             return tell(value) + tell(LumValue(map.get()));
         }},
        {"a colour has no name, or no space",
         [] {
             const LumColor spot(LumColor(1, 2, 3), longText, 0.5f, 0.1f, 0.2f, 0.3f, 0.4f);
             const LumColor profile(spot, longText, 1, 0, 1, 0);
             const LumColor copy(profile);
             return tell(spot) + utf8(spot.toString()) + utf8(copy.toString(true)) + tell(LumValue(copy)) +
                    utf8(LumValue(spot).getColorValue().toString()) +
                    tell(LumValue::parseColor(
                        u"rgb-icc(1, 2, 3, #Separation, 'an ink of many long words', .5, 1, 0, 0, .1)"_text, true)) +
                    utf8(LumColor(LumValue(u"LightGoldenRodYellow"_text)).toString());
         }},
        {"a link lacks a part",
         [] {
             const UnicodeString link =
                 u"http://host/a/long/path.pdf#nameddest=a-destination-with-a-long-name&page=3&zoom=150,1,2"_text;
             return tell(LumValue::parsePDFOpenParameters(link)) + tell(LumValue::parseXlinkHref(link)) +
                    tell(LumValue::parseInternalDestination(u" a destination of several words # page=2 "_text, 0)) +
                    tell(LumValue::parseInternalDestination(u"#view=fith,100&viewrect=1,2,3,4&nameddest=x"_text, 0)) +
                    tell(LumValue::parseDestinationType(u"xyz-left-top 150% 1cm 2.5in"_text)) +
                    tell(LumValue::parseExcelOpenParameters(u"a.xls#sheet=3&chart=4"_text)) +
                    tell(LumValue::parseUriFragmentParameters(
                        u"http://host/a/long/path#A%20Long%20Key%20With%20Escapes=and a value%21"_text, true));
         }},
        {"a token is cut",
         [] {
             LumTokenizer tokens(
                 u"name 'a quoted text that is long enough to need memory' f(a long group (of) parentheses, 1) "
                 u"url('http://host/a/long/path/of/a/file') rgb(1,2,3) -1.5e2 12suffix-that-is-no-unit-at-all-x"_text);
             std::string told;
             for (;;) {
                 const LumValue value = tokens.nextTokenValueFunc();
                 if (tokens.getKind() == LumTokenizer::TOKEN_END) break;
                 told += tell(value) + utf8(tokens.getText());
             }
             LumTokenizer items(u"an item of words, 'with a quoted' part,  x\0y"_text);
             for (int i = 0; i < 4; ++i) told += utf8(items.nextSeparatedValue(u',')) + "/";
             return told;
         }},
    };
    LumTest::forEveryFailure(rows);
}

}  // namespace
