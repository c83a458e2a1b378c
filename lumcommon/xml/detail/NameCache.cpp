#include <lumcommon/xml/detail/NameCache.h>

#include <algorithm>
#include <random>

namespace LumCommon::detail {

namespace {

constexpr std::size_t initialSlots = 512;
constexpr std::size_t blockUnits = 4096;

// A seed that a document's author cannot know: names that all fall into one slot would make parsing quadratic.
std::uint64_t makeSeed() {
    std::random_device device;
    return (static_cast<std::uint64_t>(device()) << 32) | device();
}

}  // namespace

NameCache::NameCache() : mask_(initialSlots - 1), slots_(initialSlots) {
    static const std::uint64_t seed = makeSeed();
    seed_ = seed;
}

void NameCache::insert(Slot slot) noexcept {
    std::uint32_t i = slot.hash & mask_;
    while (slots_[i].name) i = (i + 1) & mask_;
    slots_[i] = slot;
}

const char16_t* NameCache::keep(const char16_t* text, std::size_t size) {
    if (size > blockLeft_) {
        const std::size_t units = std::max(blockUnits, size);
        blocks_.emplace_back(new char16_t[units]);
        blockNext_ = blocks_.back().get();
        blockLeft_ = units;
    }
    char16_t* const kept = blockNext_;
    std::memcpy(kept, text, size * sizeof(char16_t));
    blockNext_ += size;
    blockLeft_ -= size;
    return kept;
}

const CachedName* NameCache::add(const char16_t* text, std::size_t size, LumNameEnum prefix, LumNameEnum localName) {
    if ((names_.size() + 1) * 2 > slots_.size()) {
        const std::vector<Slot> old = std::move(slots_);
        slots_.assign(old.size() * 2, Slot());
        mask_ = static_cast<std::uint32_t>(slots_.size() - 1);
        for (const Slot& slot : old) {
            if (slot.name) insert(slot);
        }
    }
    const char16_t* const kept = keep(text, size);
    names_.push_back({kept, static_cast<std::uint32_t>(size), prefix, localName, nullptr});
    insert({hash(text, size, seed_), &names_.back()});
    return &names_.back();
}

}  // namespace LumCommon::detail
