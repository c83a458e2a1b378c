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
    struct Case {
        const char* fault;
        const char16_t* text;
        bool isFree;
    };
    constexpr Case cases[] = {
        {"number", u"-12.5pt", true},
        {"digits beyond a short string", u"0.123456789012345678901234567890", true},
        {"name of the document", u"a.name.beyond.the.units.that.a.short.string.holds", true},
        {"hash colour", u"#FF8000", true},
        {"keyword", u"LightGoldenrodYellow", true},
        {"colour function", u"rgb( 100% , 127 , 0 )", true},
        {"print colour", u"rgb-icc(#CMYK,0,0,0,1)", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const UnicodeString text(c.text);
        LumValue::parse(text);  // a new name is interned once
        LumColor(LumName(text));
        const bool isFunction = text.indexOf(u'(') > 0;
        const std::size_t before = LumTest::allocations;
        {
            const LumValue value = isFunction ? LumValue::parseColor(text, false) : LumValue::parse(text);
            const LumValue copy(value);
            const LumValue color = LumValue::parseColor(text, true);
            if (value.getKind() != KIND_STRING) value.getColorValue();
        }
        EXPECT_EQ(LumTest::allocations == before, c.isFree) << LumTest::allocations - before << " allocations";
    }
    LumNameTable::releaseSharedNameTable();
}

}  // namespace
