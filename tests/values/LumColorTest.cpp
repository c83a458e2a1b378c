#include <gtest/gtest.h>

#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumValue.h>
#include <support/Utf8.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

const LumColor red(255, 0, 0);

TEST(LumColor, convertsBetweenModels) {
    const struct {
        const char* fault;
        std::uint32_t rgb, expected;
    } cases[] = {
        {"black", LumColor::cmyk2rgb(0, 0, 0, 1), 0},
        {"cyan", LumColor::cmyk2rgb(1, 0, 0, 0), 0x00FFFF},
        {"beyond 1", LumColor::cmyk2rgb(2, -1, 0, 0), 0x00FFFF},
        {"half of gray rounded down", LumColor(0.5f).getRGB(), 0x808080},
        {"gray beyond 1", LumColor(7.0f).getRGB(), 0xFFFFFF},
        {"gray of no number", LumColor(std::nanf("")).getRGB(), 0},
        {"channels clamped", LumColor(300, -5, 10).getRGB(), 0xFF000A},
        {"dark", LumColor::fromRGB(0xFFFFFF).getDark().getRGB(), 0xAAAAAA},
        {"light", LumColor().getLight().getRGB(), 0x808080},
        {"tint as gray", LumColor(u"Gold", 0.5f).getRGB(), 0x808080},
        {"tint of the alternative", LumColor(u"Gold", 0.5f, 1, 0, 0, 0).getSeparationRGB(), 0x80FFFF},
        {"tint of the fallback", LumColor(red, u"Gold", 0.5f).getSeparationRGB(), 0xFF8080},
        {"full tint", LumColor(red, u"Gold", 1.0f, 1, 0, 0, 0).getSeparationRGB(), 0xFF0000},
        {"value with white space", LumValue(u" red ").getColorValue().getRGB(), 0xFF0000},
        {"name as a value", LumValue(NAME_red).getColorValue().getRGB(), 0xFF0000},
        {"number as a value", LumValue(5).getColorValue().getRGB(), LumColor::RGB_INVALID},
    };
    for (const auto& c : cases) EXPECT_EQ(c.rgb, c.expected) << c.fault;
    const LumColor orange = LumColor::rgb2cmyk(0xFF8000);
    EXPECT_FLOAT_EQ(orange.getComponent(0), 0);
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

TEST(LumColor, readsWhatItPrintsOrLosesHalfAMillionth) {
    std::mt19937 random(20);
    const auto component = [&random] { return static_cast<float>(random()) / static_cast<float>(random.max()); };
    constexpr const char16_t* names[] = {u"Gold", u"all", u"ALL", u"Deep 'Blue'", u"a, b)", u"#1", u"12pt", u"\u91D1"};
    float worst = 0;
    for (int i = 0; i < 5'000; ++i) {
        const LumColor fallback = LumColor::fromRGB(random() % 2 ? random() & 0xFFFFFF : 0xD3D3D3);
        const UnicodeString name(names[random() % std::size(names)]);
        const float c = component(), m = component(), y = component(), k = component(), tint = component();
        for (const LumColor& color :
             {fallback, LumColor(c), LumColor(fallback, c), LumColor(c, m, y, k), LumColor(fallback, c, m, y, k),
              LumColor(name, tint), LumColor(fallback, name, tint), LumColor(name, tint, c, m, y, k),
              LumColor(fallback, name, tint, c, m, y, k), LumColor(fallback, name, 1, 0, 0.25f, 0.5f, 1)}) {
            ASSERT_TRUE(LumColor{LumValue(color)} == color);
            for (const bool svgForm : {false, true}) {
                SCOPED_TRACE(utf8(color.toString(svgForm)));
                const LumColor read = readBack(color, svgForm);
                ASSERT_EQ(read.getColorSpace(), color.getColorSpace());
                // In the second form the RGB stands in front whether it was given or not.
                ASSERT_EQ(read.isRgbGiven(), color.isRgbGiven() || (svgForm && color.isTintGiven()));
                ASSERT_EQ(read.isTintGiven(), color.isTintGiven());
                ASSERT_EQ(read.isCmykGiven(), color.isCmykGiven());
                ASSERT_TRUE(readBack(read, svgForm) == read);
                // Where no RGB is printed, the gray of the tint may fall on the other side of a half.
                ASSERT_NEAR(read.getRGB() & 0xFF, color.getRGB() & 0xFF, 1);
                for (int j = 0; j < (color.isTintGiven() && !color.isCmykGiven() ? 1 : 5); ++j) {
                    worst = std::max(worst, std::abs(read.getComponent(j) - color.getComponent(j)));
                }
            }
        }
    }
    EXPECT_LE(worst, 5.1e-7f);
    EXPECT_GT(worst, 4e-7f) << "nothing was lost, so the test says nothing";
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
        EXPECT_EQ(LumColor(LumName(upper.toUpper())).getRGB(), color.getRGB());
        EXPECT_TRUE(LumColor(LumName(upper.append(u'x'))).isInvalid());
    }
    EXPECT_EQ(keywords, 149);
    EXPECT_EQ(unprinted, (std::set<std::string>{"aqua", "darkgrey", "darkslategrey", "dimgrey", "fuchsia", "grey",
                                                "lightgrey", "lightslategrey", "slategrey"}));
}

}  // namespace
