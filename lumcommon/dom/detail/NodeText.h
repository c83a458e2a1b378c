#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <cstdint>
#include <cstring>
#include <string_view>

namespace LumCommon::detail {

class ValueText;

/// The text of a node, in three words: most texts of a document are white space or a few words. Up to 10 units lie
/// here, up to 27 in a block of their own size; a longer text is a string that its copies share.
/// Failure: std::bad_alloc; nothing is changed then.
class LUM_API NodeText {
public:
    NodeText() noexcept = default;
    explicit NodeText(const UnicodeString& text) { assign(text); }
    explicit NodeText(std::u16string_view text) { assign(text); }
    NodeText(const NodeText&) = delete;
    NodeText& operator=(const NodeText&) = delete;
    ~NodeText() {
        if (length_ > maxHere) release();
    }

    void assign(const UnicodeString& text);
    /// `text` is shorter than 2^31 units.
    void assign(std::u16string_view text);
    int length() const noexcept { return length_ < 0 ? 0 : length_; }
    /// Valid until the text changes.
    std::u16string_view view() const noexcept;
    /// Equal to the string that was assigned; a long one is not copied.
    UnicodeString toString() const;

private:
    static constexpr std::int32_t maxHere = 10;
    static constexpr std::int32_t maxInBlock = 27;  // as many as a UnicodeString has inside
    static constexpr std::int32_t bogus = -1;

    template <class T>
    T* pointer() const noexcept {
        T* stored;
        std::memcpy(&stored, units_, sizeof stored);
        return stored;
    }
    void setPointer(const void* pointer, std::int32_t length) noexcept;
    void release() noexcept;

    alignas(8) std::int32_t length_ = 0;
    char16_t units_[maxHere];  // or a pointer
};
static_assert(sizeof(NodeText) == 24);

}  // namespace LumCommon::detail
