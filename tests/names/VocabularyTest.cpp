#include <gtest/gtest.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/SVGName.h>

#include <set>
#include <string>
#include <vector>

namespace LumCommon {
namespace {

const std::vector<std::string> svgTexts = {
#define LUM_NAME(id, text) text,
#include <lumcommon/names/SVGNames.inc>
#undef LUM_NAME
};
const std::vector<std::string> mathmlTexts = {
#define LUM_NAME(id, text) text,
#include <lumcommon/names/MathMLNames.inc>
#undef LUM_NAME
};

LumName intern(const std::string& ascii) { return LumName(UnicodeString::fromUTF8(ascii)); }

/// Every string of the vocabulary is found, goes back to itself, and no string that differs in one letter is taken
/// for it.
template <class Name, class Enum>
void checkWholeVocabulary(const std::vector<std::string>& texts) {
    LumNameTable::addRefSharedNameTable();
    const std::set<std::string> known(texts.begin(), texts.end());
    EXPECT_EQ(known.size(), texts.size()) << "a repeated row cannot be found";
    for (std::size_t row = 0; row < texts.size(); ++row) {
        SCOPED_TRACE(texts[row]);
        const auto id = static_cast<Enum>(row + 1);
        EXPECT_EQ(Name(intern(texts[row])), Name(id));
        EXPECT_EQ(Name(id).toName(), intern(texts[row]));
        for (std::size_t at = 0; at < texts[row].size(); ++at) {
            std::string neighbour = texts[row];
            neighbour[at] = static_cast<char>(neighbour[at] ^ 1);
            EXPECT_EQ(Name(intern(neighbour)).getEnum() != 0, known.contains(neighbour)) << neighbour;
            EXPECT_NE(Name(intern(neighbour)), Name(id)) << neighbour;
        }
    }
    EXPECT_EQ(Name(LumName()).getEnum(), 0);
    EXPECT_TRUE(Name().toName().isNull());
    EXPECT_TRUE(Name(static_cast<Enum>(texts.size() + 1)).toName().isNull()) << "reads past the list";
    LumNameTable::releaseSharedNameTable();
}

TEST(SVGName, wholeVocabulary) {
    EXPECT_EQ(svgTexts.size(), 134u);
    checkWholeVocabulary<SVGName, SVGNameEnum>(svgTexts);
}

TEST(MathMLName, wholeVocabulary) {
    EXPECT_EQ(mathmlTexts.size(), 434u);
    checkWholeVocabulary<MathMLName, MathMLNameEnum>(mathmlTexts);
}

TEST(SVGName, tellingRows) {
    struct Row {
        const char* fault;
        int id;
        const char* text;
    };
    constexpr Row svg[] = {
        {"first", 1, "svg"},
        {"mixed case is folded", 12, "linearGradient"},
        {"row lost in the middle", 85, "orient"},
        {"one letter", 110, "d"},
        {"last", 134, "mask"},
        {"a MathML name", 0, "mfrac"},
        {"case is folded", 0, "SVG"},
    };
    for (const Row& row : svg) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(SVGName(intern(row.text)).getEnum(), row.id);
    }
    EXPECT_EQ(SVGName(SVG_rect).toName(), intern("rect"));
}

TEST(MathMLName, tellingRows) {
    struct Row {
        const char* fault;
        int id;
        const char* text;
    };
    constexpr Row mathml[] = {
        {"first", 1, "abs"},
        {"row lost before the elements", 92, "math"},
        {"row lost before the attributes", 183, "URI"},
        {"split at its space", 344, "number h-unit"},
        {"last", 434, "other"},
        {"an SVG name", 0, "rect"},
    };
    for (const Row& row : mathml) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(MathMLName(intern(row.text)).getEnum(), row.id);
    }
}

}  // namespace
}  // namespace LumCommon
