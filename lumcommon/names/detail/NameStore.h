#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumNameEnum.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace LumCommon::detail {

/// The run-time names of one table: identifier to string and string to identifier.
///
/// Strings are stored in chunks and never move; chunks double in size and are freed only by release().
/// Threads: stringOf() and lastName() may be called at any time. Everything else is for one thread at a time.
class NameStore {
public:
    static constexpr std::uint32_t firstName = NAME_LAST_BUILTIN + 1u;
    /// Attribute nodes keep identifiers in 24 bits.
    static constexpr std::uint32_t greatestName = 0xFFFFFFu;

    constexpr NameStore() noexcept = default;
    ~NameStore() { release(); }
    NameStore(const NameStore&) = delete;
    NameStore& operator=(const NameStore&) = delete;

    /// The name of the text, assigned now if the text is new. The text must not be empty.
    /// Failure: throws LumError 0x801 when no identifier or no memory is left; the store is as before.
    LumNameEnum intern(const char16_t* text, std::size_t units);
    /// The name of the text, 0 when it has none.
    LumNameEnum find(const char16_t* text, std::size_t units) const noexcept;
    /// The string of a run-time name; null when it is not in use. Only the identifier is checked and the string is not
    /// touched, so this is safe while another thread is in intern().
    const UnicodeString* stringOf(std::uint32_t name) const noexcept {
        if (name < firstName || name > last_.load(std::memory_order_acquire)) return nullptr;
        const Place place = placeOf(name - firstName);
        return chunks_[place.chunk].load(std::memory_order_relaxed) + place.offset;
    }
    LumNameEnum lastName() const noexcept { return static_cast<LumNameEnum>(last_.load(std::memory_order_acquire)); }

    /// Makes room for the first 1024 names.
    void reserveFirstChunk();
    /// Forgets all names; their storage is kept and reused.
    void clear() noexcept;
    /// Forgets all names and frees everything: nobody may still hold one of the strings.
    void release() noexcept;

private:
    static constexpr std::uint32_t firstChunkSize = 1024;
    static constexpr std::size_t chunkCount = 14;  // 1024 * (2^14 - 1) places: more than there are identifiers
    static_assert(firstChunkSize * ((1u << chunkCount) - 1) > greatestName - firstName);
    static constexpr std::size_t keptSlots = 4096;  // clear() frees an index larger than this

    struct Place {
        std::size_t chunk;
        std::size_t offset;
    };
    struct Slot {
        std::uint32_t hash;
        std::uint32_t name;  // 0: free
    };

    static Place placeOf(std::uint32_t index) noexcept;
    static std::uint32_t hashOf(const char16_t* text, std::size_t units) noexcept;
    /// The slot that holds the text, else the free slot where it belongs.
    Slot& probe(const char16_t* text, std::size_t units, std::uint32_t hash) const noexcept;
    void growIndex();
    UnicodeString* makeChunk(std::size_t chunk);

    std::atomic<std::uint32_t> last_{NAME_LAST_BUILTIN};
    std::uint32_t constructed_ = 0;  // strings that have been constructed; at least those in use
    std::array<std::atomic<UnicodeString*>, chunkCount> chunks_{};
    std::unique_ptr<Slot[]> slots_;
    std::size_t slotCount_ = 0;  // 0 or a power of two, at least a third of it free
};

}  // namespace LumCommon::detail
