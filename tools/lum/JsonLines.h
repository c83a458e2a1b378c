#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace LumTool {

/// Lines of JSON for standard output, written piece by piece, where a Json for each line would cost too much. What is
/// written is what printJson() writes.
///
/// The place of the next byte is handed from step to step and kept in no member while a line is written: there every
/// byte could change it, and each step would wait for the one before to reach the memory.
///
///     char* out = JsonLines::put(lines.room(lines.begin(), 8), "{\"name\":");
///     lines.endLine(JsonLines::put(lines.quote(out, name), "}"));
///
/// Bytes are handed over in blocks, and the rest on destruction, quietly. Memory: one block, however long a line is.
/// Failure of what can hand over: LumError 0x1007 if it cannot be written.
class JsonLines {
public:
    /// What precedes and follows the members "prefix", "name" and "namespace" of an object.
    struct Frame {
        std::string_view before, after;
    };

    JsonLines() : buffer_(new char[bufferBytes]), next_(buffer_.get()) {}
    JsonLines(const JsonLines&) = delete;
    JsonLines& operator=(const JsonLines&) = delete;
    ~JsonLines();

    /// Where the line starts.
    char* begin() const noexcept { return next_; }
    /// A place with room for that many bytes, a few hundred at most, and `slack`: `out`, unless all before it is handed
    /// over first.
    char* room(char* out, std::size_t byteCount) {
        const auto rest = static_cast<std::size_t>(buffer_.get() + bufferBytes - out);
        if (rest >= byteCount + slack) [[likely]]
            return out;
        return handOver(out);
    }
    /// What each step below leaves behind its own bytes, enough for a short string and what may follow it.
    static constexpr std::size_t slack = 64;
    /// JSON as it stands; there must be room.
    template <std::size_t size>
    static char* put(char* out, const char (&json)[size]) noexcept {
        std::memcpy(out, json, size - 1);  // a constant size takes no call
        return out + size - 1;
    }
    /// A number; there must be `numberRoom`.
    static char* put(char* out, int number) noexcept {
        static constexpr std::uint32_t powers[] = {1,       10,        100,        1'000,      10'000,
                                                   100'000, 1'000'000, 10'000'000, 100'000'000};
        if (static_cast<unsigned>(number) > 99'999'999) return putLong(out, number);
        const auto value = static_cast<std::uint32_t>(number);
        const std::uint32_t about =
            static_cast<std::uint32_t>(std::bit_width(value | 1)) * 1'233 >> 12;  // its logarithm
        const std::uint32_t count = about + (value >= powers[about] ? 1 : 0) + (value == 0 ? 1 : 0);
        // Eight digits in a word, from halves of four, pairs and single ones, the first one lowest.
        std::uint64_t digits = value / 10'000 | std::uint64_t{value % 10'000} << 32;
        const std::uint64_t hundreds = (digits * 5'243 >> 19) & 0x7F0000007F;
        digits = hundreds | (digits - 100 * hundreds) << 16;
        const std::uint64_t tens = (digits * 103 >> 10) & 0x000F000F000F000F;
        digits = tens | (digits - 10 * tens) << 8;
        const std::uint64_t text = (digits | 0x3030303030303030) >> (64 - 8 * count);
        std::memcpy(out, &text, sizeof text);
        return out + count;
    }
    static constexpr std::size_t numberRoom = 16;
    /// As a quoted string; room is made, as far as the slack is not enough.
    char* quote(char* out, const LumCommon::UnicodeString& text) {
        const auto units = static_cast<std::size_t>(text.length());
        if (units - 1 < shortUnits && copyShort(text.getBuffer(), units, out + 1)) {
            out[0] = out[units + 1] = '"';
            return out + units + 2;
        }
        return quoteAny(out, text);
    }
    /// The members in one of the frames 0 to 7, which must be the same one in all calls. Room is made.
    char* addNames(char* out, unsigned frameIndex, const Frame& frame, LumCommon::LumName prefix,
                   LumCommon::LumName name, LumCommon::LumName namespaceUri) {
        const Names names{std::uint64_t{prefix.getEnum()} << 32 | name.getEnum(),
                          std::uint64_t{namespaceUri.getEnum()} << 32 | frameIndex};
        const std::uint64_t mixed = (names.low ^ names.high << 28) * 0x9E3779B97F4A7C15u;
        const auto home = static_cast<std::size_t>(mixed >> (64 - slotBits));
        const NamesSlot* slot = &names_[home];
        if (slot->names != names) [[unlikely]] {
            slot = findOther(names, home, frame);
            if (!slot) return putAnyLength(out, jsonOf(names, frame));
        }
        out = room(out, sizeof(slot->json));
        // In pieces of constant sizes, which take no call: what most attributes have, most tags, and others.
        std::memcpy(out, slot->json, 80);
        if (slot->length > 80) std::memcpy(out + 80, slot->json + 80, 48);
        if (slot->length > 128) std::memcpy(out + 128, slot->json + 128, sizeof(slot->json) - 128);
        return out + slot->length;
    }
    /// Ends the line; there must be room for a byte.
    void endLine(char* out) noexcept {
        *out = '\n';
        next_ = out + 1;
    }
    /// Hands over the lines.
    void flush() { next_ = handOver(next_); }

private:
    static constexpr std::size_t bufferBytes = 64 * 1024;
    static constexpr std::size_t shortUnits = 32;
    static constexpr int slotBits = 9;
    static constexpr std::size_t probes = 4;

    struct Names {
        std::uint64_t low, high;  // prefix and name, namespace and frame
        bool operator==(const Names& other) const { return ((low ^ other.low) | (high ^ other.high)) == 0; }
    };
    /// The members of names met before, in their frame, if their JSON fits.
    struct alignas(64) NamesSlot {
        Names names{0, ~std::uint64_t{0}};  // of no frame
        std::uint32_t length = 0;
        char json[168];
    };

    /// Copies 1 to `shortUnits` characters if all are plain; else what is at `out` means nothing.
    static bool copyShort(const char16_t* from, std::size_t units, char* out) noexcept;
    static char* putLong(char* out, int number) noexcept;
    char* handOver(char* end);
    char* putAnyLength(char* out, std::string_view json);
    char* quoteAny(char* out, const LumCommon::UnicodeString& text);
    char* quoteLong(char* out, const char16_t* from, const char16_t* end);
    /// In one of the next slots, or put into one; null if the JSON does not fit.
    const NamesSlot* findOther(const Names& names, std::size_t home, const Frame& frame);
    static std::string jsonOf(const Names& names, const Frame& frame);

    std::unique_ptr<char[]> buffer_;
    char* next_;
    std::array<NamesSlot, 1u << slotBits> names_;
    std::size_t replaced_ = 0;
};

}  // namespace LumTool
