#pragma once

#include <cstring>

namespace LumCommon::detail {

inline constexpr char oleSignature[] = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
inline constexpr std::size_t oleSignatureBytes = sizeof oleSignature - 1;

/// @param bytes  at least eight.
inline bool startsWithOleSignature(const char* bytes) noexcept {
    return std::memcmp(bytes, oleSignature, oleSignatureBytes) == 0;
}

}  // namespace LumCommon::detail
