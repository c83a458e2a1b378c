#include <gtest/gtest.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/NamespaceManager.h>
#include <support/OnThreads.h>

#include <array>
#include <atomic>
#include <set>
#include <string>
#include <vector>

namespace LumCommon {
namespace {

constexpr unsigned threadCount = 4;
constexpr unsigned namesEach = 4000;  // together past the first five chunks, and several sizes of the index

UnicodeString numbered(const char* stem, unsigned number) {
    return UnicodeString::fromUTF8(stem + std::to_string(number));
}

// Meant for the thread sanitizer as much as for its expectations.
TEST(LumNameTableThreads, internAndReadTheSameAndDifferentNames) {
    LumNameTable::addRefSharedNameTable();
    std::array<std::vector<LumNameEnum>, threadCount> same, own;
    std::array<std::vector<const UnicodeString*>, threadCount> places;
    std::array<std::atomic<LumNameEnum>, threadCount> newest{};
    LumTest::onThreads(threadCount, [&](unsigned self) {
        const std::string stem = "of-" + std::to_string(self) + "-";
        for (unsigned i = 0; i < namesEach; ++i) {
            same[self].push_back(LumNameTable::getSharedNameEnum(numbered("same-", i)));
            places[self].push_back(&LumNameTable::getSharedNameString(same[self].back()));
            own[self].push_back(LumNameTable::getSharedNameEnum(numbered(stem.c_str(), i)));
            newest[self].store(own[self].back(), std::memory_order_relaxed);
            own[self].push_back(LumName::generateID(UnicodeString()).getEnum());
            EXPECT_EQ(LumNameTable::getSharedNameEnum(UnicodeString(u"block")), NAME_block);
            // What another thread has just given out reads in full, although nothing but the identifier was passed.
            const unsigned other = (self + 1) % threadCount;
            const LumNameEnum theirs = newest[other].load(std::memory_order_relaxed);
            if (theirs != NAME_NULL) {
                const UnicodeString& string = LumNameTable::getSharedNameString(theirs);
                EXPECT_TRUE(string.startsWith(numbered("of-", other))) << theirs;
            }
        }
    });
    std::set<LumNameEnum> distinct(same[0].begin(), same[0].end());
    for (unsigned self = 0; self < threadCount; ++self) {
        EXPECT_EQ(same[self], same[0]) << "one string, two identifiers";
        distinct.insert(own[self].begin(), own[self].end());
        for (unsigned i = 0; i < namesEach; ++i) {
            ASSERT_EQ(&LumNameTable::getSharedNameString(same[self][i]), places[self][i]) << "moved while it grew";
            ASSERT_EQ(*places[self][i], numbered("same-", i));
            ASSERT_EQ(LumNameTable::getSharedNameEnum(*places[self][i]), same[self][i]);
        }
    }
    EXPECT_EQ(distinct.size(), namesEach * (2 * threadCount + 1)) << "one identifier, two strings";
    LumNameTable::releaseSharedNameTable();
}

TEST(LumNameTableThreads, holdersComeAndGo) {
    LumTest::onThreads(threadCount, [](unsigned self) {
        for (unsigned i = 0; i < 500; ++i) {
            const LumPtr<NamespaceManager> holder(new NamespaceManager);
            const UnicodeString text = numbered("held-", i * threadCount + self);
            const LumName name(text);
            EXPECT_EQ(name.getString(), text) << "gone while somebody holds the table";
        }
    });
    LumNameTable::addRefSharedNameTable();
    EXPECT_EQ(LumNameTable::getSharedNameTable()->getLastNameEnum(), 1597u) << "a reference was lost";
    LumNameTable::releaseSharedNameTable();
}

}  // namespace
}  // namespace LumCommon
