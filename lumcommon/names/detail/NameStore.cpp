#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/names/detail/NameStore.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <new>
#include <span>
#include <string_view>
#include <utility>

namespace LumCommon::detail {

namespace {

[[noreturn]] void throwOutOfMemory() { throw LumError(std::bad_alloc(), UnicodeString()); }

}  // namespace

NameStore::Place NameStore::placeOf(std::uint32_t index) noexcept {
    // Chunk k holds 1024 * 2^k places and begins at 1024 * (2^k - 1).
    const std::uint32_t shifted = index + firstChunkSize;
    const auto chunk = static_cast<std::size_t>(std::bit_width(shifted)) - std::bit_width(firstChunkSize);
    return {chunk, shifted - (firstChunkSize << chunk)};
}

std::uint32_t NameStore::hashOf(const char16_t* text, std::size_t units) noexcept {
    return static_cast<std::uint32_t>(hashUnits(text, units));
}

NameStore::Slot& NameStore::probe(const char16_t* text, std::size_t units, std::uint32_t hash) const noexcept {
    const std::size_t mask = slotCount_ - 1;
    for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
        Slot& slot = slots_[at];
        if (slot.name == 0) return slot;
        if (slot.hash != hash) continue;
        const UnicodeString& string = *stringOf(slot.name);
        if (std::u16string_view(string.getBuffer(), static_cast<std::size_t>(string.length())) ==
            std::u16string_view(text, units)) {
            return slot;
        }
    }
}

void NameStore::growIndex() {
    const std::size_t newCount = slotCount_ == 0 ? 2 * firstChunkSize : 2 * slotCount_;
    auto newSlots = std::make_unique<Slot[]>(newCount);
    for (const Slot& slot : std::span(slots_.get(), slotCount_)) {
        if (slot.name == 0) continue;
        std::size_t at = slot.hash & (newCount - 1);
        while (newSlots[at].name != 0) at = (at + 1) & (newCount - 1);
        newSlots[at] = slot;
    }
    slots_ = std::move(newSlots);
    slotCount_ = newCount;
}

UnicodeString* NameStore::makeChunk(std::size_t chunk) {
    // Plain storage: a string is constructed when its identifier is assigned for the first time, so that a large chunk
    // uses memory only as it fills.
    const std::size_t bytes = (std::size_t{firstChunkSize} << chunk) * sizeof(UnicodeString);
    auto* const strings = static_cast<UnicodeString*>(::operator new(bytes));
    chunks_[chunk].store(strings, std::memory_order_relaxed);  // published together with the first name in it
    return strings;
}

void NameStore::reserveFirstChunk() {
    if (chunks_[0].load(std::memory_order_relaxed) == nullptr) makeChunk(0);
}

LumNameEnum NameStore::intern(const char16_t* text, std::size_t units) {
    const std::uint32_t hash = hashOf(text, units);
    const std::uint32_t last = last_.load(std::memory_order_relaxed);
    if (slotCount_ != 0) {
        const Slot& found = probe(text, units, hash);
        if (found.name != 0) return static_cast<LumNameEnum>(found.name);
    }
    if (last >= greatestName || units > std::size_t{std::numeric_limits<std::int32_t>::max()}) throwOutOfMemory();
    try {
        // Everything that can fail comes before the first visible change.
        const std::uint32_t used = last + 1 - firstName;
        if (used + 1 > slotCount_ / 3 * 2) growIndex();
        UnicodeString copy = textOf({text, units});
        const Place place = placeOf(used);
        UnicodeString* strings = chunks_[place.chunk].load(std::memory_order_relaxed);
        if (strings == nullptr) strings = makeChunk(place.chunk);
        if (used < constructed_) {
            strings[place.offset] = std::move(copy);
        } else {
            new (strings + place.offset) UnicodeString(std::move(copy));
            constructed_ = used + 1;
        }
    } catch (const std::bad_alloc&) {
        throwOutOfMemory();
    }
    probe(text, units, hash) = {hash, last + 1};
    last_.store(last + 1, std::memory_order_release);
    return static_cast<LumNameEnum>(last + 1);
}

LumNameEnum NameStore::find(const char16_t* text, std::size_t units) const noexcept {
    if (slotCount_ == 0) return NAME_NULL;
    return static_cast<LumNameEnum>(probe(text, units, hashOf(text, units)).name);
}

void NameStore::clear() noexcept {
    const std::uint32_t used = last_.load(std::memory_order_relaxed) + 1 - firstName;
    last_.store(NAME_LAST_BUILTIN, std::memory_order_release);
    for (std::uint32_t index = 0; index < used; ++index) {
        const Place place = placeOf(index);
        chunks_[place.chunk].load(std::memory_order_relaxed)[place.offset] = UnicodeString();  // frees a long text
    }
    if (slotCount_ <= keptSlots) {
        std::fill_n(slots_.get(), slotCount_, Slot{});
    } else {
        slots_.reset();
        slotCount_ = 0;
    }
}

void NameStore::release() noexcept {
    clear();
    for (std::uint32_t index = 0; index < constructed_; ++index) {
        const Place place = placeOf(index);
        chunks_[place.chunk].load(std::memory_order_relaxed)[place.offset].~UnicodeString();
    }
    constructed_ = 0;
    for (auto& chunk : chunks_) ::operator delete(chunk.exchange(nullptr, std::memory_order_relaxed));
    slots_.reset();
    slotCount_ = 0;
}

}  // namespace LumCommon::detail
