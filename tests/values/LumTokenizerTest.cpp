#include <gtest/gtest.h>

#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumTokenizer.h>
#include <support/Utf8.h>

#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::utf8;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

/// A token as "kind text number", the number only where it is not 0.
std::string describe(const LumTokenizer& tokenizer) {
    const int kind = tokenizer.getKind();
    std::string result = kind > 0 ? std::string(1, static_cast<char>(kind)) : std::to_string(kind);
    if (!tokenizer.getText().isEmpty()) result += " " + utf8(tokenizer.getText());
    if (tokenizer.getNumber() != 0) result += " " + std::to_string(tokenizer.getNumber());
    return result;
}

TEST(LumTokenizer, splitsTextIntoTokens) {
    struct Case {
        const char* fault;
        std::string text;
        std::vector<std::string> tokens;
    };
    const Case cases[] = {
        {"no end", " \t\r\n", {}},
        {"name units", "a-b.c_1 -a", {"-3 a-b.c_1", "-", "-3 a"}},
        {"colon in a name", "a:b", {"-3 a", ":", "-3 b"}},
        {"name ranges", "\u00B7\u00C0\u037E\u00D7", {"\xB7", "-3 \u00C0", "\x7E", "-3 \u00D7"}},
        {"suffix",
         "10px 10 px 1e3 5%",
         {"-2 px 10.000000", "-2 10.000000", "-3 px", "-2 e3 1.000000", "-2 % 5.000000"}},
        {"points", "1.5.5 . .5", {"-2 1.500000", "-2 0.500000", ".", "-2 0.500000"}},
        {"quotes", "'it''s' \"a'b\"", {"-5 it", "-5 s", "-5 a'b"}},
        {"open quote", "'a b", {"'", "-3 a", "-3 b"}},
        {"hash colours",
         "#f #ff #abc #12345 #g",
         {"-6 255.000000", "-6 65535.000000", "-6 11189196.000000", "-6 74565.000000", "#", "-3 g"}},
        {"hash colour beyond 32 bits", "#123456789", {"-6 4294967295.000000"}},
        {"text after U+0000", std::string("a\0b", 3), {"-3 a"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        LumTokenizer tokenizer(text(c.text));
        EXPECT_EQ(tokenizer.getKind(), LumTokenizer::TOKEN_NONE);
        std::vector<std::string> tokens;
        while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
            const std::string token = describe(tokenizer);
            tokenizer.pushBack();
            tokenizer.nextToken();
            EXPECT_EQ(describe(tokenizer), token) << "after a push-back";
            tokens.push_back(token);
        }
        EXPECT_EQ(tokens, c.tokens);
    }
}

/// All values that one reading operation finds, printed with their type words.
using Reader = LumValue (LumTokenizer::*)();

std::string readAll(const UnicodeString& source, Reader read, bool again) {
    LumTokenizer tokenizer(source);
    std::string result;
    for (LumValue value = (tokenizer.*read)(); !value.isNull(); value = (tokenizer.*read)()) {
        if (again) {
            tokenizer.pushBack();
            value = (tokenizer.*read)();
        }
        result += std::to_string(value.getTypeWord()) + ":" + utf8(value.toString()) + "|";
    }
    return result;
}

TEST(LumTokenizer, buildsValues) {
    struct Case {
        const char* fault;
        const char* text;
        Reader read;
        const char* values;
    };
    const Case cases[] = {
        {"sign taken", "-5", &LumTokenizer::nextTokenValue, "161:-|9:5|"},
        {"sign not taken", "-5 +.5 - 5 -a", &LumTokenizer::nextTokenValueSigned, "9:-5|10:0.5|161:-|9:5|161:-|187:a|"},
        {"unknown suffix lost", "10foo 5px", &LumTokenizer::nextTokenValue, "9:10|187:foo|42:5px|"},
        {"exponent as a name", "1e-3 1.5e2pt 1e3", &LumTokenizer::nextTokenValueExp, "10:0.001|74:150pt|10:1000|"},
        {"unit taken for an exponent", "3em 2ex 1e 1eb 1e", &LumTokenizer::nextTokenValueExp,
         "26:3em|34:2ex|10:10|187:eb|9:1|187:e|"},
        {"zero times infinity", "0e999 1e999", &LumTokenizer::nextTokenValueExp, "10:0|10:inf|"},
        {"call split", "foo( 1 , 2 ) x", &LumTokenizer::nextTokenValueFunc, "4:foo( 1 , 2 )|187:x|"},
        {"colour as text", "rgb(255, 0, 0)", &LumTokenizer::nextTokenValueFunc, "193:#FF0000|"},
        {"bad colour lost", "rgb(255, x, 0)", &LumTokenizer::nextTokenValueFunc, "4:rgb(255, x, 0)|"},
        {"group split", "(a (b) c) d", &LumTokenizer::nextTokenValueFunc, "4:(a (b) c)|187:d|"},
        {"space before the group", "foo (a)", &LumTokenizer::nextTokenValueFunc, "187:foo|4:(a)|"},
        {"quoted parenthesis counted", "f(')' \"(\")", &LumTokenizer::nextTokenValueFunc, "4:f(')' \"(\")|"},
        {"open group lost", "f(1 (2", &LumTokenizer::nextTokenValueFunc, "4:f(1 (2|"},
        {"address with its wrapper", "url('a.png')", &LumTokenizer::nextTokenValueFunc, "180:a.png|"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(readAll(text(c.text), c.read, false), c.values);
    }
    // Reading a token again gives the same value, although a suffix that is no unit moved the position.
    EXPECT_EQ(readAll(text("10foo -3 2.0 -a"), &LumTokenizer::nextTokenValueSigned, true),
              "9:10|187:foo|9:-3|10:2|161:-|187:a|");
    EXPECT_EQ(readAll(text("1.5e2pt 1e3 e"), &LumTokenizer::nextTokenValueExp, true), "74:150pt|10:1000|187:e|");
}

TEST(LumTokenizer, readsDoubles) {
    LumTokenizer tokenizer(text("-5 0.1e1 -1e-1 50% x #00f 123456789.25"));
    tokenizer.nextToken();
    tokenizer.pushBack();  // the delimiter is read again, as a sign
    for (const double expected : {-5.0, 1.0, -0.1, 50.0, 0.0, 255.0, 123456789.25, 0.0}) {
        EXPECT_DOUBLE_EQ(tokenizer.nextTokenDoubleExp(), expected);
    }
}

TEST(LumTokenizer, splitsLists) {
    struct Case {
        const char* fault;
        const char* text;
        char16_t separator;
        std::vector<std::string> items;
    };
    const Case cases[] = {
        {"words run together",
         "Times  New\tRoman, 'Arial Black' ,serif",
         u',',
         {"Times New Roman", "Arial Black", "serif"}},
        {"quotes end the item", "a 'b,c' d", u',', {"a b,c d"}},
        {"open quote lost", "a, 'b, c", u',', {"a", "b, c"}},
        {"empty items lost", ",,a,", u',', {"", "", "a"}},
        {"white space as separator", "a  b\tc", u' ', {"a", "b", "c"}},
        {"quote inside a word", "it's, b", u',', {"it's", "b"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        LumTokenizer tokenizer(text(c.text));
        std::vector<std::string> items;
        for (;;) {
            const UnicodeString item = tokenizer.nextSeparatedValue(c.separator);
            if (tokenizer.getKind() == LumTokenizer::TOKEN_END) break;
            tokenizer.pushBack();
            EXPECT_EQ(utf8(tokenizer.nextSeparatedValue(c.separator)), utf8(item));
            items.push_back(utf8(item));
        }
        EXPECT_EQ(items, c.items);
    }
}

TEST(LumTokenizer, findsSeparators) {
    LumTokenizer tokenizer(text(" , a"));
    EXPECT_TRUE(tokenizer.scanSeparator(u','));
    EXPECT_EQ(tokenizer.getPosition(), 0);
    EXPECT_FALSE(tokenizer.skipSeparator(u';'));
    EXPECT_TRUE(tokenizer.skipSeparator(u','));
    EXPECT_EQ(tokenizer.getPosition(), 3);
    tokenizer.nextToken();
    tokenizer.pushBack();
    EXPECT_FALSE(tokenizer.scanSeparator(u'a'));
    EXPECT_FALSE(tokenizer.skipSeparator(u'a'));
}

TEST(LumTokenizer, takesADigitRunWhole) {
    LumTokenizer tokenizer(text(std::string(1000, '1') + " " + std::string(1000, '0') + "2." + std::string(1000, '3')));
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.getPosition(), 1000);
    tokenizer.nextToken();
    EXPECT_DOUBLE_EQ(tokenizer.getNumber(), 7.0 / 3);
    EXPECT_EQ(tokenizer.nextToken(), LumTokenizer::TOKEN_END);
}

TEST(LumTokenizer, internsOnlyNamesThatItReturns) {
    LumTokenizer tokenizer(text("f(unseenInGroup) 1eunseenExponent"));
    while (!tokenizer.nextTokenValueFunc().isNull()) {
    }
    const LumNameTable* table = LumNameTable::getSharedNameTable();
    EXPECT_EQ(table->lookupName(text("unseenInGroup")), NAME_NULL);
    EXPECT_EQ(table->lookupName(text("unseenExponent")), NAME_NULL);
    EXPECT_NE(table->lookupName(text("eunseenExponent")), NAME_NULL);
}

}  // namespace
