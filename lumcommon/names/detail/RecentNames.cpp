#include <lumcommon/names/detail/RecentNames.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <span>

namespace LumCommon::detail {

constinit thread_local RecentNames* RecentNames::ofThread_ = nullptr;

RecentNames* RecentNames::makeForThread() noexcept {
    struct Owner {
        std::unique_ptr<RecentNames> names;
        bool isEnding = false;

        ~Owner() {
            ofThread_ = nullptr;
            isEnding = true;
        }
    };
    static thread_local Owner owner;
    if (owner.isEnding) return nullptr;
    try {
        owner.names = std::make_unique<RecentNames>();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return ofThread_ = owner.names.get();
}

RecentNames::RecentNames()
    : key_(processHashKey()), mask_(leastEntries - 1), entries_(std::make_unique<Entry[]>(leastEntries)) {}

void RecentNames::keep(const char16_t* text, std::size_t units, std::uint32_t generation, LumNameEnum name) noexcept {
    if (units > std::size(Entry().text)) return;
    if (generation != generation_) {
        std::fill_n(entries_.get(), mask_ + 1, Entry());
        generation_ = generation;
    }
    Entry entry{name, static_cast<std::uint32_t>(units), {}};
    std::copy_n(text, units, entry.text);
    put(entry);
    if (evictions_ > mask_ / 8 && mask_ + 1 < mostEntries) grow();
}

/// At the first place of the name; what is there moves to the second, and what is there as well is forgotten.
void RecentNames::put(const Entry& entry) noexcept {
    Entry& first = entryFor(entry.text, entry.units);
    if (first.units != 0) {
        Entry& second = *otherOf(&first);
        if (second.units != 0) ++evictions_;
        second = first;
    }
    first = entry;
}

void RecentNames::grow() noexcept {
    const std::size_t oldCount = mask_ + 1;
    evictions_ = 0;
    std::unique_ptr<Entry[]> grown(new (std::nothrow) Entry[2 * oldCount]());
    if (!grown) return;
    entries_.swap(grown);
    mask_ = 2 * oldCount - 1;
    for (const Entry& entry : std::span(grown.get(), oldCount)) {
        if (entry.units != 0) put(entry);
    }
    evictions_ = 0;
}

}  // namespace LumCommon::detail
