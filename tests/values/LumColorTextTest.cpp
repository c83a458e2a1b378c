// What is printed is read again as the same colour, over made colours of every model.

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

std::mt19937 random(20);

/// 0 to 1. `isShort`: of at most six digits, which are all printed.
float makeComponent(bool isShort) {
    if (random() % 8 == 0) return static_cast<float>(random() % 2);
    if (isShort) return static_cast<float>(random() % 1'000'001) / 1'000'000;
    return static_cast<float>(random()) / static_cast<float>(std::mt19937::max());
}

UnicodeString makeInkName() {
    constexpr const char16_t* names[] = {u"Gold", u"all", u"ALL", u"Deep 'Blue'", u"a, b)", u"#1", u"12pt", u"\u91D1"};
    return UnicodeString(names[random() % std::size(names)]);
}

enum Model { plain, gray, cmyk, ink, inkWithAlternative, modelCount };

LumColor makeColor(Model model, bool hasFallback, bool isShort) {
    const LumColor fallback = LumColor::fromRGB(random() % 2 ? random() & 0xFFFFFF : 0xD3D3D3);
    const auto component = [isShort] { return makeComponent(isShort); };
    const float c = component(), m = component(), y = component(), k = component(), tint = component();
    const UnicodeString name = makeInkName();
    switch (model) {
        case gray:
            return hasFallback ? LumColor(fallback, c) : LumColor(c);
        case cmyk:
            return hasFallback ? LumColor(fallback, c, m, y, k) : LumColor(c, m, y, k);
        case ink:
            return hasFallback ? LumColor(fallback, name, tint) : LumColor(name, tint);
        case inkWithAlternative:
            return hasFallback ? LumColor(fallback, name, tint, c, m, y, k) : LumColor(name, tint, c, m, y, k);
        default:
            return fallback;
    }
}

LumColor readBack(const LumColor& color, bool svgForm) {
    return LumColor(LumValue::parseColor(color.toString(svgForm), svgForm));
}

/// The largest difference of a component that counts.
double distance(const LumColor& a, const LumColor& b) {
    double largest = 0;
    for (int i = 0; i < (a.getColorSpace() == NAME_HASH_SEPARATION && !a.isCmykGiven() ? 1 : 5); ++i) {
        largest = std::max(largest,
                           std::abs(static_cast<double>(a.getComponent(i)) - static_cast<double>(b.getComponent(i))));
    }
    return largest;
}

TEST(LumColorText, readsWhatItPrintsOrLosesHalfAMillionth) {
    double worst = 0;
    for (int i = 0; i < 40'000; ++i) {
        const bool isShort = random() % 2;
        const LumColor color = makeColor(static_cast<Model>(i % modelCount), random() % 2, isShort);
        for (const bool svgForm : {false, true}) {
            SCOPED_TRACE(utf8(color.toString(svgForm)));
            const LumColor read = readBack(color, svgForm);
            ASSERT_EQ(read.getColorSpace(), color.getColorSpace());
            // In the second form the RGB stands in front whether it was given or not.
            ASSERT_EQ(read.isRgbGiven(), color.isRgbGiven() || (svgForm && color.isTintGiven()));
            ASSERT_EQ(read.isTintGiven(), color.isTintGiven());
            ASSERT_EQ(read.isCmykGiven(), color.isCmykGiven());
            if (isShort) {
                ASSERT_TRUE(read == color);
                continue;
            }
            worst = std::max(worst, distance(read, color));
            ASSERT_TRUE(readBack(read, svgForm) == read) << "a second reading differs from the first";
            // Where no RGB is printed, the gray of the tint may fall on the other side of a half.
            ASSERT_LE(std::abs(static_cast<int>(read.getRGB() & 0xFF) - static_cast<int>(color.getRGB() & 0xFF)), 1);
        }
        const LumColor fromValue{LumValue(color)};
        ASSERT_TRUE(fromValue == color);
        ASSERT_EQ(utf8(fromValue.toString(false)), utf8(color.toString(false)));
    }
    EXPECT_LE(worst, 5.1e-7);
    EXPECT_GT(worst, 4e-7) << "nothing was lost, so the test says nothing";
}

TEST(LumColorText, tellsWhatDoesNotComeBack) {
    const LumColor red(255, 0, 0);
    const struct {
        const char* reason;
        LumColor color;
        const char* printed;
        std::uint32_t rgb;
    } cases[] = {
        {"a marker is its keyword", LumColor(LumColor::fromRGB(LumColor::RGB_TRANSPARENT), 0.5f), "transparent", ~0u},
        {"the quote ends the name", LumColor(red, u"a\"b", 1), "rgb-icc(255,0,0,#SEPARATION,\"a\"b\",1)", 0xFF000000},
        {"no syntax for profiles", LumColor(red, u"P", 0, 0.5f, 0, 1), "rgb-icc(255,0,0,P,0,0.5,0,1)", 0xFF000000},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reason);
        EXPECT_EQ(utf8(c.color.toString(false)), c.printed);
        EXPECT_EQ(readBack(c.color, false).getRGB(), c.rgb);
        EXPECT_FALSE(readBack(c.color, true) == c.color);
        EXPECT_TRUE(LumColor(LumValue(c.color)) == c.color) << "a value keeps it all the same";
    }
}

TEST(LumColorText, aSeparationKeepsWhatWasGiven) {
    // A tint that was not written is none of these, yet counts as 1.
    for (const char16_t* text : {u"rgb-icc(#SEPARATION,\"Gold\")", u"rgb-icc(1,2,3,#SEPARATION,\"Gold\")",
                                 u"rgb-icc(#REGISTRATION)", u"rgb-icc(1,2,3,#REGISTRATION)"}) {
        const LumColor color(LumValue::parseColor(text, false));
        SCOPED_TRACE(utf8(text));
        EXPECT_EQ(color.getComponent(0), 1.0f);
        EXPECT_FALSE(color.isTintGiven() || color.isCmykGiven());
        EXPECT_EQ(utf8(color.toString(false)), utf8(text));
        EXPECT_TRUE(readBack(color, true) == color);
    }
    // An alternative can only be written behind a tint, so a value that lacks one gets it.
    LumValue value(LumColor(u"Gold", 0.5f, 0, 0.25f, 1, 0));
    LumValue separation = value.getNamedItem(NAME_HASH_SEPARATION);  // the same map
    separation.removeNamedItem(NAME_value);
    EXPECT_EQ(utf8(value.toString()), "rgb-icc(#SEPARATION,\"Gold\",1,0,0.25,1,0)");
}

// Over the whole vocabulary: 147 keywords and two markers, and of those that share a value one is printed.
TEST(LumColorText, findsEveryKeywordBothWays) {
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
