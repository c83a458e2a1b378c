#include <lumcommon/xml/detail/NameCache.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

constexpr std::size_t initialSlots = 256;
constexpr std::size_t blockUnits = 4096;

}  // namespace

NameCache::NameCache() : key_(processHashKey()), mask_(initialSlots - 1), slots_(initialSlots) {}

void NameCache::clear() {
    std::fill(slots_.begin(), slots_.end(), Slot());
    names_.clear();
    blocks_.clear();
    blockLeft_ = 0;
}

void NameCache::insert(Slot slot) noexcept {
    std::uint32_t i = slot.hash & mask_;
    while (slots_[i].name) i = (i + 1) & mask_;
    slots_[i] = slot;
}

const char16_t* NameCache::keep(const char16_t* text, std::size_t size) {
    if (size > blockLeft_) {
        const std::size_t units = std::max(blockUnits, size);
        blocks_.push_back(std::make_unique_for_overwrite<char16_t[]>(units));
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
        std::vector<Slot> old(slots_.size() * 2);
        old.swap(slots_);
        mask_ = static_cast<std::uint32_t>(slots_.size() - 1);
        for (const Slot& slot : old) {
            if (slot.name) insert(slot);
        }
    }
    const char16_t* const kept = keep(text, size);
    CachedName& name = names_.emplace_back(CachedName{.units = kept,
                                                      .size = static_cast<std::uint32_t>(size),
                                                      .prefix = prefix,
                                                      .localName = localName,
                                                      .bindsPrefix = bindsPrefix(prefix, localName)});
    for (unsigned i = 0; i < std::min<std::size_t>(size, 4); ++i) {
        name.head |= std::uint64_t{text[i]} << (16 * i);
        name.headMask |= std::uint64_t{0xFFFF} << (16 * i);
    }
    insert({hash(text, size), &names_.back()});
    return &names_.back();
}

}  // namespace LumCommon::detail
