// Attribute values of real documents: what each becomes, and why some become what nobody expects.

#include <gtest/gtest.h>

#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>
#include <support/PropertyText.h>
#include <support/Utf8.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::PropertyText;
using LumTest::utf8;

const std::vector<PropertyText>& rows() {
    static const std::vector<PropertyText> all = LumTest::readPropertyTexts(LUM_TEST_DATA "/values/properties.tsv");
    return all;
}

std::string describeValue(const UnicodeString& text) {
    const LumValue value = LumValue::parse(text);
    if (value.getTypeWord() == KIND_STRING) return *value.getStringPointer() == text ? "=" : "(changed)";
    return std::to_string(value.getKind()) + " " + std::to_string(value.getUnit()) + " " + utf8(value.toString());
}

std::string describeColor(const UnicodeString& text) {
    const LumColor color(LumValue::parseColor(text, true));
    return color.isInvalid() ? "-" : utf8(color.toString(false));
}

std::string describeTokens(const UnicodeString& text) {
    std::string kinds;
    LumTokenizer tokenizer(text);
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
        const int kind = tokenizer.getKind();
        kinds += kind > 0 ? static_cast<char>(kind) : " -NI-SH"[-kind];
    }
    return kinds;
}

/// Printed forms of the values that functions and groups are read as.
std::string describeFunctions(const UnicodeString& text) {
    std::string values;
    LumTokenizer tokenizer(text);
    for (LumValue value = tokenizer.nextTokenValueFunc(); !value.isNull(); value = tokenizer.nextTokenValueFunc()) {
        values += (values.empty() ? "" : "|") + std::to_string(value.getUnit()) + ":" + utf8(value.toString());
    }
    return values;
}

TEST(PropertyText, becomesWhatTheTableSays) {
    ASSERT_GT(rows().size(), 400u);
    for (const PropertyText& row : rows()) {
        SCOPED_TRACE(row.text);
        const UnicodeString text = UnicodeString::fromUTF8(row.text);
        EXPECT_EQ(describeValue(text), row.value);
        EXPECT_EQ(describeColor(text), row.color);
        EXPECT_EQ(describeTokens(text), row.tokens);
    }
}

TEST(PropertyText, surprisesHaveReasons) {
    struct Surprise {
        const char* reason;
        const char* text;
        const char* value;
        const char* color;
        const char* functions;
    };
    constexpr Surprise surprises[] = {
        {"a point makes a real, however round the number", "11.00", "2 1 11", "-", "1:11"},
        {"a point without digits behind it belongs to the number", "1.", "2 1 1", "-", "1:1"},
        {"an exponent is no part of a number here, a unit is",
         "matrix(1.000000,0.000000,0.000000,0.338462,-1.435476e-15,29.48178)", "=", "-",
         "0:matrix(1.000000,0.000000,0.000000,0.338462,-1.435476e-15,29.48178)"},
        {"expressions are the formatter's: + comes apart, unless a digit follows", "14em * 0.60+1em", "=", "-",
         "3:14em|20:*|1:0.6|3:1em"},
        {"a list is one string, also of numbers alone", "5,2", "=", "-", "1:5|20:,|1:2"},
        {"- and digits continue a name: M-1 is one", "M-1,0 h2 M0,-1 v2", "=", "-",
         "23:M-1|20:,|1:0|23:h2|23:M0|20:,|1:-1|23:v2"},
        {"a fragment that starts with no hexadecimal digit is a delimiter and a name", "#gpPt11", "=", "-",
         "20:#|23:gpPt11"},
        {"parse() takes no function, parseColor() does", "rgb(148,   0, 211)", "=", "#9400D3", "24:#9400D3"},
        {"an address loses its wrapper when functions are read", "url(#l_0)", "=", "-", "22:#l_0"},
        {"a keyword stays a name until its colour is asked for", "lightgrey", "3 23 lightgrey", "#D3D3D3",
         "23:lightgrey"},
        {"a colon belongs to no name, so an identifier may be a string", "glossary:Latin-1", "=", "-",
         "23:glossary|20::|23:Latin-1"},
    };
    for (const Surprise& surprise : surprises) {
        SCOPED_TRACE(surprise.reason);
        const auto row = std::ranges::find(rows(), surprise.text, &PropertyText::text);
        ASSERT_NE(row, rows().end()) << "no document holds " << surprise.text;
        EXPECT_EQ(row->value, surprise.value);
        EXPECT_EQ(row->color, surprise.color);
        EXPECT_EQ(describeFunctions(UnicodeString::fromUTF8(surprise.text)), surprise.functions);
    }
}

}  // namespace
