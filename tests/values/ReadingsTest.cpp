// What texts are read as: the rows of readings.txt, and what a row cannot say.

#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>
#include <support/CommaLocale.h>
#include <support/DataRows.h>
#include <support/Sweeps.h>
#include <support/Utf8.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::Fields;
using LumTest::utf8;

constexpr std::uint32_t kindAndUnit = 0xFF;

std::string described(const LumValue& value) {
    return std::to_string(value.getTypeWord() & kindAndUnit) + ":" + utf8(value.toString());
}

std::string joined(const std::vector<std::string>& items, const char* separator = " ~ ") {
    std::string result;
    for (std::size_t i = 0; i < items.size(); ++i) result += (i == 0 ? "" : separator) + items[i];
    return result;
}

std::string parsed(const Fields& fields) {
    const LumValue value = LumValue::parse(fields[0]);
    const bool isWord = value.getUnit() == UNIT_QUOTED || value.getUnit() == UNIT_IDENT;
    EXPECT_EQ(LumValue::parseNonNumeric(fields[0]), isWord ? value : LumValue(fields[0])) << "numbers stay text there";
    return described(value);
}

template <bool allowsProfile>
std::string colored(const Fields& fields) {
    const LumValue value = LumValue::parseColor(fields[0], allowsProfile);
    const LumColor color(value);
    if (color.isInvalid()) {
        EXPECT_EQ(value.getColorValue().getRGB(), LumColor::RGB_INVALID);
        const bool isKept = value.getTypeWord() == KIND_STRING && value.toString() == fields[0];
        return isKept ? "-" : described(value);
    }
    EXPECT_TRUE(LumColor(LumValue(color)) == color && LumValue(color) == LumValue(LumColor(LumValue(color))));
    for (const bool svgForm : {false, true}) {
        EXPECT_TRUE(LumColor(LumValue::parseColor(color.toString(svgForm), svgForm)) == color) << "comes back";
    }
    EXPECT_EQ(LumValue(color).toString(), color.toString(false));
    return utf8(color.toString(false)) + " ~ " + utf8(color.toString(true));
}

std::string keyword(const Fields& fields) {
    const LumColor color{LumName(fields[0])};
    char rgb[16];
    std::snprintf(rgb, sizeof rgb, "%06X ", color.getRGB());
    EXPECT_EQ(color.isInvalid(), color.getRGB() == LumColor::RGB_INVALID);
    EXPECT_EQ(color.toString(true), color.getColorName().getString());
    return rgb + utf8(color.getColorName().getString());
}

std::string tokens(const Fields& fields) {
    LumTokenizer tokenizer(fields[0]);
    EXPECT_EQ(tokenizer.getKind(), LumTokenizer::TOKEN_NONE);
    std::vector<std::string> all;
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
        std::string pair[2];
        for (std::string& token : pair) {
            const int kind = tokenizer.getKind();
            token = kind > 0 ? utf8(static_cast<UChar32>(kind)) : std::to_string(kind);
            if (!tokenizer.getText().isEmpty()) token += " " + utf8(tokenizer.getText());
            if (tokenizer.getNumber() != 0) token += " " + LumTest::printed(tokenizer.getNumber());
            tokenizer.pushBack();
            tokenizer.nextToken();
        }
        EXPECT_EQ(pair[1], pair[0]) << "after a push-back";
        all.push_back(pair[0]);
    }
    return joined(all);
}

template <LumValue (LumTokenizer::*read)(), bool isOneToken = true>
std::string values(const Fields& fields) {
    LumTokenizer tokenizer(fields[0]);
    std::vector<std::string> all;
    for (LumValue value = (tokenizer.*read)(); !value.isNull(); value = (tokenizer.*read)()) {
        all.push_back(described(value));
        if (!isOneToken || fields.size() > 1) continue;  // a row has one field
        tokenizer.pushBack();
        EXPECT_EQ(described((tokenizer.*read)()), all.back()) << "after a push-back";
    }
    return joined(all);
}

std::string doubles(const Fields& fields) {
    LumTokenizer tokenizer(fields[0]);
    tokenizer.nextToken();
    tokenizer.pushBack();
    std::vector<std::string> all;
    for (;;) {
        const double number = tokenizer.nextTokenDoubleExp();
        if (tokenizer.getKind() == LumTokenizer::TOKEN_END) return joined(all, " ");
        all.push_back(LumTest::printed(number));
    }
}

std::string listed(const Fields& fields) {
    LumTokenizer tokenizer(fields[0]);
    std::vector<std::string> items;
    for (;;) {
        const UnicodeString item = tokenizer.nextSeparatedValue(fields[1][0]);
        if (tokenizer.getKind() == LumTokenizer::TOKEN_END) return joined(items);
        tokenizer.pushBack();
        EXPECT_EQ(tokenizer.nextSeparatedValue(fields[1][0]), item) << "after a push-back";
        items.push_back(utf8(item));
    }
}

/// Where a tokenizer stands after skipping a separator.
std::string separator(const Fields& fields) {
    LumTokenizer tokenizer(fields[0]);
    const bool isFound = tokenizer.scanSeparator(fields[1][0]);
    EXPECT_EQ(tokenizer.getPosition(), 0);
    EXPECT_EQ(tokenizer.skipSeparator(fields[1][0]), isFound);
    const std::string position = std::to_string(tokenizer.getPosition());
    tokenizer.nextToken();
    tokenizer.pushBack();
    EXPECT_FALSE(tokenizer.skipSeparator(u'a')) << "what was pushed back is read again";
    return position;
}

std::string items(const LumValue& value) {
    std::vector<std::string> all;
    if (const LumNamedValueMap* map = value.getNamedValueMap()) {
        LumNamedValueMapIterator entries(map);
        while (entries.hasNext()) {
            const LumNamedValue entry = entries.next();
            all.push_back(utf8(entry.getName().getString()) + "=" + described(entry));
        }
    } else if (!value.isNull()) {
        all.push_back("=" + described(value));
    }
    std::ranges::sort(all);
    return joined(all, " ");
}

/// The operation that reads a link by `parse`.
template <class Parse>
auto link(Parse parse) {
    return [parse](const Fields& fields) {
        UnicodeString bogus;
        bogus.setToBogus();
        parse(bogus);
        return items(parse(fields[0]));
    };
}

LumValue parseView(const UnicodeString& text) { return LumValue::parseView(text, LumValue(), 0); }

LumValue operand(const UnicodeString& field) {
    if (field == u"null") return {};
    if (field.startsWith(u"text:")) return LumValue(field.tempSubString(5));
    if (field.startsWith(u"name:")) return LumValue(LumName(field.tempSubString(5)));
    const std::int32_t at = field.indexOf(u'@');
    if (at < 0) return LumValue::parse(field);
    const std::string digits = utf8(field.tempSubString(0, at));
    const double number = LumTest::numberOf(field.tempSubString(0, at));
    const bool isReal = digits.find_first_of(".ein") != digits.npos;
    LumValue value = isReal ? LumValue(static_cast<float>(number), UNIT_NUMBER) : LumValue(static_cast<int>(number));
    value.setUnit(static_cast<LumValueUnitType>(LumTest::numberOf(field.tempSubString(at + 1))));
    return value;
}

std::string combined(const Fields& fields) {
    const LumValue left = operand(fields[0]), right = operand(fields[2]);
    if (fields[1] == u"+") return described(left + right);
    if (fields[1] == u"-") return described(left - right);
    if (fields[1] == u"*") return described(left * right);
    return described(fields[1] == u"/" ? left / right : left % right);
}

std::string compared(const Fields& fields) {
    const LumValue a = operand(fields[0]), b = operand(fields[1]);
    EXPECT_EQ(b == a, a == b);
    EXPECT_EQ(a <= b, !(a > b));
    return std::string(a == b ? "=" : "") + (a < b ? "<" : "") + (a > b ? ">" : "");
}

/// 90 of a unit in every other, with as many digits as a float has.
std::string converted(const Fields& fields) {
    const auto from = static_cast<LumValueUnitType>(std::min(31.0, LumTest::numberOf(fields[0])));
    std::vector<std::string> all;
    for (int to = 0; to < 32; ++to) {
        char text[32];
        const float result = LumValue(90.0f, from).getRealValue(static_cast<LumValueUnitType>(to));
        all.emplace_back(text, std::to_chars(text, std::end(text), result, std::chars_format::general, 7).ptr);
    }
    return joined(all, " ") + (LumLength(2, from).isValid() ? " length" : "");
}

const LumTest::Operations operations = {
    {"parse", parsed},
    {"colour", colored<false>},
    {"profile", colored<true>},
    {"keyword", keyword},
    {"whole", [](const Fields& fields) { return described(LumValue::parseColor(fields[0], false)); }},
    {"tokens", tokens},
    {"value", values<&LumTokenizer::nextTokenValue>},
    {"signed", values<&LumTokenizer::nextTokenValueSigned>},
    {"exponent", values<&LumTokenizer::nextTokenValueExp>},
    {"function", values<&LumTokenizer::nextTokenValueFunc, false>},
    {"doubles", doubles},
    {"list", listed},
    {"separator", separator},
    {"pdf", link(LumValue::parsePDFOpenParameters)},
    {"view", link(parseView)},
    {"destination", link(LumValue::parseDestinationType)},
    {"xlink", link(LumValue::parseXlinkHref)},
    {"internal", link([](const UnicodeString& text) { return LumValue::parseInternalDestination(text, 0); })},
    {"excel", link(LumValue::parseExcelOpenParameters)},
    {"fragment", link([](const UnicodeString& text) { return LumValue::parseUriFragmentParameters(text, false); })},
    {"lowerFragment", link([](const UnicodeString& text) { return LumValue::parseUriFragmentParameters(text, true); })},
    {"combine", combined},
    {"compare", compared},
    {"convert", converted},
    {"integer", [](const Fields& fields) { return std::to_string(operand(fields[0]).getIntegerValue()); }},
    {"negate", [](const Fields& fields) { return described(-operand(fields[0])); }},
    {"absolute", [](const Fields& fields) { return described(operand(fields[0]).abs()); }},
    {"round", [](const Fields& fields) { return described(operand(fields[0]).round()); }},
    {"ceiling", [](const Fields& fields) { return described(operand(fields[0]).ceiling()); }},
    {"floor", [](const Fields& fields) { return described(operand(fields[0]).floor()); }},
    {"print", [](const Fields& fields) { return described(operand(fields[0])); }},
};

TEST(Readings, giveWhatTheFileSaysInEveryLocale) {
    const LumTest::CommaLocale locale;
    LumTest::checkRows("values/readings.txt", operations);
}

TEST(Readings, parametersFillTheCompoundThatTheyAreGiven) {
    LumValue compound;
    compound.makeCompound();
    for (const int flag : {0, 1, -1}) EXPECT_EQ(LumValue::parseView(u"page=2", compound, flag), compound);
    EXPECT_EQ(items(compound), "page=9:2");
    EXPECT_EQ(items(LumValue::parseView(u"page=2", LumValue(7), 0)), "=9:7 page=9:2");
}

// Keys whose names were made earlier can come in descending order; each must not move all the others.
TEST(Readings, keysInAnyOrderTakeLinearTime) {
    LumTest::expectLinearTime("each key moves all the others", 25'000, [](std::size_t count) {
        const auto key = [](std::size_t i) { return UnicodeString::fromUTF8("linkKey" + std::to_string(i)); };
        UnicodeString descending(u"#");
        for (std::size_t i = 0; i < count; ++i) LumNameTable::getSharedNameEnum(key(i));
        for (std::size_t i = count; i-- > 0;) descending.append(key(i)).append(u"=&", 2);
        EXPECT_EQ(LumValue::parseUriFragmentParameters(descending, false).getNamedValueMap()->getCount(),
                  static_cast<int>(count));
    });
}

TEST(Readings, onlyNamesThatAreReturnedAreInterned) {
    parseView(u"unseenKey=1");
    LumValue::parseExcelOpenParameters(u"#unseenKey=1");
    LumTokenizer tokenizer(u"f(unseenInGroup) 1eunseenExponent");
    while (!tokenizer.nextTokenValueFunc().isNull()) continue;
    const LumNameTable* table = LumNameTable::getSharedNameTable();
    for (const char16_t* name : {u"unseenKey", u"unseenInGroup", u"unseenExponent"}) {
        EXPECT_EQ(table->lookupName(name), NAME_NULL) << utf8(name);
    }
    EXPECT_NE(table->lookupName(u"eunseenExponent"), NAME_NULL);
}

TEST(Readings, textsMadeToBeExpensiveTakeLinearTime) {
    const auto rows = LumTest::readTextRows("values/expensive.txt");
    EXPECT_EQ(rows.size(), 35u);
    for (const Fields& row : rows) {
        LumNameTable::addRefSharedNameTable();  // the long names go with it
        for (const auto& [name, operation] : operations) {
            SCOPED_TRACE(name + " of " + utf8(row[0] + row[1]) + "...");
            LumTest::expectLinearTime("more than linear", 1 << 13, [&, run = operation](std::size_t units) {
                UnicodeString text = row[0];
                while (static_cast<std::size_t>(text.length()) < units) text.append(row[1]);
                run({text, u",", u"1"});
            });
            if (HasFailure()) break;
        }
        LumNameTable::releaseSharedNameTable();
    }
}

/// The columns of the table of documents' attribute values.
std::string valueColumn(const UnicodeString& text) {
    const LumValue value = LumValue::parse(text);
    if (value.getTypeWord() == KIND_STRING) return *value.getStringPointer() == text ? "=" : "(changed)";
    return std::to_string(value.getKind()) + " " + std::to_string(value.getUnit()) + " " + utf8(value.toString());
}

std::string tokensColumn(const UnicodeString& text) {
    std::string kinds;
    LumTokenizer tokenizer(text);
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
        const int kind = tokenizer.getKind();
        kinds += kind > 0 ? static_cast<char>(kind) : " -NI-SH"[-kind];
    }
    return kinds;
}

TEST(Readings, attributesOfDocumentsBecomeWhatTheTableSays) {
    const auto rows = LumTest::readTextRows("values/properties.txt");
    ASSERT_GT(rows.size(), 400u);
    for (const Fields& row : rows) {
        SCOPED_TRACE(utf8(row[0]));
        const LumColor color(LumValue::parseColor(row[0], true));
        EXPECT_EQ(valueColumn(row[0]), utf8(row[1]));
        EXPECT_EQ(color.isInvalid() ? "-" : utf8(color.toString(false)), utf8(row[2]));
        EXPECT_EQ(tokensColumn(row[0]), utf8(row[3]));
    }
}

}  // namespace
