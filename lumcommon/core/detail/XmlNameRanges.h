#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace LumCommon::detail {

/// Beyond ASCII, the ranges of characters in names, ascending.
struct XmlNameRange {
    std::int32_t first;
    std::int32_t last;
    bool isStart;  // may begin a name; the others only continue one
};

inline constexpr XmlNameRange xmlNameRanges[] = {
    {0xB7, 0xB7, false},    {0xC0, 0x2FF, true},    {0x300, 0x36F, false},   {0x370, 0x37D, true},
    {0x37F, 0x1FFF, true},  {0x200C, 0x200D, true}, {0x203F, 0x2040, false}, {0x2070, 0x218F, true},
    {0x2C00, 0x2FEF, true}, {0x3001, 0xD7FF, true}, {0xF900, 0xEFFFF, true},
};
static_assert(std::ranges::adjacent_find(xmlNameRanges, [](const XmlNameRange& a, const XmlNameRange& b) {
                  return a.first > a.last || a.last >= b.first;
              }) == std::end(xmlNameRanges));

/// The range that holds a code point beyond ASCII; null when no name does.
constexpr const XmlNameRange* findXmlNameRange(std::int32_t c) noexcept {
    for (const XmlNameRange& range : xmlNameRanges) {
        if (c <= range.last) return c >= range.first ? &range : nullptr;
    }
    return nullptr;
}

}  // namespace LumCommon::detail
