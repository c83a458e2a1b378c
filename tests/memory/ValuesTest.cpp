// What values/ does when memory runs out.

#include <support/FailingMemory.h>

namespace {

using namespace LumCommon;
using LumTest::Fields;
using LumTest::utf8;
using LumTest::operator""_text;

const UnicodeString longText = u"words that need more memory than the string object has inside it"_text;

std::string tell(const LumValue& value) {
    return utf8(value.toString()) + "|" + std::to_string(value.getTypeWord() & 0xFF);
}

TEST(ValuesMemory, valuesFailAloud) {
    const LumTest::MemoryRow<> rows[] = {
        {"a string value is empty",
         [](auto&) {
             const LumValue value(longText), copy(value);
             LumValue assigned(1);
             assigned = copy;
             return tell(assigned) + tell(value + LumValue(2)) + (value == copy ? "=" : "!");
         }},
        {"an item of a compound is lost",
         [](auto&) {
             LumValue value(longText), inner(u"x"_text);
             inner.setNamedItem(LumName(u"within"_text), longText);
             value.setNamedItem(LumName(u"a-name-of-an-item-that-is-too-long-for-the-object"_text), inner);
             value.setNamedItem(NAME_page, LumValue(3));
             value.getNamedValueMap()->removeNamedItem(NAME_page);
             const LumPtr<LumNamedValueMap> map = value.getNamedValueMap()->clone();
             return tell(value) + tell(LumValue(map.get()));
         }},
        {"a colour has no name, or no space",
         [](auto&) {
             const LumColor spot(LumColor(1, 2, 3), longText, 0.5f, 0.1f, 0.2f, 0.3f, 0.4f);
             const LumColor profile(spot, longText, 1, 0, 1, 0);
             const LumColor copy(profile);
             return tell(spot) + utf8(spot.toString()) + utf8(copy.toString(true)) + tell(LumValue(copy)) +
                    utf8(LumValue(spot).getColorValue().toString()) +
                    utf8(LumColor(LumValue(u"LightGoldenRodYellow"_text)).toString());
         }},
    };
    LumTest::forEveryFailure(rows);
}

TEST(ValuesMemory, readingsFailAloud) {
    const LumTest::Operations operations = {
        {"parse", [](const Fields& given) { return tell(LumValue::parse(given[0])); }},
        {"non-numeric", [](const Fields& given) { return tell(LumValue::parseNonNumeric(given[0])); }},
        {"colour", [](const Fields& given) { return tell(LumValue::parseColor(given[0])); }},
        {"profile", [](const Fields& given) { return tell(LumValue::parseColor(given[0], true)); }},
        {"pdf", [](const Fields& given) { return tell(LumValue::parsePDFOpenParameters(given[0])); }},
        {"xlink", [](const Fields& given) { return tell(LumValue::parseXlinkHref(given[0])); }},
        {"internal", [](const Fields& given) { return tell(LumValue::parseInternalDestination(given[0], 0)); }},
        {"destination", [](const Fields& given) { return tell(LumValue::parseDestinationType(given[0])); }},
        {"excel", [](const Fields& given) { return tell(LumValue::parseExcelOpenParameters(given[0])); }},
        {"fragment", [](const Fields& given) { return tell(LumValue::parseUriFragmentParameters(given[0], true)); }},
        {"tokens",
         [](const Fields& given) {
             LumTokenizer tokens(given[0]);
             std::string told;
             for (;;) {
                 const LumValue value = tokens.nextTokenValueFunc();
                 if (tokens.getKind() == LumTokenizer::TOKEN_END) return told;
                 told += tell(value) + utf8(tokens.getText());
             }
         }},
        {"list",
         [](const Fields& given) {
             LumTokenizer items(given[0]);
             std::string told;
             for (int i = 0; i < 4; ++i) told += utf8(items.nextSeparatedValue(u',')) + "/";
             return told;
         }},
    };
    LumTest::forEveryFailureOfRows("values/memory.txt", operations);
}

}  // namespace
