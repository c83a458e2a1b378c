#pragma once

#include <string_view>

namespace LumCommon::detail {

/// The replacement text of a character entity of MathML 2.0, as an XML processor stores it: "%plane1D;504;" and
/// "&#x0003C;" may stand in it unexpanded. It is static, ends with a zero unit, and is never empty; a view with a null
/// data() when there is no entity of this name. The empty name is the name of none. The lookup is laid out by the
/// compiler; it takes no lock.
std::u16string_view findMathMLEntity(std::u16string_view name) noexcept;

}  // namespace LumCommon::detail
