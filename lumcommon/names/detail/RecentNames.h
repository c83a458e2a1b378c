#pragma once

#include <lumcommon/names/LumNameEnum.h>
#include <lumcommon/names/detail/UnitHash.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace LumCommon::detail {

/// The names that one thread has interned lately, with copies of their texts: a name that comes again takes no lock and
/// touches nothing that another thread writes.
///
/// What it holds is true for one generation of the shared table, see LumNameTable.
/// Memory: 16 KiB for each thread that interns, up to 512 KiB for one that interns thousands of names by turns; freed
/// when the thread ends.
class RecentNames {
public:
    /// Those of this thread; null when there is no memory for them, and while the thread ends.
    static RecentNames* ofThread() noexcept { return ofThread_ ? ofThread_ : makeForThread(); }

    RecentNames();

    /// The name of the text; the null name when it is not here. `units` is at least 1.
    LumNameEnum find(const char16_t* text, std::size_t units, std::uint32_t generation) const noexcept {
        if (generation != generation_) return NAME_NULL;
        const Entry* const entry = &entryFor(text, units);
        if (entry->matches(text, units)) return entry->name;
        const Entry& other = *otherOf(entry);
        return other.matches(text, units) ? other.name : NAME_NULL;
    }
    /// Long texts are not kept.
    void keep(const char16_t* text, std::size_t units, std::uint32_t generation, LumNameEnum name) noexcept;

private:
    static constexpr std::size_t leastEntries = 256;
    static constexpr std::size_t mostEntries = 8192;

    struct alignas(64) Entry {
        LumNameEnum name;
        std::uint32_t units;  // 0: nothing is kept here
        char16_t text[28];

        bool matches(const char16_t* other, std::size_t count) const noexcept {
            return units == count && equalUnits(text, other, count);
        }
    };
    static_assert(sizeof(Entry) == 64, "a line of the processor's cache");

    static RecentNames* makeForThread() noexcept;

    Entry& entryFor(const char16_t* text, std::size_t units) const noexcept {
        return entries_[static_cast<std::size_t>(hashUnits(text, units, key_)) & mask_];
    }
    /// The second place for what belongs to the first.
    Entry* otherOf(const Entry* entry) const noexcept {
        return &entries_[static_cast<std::size_t>(entry - entries_.get()) ^ 1];
    }
    void put(const Entry& entry) noexcept;
    void grow() noexcept;

    // In the thread's static block, which is found without a call. Libraries that are loaded late get a few bytes
    // there.
    [[gnu::tls_model("initial-exec")]] static thread_local RecentNames* ofThread_;

    const HashKey key_;
    std::size_t mask_;
    std::unique_ptr<Entry[]> entries_;
    std::size_t evictions_ = 0;  // since the last growth; the table grows when too many names want the same two places
    std::uint32_t generation_ = 0;
};

}  // namespace LumCommon::detail
