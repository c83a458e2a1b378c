#include <gtest/gtest.h>
#include <lumcommon/xml/detail/MathMLEntities.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

namespace LumCommon::detail {
namespace {

bool isPlane1Form(std::u16string_view text) {
    constexpr std::u16string_view head = u"%plane1D;";
    return text.starts_with(head) && text.size() == head.size() + 4 && text.back() == u';' &&
           std::all_of(text.begin() + head.size(), text.end() - 1,
                       [](char16_t c) { return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F'); });
}

TEST(MathMLEntities, holdsEveryNameOnceAndAllThreeCounts) {
    std::set<std::u16string_view> names;
    int longTexts = 0, plane1Texts = 0;
    for (std::size_t i = 0; i < mathMLEntityCount; ++i) {
        const MathMLEntity entity = getMathMLEntity(i);
        EXPECT_FALSE(entity.text.empty()) << i;
        EXPECT_EQ(entity.text.data()[entity.text.size()], u'\0') << i;
        names.insert(entity.name);
        longTexts += entity.text.size() > 1;
        plane1Texts += isPlane1Form(entity.text);
    }
    EXPECT_EQ(names.size(), 2086u);
    EXPECT_EQ(longTexts, 226);
    EXPECT_EQ(plane1Texts, 133);
    EXPECT_EQ(getMathMLEntity(mathMLEntityCount).name.data(), nullptr);
    EXPECT_EQ(getMathMLEntity(static_cast<std::size_t>(-1)).name.data(), nullptr);
}

struct EntityCase {
    const char* fault;
    std::u16string_view name;
    std::u16string_view text;
};

constexpr EntityCase entityCases[] = {
    {"the last row is not reachable", u"zscr", u"%plane1D;4CF;"},
    {"a module of the first edition is missing", u"block", u"\u2588"},
    {"lt is a reference to itself", u"lt", u"<"},
    {"amp is a reference to itself", u"amp", u"&"},
    {"the quotation mark ends its own row", u"quot", u"\""},
    {"the backslash escapes what follows", u"bsol", u"\\"},
    {"a control character is lost", u"NewLine", u"\n"},
    {"names that differ in case alone are one", u"Aacute", u"\u00C1"},
    {"names that differ in case alone are one", u"aacute", u"\u00E1"},
    {"the no-break space is folded to a blank", u"nbsp", u"\u00A0"},
    {"an alias is missing", u"zeetrf", u"\u2128"},
    {"a second character is cut off", u"nvgt", u">\u20D2"},
    {"a reference is replaced twice", u"nvlt", u"&#x0003C;\u20D2"},
    {"a parameter reference is replaced", u"Afr", u"%plane1D;504;"},
    {"a blank stands before the mark", u"DotDot", u"\u20DC"},
};

TEST(MathMLEntities, findsTellingRows) {
    for (const EntityCase& c : entityCases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(findMathMLEntity(c.name), c.text);
    }
}

}  // namespace
}  // namespace LumCommon::detail
