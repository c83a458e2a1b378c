#include <gtest/gtest.h>

#include <lumcommon/lumcommon.h>
#include <support/Utf8.h>

#include <cmath>
#include <set>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

const LumColor red(255, 0, 0);

TEST(LumColor, convertsBetweenModels) {
    EXPECT_EQ(LumColor::cmyk2rgb(2, -1, 0, 0), 0x00FFFFu) << "beyond 1";
    EXPECT_EQ(LumColor(7.0f).getRGB(), 0xFFFFFFu) << "gray beyond 1";
    EXPECT_EQ(LumColor(std::nanf("")).getRGB(), 0u) << "gray of no number";
    EXPECT_EQ(LumColor::fromRGB(0x3060C0).getDark().getRGB(), 0x204080u);
    EXPECT_EQ(LumColor::fromRGB(0x3060C0).getLight().getRGB(), 0x98B0E0u);
    EXPECT_EQ(LumColor(u"Gold", 0.5f, 1, 0, 0, 0).getSeparationRGB(), 0x80FFFFu) << "tint of the alternative";
    EXPECT_EQ(LumColor(red, u"Gold", 0.5f).getSeparationRGB(), 0xFF8080u) << "tint of the fallback";
    EXPECT_EQ(LumColor(red, u"Gold", 1.0f, 1, 0, 0, 0).getSeparationRGB(), 0xFF0000u) << "full tint";
    EXPECT_EQ(LumValue(u" red ").getColorValue().getRGB(), 0xFF0000u);
    EXPECT_EQ(LumValue(NAME_red).getColorValue().getRGB(), 0xFF0000u);
    EXPECT_EQ(LumValue(5).getColorValue().getRGB(), LumColor::RGB_INVALID);
    const LumColor orange = LumColor::rgb2cmyk(0xFF8040);
    EXPECT_NEAR(orange.getComponent(2), 0.749, 0.001);
    EXPECT_NEAR(orange.getComponent(1), 0.498, 0.001);
    EXPECT_FLOAT_EQ(orange.getComponent(3), 0);
}

TEST(LumColor, tellsColoursApart) {
    EXPECT_FALSE(LumColor(red, 0.5f) == LumColor(red, 0.25f));
    EXPECT_FALSE(LumColor(red, u"A", 1) == LumColor(red, u"B", 1));
    EXPECT_FALSE(LumColor(red, u"A", 1) == LumColor(red, u"A", 1, 0, 0, 0, 0));
    EXPECT_FALSE(LumColor(red, u"P", 0, 0, 0, 1) == LumColor(red, u"P", 0, 0, 0, 0.5f));
    EXPECT_TRUE(LumColor(red, u"#", 0, 0, 0, 0).isInvalid());
    EXPECT_TRUE(LumColor(u"", 1).isRegistrationName());
    EXPECT_TRUE(LumColor(u"aLL", 1) == LumColor(u"", 1));
}

TEST(LumColor, componentsAreItemsOfTheValue) {
    LumValue value(LumColor(red, u"Gold", 0.5f, 0, 0.25f, 1, 0));
    LumValue ink = value.getNamedItem(NAME_HASH_SEPARATION);  // the same map
    EXPECT_EQ(value.getTypeWord(), 199u);
    EXPECT_EQ(value.getNamedItem(NAME_NULL).getIntegerValue(), 0xFF0000);
    EXPECT_EQ(utf8(ink.getNamedItem(NAME_name).toString()), "Gold");
    EXPECT_EQ(ink.getNamedItem(NAME_value).getRealValue(UNIT_NUMBER), 0.5f);
    EXPECT_EQ(ink.getNamedItem(NAME_magenta).getRealValue(UNIT_NUMBER), 0.25f);
    ink.removeNamedItem(NAME_value);
    EXPECT_EQ(utf8(value.toString()), "rgb-icc(255,0,0,#SEPARATION,\"Gold\",1,0,0.25,1,0)") << "no tint to write";
    value.removeNamedItem(NAME_HASH_SEPARATION);
    EXPECT_EQ(utf8(value.toString()), "#FF0000");
}

LumColor readBack(const LumColor& color, bool svgForm) {
    return LumColor(LumValue::parseColor(color.toString(svgForm), svgForm));
}

TEST(LumColor, aValueKeepsWhatNoTextCanSay) {
    const struct {
        const char* reason;
        LumColor color;
        const char* printed;
    } cases[] = {
        {"a marker is its keyword", LumColor(LumColor::fromRGB(LumColor::RGB_TRANSPARENT), 0.5f), "transparent"},
        {"the quote ends the name", LumColor(red, u"a\"b", 1), "rgb-icc(255,0,0,#SEPARATION,\"a\"b\",1)"},
        {"no syntax for profiles", LumColor(red, u"P", 0, 0.5f, 0, 1), "rgb-icc(255,0,0,P,0,0.5,0,1)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reason);
        EXPECT_EQ(utf8(c.color.toString(false)), c.printed);
        EXPECT_FALSE(readBack(c.color, false) == c.color || readBack(c.color, true) == c.color);
        EXPECT_TRUE(LumColor(LumValue(c.color)) == c.color);
    }
    // A tint that was not written is none of these, yet counts as 1.
    const LumColor untinted(LumValue::parseColor(u"rgb-icc(#REGISTRATION)", false));
    EXPECT_EQ(untinted.getComponent(0), 1.0f);
    EXPECT_FALSE(untinted.isTintGiven() || untinted.isCmykGiven());
}

// Over the whole vocabulary: 147 keywords and two markers, and of those that share a value one is printed.
TEST(LumColor, findsEveryKeywordBothWays) {
    int keywords = 0;
    std::set<std::string> unprinted;
    for (unsigned id = 1; id <= NAME_LAST_BUILTIN; ++id) {
        const LumName name(static_cast<LumNameEnum>(id));
        const LumColor color{name};
        if (color.isInvalid()) continue;
        ++keywords;
        EXPECT_EQ(LumColor(color.getColorName()).getRGB(), color.getRGB());
        if (color.getColorName() != name) unprinted.insert(utf8(name.getString()));
        UnicodeString upper(name.getString());
        EXPECT_EQ(LumColor(LumName(upper.toUpper(""))).getRGB(), color.getRGB());
        EXPECT_TRUE(LumColor(LumName(upper.append(u'x'))).isInvalid());
    }
    EXPECT_EQ(keywords, 149);
    EXPECT_EQ(unprinted, (std::set<std::string>{"aqua", "darkgrey", "darkslategrey", "dimgrey", "fuchsia", "grey",
                                                "lightgrey", "lightslategrey", "slategrey"}));
}

}  // namespace
