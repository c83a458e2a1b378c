#include <gtest/gtest.h>

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumLength.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumValue.h>
#include <support/Utf8.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

LumValue parsed(const char* text) { return LumValue::parse(UnicodeString::fromUTF8(text)); }

LumValue withUnit(int number, LumValueUnitType unit) {
    LumValue value(number);
    value.setUnit(unit);
    return value;
}

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// Counts its own lives, to see who releases it.
class Probe : public LumRCObject {
public:
    explicit Probe(int& alive) : alive_(alive) { ++alive_; }
    ~Probe() override { --alive_; }
    unsigned int getTypeID() const override { return 0x12345678u; }
    UnicodeString getTypeName() const override { return UnicodeString(u"Probe"); }

private:
    int& alive_;
};

// Every pair of units is tried: a factor of 0 in the groups means that there is no conversion.
TEST(LumValue, convertsWithinADimensionAndNowhereElse) {
    struct Group {
        LumValueUnitType unit;
        char dimension;
        double normal;  // one unit in the normal unit of the dimension
    };
    constexpr Group groups[] = {
        {UNIT_NUMBER, 'n', 1},  {UNIT_PERCENT, 'n', 0.01},  {UNIT_EM, 'e', 1},         {UNIT_EX, 'x', 1},
        {UNIT_PX, 'p', 1},      {UNIT_CM, 'l', 28.346457},  {UNIT_MM, 'l', 2.8346457}, {UNIT_IN, 'l', 72},
        {UNIT_PT, 'l', 1},      {UNIT_PC, 'l', 12},         {UNIT_JPT, 'j', 1},        {UNIT_Q, 'l', 0.70866144},
        {UNIT_DEG, 'a', 1},     {UNIT_RAD, 'a', 57.295776}, {UNIT_GRAD, 'a', 0.9},     {UNIT_MS, 't', 1},
        {UNIT_S, 't', 1000},    {UNIT_HZ, 'f', 1},          {UNIT_KHZ, 'f', 1000},     {UNIT_DPI, 'd', 1},
        {UNIT_TWIP, 'l', 0.05}, {UNIT_PT2, '2', 1},         {UNIT_PT3, '3', 1},        {UNIT_CHAR, 'c', 1},
    };
    for (const Group& from : groups) {
        for (const Group& to : groups) {
            SCOPED_TRACE(std::to_string(from.unit) + " to " + std::to_string(to.unit));
            double factor = from.dimension == to.dimension ? from.normal / to.normal : 0;
            if (from.unit == UNIT_DPI && to.unit == UNIT_NUMBER) factor = 1;
            if (from.unit == UNIT_PERCENT && to.unit == UNIT_DPI) factor = 1;
            const float result = LumValue(90.0f, from.unit).getRealValue(to.unit);
            if (factor == 0) {
                EXPECT_TRUE(std::isnan(result));
            } else {
                EXPECT_NEAR(result / (90 * factor), 1, 1e-6);
            }
        }
        EXPECT_EQ(LumValue(90.0f, from.unit).getRealValue(UNIT_NONE), 90.0f);
        EXPECT_EQ(LumLength(2, from.unit).isValid(), from.dimension == 'l');
    }
    EXPECT_EQ(LumValue(90.0f, UNIT_DEG).getRealValue(UNIT_GRAD), 100.0f);
    EXPECT_EQ(LumLength(2, UNIT_CM).getPoints(), 56.692914f);
    EXPECT_EQ(LumLength(20, UNIT_TWIP).getPoints(), 1.0f);
    EXPECT_TRUE(std::isnan(LumValue(UnicodeString(u"1")).getRealValue(UNIT_NONE)));
    EXPECT_TRUE(LumValue::getUnitString(static_cast<LumValueUnitType>(32)).isEmpty());
}

TEST(LumValue, roundsRealsToIntegersWithinTheirRange) {
    struct Case {
        const char* fault;
        float real;
        int integer;
    };
    constexpr Case cases[] = {
        {"half down", 2.5f, 3},
        {"half away from zero", -2.5f, -2},
        {"adds the half in float", 0.49999997f, 0},
        {"converts what is too large", 3e9f, largest},
        {"converts what is too small", -3e9f, smallest},
        {"loses the smallest integer", -2147483648.0f, smallest},
        {"converts an infinity", infinity, largest},
        {"converts what is no number", std::numeric_limits<float>::quiet_NaN(), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(LumValue(c.real, UNIT_PT).getIntegerValue(), c.integer);
    }
}

TEST(LumValue, combinesNumbersOfOneDimension) {
    struct Case {
        const char* fault;
        LumValue left;
        char operation;
        LumValue right;
        LumValueUnitType unit;
        LumValueKind kind;
        double value;
    };
    const auto combine = [](const Case& c) -> LumValue {
        if (c.operation == '+') return c.left + c.right;
        if (c.operation == '-') return c.left - c.right;
        if (c.operation == '*') return c.left * c.right;
        return c.operation == '/' ? c.left / c.right : c.left % c.right;
    };
    const Case cases[] = {
        {"traps or saturates", LumValue(largest), '+', LumValue(1), UNIT_NUMBER, KIND_INTEGER, smallest},
        {"traps on the smallest", LumValue(0), '-', LumValue(smallest), UNIT_NUMBER, KIND_INTEGER, smallest},
        {"keeps a unit that is not normal", parsed("1cm"), '+', parsed("1cm"), UNIT_CM, KIND_REAL, 2},
        {"does not normalise", parsed("1in"), '+', parsed("3pt"), UNIT_PT, KIND_REAL, 75},
        {"loses the integer of the right side", parsed("1.5pt"), '-', withUnit(3, UNIT_PT), UNIT_PT, KIND_REAL, -1.5},
        {"loses the integer of the left side", withUnit(3, UNIT_PT), '-', parsed("1in"), UNIT_PT, KIND_REAL, -69},
        {"adds numbers and lengths", parsed("1pt"), '+', LumValue(1), UNIT_NONE, KIND_NULL, 0},
        {"adds texts", LumValue(UnicodeString(u"1")), '+', LumValue(1), UNIT_NONE, KIND_NULL, 0},
        {"wrong remainder", LumValue(7), '%', LumValue(3), UNIT_NUMBER, KIND_INTEGER, 1},
        {"sign of the divisor", LumValue(-7), '%', LumValue(3), UNIT_NUMBER, KIND_INTEGER, -1},
        {"negative zero of a multiple", LumValue(-6), '%', LumValue(3), UNIT_NUMBER, KIND_INTEGER, 0},
        {"traps on the smallest by -1", LumValue(smallest), '%', LumValue(-1), UNIT_NUMBER, KIND_INTEGER, 0},
        {"traps on zero", LumValue(7), '%', LumValue(0), UNIT_NONE, KIND_NULL, 0},
        {"mixed kinds as integers", LumValue(7.5f, UNIT_NUMBER), '%', LumValue(2), UNIT_NUMBER, KIND_REAL, 1.5},
        {"integer product", LumValue(2), '*', LumValue(3), UNIT_NUMBER, KIND_REAL, 6},
        {"product with no unit", withUnit(3, UNIT_NONE), '*', LumValue(2), UNIT_NONE, KIND_REAL, 6},
        {"product by no unit", LumValue(2), '*', withUnit(3, UNIT_NONE), UNIT_NONE, KIND_REAL, 6},
        {"no unit takes a length", withUnit(3, UNIT_NONE), '*', parsed("2pt"), UNIT_NONE, KIND_NULL, 0},
        {"quotient of no unit", withUnit(3, UNIT_NONE), '/', LumValue(2), UNIT_NONE, KIND_REAL, 1.5},
        {"percentage as it is", parsed("50%"), '*', parsed("2pt"), UNIT_PT, KIND_REAL, 1},
        {"no area", parsed("2pt"), '*', parsed("1in"), UNIT_PT2, KIND_REAL, 144},
        {"no volume", LumValue(2.0f, UNIT_PT2), '*', parsed("3pt"), UNIT_PT3, KIND_REAL, 6},
        {"no volume from the left", parsed("3pt"), '*', LumValue(2.0f, UNIT_PT2), UNIT_PT3, KIND_REAL, 6},
        {"a fourth dimension", LumValue(2.0f, UNIT_PT3), '*', parsed("3pt"), UNIT_NONE, KIND_NULL, 0},
        {"em times pt", parsed("2em"), '*', parsed("3pt"), UNIT_NONE, KIND_NULL, 0},
        {"unit of a ratio", parsed("6pt"), '/', parsed("2pt"), UNIT_NUMBER, KIND_REAL, 3},
        {"ratio of percentages", parsed("50%"), '/', parsed("25%"), UNIT_NUMBER, KIND_REAL, 2},
        {"length by number", parsed("1in"), '/', LumValue(2), UNIT_PT, KIND_REAL, 36},
        {"number by length", LumValue(2), '/', parsed("4pt"), UNIT_NONE, KIND_NULL, 0},
        {"volume by length", LumValue(6.0f, UNIT_PT3), '/', parsed("2pt"), UNIT_PT2, KIND_REAL, 3},
        {"area by length", LumValue(6.0f, UNIT_PT2), '/', parsed("2pt"), UNIT_PT, KIND_REAL, 3},
        {"volume by area", LumValue(6.0f, UNIT_PT3), '/', LumValue(2.0f, UNIT_PT2), UNIT_PT, KIND_REAL, 3},
        {"refuses zero", LumValue(1), '/', LumValue(0), UNIT_NUMBER, KIND_REAL, static_cast<double>(infinity)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LumValue result = combine(c);
        EXPECT_EQ(result.getKind(), c.kind);
        EXPECT_EQ(result.getUnit(), c.unit);
        if (c.kind == KIND_NULL) continue;
        EXPECT_EQ(static_cast<double>(result.getRealValue(UNIT_NONE)), c.value);
    }
}

TEST(LumValue, roundsAndNegates) {
    EXPECT_EQ((-LumValue(smallest)).getIntegerValue(), smallest);
    EXPECT_TRUE(std::signbit((-LumValue(0.0f, UNIT_PT)).getRealValue(UNIT_PT)));
    EXPECT_EQ(parsed("-3cm").abs().getTypeWord(), parsed("3cm").getTypeWord());
    EXPECT_EQ(parsed("-2.5").round().getRealValue(UNIT_NUMBER), -2.0f);
    EXPECT_EQ(parsed("-2.5").ceiling().getKind(), KIND_REAL);
    EXPECT_EQ(LumValue(3).floor().getKind(), KIND_INTEGER);
    EXPECT_TRUE(parsed("2.5pt").floor().isNull());
    EXPECT_TRUE((-LumValue(UnicodeString(u"1"))).isNull());
}

TEST(LumValue, comparesAcrossUnitsAndKinds) {
    LumValue quoted(UnicodeString(u"bold"));
    quoted.setUnit(UNIT_QUOTED);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Case {
        const char* fault;
        LumValue a, b;
        bool isEqual, isLess, isGreater;
    };
    const Case cases[] = {
        {"units compared before values", parsed("1in"), parsed("72pt"), true, false, false},
        {"values compared without units", parsed("1in"), parsed("73pt"), false, true, false},
        {"length equals number", parsed("1in"), LumValue(72), false, false, true},
        {"em equals pt", parsed("1em"), parsed("12pt"), false, true, false},
        {"kinds of numbers differ", LumValue(3), LumValue(3.0f, UNIT_NUMBER), true, false, false},
        {"no number equals itself", LumValue(nan, UNIT_PT), LumValue(nan, UNIT_PT), false, false, false},
        {"name and string differ", LumValue(UnicodeString(u"bold")), LumValue(NAME_bold), true, false, false},
        {"string and name by kind", LumValue(UnicodeString(u"c")), LumValue(NAME_bold), false, false, true},
        {"quoted equals plain", quoted, LumValue(UnicodeString(u"bold")), false, false, true},
        {"names by text", LumValue(NAME_zoom), LumValue(NAME_block), false, false, true},
        {"nulls differ", LumValue(), LumValue(), true, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(c.a == c.b, c.isEqual);
        EXPECT_EQ(c.a < c.b, c.isLess);
        EXPECT_EQ(c.a > c.b, c.isGreater);
        EXPECT_EQ(c.b == c.a, c.isEqual);
        EXPECT_EQ(c.a <= c.b, !c.isGreater);
    }
}

TEST(LumValue, keepsTheNameBitsWhenKindOrUnitChange) {
    LumValue value(parsed("1in"));
    value.setNameKey(NAME_block);
    value.normalizeUnit();
    EXPECT_EQ(value.getNameKey(), NAME_block);
    value *= parsed("1in");
    EXPECT_EQ(value.getNameKey(), NAME_block);
    value.makeCompound();
    EXPECT_EQ(value.getNameKey(), NAME_block);
    EXPECT_EQ(value.getKind(), KIND_COMPOUND);
    EXPECT_EQ(value.getNamedItem(NAME_NULL).getUnit(), UNIT_PT2);
}

TEST(LumValue, sharesObjectsAndCopiesStrings) {
    int alive = 0;
    {
        LumValue object(static_cast<LumRCObject*>(new Probe(alive)));
        LumValue copy(object);
        EXPECT_EQ(object.getRCObject()->getRefCount(), 2);
        EXPECT_EQ(utf8(copy.toString()), "##Probe");
        object = LumValue(UnicodeString(u"text"));
        EXPECT_EQ(alive, 1);
        LumValue moved(std::move(copy));
        EXPECT_TRUE(copy.isNull());  // NOLINT: what a move leaves is promised
        moved = *&moved;
        EXPECT_EQ(moved.getRCObject()->getRefCount(), 1);
        const LumValue text(object);
        EXPECT_NE(text.getStringPointer(), object.getStringPointer());
        EXPECT_TRUE(text == object);
    }
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(LumValue(static_cast<LumNamedValueMap*>(nullptr)).isNull());
    EXPECT_TRUE(LumValue(nullptr).isNull());
}

TEST(LumValue, compoundsAreSharedByTheirCopies) {
    LumValue value(3);
    EXPECT_TRUE(value.getNamedItem(NAME_NULL) == value && value.getNamedItem(NAME_length).isNull());
    value.setNamedItem(NAME_length, value);  // the argument is what makeCompound() changes
    const LumValue copy(value);
    value.setNamedItem(NAME_value, LumValue(UnicodeString(u"a")));
    EXPECT_EQ(utf8(copy.toString()), "{.: 3; length: 3; value: a}");
    value.removeNamedItem(NAME_length);
    EXPECT_EQ(copy.getNamedValueMap()->getCount(), 2);
    EXPECT_TRUE(copy == value);
    EXPECT_FALSE(copy == LumValue(copy.getNamedValueMap()->clone().get()));
}

TEST(LumValue, takesTheLengthOfACompound) {
    LumValue value;
    value.makeCompound();
    EXPECT_FALSE(value.getLengthValue().isValid());
    value.setNamedItem(NAME_NULL, parsed("1in"));
    EXPECT_EQ(value.getLengthValue().getPoints(), 72.0f);
    value.setNamedItem(NAME_length, parsed("2pt"));
    EXPECT_EQ(LumLength(value).getPoints(), 2.0f);
    LumValue outer;
    outer.setNamedItem(NAME_length, value);
    EXPECT_EQ(outer.getLengthValue().getPoints(), 2.0f);
    value.setNamedItem(NAME_length, outer);  // a cycle
    EXPECT_FALSE(outer.getLengthValue().isValid());
    value.removeNamedItem(NAME_length);
}

// A million levels: recursion on any of the operations overflows the stack.
TEST(LumValue, deepCompoundsTakeNoStack) {
    int alive = 0;
    constexpr int depth = 1'000'000;
    LumValue value(static_cast<LumRCObject*>(new Probe(alive)));
    for (int i = 0; i < depth; ++i) {
        LumValue outer;
        outer.setNamedItem(NAME_NULL, value);
        // Every other level is held as a plain object, which releases its map in the same way.
        value = i % 2 ? outer : LumValue(outer.getRCObject());
    }
    EXPECT_EQ(alive, 1);
    value = LumValue();
    EXPECT_EQ(alive, 0);

    value = LumValue(1);
    for (int i = 0; i < depth; ++i) {
        LumValue outer;
        outer.setNamedItem(NAME_NULL, value);
        value = outer;
    }
    EXPECT_EQ(value.toString().length(), depth * 5 + 1);
    EXPECT_EQ(value.getColorValue().getRGB(), LumColor::RGB_INVALID);
    EXPECT_FALSE(value.getLengthValue().isValid());
}

}  // namespace
