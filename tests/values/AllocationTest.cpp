// What needs no memory of its own takes none.

#include <gtest/gtest.h>

#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumValue.h>
#include <support/CountedMemory.h>

namespace {

using namespace LumCommon;

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
