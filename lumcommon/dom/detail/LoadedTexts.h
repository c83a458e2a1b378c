#pragma once

#include <lumcommon/values/LumValue.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace LumCommon::detail {

class ValueText;

/// The attribute values of a document that is being loaded. Most of them repeat: a short text that is seen again soon
/// is one string for all the attributes that have it from then on.
/// Cost: constant on average and linear in the text; 16 KB.
class LoadedTexts {
public:
    LoadedTexts() = default;
    LoadedTexts(const LoadedTexts&) = delete;
    LoadedTexts& operator=(const LoadedTexts&) = delete;
    ~LoadedTexts();

    /// A string value for an attribute. Copies of it have strings of their own.
    LumValue take(std::u16string_view text);

private:
    static constexpr unsigned indexBits = 10;
    static constexpr std::size_t maxUnits = 64;

    struct Entry {
        std::uint32_t hash = 0;     // of the text seen last
        std::uint32_t counts = 0;   // counts of `text` taken in advance, with one atomic instruction for many
        ValueText* text = nullptr;  // null until the text has been seen again; one count held
    };

    static void forget(Entry& entry) noexcept;

    std::array<Entry, std::size_t{1} << indexBits> entries_;
};

}  // namespace LumCommon::detail
