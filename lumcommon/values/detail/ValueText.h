#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/core/detail/SlabPool.h>

#include <atomic>
#include <cstdint>
#include <string_view>

namespace LumCommon {

class LumValue;

namespace detail {

/// The string of a value, and how many values have it. Copying a value makes a string of its own; only loading gives
/// one string to several attributes.
/// Threads: counted like objects; the string itself never changes.
class ValueText {
public:
    /// The first count is the caller's. Throw std::bad_alloc.
    static ValueText* make(const UnicodeString& text);
    static ValueText* make(std::u16string_view text, BlockUse use);
    ValueText(const ValueText&) = delete;
    ValueText& operator=(const ValueText&) = delete;

    const UnicodeString& text() const noexcept { return text_; }
    void addRefs(std::int64_t counts) noexcept { counts_.fetch_add(counts, std::memory_order_relaxed); }
    void releaseRefs(std::int64_t counts) noexcept {
        // Counts that are all of them are the caller's own: nobody else has one from which another could be taken.
        if (counts_.load(std::memory_order_acquire) == counts ||
            counts_.fetch_sub(counts, std::memory_order_acq_rel) == counts) {
            destroy();
        }
    }
    /// A string value that takes over one count.
    static LumValue toValue(ValueText* counted) noexcept;
    /// A value that shares the string of `value`, which is a string value.
    static LumValue share(const LumValue& value) noexcept;

private:
    ValueText() noexcept = default;
    explicit ValueText(const UnicodeString& text) noexcept : text_(text) {}
    ~ValueText() = default;
    void destroy() noexcept;

    UnicodeString text_;
    std::atomic<std::int64_t> counts_{1};
};

/// Copies `text` into the empty string `to`, which becomes no longer than that. Throws std::bad_alloc.
void assignText(UnicodeString& to, std::u16string_view text);

}  // namespace detail

}  // namespace LumCommon
