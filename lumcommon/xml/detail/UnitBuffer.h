#pragma once

#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace LumCommon::detail {

/// A growing run of UTF-16 units that keeps its memory when it is emptied, so that filling it again allocates nothing.
///
/// It holds up to a limit, beyond which it throws LimitExceeded. Its memory never exceeds the limit, so that only
/// growing has to look at it.
class UnitBuffer {
public:
    /// @param overflow  the error of a run that is too long.
    explicit UnitBuffer(XmlError::Code overflow) noexcept : overflow_(overflow) {}

    /// What is in the buffer may be lost.
    void setLimit(std::uint64_t units) noexcept {
        limit_ = static_cast<std::size_t>(std::min<std::uint64_t>(units, mostUnits));
        if (capacity_ <= limit_) return;
        units_.reset();
        size_ = capacity_ = 0;
    }
    std::size_t limit() const noexcept { return limit_; }
    /// How many units more it takes.
    std::size_t room() const noexcept { return limit_ - size_; }
    [[noreturn]] void refuse() const { throw LimitExceeded{overflow_}; }

    const char16_t* data() const noexcept { return units_.get(); }
    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    void clear() noexcept { size_ = 0; }
    /// Cuts the run back; a larger size changes nothing.
    void truncate(std::size_t size) noexcept { size_ = std::min(size, size_); }

    void append(const char16_t* units, std::size_t count) {
        if (count == 0) return;  // there may be no memory on either side
        if (count > capacity_ - size_) grow(count);
        std::memcpy(units_.get() + size_, units, count * sizeof(char16_t));
        size_ += count;
    }
    void append(char16_t unit) {
        if (size_ == capacity_) grow(1);
        units_[size_++] = unit;
    }
    void append(const icu::UnicodeString& text) { append(text.getBuffer(), static_cast<std::size_t>(text.length())); }
    /// Values above U+10FFFF cannot occur: the decoders replace them.
    void appendCodePoint(std::int32_t c) {
        if (c < 0x10000) {
            append(static_cast<char16_t>(c));
        } else {
            append(U16_LEAD(c));
            append(U16_TRAIL(c));
        }
    }

    icu::UnicodeString toString() const { return textOf({units_.get(), size_}); }

private:
    void grow(std::size_t count) {
        if (count > room()) refuse();
        const std::size_t capacity = std::min(std::max({size_ + count, capacity_ * 2, std::size_t{256}}), limit_);
        std::unique_ptr<char16_t[]> units(new char16_t[capacity]);
        if (size_) std::memcpy(units.get(), units_.get(), size_ * sizeof(char16_t));
        units_ = std::move(units);
        capacity_ = capacity;
    }

    // ICU strings count in 31 bits, and what does not fit into one cannot be handed out.
    static constexpr std::size_t mostUnits = std::numeric_limits<std::int32_t>::max();

    std::unique_ptr<char16_t[]> units_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
    std::size_t limit_ = mostUnits;
    XmlError::Code overflow_;
};

}  // namespace LumCommon::detail
