#pragma once

#include <lumcommon/names/LumNameEnum.h>
#include <lumcommon/names/detail/UnitHash.h>

#include <cstddef>
#include <cstdint>

namespace LumCommon::detail {

/// LumNameTable::getSharedNameEnum for text that is not in a UnicodeString: a built-in name is found without creating
/// one. `text` may be null when `units` is 0. Threads and failures are those of getSharedNameEnum.
LumNameEnum internName(const char16_t* text, std::size_t units);

/// Whether getSharedNameEnum fails because no further name can be given out, and not for want of memory.   Threads:
/// any.
bool isNameTableFull() noexcept;

/// Hash of UTF-16 text, seeded once per process.   Threads: any.
inline std::uint64_t hashUnits(const char16_t* text, std::size_t units) noexcept {
    return hashUnits(text, units, processHashKey());
}

}  // namespace LumCommon::detail
