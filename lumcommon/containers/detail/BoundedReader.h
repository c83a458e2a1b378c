#pragma once

#include <lumcommon/streams/detail/StreamReading.h>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <span>

namespace LumCommon::detail {

/// Takes little-endian fields off the front of a run of bytes. Every count and offset of an archive comes through here.
/// The first field that is not there in full ends the run: it and all behind it are 0, or the fields behind it would be
/// read from where others belong.
class BoundedReader {
public:
    explicit BoundedReader(std::span<const char> bytes) noexcept : rest_(bytes) {}

    /// Takes `claimed` bytes. False, and nothing is left, when fewer remain.
    [[nodiscard]] bool take(std::uint64_t claimed, std::span<const char>& run) noexcept {
        if (claimed > rest_.size()) {  // compared, not added: a position and a claim together could wrap
            rest_ = {};
            return false;
        }
        run = rest_.first(static_cast<std::size_t>(claimed));
        rest_ = rest_.subspan(run.size());
        return true;
    }

    std::uint16_t take16() noexcept { return static_cast<std::uint16_t>(takeLittleEndian(2)); }
    std::uint32_t take32() noexcept { return takeLittleEndian(4); }

    std::size_t getRemainingBytes() const noexcept { return rest_.size(); }

private:
    std::uint32_t takeLittleEndian(unsigned bytes) noexcept {
        std::span<const char> field;
        std::uint32_t value = 0;
        if (!take(bytes, field)) return 0;
        for (unsigned i = 0; i < bytes; ++i) value |= std::uint32_t{static_cast<unsigned char>(field[i])} << (8 * i);
        return value;
    }

    std::span<const char> rest_;
};

/// Reads a header of a fixed size off a stream, then its fields. A stream that ends within the header gives fewer
/// bytes.
template <std::size_t sizeBytes>
class HeaderReader {
public:
    explicit HeaderReader(std::istream& in) noexcept : fields_({room_, readBytes(in, room_)}) {}
    HeaderReader(const HeaderReader&) = delete;
    HeaderReader& operator=(const HeaderReader&) = delete;

    BoundedReader* operator->() noexcept { return &fields_; }
    BoundedReader& operator*() noexcept { return fields_; }

private:
    char room_[sizeBytes];
    BoundedReader fields_;
};

}  // namespace LumCommon::detail
