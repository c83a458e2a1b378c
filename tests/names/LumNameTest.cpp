#include <gtest/gtest.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/SVGName.h>
#include <lumcommon/values/LumValue.h>

#include <set>
#include <string>

namespace LumCommon {
namespace {

class LumNameTest : public testing::Test {
protected:
    LumNameTest() {
        LumNameTable::addRefSharedNameTable();
        LumNameTable::releaseSharedNameTable();
        LumNameTable::addRefSharedNameTable();
    }
    ~LumNameTest() override { LumNameTable::releaseSharedNameTable(); }
};

TEST_F(LumNameTest, aNameIsItsIdentifier) {
    EXPECT_TRUE(LumName().isNull() && LumName().getString().isEmpty());
    EXPECT_EQ(LumName(UnicodeString(u"block")), NAME_block);
    EXPECT_EQ(LumName(NAME_block).getString(), UnicodeString(u"block"));
    EXPECT_NE(LumName(UnicodeString(u"Block")), LumName(NAME_block));
    EXPECT_LT(LumName(NAME_block), LumName(NAME_zoom));
    EXPECT_EQ(LumName(UnicodeString(u"neu")).getEnum(), 1599u) << "after Block";
}

TEST_F(LumNameTest, aValueIsItsNameElseItsText) {
    const UnicodeString rect(u"rect");
    struct Row {
        const char* fault;
        LumValue value;
        UnicodeString text;
        SVGNameEnum svg;
    };
    const Row rows[] = {
        {"the name is lost", LumValue(NAME_block), UnicodeString(u"block"), SVG_NULL},
        {"a run-time name is lost", LumValue(LumName(rect)), rect, SVG_rect},
        {"a string is not interned", LumValue(rect), rect, SVG_rect},
        {"a number is not printed", LumValue(12), UnicodeString(u"12"), SVG_NULL},
        {"null is not the empty text", LumValue(), UnicodeString(), SVG_NULL},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(LumName(row.value).getString(), row.text);
        EXPECT_EQ(SVGName(row.value), SVGName(row.svg));
    }
    EXPECT_EQ(MathMLName(LumValue(UnicodeString(u"mfrac"))), MathMLName(MATHML_mfrac));
}

TEST_F(LumNameTest, aGeneratedNameTellsItsOwnIdentifier) {
    EXPECT_EQ(LumName::generateID(UnicodeString()).getString(), UnicodeString(u"N-1598"));
    const LumName second = LumName::generateID(UnicodeString(u"id"));
    EXPECT_EQ(second.getString(), UnicodeString(u"id-1599"));
    EXPECT_EQ(second.getEnum(), 1599u);
}

TEST_F(LumNameTest, aGeneratedNameIsNewEvenWhereItsTextWasTaken) {
    std::set<LumName> taken;
    for (int number = 1598; number < 1700; ++number) {  // the text of each is that of a later identifier
        taken.insert(LumName(UnicodeString::fromUTF8("N-" + std::to_string(number + 60))));
    }
    for (int i = 0; i < 200; ++i) {
        const LumName fresh = LumName::generateID(UnicodeString());
        EXPECT_TRUE(taken.insert(fresh).second) << i;
        EXPECT_EQ(fresh.getEnum(), 1598u + taken.size() - 1) << i;
    }
    // Where the number is free, a clash before it has not moved it.
    EXPECT_EQ(LumName::generateID(UnicodeString(u"x")).getString(), UnicodeString(u"x-1900"));
}

}  // namespace
}  // namespace LumCommon
