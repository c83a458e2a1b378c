#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

namespace LumCommon::detail {

/// The bytes of a slab, and what its address is a multiple of.
inline constexpr std::size_t slabBytes = 65536;

/// The slabs that no thread uses, for the whole process.
///
/// Memory comes from the system in chunks of 32 slabs and goes back when much is unused: the depot keeps at most 64 MB
/// more than there is in use, plus up to 4 MB so that it need not ask the system for every slab.
/// Threads: any; a mutex is taken once a slab.
class SlabDepot {
public:
    /// What the user of a slab may write at its start.
    static constexpr std::size_t headerBytes = 128;

    /// Where the rest that the user may write begins: in the first slab of a chunk, the chunk's data lie in between.
    static std::size_t startOfBlocks(const void* slab) noexcept {
        return headerBytes + (reinterpret_cast<std::uintptr_t>(slab) % chunkBytes == 0 ? sizeof(Chunk) : 0);
    }

    constexpr SlabDepot() noexcept = default;
    /// A slab; null when memory runs out.   Cost: constant, at times a call of the system.
    void* take() noexcept;
    void giveBack(void* slab) noexcept;

private:
    static constexpr std::size_t slabsPerChunk = 32;
    static constexpr std::size_t chunkBytes = slabsPerChunk * slabBytes;
    static constexpr std::size_t keptSlabs = 1024;
    static constexpr std::size_t trimStep = 64;
    static constexpr std::uint32_t allSlabs = 0xFFFFFFFFu;

    /// In the first slab of the chunk, after that slab's header.
    struct alignas(64) Chunk {
        std::uint32_t unused;   // one bit a slab
        std::uint32_t touched;  // of the unused ones, those that occupy memory
        Chunk* next;            // in the list of chunks that have unused slabs
        Chunk* previous;
    };

    static Chunk* chunkOf(void* slab) noexcept;
    static std::byte* startOf(Chunk* chunk) noexcept;
    Chunk* mapChunk() noexcept;
    void link(Chunk* chunk) noexcept;
    void unlink(Chunk* chunk) noexcept;
    std::size_t mostKept() const noexcept { return keptSlabs + usedSlabs_; }
    void trim() noexcept;

    std::mutex mutex_;
    Chunk* withUnused_ = nullptr;
    std::size_t chunks_ = 0;
    std::size_t usedSlabs_ = 0;
    std::size_t touchedSlabs_ = 0;  // unused ones that occupy memory
};

}  // namespace LumCommon::detail
