#include <gtest/gtest.h>

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/values/LumNamedValueMap.h>

namespace {

using namespace LumCommon;

TEST(LumNamedValueMap, keepsOneEntryForEachNameInTheirOrder) {
    LumPtr<LumNamedValueMap> map(new LumNamedValueMap);
    map->setNamedItem(NAME_zoom, LumValue(3));
    map->setNamedItem(NAME_block, LumValue(2));
    map->setNamedItem(LumNamedValue(NAME_NULL, LumValue(1)));
    map->setNamedItem(NAME_zoom, LumValue(4));
    ASSERT_EQ(map->getCount(), 3);
    EXPECT_EQ(map->item(0).getName(), NAME_NULL);
    EXPECT_EQ(map->item(1).getName(), NAME_block);
    EXPECT_EQ(map->item(2).getIntegerValue(), 4);
    EXPECT_EQ(map->item(2).getName(), NAME_zoom);
    EXPECT_TRUE(map->item(3).isNull());
    EXPECT_TRUE(map->item(-1).isNull());
    EXPECT_TRUE(map->isA(LumRCObject::TYPE_ID));
    EXPECT_FALSE(map->isA(0x31FB5B85u));
}

TEST(LumNamedValueMap, answersAndRemovesByName) {
    LumPtr<LumNamedValueMap> map(new LumNamedValueMap);
    map->setNamedItem(NAME_block, LumValue(2));
    EXPECT_EQ(map->getNamedItem(NAME_zoom).getName(), NAME_zoom);
    EXPECT_TRUE(map->getNamedItem(NAME_zoom).isNull());
    const LumPtr<LumNamedValueMap> copy = map->clone();
    map->removeNamedItem(NAME_block, LumValue(3));
    EXPECT_EQ(map->getCount(), 1);
    map->removeNamedItem(NAME_block, LumValue(2.0f, UNIT_NUMBER));
    EXPECT_EQ(map->getCount(), 0);
    map->removeNamedItem(NAME_block);
    EXPECT_EQ(copy->getNamedItem(NAME_block).getIntegerValue(), 2);
}

TEST(LumNamedValueMap, isWalkedBothWays) {
    LumPtr<LumNamedValueMap> map(new LumNamedValueMap);
    map->setNamedItem(NAME_block, LumValue(1));
    map->setNamedItem(NAME_zoom, LumValue(2));
    LumNamedValueMapIterator iterator(map.get());
    EXPECT_FALSE(iterator.hasPrevious());
    EXPECT_EQ(iterator.next().getIntegerValue(), 1);
    EXPECT_EQ(iterator.next().getIntegerValue(), 2);
    EXPECT_FALSE(iterator.hasNext());
    EXPECT_TRUE(iterator.next().isNull());
    EXPECT_EQ(iterator.previous().getIntegerValue(), 2);
    iterator.setToStart();
    EXPECT_TRUE(iterator.previous().isNull());
    iterator.setToEnd();
    EXPECT_EQ(iterator.previous().getName(), NAME_zoom);
}

}  // namespace
