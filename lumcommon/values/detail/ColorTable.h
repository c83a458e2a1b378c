#pragma once

#include <lumcommon/names/LumName.h>

#include <cstdint>

namespace LumCommon::detail {

/// The colour of a keyword, "currentColor" and "transparent" included; LumColor::RGB_INVALID for other names.
std::uint32_t findColor(LumNameEnum name) noexcept;

/// The keyword of a colour; the null name if it has none. Where several keywords share a value it is cyan (not aqua),
/// magenta (not fuchsia) and the spelling "gray".
LumNameEnum findColorName(std::uint32_t rgb) noexcept;

}  // namespace LumCommon::detail
