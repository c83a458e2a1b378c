#pragma once

#include <cstddef>
#include <new>

/// The memory of small objects that come and go in large numbers: counted objects, nodes above all, and the strings of
/// values.
///
/// Blocks of one size lie side by side in slabs of 64 KB, in the order in which they were allocated. A hole is used
/// again before a new slab is; a slab without blocks serves any size and any thread, or goes back to the system.
///
/// Cost: allocating and releasing is constant: a few instructions, and a mutex once a slab. A block has no overhead but
/// the rounding of its size to 8 bytes. A thread keeps one slab for each size that it uses; unused slabs of the
/// process are kept up to 64 MB more than are in use. One live block keeps its slab, whose holes serve only blocks of
/// the same size.
/// Failure: std::bad_alloc when memory runs out.
/// Threads: a block may be released on any thread. On another thread than the one that allocated it, that takes two
/// atomic instructions, and the memory is used again when the thread that allocated it next needs a slab. The slabs of
/// a thread that has ended belong to the first thread that releases one of their blocks, or to a new thread.
/// Finding errors: with the address or memory sanitizer, or when the library was configured with LUM_PLAIN_ALLOCATION,
/// every block is a block of the global heap, so that tools see each use after release.
namespace LumCommon::detail {

/// What a block is for: those that live long are kept apart, or each of them would pin a slab of short-lived ones.
enum class BlockUse : unsigned { ORDINARY = 0, LONG_LIVED = 1 };

/// Larger blocks come from the global heap.
inline constexpr std::size_t maxPooledBytes = 512;

/// @param bytes  a multiple of the alignment that the object needs, as sizeof is.
void* allocateBlock(std::size_t bytes, BlockUse use = BlockUse::ORDINARY);
/// @param bytes  what the block was allocated with.
void releaseBlock(void* block, std::size_t bytes) noexcept;

}  // namespace LumCommon::detail
