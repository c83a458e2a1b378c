#include <lumcommon/names/detail/Vocabulary.h>
#include <lumcommon/xml/detail/MathMLEntities.h>

#include <algorithm>
#include <array>
#include <functional>

namespace LumCommon::detail {

namespace {

constexpr std::u16string_view entityTexts[] = {
    {},  // a name's place in the vocabulary is 0 when it is not there
#define LUM_ENTITY(name, text) {u"" text, sizeof(u"" text) / sizeof(char16_t) - 1},
#include <lumcommon/xml/MathMLEntities.inc>
#undef LUM_ENTITY
};

constexpr std::size_t placeCount = std::size(entityTexts);
static_assert(placeCount == 2086 + 1);

constexpr Vocabulary<placeCount>::Rows entityNames = {{
    {},
#define LUM_ENTITY(name, text) {u"" name, sizeof(u"" name) / sizeof(char16_t) - 1},
#include <lumcommon/xml/MathMLEntities.inc>
#undef LUM_ENTITY
}};
static_assert(std::ranges::adjacent_find(entityNames, std::ranges::greater_equal{}) == entityNames.end());

constinit const Vocabulary<placeCount> vocabulary{entityNames};

}  // namespace

std::u16string_view findMathMLEntity(std::u16string_view name) noexcept {
    return entityTexts[vocabulary.find(name.data(), name.size())];
}

}  // namespace LumCommon::detail
