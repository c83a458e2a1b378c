#include <gtest/gtest.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/SVGName.h>
#include <lumcommon/values/LumValue.h>
#include <support/DataRows.h>
#include <support/ExpectError.h>

#include <set>
#include <string>
#include <vector>

namespace LumCommon {
namespace {

using LumTest::Fields;
using LumTest::utf8;

UnicodeString text(const std::string& ascii) { return UnicodeString::fromUTF8(ascii); }

LumNameEnum nameOf(unsigned id) { return static_cast<LumNameEnum>(id); }

#define LUM_NAME(id, text) text,
const std::vector<std::string> builtinTexts = {
    "",
#include <lumcommon/names/BuiltinNames.inc>
};
const std::vector<std::string> svgTexts = {
    "",
#include <lumcommon/names/SVGNames.inc>
};
const std::vector<std::string> mathmlTexts = {
    "",
#include <lumcommon/names/MathMLNames.inc>
};
#undef LUM_NAME

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

/// Every string of a vocabulary is found and goes back to itself; no string that differs a little is taken for it.
template <class Find, class GetText>
void checkWholeVocabulary(const std::vector<std::string>& texts, Find find, GetText getText) {
    const std::set<std::string> known(texts.begin(), texts.end());
    EXPECT_EQ(known.size(), texts.size()) << "a repeated row cannot be found";
    for (std::size_t id = 1; id < texts.size(); ++id) {
        SCOPED_TRACE(texts[id]);
        EXPECT_EQ(static_cast<std::size_t>(find(text(texts[id]))), id);
        EXPECT_EQ(getText(static_cast<int>(id)), text(texts[id]));
        std::vector<std::string> neighbours = {texts[id] + "x", texts[id].substr(1), texts[id] + '\0'};
        for (std::size_t at = 0; at < texts[id].size(); ++at) {
            for (const int other : {0x01, 0x20, '~' ^ texts[id][at]}) {
                neighbours.push_back(texts[id]);
                neighbours.back()[at] = static_cast<char>(texts[id][at] ^ other);
            }
        }
        for (const std::string& neighbour : neighbours) {
            const auto found = static_cast<std::size_t>(find(text(neighbour)));
            EXPECT_EQ(found != 0, known.contains(neighbour) && !neighbour.empty()) << neighbour;
            EXPECT_NE(found, id) << neighbour;
        }
    }
    EXPECT_TRUE(getText(0).isEmpty() && getText(static_cast<int>(texts.size())).isEmpty()) << "reads past the list";
}

TEST_F(SharedNames, everyNameOfAVocabularyIsFoundAndNoNeighbourOfIt) {
    checkWholeVocabulary(builtinTexts, LumNameTable::getBuiltinNameEnum,
                         [](int id) { return LumNameTable::getBuiltinNameString(nameOf(unsigned(id))); });
    for (unsigned id = 1; id < builtinTexts.size(); ++id) {
        EXPECT_EQ(LumNameTable::getSharedNameEnum(text(builtinTexts[id])), id);
        EXPECT_EQ(LumNameTable::getSharedNameString(nameOf(id)), text(builtinTexts[id]));
    }
    EXPECT_EQ(last(), 1597u) << "looking for built-in names added some";
    checkWholeVocabulary(
        svgTexts, [](const UnicodeString& name) { return SVGName(LumName(name)).getEnum(); },
        [](int id) { return SVGName(static_cast<SVGNameEnum>(id)).toName().getString(); });
    checkWholeVocabulary(
        mathmlTexts, [](const UnicodeString& name) { return MathMLName(LumName(name)).getEnum(); },
        [](int id) { return MathMLName(static_cast<MathMLNameEnum>(id)).toName().getString(); });
}

/// From a text that changes afterwards.
std::string intern(const Fields& fields) {
    std::u16string buffer(fields[0].getBuffer(), static_cast<std::size_t>(fields[0].length()));
    UnicodeString alias(false, buffer.data(), fields[0].length());
    if (fields[0] == u"(bogus)") alias.setToBogus();
    const unsigned id = LumNameTable::getSharedNameEnum(alias);
    buffer.assign(buffer.size(), u'?');
    return std::to_string(id);
}

TEST_F(SharedNames, areGivenOutKeptAndForgottenAsTheRowsTell) {
    LumNameTable own;
    const auto id = [](const Fields& f) { return nameOf(static_cast<unsigned>(std::stoul(utf8(f[0]), nullptr, 0))); };
    const auto doing = [](auto action) { return [action](const Fields&) { return action(), std::string(); }; };
    LumTest::checkRows(
        "names/names.txt",
        {{"builtin", [](const Fields& f) { return std::to_string(LumNameTable::getBuiltinNameEnum(f[0])); }},
         {"svg", [](const Fields& f) { return std::to_string(SVGName(LumName(f[0])).getEnum()); }},
         {"mathml", [](const Fields& f) { return std::to_string(MathMLName(LumName(f[0])).getEnum()); }},
         {"intern", intern},
         {"text", [&](const Fields& f) { return utf8(LumNameTable::getSharedNameString(id(f))); }},
         {"last", [](const Fields&) { return std::to_string(last()); }},
         {"ownIntern", [&](const Fields& f) { return std::to_string(own.getNameEnum(f[0])); }},
         {"ownIntern2", [&](const Fields& f) { return std::to_string(own.getNonBuiltinNameEnumMutexed(f[0])); }},
         {"ownLookup", [&](const Fields& f) { return std::to_string(own.lookupName(f[0])); }},
         {"ownText", [&](const Fields& f) { return utf8(own.getNameString(id(f))); }},
         {"ownLast", [&](const Fields&) { return std::to_string(own.getLastNameEnum()); }},
         {"hold", doing([] { EXPECT_EQ(LumNameTable::addRefSharedNameTable(), LumNameTable::getSharedNameTable()); })},
         {"release", doing(LumNameTable::releaseSharedNameTable)},
         {"setup", doing(LumNameTable::setupSharedNameTable)},
         {"cleanup", doing(LumNameTable::cleanup)},
         {"fill", doing([] {
              for (unsigned i = 0; i < 3000; ++i) LumNameTable::getSharedNameEnum(text("filled " + std::to_string(i)));
          })}});
}

TEST_F(SharedNames, aNameIsItsIdentifierAndAValueItsNameElseItsText) {
    EXPECT_TRUE(LumName().isNull() && LumName().getString().isEmpty());
    EXPECT_EQ(LumName(UnicodeString(u"block")), NAME_block);
    EXPECT_NE(LumName(UnicodeString(u"Block")), LumName(NAME_block));
    EXPECT_LT(LumName(NAME_block), LumName(NAME_zoom));
    EXPECT_EQ(LumName(LumValue(NAME_block)), NAME_block);
    EXPECT_EQ(LumName(LumValue(UnicodeString(u"rect"))), LumName(UnicodeString(u"rect")));
    EXPECT_EQ(LumName(LumValue(12)).getString(), UnicodeString(u"12"));
    EXPECT_TRUE(LumName(LumValue()).isNull());
    EXPECT_EQ(SVGName(LumValue(LumName(UnicodeString(u"rect")))), SVGName(SVG_rect));
    EXPECT_EQ(SVGName(LumValue(UnicodeString(u"rect"))), SVGName(SVG_rect));
    EXPECT_EQ(SVGName(LumValue(12)), SVGName(SVG_NULL));
    EXPECT_EQ(MathMLName(LumValue(UnicodeString(u"mfrac"))), MathMLName(MATHML_mfrac));
    EXPECT_EQ(MathMLName(NAME_math), MathMLName(MATHML_math)) << "a built-in name is asked by its constant";
}

TEST_F(SharedNames, aGeneratedNameTellsItsIdentifierAndIsNew) {
    EXPECT_EQ(LumName::generateID(UnicodeString()).getString(), UnicodeString(u"N-1598"));
    const LumName second = LumName::generateID(UnicodeString(u"id"));
    EXPECT_EQ(second.getString(), UnicodeString(u"id-1599"));
    std::set<LumName> taken;
    for (int number = 1600; number < 1700; ++number) {  // the text of each is that of a later identifier
        taken.insert(LumName(text("N-" + std::to_string(number + 60))));
    }
    for (int i = 0; i < 200; ++i) {
        const LumName fresh = LumName::generateID(UnicodeString());
        EXPECT_TRUE(taken.insert(fresh).second) << i;
        EXPECT_EQ(fresh.getEnum(), 1600u + taken.size() - 1) << i;
    }
    EXPECT_EQ(LumName::generateID(UnicodeString(u"x")).getString(), UnicodeString(u"x-1900")) << "a clash moved it";
}

// Takes 1.3 GB and some seconds; the presets with sanitizers, whose memory is several times that, leave it out.
TEST(LumNameTableLimit, theLastIdentifierIsGivenOutAndNoneAfterIt) {
    LumNameTable table;
    UnicodeString number;
    for (unsigned id = 1598; id <= 0xFFFFFF; ++id) {
        number.setTo(static_cast<UChar32>(0x10000 + id % 0x10000)).append(static_cast<char16_t>(0x100 + id / 0x10000));
        ASSERT_EQ(table.getNameEnum(number), id);
    }
    for (int repeat = 0; repeat < 2; ++repeat) {
        LumTest::expectError(0x801, "Out of memory.", "", [&] { table.getNameEnum(UnicodeString(u"one too many")); });
    }
    EXPECT_EQ(table.getNameEnum(number), 0xFFFFFFu) << "a known name is refused";
    EXPECT_EQ(table.getLastNameEnum(), 0xFFFFFFu);
}

}  // namespace
}  // namespace LumCommon
