#include <gtest/gtest.h>
#include <lumcommon/xml/detail/MathMLEntities.h>

#include <algorithm>
#include <set>
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

}  // namespace
}  // namespace LumCommon::detail
