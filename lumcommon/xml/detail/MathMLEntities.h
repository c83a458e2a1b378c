#pragma once

#include <cstddef>
#include <string_view>

namespace LumCommon::detail {

/// One character entity of MathML 2.0. Both texts are static and end with a zero unit.
struct MathMLEntity {
    std::u16string_view name;
    /// As an XML processor stores it: "%plane1D;504;" and "&#x0003C;" may stand in it unexpanded. Never empty.
    std::u16string_view text;
};

inline constexpr std::size_t mathMLEntityCount = 2086;

/// The replacement text of an entity; a view with a null data() when there is no entity of this name. The empty name
/// is the name of none. The lookup is laid out by the compiler; it takes no lock.
std::u16string_view findMathMLEntity(std::u16string_view name) noexcept;

/// The entities in the order of their names, for index 0 to mathMLEntityCount - 1; two empty views for other indices.
MathMLEntity getMathMLEntity(std::size_t index) noexcept;

}  // namespace LumCommon::detail
