#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace LumCommon::detail {

/// The fields of one record of a compound file, in the byte order that the file's header tells. A record is as long as
/// the highest offset that is asked for: its reader has made sure of that.
class OleFields {
public:
    OleFields(std::span<const char> record, bool littleEndian) noexcept
        : record_(record), littleEndian_(littleEndian) {}

    std::uint8_t get8(std::size_t offset) const noexcept { return static_cast<std::uint8_t>(record_[offset]); }
    std::uint16_t get16(std::size_t offset) const noexcept { return static_cast<std::uint16_t>(get(offset, 2)); }
    std::uint32_t get32(std::size_t offset) const noexcept { return static_cast<std::uint32_t>(get(offset, 4)); }
    std::uint64_t get64(std::size_t offset) const noexcept { return get(offset, 8); }
    /// Sector numbers and indices are signed: the negative ones have meanings of their own.
    std::int32_t getSigned(std::size_t offset) const noexcept { return static_cast<std::int32_t>(get32(offset)); }

private:
    std::uint64_t get(std::size_t offset, unsigned bytes) const noexcept {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < bytes; ++i) {
            const unsigned shift = 8 * (littleEndian_ ? i : bytes - 1 - i);
            value |= std::uint64_t{get8(offset + i)} << shift;
        }
        return value;
    }

    std::span<const char> record_;
    bool littleEndian_;
};

}  // namespace LumCommon::detail
