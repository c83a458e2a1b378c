#include <gtest/gtest.h>

#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumValue.h>
#include <support/Utf8.h>

#include <cmath>
#include <limits>

namespace {

using namespace LumCommon;
using LumTest::utf8;

UnicodeString text(const char* bytes) { return UnicodeString::fromUTF8(bytes); }

constexpr std::uint32_t invalid = LumColor::RGB_INVALID;

TEST(LumColor, findsKeywords) {
    struct Case {
        const char* fault;
        const char* name;
        std::uint32_t rgb;
        const char* keyword;  // what getColorName() gives for the value
    };
    constexpr Case cases[] = {
        {"first row", "aliceblue", 0xF0F8FF, "aliceblue"},
        {"upper case", "REBECCAPURPLE", invalid, ""},
        {"case and the printed spelling", "FuchSia", 0xFF00FF, "magenta"},
        {"marker in another case", "Currentcolor", 0xFE000000, "currentColor"},
        {"marker in upper case", "TRANSPARENT", 0xFFFFFFFF, "transparent"},
        {"a name that is no colour", "block", invalid, ""},
        {"the empty name", "", invalid, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LumColor color{LumName(text(c.name))};
        EXPECT_EQ(color.getRGB(), c.rgb);
        EXPECT_EQ(utf8(color.getColorName().getString()), c.keyword);
        EXPECT_EQ(color.isInvalid(), c.rgb == invalid);
        EXPECT_EQ(utf8(color.toString(true)), c.keyword);
    }
}

TEST(LumColor, convertsBetweenModels) {
    struct Case {
        const char* fault;
        std::uint32_t rgb, expected;
    };
    const LumColor orange = LumColor::rgb2cmyk(0xFF8000);
    EXPECT_FLOAT_EQ(orange.getComponent(0), 0);
    EXPECT_NEAR(orange.getComponent(1), 0.498, 0.001);
    EXPECT_FLOAT_EQ(orange.getComponent(3), 0);
    const Case cases[] = {
        {"black", LumColor::cmyk2rgb(0, 0, 0, 1), 0},
        {"cyan", LumColor::cmyk2rgb(1, 0, 0, 0), 0x00FFFF},
        {"beyond 1", LumColor::cmyk2rgb(2, -1, 0, 0), 0x00FFFF},
        {"half of gray rounded down", LumColor(0.5f).getRGB(), 0x808080},
        {"gray beyond 1", LumColor(7.0f).getRGB(), 0xFFFFFF},
        {"gray of no number", LumColor(std::nanf("")).getRGB(), 0},
        {"channels clamped", LumColor(300, -5, 10).getRGB(), 0xFF000A},
        {"dark", LumColor::fromRGB(0xFFFFFF).getDark().getRGB(), 0xAAAAAA},
        {"light", LumColor().getLight().getRGB(), 0x808080},
        {"tint as gray", LumColor(text("Gold"), 0.5f).getRGB(), 0x808080},
        {"tint of the alternative", LumColor(text("Gold"), 0.5f, 1, 0, 0, 0).getSeparationRGB(), 0x80FFFF},
        {"tint of the fallback", LumColor(LumColor(255, 0, 0), text("Gold"), 0.5f).getSeparationRGB(), 0xFF8080},
        {"full tint", LumColor(LumColor(255, 0, 0), text("Gold"), 1.0f, 1, 0, 0, 0).getSeparationRGB(), 0xFF0000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(c.rgb, c.expected);
    }
}

TEST(LumColor, parsesPrintsAndComesBackFromAValue) {
    struct Case {
        const char* fault;
        const char* text;
        bool iccAllowed;
        const char* printed;  // null: stays text
        const char* svg;
    };
    constexpr Case cases[] = {
        {"keyword", "Red", false, "#FF0000", "red"},
        {"spaces for commas", "rgb( 1 2,3 )", false, "#010203", "#010203"},
        {"half of a percentage", "rgb(100%, 50%, 0%)", false, "#FF8000", "#FF8000"},
        {"channels beyond 255", "rgb(300, -5, 10)", false, "#FF000A", "#FF000A"},
        {"four channels", "rgb(1,2,3,4)", false, nullptr, nullptr},
        {"lengths as channels", "rgb(1pt,2,3)", false, nullptr, nullptr},
        {"open function", "rgb(1,2,3", false, nullptr, nullptr},
        {"comma after the channels", "rgb(1,2,3,)", false, nullptr, nullptr},
        {"profile not allowed", "rgb(1,2,3) icc-color(#CMYK,0,1,0,0)", false, nullptr, nullptr},
        {"profile", "rgb(1,2,3) icc-color(#CMYK,0,50%,0,.25)", true, "rgb-icc(1,2,3,#CMYK,0,0.5,0,0.25)",
         "#010203 icc-color(#CMYK,0,0.5,0,0.25)"},
        {"profile after a keyword", "red icc-color(#Grayscale, 0.5)", true, "rgb-icc(255,0,0,#GRAYSCALE,0.5)",
         "red icc-color(#GRAYSCALE,0.5)"},
        {"profile after no colour", "block icc-color(#GRAYSCALE,0.5)", true, nullptr, nullptr},
        {"profile after a hash", "#123 icc-color(#GRAYSCALE,1)", true, "rgb-icc(17,34,51,#GRAYSCALE,1)",
         "#112233 icc-color(#GRAYSCALE,1)"},
        {"profile alone", "icc-color(#GRAYSCALE,0.5)", true, nullptr, nullptr},
        {"no fallback", "rgb-icc(#CMYK,1,0,0,0)", false, "rgb-icc(0,255,255,#CMYK,1,0,0,0)",
         "cyan icc-color(#CMYK,1,0,0,0)"},
        {"three inks", "rgb-icc(#CMYK,1,0,0)", false, nullptr, nullptr},
        {"exponent", "rgb-icc(#GRAYSCALE,5e-05)", false, "rgb-icc(0,0,0,#GRAYSCALE,5e-05)",
         "black icc-color(#GRAYSCALE,5e-05)"},
        {"unknown space", "rgb-icc(#XYZ,1)", false, nullptr, nullptr},
        {"space without hash", "rgb-icc(0,0,0,CMYK,1,0,0,0)", false, nullptr, nullptr},
        {"ink with fallback", "rgb-icc(255,0,0,#SEPARATION,'Deep Gold',0.5)", false,
         "rgb-icc(255,0,0,#SEPARATION,\"Deep Gold\",0.5)", "red icc-color(#SEPARATION,\"Deep Gold\",0.5)"},
        {"ink with alternative", "rgb-icc(255,0,0,#Separation,Gold,0.5,0,0,1,0)", false,
         "rgb-icc(255,0,0,#SEPARATION,\"Gold\",0.5,0,0,1,0)", "red icc-color(#SEPARATION,\"Gold\",0.5,0,0,1,0)"},
        {"half an alternative", "rgb-icc(#SEPARATION,Gold,0.5,0,0)", false, nullptr, nullptr},
        {"registration", "rgb-icc(#REGISTRATION,0.5)", false, "rgb-icc(#REGISTRATION,0.5)",
         "gray icc-color(#REGISTRATION,0.5)"},
        {"seven arguments", "rgb-icc(#SEPARATION,Gold,1,1,1,1,1,1)", false, nullptr, nullptr},
        {"other function", "hsl(1,2,3)", true, nullptr, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LumValue value = LumValue::parseColor(text(c.text), c.iccAllowed);
        if (!c.printed) {
            EXPECT_EQ(value.getTypeWord(), static_cast<std::uint32_t>(KIND_STRING));
            EXPECT_EQ(utf8(value.toString()), c.text);
            EXPECT_EQ(value.getColorValue().getRGB(), invalid);
            continue;
        }
        const LumColor color(value);
        EXPECT_EQ(utf8(color.toString(false)), c.printed);
        EXPECT_EQ(utf8(color.toString(true)), c.svg);
        EXPECT_TRUE(LumValue(color) == LumValue(LumColor(LumValue(color))));
        EXPECT_EQ(utf8(LumValue(color).toString()), c.printed);
        // What is printed is the same colour when it is read.
        EXPECT_TRUE(LumColor(LumValue::parseColor(text(c.printed), false)) == color);
        EXPECT_TRUE(LumColor(LumValue::parseColor(text(c.svg), true)) == color);
    }
}

TEST(LumColor, leavesOtherWholeTextsAsTheirValues) {
    EXPECT_EQ(LumValue::parseColor(text("-5pt"), false), LumValue(-5, UNIT_PT));
    EXPECT_EQ(LumValue::parseColor(text("'red'"), false).getUnit(), UNIT_QUOTED);
    EXPECT_EQ(LumValue::parseColor(text("block"), false).getUnit(), UNIT_IDENT);
    EXPECT_EQ(LumValue(text(" red ")).getColorValue().getRGB(), 0xFF0000u);
    EXPECT_EQ(LumValue(NAME_red).getColorValue().getRGB(), 0xFF0000u);
    EXPECT_EQ(LumValue(5).getColorValue().getRGB(), invalid);
}

TEST(LumColor, tellsColoursApart) {
    const LumColor red(255, 0, 0);
    EXPECT_FALSE(LumColor(red, 0.5f) == LumColor(red, 0.25f));
    EXPECT_FALSE(LumColor(red, text("A"), 1) == LumColor(red, text("B"), 1));
    EXPECT_FALSE(LumColor(red, text("A"), 1) == LumColor(red, text("A"), 1, 0, 0, 0, 0));
    EXPECT_FALSE(LumColor(red, text("P"), 0, 0, 0, 1) == LumColor(red, text("P"), 0, 0, 0, 0.5f));
    const LumColor profile(red, text("P"), 0, 0.5f, 0, 1);
    EXPECT_TRUE(LumColor(LumValue(profile)) == profile);
    EXPECT_EQ(utf8(profile.toString(false)), "rgb-icc(255,0,0,P,0,0.5,0,1)");
    EXPECT_TRUE(LumColor(red, text("#"), 0, 0, 0, 0).isInvalid());
    EXPECT_TRUE(LumColor(text(""), 1).isRegistrationName());
    EXPECT_TRUE(LumColor(text("aLL"), 1) == LumColor(text(""), 1));
}

TEST(LumColor, componentsAreItemsOfTheValue) {
    LumValue value(LumColor(LumColor(255, 0, 0), text("Gold"), 0.5f, 0, 0.25f, 1, 0));
    const LumValue ink = value.getNamedItem(NAME_HASH_SEPARATION);
    EXPECT_EQ(value.getTypeWord(), 199u);
    EXPECT_EQ(value.getNamedItem(NAME_NULL).getIntegerValue(), 0xFF0000);
    EXPECT_EQ(utf8(ink.getNamedItem(NAME_name).toString()), "Gold");
    EXPECT_EQ(ink.getNamedItem(NAME_value).getRealValue(UNIT_NUMBER), 0.5f);
    EXPECT_EQ(ink.getNamedItem(NAME_magenta).getRealValue(UNIT_NUMBER), 0.25f);
    value.removeNamedItem(NAME_HASH_SEPARATION);
    EXPECT_EQ(utf8(value.toString()), "#FF0000");
}

}  // namespace
