#include <gtest/gtest.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumNameTable.h>

#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace LumCommon {
namespace {

UnicodeString text(const std::string& ascii) { return UnicodeString::fromUTF8(ascii); }

LumNameEnum nameOf(unsigned id) { return static_cast<LumNameEnum>(id); }

std::vector<std::string> builtinTexts() {
    return {
        "",
#define LUM_NAME(id, text) text,
#include <lumcommon/names/BuiltinNames.inc>
#undef LUM_NAME
    };
}

/// Holds a shared table in which nothing has been interned, as in a fresh process.
class SharedNames : public testing::Test {
protected:
    SharedNames() {
        LumNameTable::addRefSharedNameTable();
        LumNameTable::releaseSharedNameTable();
        EXPECT_EQ(LumNameTable::addRefSharedNameTable()->getLastNameEnum(), 1597u) << "somebody else holds the table";
    }
    ~SharedNames() override { LumNameTable::releaseSharedNameTable(); }

    static unsigned last() { return LumNameTable::getSharedNameTable()->getLastNameEnum(); }
};

TEST_F(SharedNames, builtinNamesHaveTheirFixedIdentifiers) {
    struct Row {
        const char* fault;
        unsigned id;
        const char* text;
    };
    constexpr Row rows[] = {
        {"does not begin at 1", 1, "ANSI_X3.4"},
        {"sorts by case", 5, "AbsoluteViewportArea"},
        {"sorts - before a digit", 76, "ISO646-US"},
        {"sorts the marks first", 180, "#CMYK"},
        {"node name moved", 186, "#document"},
        {"first lower-case name moved", 189, "above"},
        {"another host", 736, "http://ns.lumset.example/names/XSL/Lum"},
        {"namespace moved", 739, "http://www.w3.org/2000/xmlns/"},
        {"sorts - before :", 1551, "xml-stylesheet"},
        {"last name lost", 1597, "zoom"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(LumNameTable::getBuiltinNameEnum(text(row.text)), row.id);
        EXPECT_EQ(LumNameTable::getBuiltinNameString(nameOf(row.id)), text(row.text));
    }
}

TEST_F(SharedNames, everyBuiltinNameIsFoundAndNoNeighbourOfIt) {
    const std::vector<std::string> texts = builtinTexts();
    ASSERT_EQ(texts.size(), 1598u);
    const std::set<std::string> known(texts.begin(), texts.end());
    ASSERT_EQ(known.size(), texts.size());
    for (unsigned id = 1; id < texts.size(); ++id) {
        SCOPED_TRACE(texts[id]);
        EXPECT_EQ(LumNameTable::getSharedNameEnum(text(texts[id])), id);
        EXPECT_EQ(LumNameTable::getSharedNameString(nameOf(id)), text(texts[id]));
        std::vector<std::string> neighbours = {texts[id] + "x", texts[id].substr(1), texts[id] + '\0'};
        for (std::size_t at = 0; at < texts[id].size(); ++at) {
            for (const char other : {'~', static_cast<char>(texts[id][at] ^ 0x20)}) {
                neighbours.push_back(texts[id]);
                neighbours.back()[at] = other;
            }
        }
        for (const std::string& neighbour : neighbours) {
            const LumNameEnum found = LumNameTable::getBuiltinNameEnum(text(neighbour));
            EXPECT_EQ(found != 0, known.contains(neighbour) && !neighbour.empty()) << neighbour;
            EXPECT_NE(found, id) << neighbour;
        }
    }
    EXPECT_EQ(LumNameTable::getBuiltinNameEnum(u"bl\u016Fck"), 0u) << "only the low bytes are compared";
    EXPECT_EQ(last(), 1597u) << "looking for built-in names added some";
}

TEST_F(SharedNames, newNamesAreNumberedFrom1598) {
    std::u16string buffer = u"Block";  // the table must not keep an alias of it
    const UnicodeString first(u"Block"), second(u"name that nobody else uses, longer than a short string holds");
    EXPECT_EQ(LumNameTable::getSharedNameEnum(UnicodeString(false, buffer.data(), 5)), 1598u);
    buffer = u"?????";
    EXPECT_EQ(LumNameTable::getSharedNameEnum(UnicodeString(u"block")), 303u);
    EXPECT_EQ(LumNameTable::getSharedNameEnum(second), 1599u);
    EXPECT_EQ(LumNameTable::getSharedNameEnum(first), 1598u);
    EXPECT_EQ(LumNameTable::getSharedNameEnum(UnicodeString()), 0u);
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_EQ(LumNameTable::getSharedNameEnum(bogus), 0u);
    EXPECT_EQ(last(), 1599u);
    EXPECT_EQ(LumNameTable::getSharedNameString(nameOf(1598)), first);
    EXPECT_EQ(LumNameTable::getSharedNameString(nameOf(1599)), second);
}

TEST_F(SharedNames, identifiersThatAreNotInUseReadAsEmpty) {
    LumNameTable::getSharedNameEnum(UnicodeString(u"only one"));
    struct Row {
        const char* fault;
        unsigned id;
    };
    constexpr Row rows[] = {
        {"null name has a text", 0},
        {"reads one past the last name", 1599},
        {"reads a chunk that does not exist", 1598 + 5000},
        {"beyond 24 bits", 0x1000000},
        {"wraps around", 0xFFFFFFFF},
    };
    const LumNameTable own;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_TRUE(LumNameTable::getSharedNameString(nameOf(row.id)).isEmpty());
        EXPECT_TRUE(own.getNameString(nameOf(row.id)).isEmpty());
    }
    EXPECT_TRUE(LumNameTable::getBuiltinNameString(nameOf(1598)).isEmpty());
    EXPECT_TRUE(own.getNameString(nameOf(1598)).isEmpty()) << "reads the shared table's names";
}

TEST_F(SharedNames, lookingUpAddsNothing) {
    const UnicodeString unknown(u"unknown"), known(u"known");
    LumNameTable table;
    EXPECT_EQ(table.lookupName(unknown), 0u) << "an empty table";
    EXPECT_EQ(table.getNameEnum(known), 1598u);
    EXPECT_EQ(table.lookupName(known), 1598u);
    EXPECT_EQ(table.lookupName(unknown), 0u);
    EXPECT_EQ(table.lookupName(UnicodeString(u"zoom")), 1597u);
    EXPECT_EQ(table.lookupName(UnicodeString()), 0u);
    EXPECT_EQ(table.getLastNameEnum(), 1598u);
    EXPECT_EQ(table.getNameEnum(u"zoom"), 1597u);
    EXPECT_EQ(table.getNonBuiltinNameEnumMutexed(u"zoom"), 1599u) << "this entry passes over the built-in names";
    EXPECT_EQ(table.getNonBuiltinNameEnumMutexed(UnicodeString()), 0u);
    EXPECT_EQ(last(), 1597u) << "the table of its own filled the shared one";
}

TEST_F(SharedNames, stringsStayWhereTheyAreWhileTheTableGrows) {
    constexpr unsigned count = 40000;  // past the first five chunks, and several sizes of the index
    std::vector<const UnicodeString*> places;
    for (unsigned i = 0; i < count; ++i) {
        const auto name = LumNameTable::getSharedNameEnum(text("grown-" + std::to_string(i)));
        ASSERT_EQ(name, 1598 + i);
        places.push_back(&LumNameTable::getSharedNameString(name));
    }
    for (unsigned i = 0; i < count; ++i) {
        ASSERT_EQ(&LumNameTable::getSharedNameString(nameOf(1598 + i)), places[i]) << i;
        ASSERT_EQ(*places[i], text("grown-" + std::to_string(i)));
        ASSERT_EQ(LumNameTable::getSharedNameEnum(*places[i]), 1598 + i);
    }
}

TEST(LumNameTableLifetime, namesGoWithTheLastHolder) {
    const UnicodeString first(u"first long run-time name, to be freed"), second(u"second"), third(u"third");
    LumNameTable::addRefSharedNameTable();
    EXPECT_EQ(LumNameTable::addRefSharedNameTable(), LumNameTable::getSharedNameTable());
    EXPECT_EQ(LumNameTable::getSharedNameEnum(first), 1598u);
    EXPECT_EQ(LumNameTable::getSharedNameEnum(second), 1599u);
    LumNameTable::releaseSharedNameTable();
    EXPECT_EQ(LumNameTable::getSharedNameEnum(second), 1599u) << "gone although it is still held";
    LumNameTable::releaseSharedNameTable();

    EXPECT_TRUE(LumNameTable::getSharedNameString(nameOf(1598)).isEmpty());
    EXPECT_EQ(LumNameTable::getSharedNameEnum(third), 1598u);
    EXPECT_EQ(LumNameTable::getSharedNameEnum(second), 1599u) << "the index still knows an old name";
    EXPECT_EQ(LumNameTable::getSharedNameString(nameOf(1598)), third);

    // Interning alone makes a table that nobody holds: one release too many ends it, the next finds none.
    LumNameTable::releaseSharedNameTable();
    EXPECT_TRUE(LumNameTable::getSharedNameString(nameOf(1598)).isEmpty());
    LumNameTable::releaseSharedNameTable();
}

TEST(LumNameTableLifetime, cleanupEndsTheTableAndAHolderMayStillLetGo) {
    LumNameTable::setupSharedNameTable();
    LumNameTable* const table = LumNameTable::addRefSharedNameTable();
    EXPECT_TRUE(table->isA(LumNameTable::TYPE_ID) && table->isA(LumRCObject::TYPE_ID) && !table->isA(1));
    for (unsigned i = 0; i < 3000; ++i) LumNameTable::getSharedNameEnum(text("to be cleaned up " + std::to_string(i)));
    LumNameTable::cleanup();
    LumNameTable::releaseSharedNameTable();
    EXPECT_TRUE(LumNameTable::getSharedNameString(nameOf(1598)).isEmpty());
    LumNameTable::addRefSharedNameTable();
    EXPECT_EQ(LumNameTable::getSharedNameEnum(UnicodeString(u"after cleanup")), 1598u);
    LumNameTable::releaseSharedNameTable();
}

// Takes 1.3 GB and some seconds, so it runs only where LUM_TEST_LARGE is set, as the preset `release` does.
TEST(LumNameTableLimit, theLastIdentifierIsGivenOutAndNoneAfterIt) {
    if (std::getenv("LUM_TEST_LARGE") == nullptr) GTEST_SKIP() << "needs LUM_TEST_LARGE";
    LumNameTable table;
    UnicodeString number;
    for (unsigned id = 1598; id <= 0xFFFFFF; ++id) {
        number.setTo(static_cast<UChar32>(0x10000 + id % 0x10000)).append(static_cast<char16_t>(0x100 + id / 0x10000));
        ASSERT_EQ(table.getNameEnum(number), id);
    }
    for (int repeat = 0; repeat < 2; ++repeat) {
        try {
            table.getNameEnum(UnicodeString(u"one too many"));
            ADD_FAILURE() << "an identifier of 25 bits";
        } catch (const LumError& error) {
            EXPECT_EQ(error.code, 0x801);
            EXPECT_EQ(error.message, UnicodeString(u"Out of memory."));
        }
    }
    EXPECT_EQ(table.getNameEnum(number), 0xFFFFFFu) << "a known name is refused";
    EXPECT_EQ(table.getLastNameEnum(), 0xFFFFFFu);
}

}  // namespace
}  // namespace LumCommon
