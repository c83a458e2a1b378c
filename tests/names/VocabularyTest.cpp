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

TEST(Vocabulary, everyNameIsFoundAndNoNeighbourOfIt) {
    checkWholeVocabulary<SVGName, SVGNameEnum>(svgTexts);
    checkWholeVocabulary<MathMLName, MathMLNameEnum>(mathmlTexts);
}

TEST(Vocabulary, tellingRowsStandWhereTheyBelong) {
    struct Row {
        const char *fault, *text;
        int svg, mathml;
    };
    constexpr Row rows[] = {
        {"first", "svg", 1, 0},
        {"first", "abs", 0, 1},
        {"row lost before the elements", "math", 0, 92},
        {"row lost before the attributes", "URI", 0, 183},
        {"mixed case is folded", "linearGradient", 12, 0},
        {"row lost in the middle", "orient", 85, 0},
        {"one letter", "d", 110, 0},
        {"split at its space", "number h-unit", 0, 344},
        {"last", "mask", 134, 0},
        {"last", "other", 0, 434},
        {"case is folded", "SVG", 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(SVGName(intern(row.text)).getEnum(), row.svg);
        EXPECT_EQ(MathMLName(intern(row.text)).getEnum(), row.mathml);
    }
    EXPECT_EQ(MathMLName(NAME_math), MathMLName(MATHML_math)) << "a built-in name is asked by its constant";
}

}  // namespace
}  // namespace LumCommon
