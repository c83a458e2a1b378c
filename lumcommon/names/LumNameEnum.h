#pragma once

#include <lumcommon/core/Api.h>

#include <cstdint>

namespace LumCommon {

/// Identifier of an interned name: 0 is the null name, 1 to 1597 the built-in vocabulary (the enumerators here),
/// 1598 and above are assigned at run time. At most 2^24 - 1 names exist in a process.
enum LumNameEnum : std::uint32_t {
    NAME_NULL = 0,  ///< the null name; its string is empty
#define LUM_NAME(id, text) NAME_##id,
#include <lumcommon/names/BuiltinNames.inc>
#undef LUM_NAME
    NAME_BUILTIN_END_,                          ///< one past the last built-in name
    NAME_LAST_BUILTIN = NAME_BUILTIN_END_ - 1,  ///< 1597
};

static_assert(NAME_LAST_BUILTIN == 1597 && NAME_block == 303 && NAME_zoom == 1597);

}  // namespace LumCommon
