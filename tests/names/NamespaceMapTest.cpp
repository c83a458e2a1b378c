#include <gtest/gtest.h>
#include <lumcommon/names/NamespaceMap.h>

#include <utility>
#include <vector>

namespace LumCommon {
namespace {

LumName name(unsigned id) { return static_cast<LumNameEnum>(id); }

using Pairs = std::vector<std::pair<unsigned, unsigned>>;

Pairs entriesByPosition(const NamespaceMap& map) {
    Pairs pairs;
    for (int i = 0; i < map.getCount(); ++i) {
        pairs.emplace_back(map.getNamespacePrefix(i).getEnum(), map.getNamespaceUri(i).getEnum());
    }
    return pairs;
}

TEST(NamespaceMap, keepsEntriesInKeyOrderAndOneForEachPrefix) {
    NamespaceMap map;
    map.addNamespace(name(30), name(103));
    map.addNamespace(name(10), name(101));
    map.addNamespace(name(0), name(100));
    map.addNamespace(name(20), name(101));
    EXPECT_EQ(entriesByPosition(map), (Pairs{{0, 100}, {10, 101}, {20, 101}, {30, 103}}));
    EXPECT_EQ(map.lookupPrefix(name(101)), name(10)) << "not the first in key order";
    EXPECT_TRUE(map.lookupPrefix(name(100)).isNull()) << "the default namespace is no prefix";

    map.addNamespace(name(10), name(103));
    EXPECT_EQ(map.lookupPrefix(name(101)), name(20)) << "the overwritten binding still answers";
    EXPECT_EQ(map.lookupPrefix(name(103)), name(10));
    map.removeNamespace(name(10), name(101));
    EXPECT_EQ(map.getCount(), 4) << "removed under another URI";
    map.removeNamespace(name(10), name(103));
    EXPECT_EQ(entriesByPosition(map), (Pairs{{0, 100}, {20, 101}, {30, 103}}));
    EXPECT_EQ(map.lookupPrefix(name(103)), name(30)) << "the removed binding still answers";
    EXPECT_EQ(map.getDefaultNamespace(), name(100));

    map.addNamespace(name(20), name(0));
    EXPECT_TRUE(map.hasNamespace(name(20)) && map.lookupNamespace(name(20)).isNull());
    EXPECT_FALSE(map.hasNamespace(name(10)));
    EXPECT_TRUE(map.isA(NamespaceMap::TYPE_ID) && map.isA(LumRCObject::TYPE_ID) && !map.isA(1));
}

TEST(NamespaceMap, positionsAreAskedInAnyOrder) {
    NamespaceMap map;
    for (unsigned id = 1; id <= 20; ++id) map.addNamespace(name(id), name(100 + id));
    struct Row {
        const char* fault;
        int index;
        unsigned prefix;
    };
    const Row rows[] = {
        {"negative position", -1, 0},
        {"first", 0, 1},
        {"last", 19, 20},
        {"one past the last", 20, 0},
        {"goes on from the end", 18, 19},
        {"does not go back", 3, 4},
        {"same again", 3, 4},
        {"backwards by one", 2, 3},
        {"far forward", 15, 16},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(map.getNamespacePrefix(row.index).getEnum(), row.prefix);
        EXPECT_EQ(map.getNamespaceUri(row.index).getEnum(), row.prefix == 0 ? 0 : 100 + row.prefix);
    }
    map.removeNamespace(name(16), name(116));  // the position asked last
    EXPECT_EQ(map.getNamespacePrefix(15), name(17));
    map.addNamespace(name(0), name(1));  // before it
    EXPECT_EQ(map.getNamespacePrefix(15), name(15));
}

TEST(NamespaceMapIterator, walksBothWays) {
    NamespaceMap map;
    for (unsigned id : {2u, 1u, 3u}) map.addNamespace(name(id), name(100 + id));
    NamespaceMapIterator at(&map);
    EXPECT_FALSE(at.hasPrevious());
    Pairs seen;
    while (at.hasNext()) {
        const auto [prefix, uri] = at.next();
        seen.emplace_back(prefix.getEnum(), uri.getEnum());
    }
    EXPECT_TRUE(at.next().first.isNull()) << "walks past the end";
    while (at.hasPrevious()) seen.emplace_back(at.previous().first.getEnum(), 0);
    EXPECT_TRUE(at.previous().first.isNull()) << "walks past the start";
    EXPECT_EQ(seen, (Pairs{{1, 101}, {2, 102}, {3, 103}, {3, 0}, {2, 0}, {1, 0}}));
    at.setToEnd();
    EXPECT_FALSE(at.hasNext());
    at.setToStart();
    EXPECT_EQ(at.next().first, name(1));

    NamespaceMapIterator none(nullptr);
    none.setToEnd();
    EXPECT_FALSE(none.hasNext() || none.hasPrevious());
}

}  // namespace
}  // namespace LumCommon
