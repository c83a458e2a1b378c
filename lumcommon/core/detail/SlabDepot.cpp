#include <lumcommon/core/detail/SlabDepot.h>

#include <sys/mman.h>

#include <bit>
#include <new>

namespace LumCommon::detail {

namespace {

/// Kept of the first slab of a chunk: the least that is a whole number of pages, or nothing is given back of it.
constexpr std::size_t pageBytes = 4096;

/// From this many chunks on, a process uses enough memory to ask for large pages, which cost far fewer faults.
constexpr std::size_t largePagesFrom = 4;

void* mapAligned(std::size_t bytes) noexcept {
    constexpr int protection = PROT_READ | PROT_WRITE;
    constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS;
    // The system mostly puts a mapping below the one before, so that after the first one this succeeds.
    void* const direct = ::mmap(nullptr, bytes, protection, flags, -1, 0);
    if (direct == MAP_FAILED) return nullptr;
    if (reinterpret_cast<std::uintptr_t>(direct) % bytes == 0) return direct;
    ::munmap(direct, bytes);
    void* const wide = ::mmap(nullptr, 2 * bytes, protection, flags, -1, 0);
    if (wide == MAP_FAILED) return nullptr;
    auto* const begin = static_cast<std::byte*>(wide);
    const std::size_t before = (bytes - reinterpret_cast<std::uintptr_t>(wide) % bytes) % bytes;
    if (before > 0) ::munmap(begin, before);
    ::munmap(begin + before + bytes, bytes - before);
    return begin + before;
}

}  // namespace

SlabDepot::Chunk* SlabDepot::chunkOf(void* slab) noexcept {
    auto* const bytes = static_cast<std::byte*>(slab);
    return reinterpret_cast<Chunk*>(bytes - reinterpret_cast<std::uintptr_t>(slab) % chunkBytes + headerBytes);
}

std::byte* SlabDepot::startOf(Chunk* chunk) noexcept { return reinterpret_cast<std::byte*>(chunk) - headerBytes; }

SlabDepot::Chunk* SlabDepot::mapChunk() noexcept {
    void* const memory = mapAligned(chunkBytes);
    if (!memory) return nullptr;
    if (++chunks_ > largePagesFrom) ::madvise(memory, chunkBytes, MADV_HUGEPAGE);
    auto* const chunk = ::new (chunkOf(memory)) Chunk{allSlabs, 0, nullptr, nullptr};
    link(chunk);
    return chunk;
}

void SlabDepot::link(Chunk* chunk) noexcept {
    chunk->previous = nullptr;
    chunk->next = withUnused_;
    if (withUnused_) withUnused_->previous = chunk;
    withUnused_ = chunk;
}

void SlabDepot::unlink(Chunk* chunk) noexcept {
    (chunk->previous ? chunk->previous->next : withUnused_) = chunk->next;
    if (chunk->next) chunk->next->previous = chunk->previous;
}

void* SlabDepot::take() noexcept {
    const std::lock_guard lock(mutex_);
    Chunk* const chunk = withUnused_ ? withUnused_ : mapChunk();
    if (!chunk) return nullptr;
    const int index = std::countr_zero(chunk->unused);
    const std::uint32_t bit = std::uint32_t{1} << index;
    chunk->unused &= ~bit;
    if (chunk->touched & bit) --touchedSlabs_;
    chunk->touched &= ~bit;
    if (chunk->unused == 0) unlink(chunk);
    ++usedSlabs_;
    return startOf(chunk) + static_cast<std::size_t>(index) * slabBytes;
}

void SlabDepot::giveBack(void* slab) noexcept {
    const std::lock_guard lock(mutex_);
    Chunk* const chunk = chunkOf(slab);
    const auto index = static_cast<std::size_t>(static_cast<std::byte*>(slab) - startOf(chunk)) / slabBytes;
    if (chunk->unused == 0) link(chunk);
    chunk->unused |= std::uint32_t{1} << index;
    chunk->touched |= std::uint32_t{1} << index;
    --usedSlabs_;
    if (++touchedSlabs_ >= mostKept() + trimStep) trim();
}

/// Gives memory back to the system until no more unused slabs occupy any than may be kept: whole chunks first, then
/// slabs of chunks that are in use.
void SlabDepot::trim() noexcept {
    for (Chunk *chunk = withUnused_, *next; chunk && touchedSlabs_ > mostKept(); chunk = next) {
        next = chunk->next;
        if (chunk->unused != allSlabs) continue;
        touchedSlabs_ -= static_cast<std::size_t>(std::popcount(chunk->touched));
        --chunks_;
        unlink(chunk);
        ::munmap(startOf(chunk), chunkBytes);
    }
    for (Chunk* chunk = withUnused_; chunk && touchedSlabs_ > mostKept(); chunk = chunk->next) {
        while (chunk->touched != 0) {
            const int first = std::countr_zero(chunk->touched);
            const int count = std::countr_one(chunk->touched >> first);
            std::byte* const begin = startOf(chunk) + static_cast<std::size_t>(first) * slabBytes;
            const std::size_t kept = first == 0 ? pageBytes : 0;  // has the chunk's data
            ::madvise(begin + kept, static_cast<std::size_t>(count) * slabBytes - kept, MADV_DONTNEED);
            const std::uint32_t run = (count == 32 ? allSlabs : (std::uint32_t{1} << count) - 1) << first;
            chunk->touched &= ~run;
            touchedSlabs_ -= static_cast<std::size_t>(count);
        }
    }
}

}  // namespace LumCommon::detail
