#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <array>
#include <cstdint>

namespace LumCommon {

/// A 128-bit unique identifier.
class LUM_API LumUUID {
public:
    /// A new identifier from libuuid's uuid_generate.
    LumUUID();
    /// The identifier with these bytes.
    explicit LumUUID(const std::array<std::uint8_t, 16>& bytes) noexcept : bytes_(bytes) {}
    /// @param bytes  16 bytes, copied.
    explicit LumUUID(const std::uint8_t* bytes) noexcept;

    /// The bytes in order as 32 upper-case hexadecimal digits, without hyphens.
    UnicodeString toString() const;

    /// The 16 bytes, in the order in which toString() prints them.
    const std::array<std::uint8_t, 16>& getBytes() const noexcept { return bytes_; }

    /// Whether all bytes are equal.
    friend bool operator==(const LumUUID&, const LumUUID&) = default;

private:
    std::array<std::uint8_t, 16> bytes_;
};

}  // namespace LumCommon
