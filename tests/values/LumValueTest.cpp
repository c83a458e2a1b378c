#include <gtest/gtest.h>

#include <lumcommon/lumcommon.h>
#include <support/CountedMemory.h>
#include <support/Utf8.h>

#include <cmath>

namespace {

using namespace LumCommon;
using LumTest::utf8;

LumValue parsed(const char* text) { return LumValue::parse(UnicodeString::fromUTF8(text)); }

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

TEST(LumValue, convertsExactly) {
    EXPECT_EQ(LumValue(90.0f, UNIT_DEG).getRealValue(UNIT_GRAD), 100.0f);
    EXPECT_EQ(LumLength(2, UNIT_CM).getPoints(), 56.692914f);
    EXPECT_EQ(LumLength(20, UNIT_TWIP).getPoints(), 1.0f);
    EXPECT_TRUE(std::isnan(LumValue(UnicodeString(u"1")).getRealValue(UNIT_NONE)));
    EXPECT_TRUE(LumValue::getUnitString(static_cast<LumValueUnitType>(32)).isEmpty());
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

TEST(LumValue, compoundsAreSharedByTheirCopiesAndPrinted) {
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

    LumValue empty, nested(1);
    empty.makeCompound();
    nested.setNamedItem(NAME_value, LumValue());
    nested.setNamedItem(NAME_length, empty);
    nested.setNamedItem(NAME_width, LumValue(2.5f, UNIT_Q));
    EXPECT_EQ(utf8(nested.toString()), "{.: 1; length: {}; width: 2.5q}") << "null items, separators";
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

TEST(LumNamedValueMap, keepsOneEntryForEachNameInTheirOrderUntilItIsRemoved) {
    LumPtr<LumNamedValueMap> map(new LumNamedValueMap);
    map->setNamedItem(NAME_zoom, LumValue(3));
    map->setNamedItem(NAME_block, LumValue(2));
    map->setNamedItem(LumNamedValue(NAME_NULL, LumValue(1)));
    map->setNamedItem(NAME_zoom, LumValue(4));
    ASSERT_EQ(map->getCount(), 3);
    LumNamedValueMapIterator iterator(map.get());
    EXPECT_FALSE(iterator.hasPrevious());
    const std::pair<LumNameEnum, int> expected[] = {{NAME_NULL, 1}, {NAME_block, 2}, {NAME_zoom, 4}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(map->item(i).getName(), expected[i].first);
        EXPECT_EQ(iterator.next().getIntegerValue(), expected[i].second);
    }
    EXPECT_TRUE(map->item(3).isNull() && map->item(-1).isNull());
    EXPECT_FALSE(iterator.hasNext());
    EXPECT_TRUE(iterator.next().isNull());
    EXPECT_EQ(iterator.previous().getIntegerValue(), 4);
    iterator.setToStart();
    EXPECT_TRUE(iterator.previous().isNull());
    iterator.setToEnd();
    EXPECT_EQ(iterator.previous().getName(), NAME_zoom);

    EXPECT_EQ(map->getNamedItem(NAME_width).getName(), NAME_width);
    EXPECT_TRUE(map->getNamedItem(NAME_width).isNull());
    const LumPtr<LumNamedValueMap> copy = map->clone();
    map->removeNamedItem(NAME_block, LumValue(3));
    EXPECT_EQ(map->getCount(), 3) << "removed with another value";
    map->removeNamedItem(NAME_block, LumValue(2.0f, UNIT_NUMBER));
    EXPECT_EQ(map->getCount(), 2);
    map->removeNamedItem(NAME_block);
    EXPECT_EQ(copy->getNamedItem(NAME_block).getIntegerValue(), 2);
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
    value = LumValue(1);
    EXPECT_EQ(alive, 0);
    for (int i = 0; i < depth; ++i) {
        LumValue outer;
        outer.setNamedItem(NAME_NULL, value);
        value = outer;
    }
    EXPECT_EQ(value.toString().length(), depth * 5 + 1);
    EXPECT_EQ(value.getColorValue().getRGB(), LumColor::RGB_INVALID);
    EXPECT_FALSE(value.getLengthValue().isValid());
}

// What needs no memory of its own takes none.
TEST(Allocation, numbersNamesAndColoursTakeNone) {
    ASSERT_TRUE(LumTest::countMemoryOfIcu());
    LumNameTable::addRefSharedNameTable();
    constexpr std::pair<const char16_t*, bool> cases[] = {
        {u"-12.5pt", true},
        {u"0.123456789012345678901234567890", true},
        {u"a.name.beyond.the.units.that.a.short.string.holds", true},
        {u"#FF8000", true},
        {u"LightGoldenrodYellow", true},
        {u"rgb( 100% , 127 , 0 )", true},
        {u"rgb-icc(#CMYK,0,0,0,1)", false},
    };
    for (const auto& [text, isFree] : cases) {
        const UnicodeString string(text);
        LumValue::parse(string);  // a new name is interned once
        LumColor(LumName(string));
        const bool isFunction = string.indexOf(u'(') > 0;
        const std::size_t before = LumTest::allocations;
        {
            const LumValue value = isFunction ? LumValue::parseColor(string, false) : LumValue::parse(string);
            const LumValue copy(value);
            const LumValue color = LumValue::parseColor(string, true);
            if (value.getKind() != KIND_STRING) value.getColorValue();
        }
        EXPECT_EQ(LumTest::allocations == before, isFree)
            << LumTest::allocations - before << " allocations of " << string.length() << " units";
    }
    LumNameTable::releaseSharedNameTable();
}

}  // namespace
