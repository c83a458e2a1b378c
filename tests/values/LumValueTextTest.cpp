#include <gtest/gtest.h>

#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>
#include <support/CommaLocale.h>
#include <support/Utf8.h>

#include <limits>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

struct ParseCase {
    const char* fault;
    const char* text;
    std::uint32_t typeWord;  // without name bits; 4 is the plain string of the whole text
    const char* printed;     // null: the text itself
};

constexpr std::uint32_t plainString = 4;
constexpr std::uint32_t integerNumber = 9;
constexpr std::uint32_t realNumber = 10;
constexpr std::uint32_t percent = 18;
constexpr std::uint32_t realPt = 2 | UNIT_PT << 3;
constexpr std::uint32_t quotedString = 172;
constexpr std::uint32_t identifier = 187;
constexpr std::uint32_t colorInteger = 193;

constexpr ParseCase parseCases[] = {
    {"integer as real", "10", integerNumber, nullptr},
    {"fraction of zeros dropped", "10.0", realNumber, "10"},
    {"integral length as integer", "10pt", realPt, nullptr},
    {"units told apart by case", "10PT", realPt, "10pt"},
    {"hertz spelled as it came", "3hz", 2 | UNIT_HZ << 3, "3Hz"},
    {"full folding takes the Kelvin sign", "3\u212AHz", plainString, nullptr},
    {"unknown unit dropped", "10foo", plainString, nullptr},
    {"unit apart from its number", "10 pt", plainString, nullptr},
    {"nothing becomes null", "", plainString, nullptr},
    {"white space trimmed", "   ", plainString, nullptr},
    {"white space around refused", " \t12pt\r\n", realPt, "12pt"},
    {"sign lost", "-3", integerNumber, nullptr},
    {"plus refused", "+3", integerNumber, "3"},
    {"sign apart from its number", "- 3", plainString, nullptr},
    {"largest integer", "2147483647", integerNumber, nullptr},
    {"integer overflow", "2147483648", realNumber, "2.14748e+09"},
    {"fraction", "2.5", realNumber, nullptr},
    {"percentage", "50%", percent, nullptr},
    {"exponent read", "1e3", plainString, nullptr},
    {"short colour", "#f00", colorInteger, "#FF0000"},
    {"five digits", "#12345", colorInteger, "#012345"},
    {"single quotes", "'abc'", quotedString, "abc"},
    {"double quotes, empty", "\"\"", quotedString, ""},
    {"open quote", "'abc", plainString, nullptr},
    {"two strings", "'it''s'", plainString, nullptr},
    {"identifier", "bold", identifier, nullptr},
    {"two tokens", "12pt 3pt", plainString, nullptr},
    {"function", "rgb(1,2,3)", plainString, nullptr},
    {"trailing operator", "1 +", plainString, nullptr},
};

void expectParsed(const ParseCase& c) {
    const LumValue value = LumValue::parse(UnicodeString::fromUTF8(c.text));
    EXPECT_EQ(value.getTypeWord(), c.typeWord) << c.text;
    EXPECT_EQ(utf8(value.toString()), c.printed ? c.printed : c.text);
}

TEST(LumValueText, parsesTheWholeTextOrKeepsIt) {
    for (const ParseCase& c : parseCases) {
        SCOPED_TRACE(c.fault);
        expectParsed(c);
    }
}

TEST(LumValueText, doesNotDependOnTheLocale) {
    const LumTest::CommaLocale locale;
    if (!locale.isActive()) GTEST_SKIP() << "no locale with a decimal comma, and none could be compiled";
    for (const ParseCase& c : parseCases) {
        SCOPED_TRACE(c.fault);
        expectParsed(c);
    }
}

TEST(LumValueText, parsesOnlyWordsWhenNumbersStayText) {
    for (const ParseCase& c : parseCases) {
        SCOPED_TRACE(c.fault);
        const UnicodeString text = UnicodeString::fromUTF8(c.text);
        const bool isWord = c.typeWord == quotedString || c.typeWord == identifier;
        EXPECT_EQ(LumValue::parseNonNumeric(text).getTypeWord(), isWord ? c.typeWord : plainString) << c.text;
    }
}

TEST(LumValueText, prints) {
    LumValue delimiter(u'(');
    delimiter.setUnit(UNIT_CHAR);
    LumValue transparent(-1);
    transparent.setUnit(UNIT_COLOR);
    LumValue empty;
    empty.makeCompound();
    LumValue nested(1);
    nested.setNamedItem(NAME_value, LumValue());
    nested.setNamedItem(NAME_length, empty);
    nested.setNamedItem(NAME_width, LumValue(2.5f, UNIT_Q));
    struct Case {
        const char* fault;
        LumValue value;
        const char* text;
    };
    const Case cases[] = {
        {"null is a word", LumValue(), ""},
        {"code of a delimiter", delimiter, "("},
        {"marker as a number", transparent, "transparent"},
        {"empty map", empty, "{}"},
        {"null items, separators", nested, "{.: 1; length: {}; width: 2.5q}"},
        {"small exponent", LumValue(0.00001f, UNIT_PT), "1e-05pt"},
        {"seventh digit", LumValue(1234567.0f, UNIT_NUMBER), "1.23457e+06"},
        {"infinity", LumValue(-std::numeric_limits<float>::infinity(), UNIT_PT), "-infpt"},
        {"area", LumValue(6.0f, UNIT_PT2), "6"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(utf8(c.value.toString()), c.text);
    }
}

}  // namespace
