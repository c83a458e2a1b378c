#include <lumcommon/core/detail/NeverDestroyed.h>
#include <lumcommon/core/detail/SlabDepot.h>
#include <lumcommon/core/detail/SlabPool.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>

#ifndef LUM_PLAIN_ALLOCATION
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(hwaddress_sanitizer)
#define LUM_PLAIN_ALLOCATION
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_HWADDRESS__)
#define LUM_PLAIN_ALLOCATION
#endif
#endif

namespace LumCommon::detail {

#ifdef LUM_PLAIN_ALLOCATION

void* allocateBlock(std::size_t bytes, BlockUse) { return ::operator new(bytes); }

void releaseBlock(void* block, std::size_t) noexcept { ::operator delete(block); }

#else

namespace {

constexpr std::size_t granule = 8;
constexpr std::size_t sizeClasses = maxPooledBytes / granule + 1;
constexpr std::size_t kinds = 2 * sizeClasses;  // of each size and each use

/// A block that is not in use.
struct Hole {
    Hole* next;
};

class Heap;

/// At the start of each slab. Only the owner of the heap touches it, except where something else is said.
struct alignas(64) Slab {
    Slab(Heap* itsHeap, std::size_t itsKind) noexcept
        : heap(itsHeap),
          blockBytes(static_cast<std::uint32_t>(itsKind % sizeClasses * granule)),
          kind(static_cast<std::uint32_t>(itsKind)) {
        empty();
    }

    Hole* holes;
    std::byte* fresh;  // no block has been handed out from here on
    std::byte* end;
    Heap* const heap;        // read on any thread
    std::uint32_t live = 0;  // blocks in use, including those in `returned`
    const std::uint32_t blockBytes;
    const std::uint32_t kind;
    bool isFull = false;   // neither current nor in the list
    Slab* next = nullptr;  // in the list of slabs that have room
    Slab* previous = nullptr;
    // For the other threads.
    std::atomic<Hole*> returned{nullptr};  // the blocks that they have released
    Slab* nextReturned = nullptr;          // in the list of slabs that have such blocks

    void empty() noexcept {
        holes = nullptr;
        const std::size_t start = SlabDepot::startOfBlocks(this);
        fresh = reinterpret_cast<std::byte*>(this) + start;
        end = fresh + (slabBytes - start) / blockBytes * blockBytes;
    }
    bool hasRoom() const noexcept { return holes || fresh != end; }
    /// Null when there is no room.
    void* take() noexcept {
        void* block = holes;
        if (holes) {
            holes = holes->next;
        } else if (fresh != end) {
            block = fresh;
            fresh += blockBytes;
        } else {
            return nullptr;
        }
        ++live;
        return block;
    }
};
static_assert(sizeof(Slab) <= SlabDepot::headerBytes);

Slab* slabOf(void* block) noexcept {
    auto* const bytes = static_cast<std::byte*>(block);
    return reinterpret_cast<Slab*>(bytes - reinterpret_cast<std::uintptr_t>(block) % slabBytes);
}

constinit NeverDestroyed<SlabDepot> depot;

/// The slabs of one thread. A heap is never destroyed: when its thread ends, another one takes it over.
class Heap {
public:
    /// Null when the current slab is full.
    void* take(std::size_t kind) noexcept { return current_[kind] ? current_[kind]->take() : nullptr; }
    /// The same from the other slabs of the heap.
    void* takeFromOthers(std::size_t kind) noexcept;
    /// The same from a new slab. Throws std::bad_alloc.
    void* takeFromNew(std::size_t kind);
    /// True when the heap has no slab left.
    bool release(Slab* slab, void* block) noexcept {
        slab->holes = ::new (block) Hole{slab->holes};
        return (--slab->live == 0 || slab->isFull) && settle(slab);
    }
    /// For threads that do not own the heap.
    void releaseFromElsewhere(Slab* slab, void* block) noexcept;
    /// Takes back what other threads have released. True when that leaves no slab.
    bool collectReturned() noexcept;
    /// Gives up the current slabs, as the thread ends.
    void retire() noexcept;

    std::atomic<const void*> owner{nullptr};  // identifies the thread; null when no thread owns the heap
    Heap* next = nullptr;                     // of the same thread, or of those that no thread owns

private:
    void setCurrent(std::size_t kind, Slab* slab) noexcept;
    bool settle(Slab* slab) noexcept;
    void list(Slab* slab) noexcept;
    void unlist(Slab* slab) noexcept;
    void discard(Slab* slab) noexcept;

    Slab* current_[kinds] = {};   // blocks are taken from these
    Slab* withRoom_[kinds] = {};  // lists of the others that have holes
    std::size_t slabs_ = 0;
    alignas(64) std::atomic<Slab*> returned_{nullptr};  // slabs with blocks that other threads have released
};

void Heap::list(Slab* slab) noexcept {
    Slab*& first = withRoom_[slab->kind];
    slab->isFull = false;
    slab->previous = nullptr;
    slab->next = first;
    if (first) first->previous = slab;
    first = slab;
}

void Heap::unlist(Slab* slab) noexcept {
    (slab->previous ? slab->previous->next : withRoom_[slab->kind]) = slab->next;
    if (slab->next) slab->next->previous = slab->previous;
}

void Heap::discard(Slab* slab) noexcept {
    --slabs_;
    slab->~Slab();
    depot->giveBack(slab);
}

/// Replaces the current slab, which is full.
void Heap::setCurrent(std::size_t kind, Slab* slab) noexcept {
    if (Slab* const full = std::exchange(current_[kind], slab)) full->isFull = true;
}

void* Heap::takeFromOthers(std::size_t kind) noexcept {
    Slab* const slab = withRoom_[kind];
    if (!slab) return nullptr;
    unlist(slab);
    setCurrent(kind, slab);
    return slab->take();
}

void* Heap::takeFromNew(std::size_t kind) {
    void* const memory = depot->take();
    if (!memory) throw std::bad_alloc();
    ++slabs_;
    setCurrent(kind, ::new (memory) Slab(this, kind));
    return current_[kind]->take();
}

/// After a release that has left the slab without blocks, or a full one with a hole. True when no slab is left.
bool Heap::settle(Slab* slab) noexcept {
    if (slab->live != 0) {
        list(slab);
    } else if (slab == current_[slab->kind]) {
        slab->empty();
    } else {
        if (!slab->isFull) unlist(slab);
        discard(slab);
    }
    return slabs_ == 0;
}

void Heap::retire() noexcept {
    for (Slab*& current : current_) {
        Slab* const slab = std::exchange(current, nullptr);
        if (!slab) continue;
        if (slab->live == 0) {
            discard(slab);
        } else if (slab->hasRoom()) {
            list(slab);
        } else {
            slab->isFull = true;
        }
    }
}

void Heap::releaseFromElsewhere(Slab* slab, void* block) noexcept {
    // As long as `block` is not taken back the slab stays. Whoever finds the list of blocks empty enters the slab,
    // once, and the owner takes blocks only from slabs that have been entered.
    auto* const hole = ::new (block) Hole{slab->returned.load(std::memory_order_relaxed)};
    Hole* expected = hole->next;
    while (!slab->returned.compare_exchange_weak(expected, hole)) hole->next = expected;
    if (expected) return;
    Slab* first = returned_.load(std::memory_order_relaxed);
    do {
        slab->nextReturned = first;
    } while (!returned_.compare_exchange_weak(first, slab));
}

bool Heap::collectReturned() noexcept {
    if (!returned_.load()) return false;
    Slab* slab = returned_.exchange(nullptr);
    while (slab) {
        Slab* const nextSlab = slab->nextReturned;
        Hole* hole = slab->returned.exchange(nullptr);
        while (hole) {
            Hole* const nextHole = hole->next;
            release(slab, hole);
            hole = nextHole;
        }
        slab = nextSlab;
    }
    return slabs_ == 0;
}

/// The heaps that no thread owns.
struct Registry {
    std::mutex mutex;
    Heap* unowned = nullptr;
};
constinit NeverDestroyed<Registry> registry;

void unlink(Heap*& first, Heap* heap) noexcept {
    Heap** link = &first;
    while (*link != heap) link = &(*link)->next;
    *link = heap->next;
}

void push(Heap*& first, Heap* heap) noexcept {
    heap->next = first;
    first = heap;
}

/// The heaps of a thread; blocks come from the first one. Its address identifies the thread.
struct Own {
    Heap* heaps = nullptr;
    bool hasEnded = false;  // then blocks come from and go to heaps that no thread owns, under the registry's mutex
};
#ifdef __GLIBC__
[[gnu::tls_model("initial-exec")]]  // glibc has room for a few bytes of this model in libraries that are loaded late
#endif
constinit thread_local Own own;

/// With the registry's mutex held.
void disown(Heap* heap) noexcept {
    push(registry->unowned, heap);
    heap->owner.store(nullptr);
    // What was released elsewhere before that; whoever releases a block later finds that the heap has no owner.
    heap->collectReturned();
}

struct EndOfThread {
    ~EndOfThread() {
        own.hasEnded = true;
        while (Heap* const heap = own.heaps) {
            own.heaps = heap->next;
            heap->retire();
            const std::lock_guard lock(registry->mutex);
            disown(heap);
        }
    }
    void arrange() const noexcept {}  // has the destructor called
};
thread_local const EndOfThread endOfThread;

/// With the registry's mutex held.
void adopt(Heap* heap) noexcept {
    unlink(registry->unowned, heap);
    heap->owner.store(&own);
    if (!own.heaps) {
        endOfThread.arrange();
        push(own.heaps, heap);
    } else {
        push(own.heaps->next, heap);
    }
}

/// A heap without slabs, unless it is the thread's first one, need not stay.
void dropUnused(Heap* heap) noexcept {
    if (own.hasEnded || heap == own.heaps) return;
    unlink(own.heaps, heap);
    const std::lock_guard lock(registry->mutex);
    disown(heap);
}

void* allocateFrom(Heap* heap, std::size_t kind) {
    if (void* const block = heap->take(kind)) return block;
    if (void* const block = heap->takeFromOthers(kind)) return block;
    return heap->takeFromNew(kind);
}

/// The first block of this thread, or one after its end.
void* allocateFirst(std::size_t kind) {
    const std::lock_guard lock(registry->mutex);
    if (!registry->unowned) push(registry->unowned, new Heap);
    Heap* const heap = registry->unowned;
    if (!own.hasEnded) adopt(heap);
    heap->collectReturned();
    return allocateFrom(heap, kind);
}

/// When the thread's current slab for that kind is full.
void* allocateElsewhere(std::size_t kind) {
    for (Heap *heap = own.heaps, *next; heap; heap = next) {
        next = heap->next;
        if (heap->collectReturned()) dropUnused(heap);
    }
    for (Heap* heap = own.heaps; heap; heap = heap->next) {
        void* block = heap->take(kind);
        if (!block) block = heap->takeFromOthers(kind);
        if (!block) continue;
        unlink(own.heaps, heap);
        push(own.heaps, heap);
        return block;
    }
    return own.heaps->takeFromNew(kind);
}

/// Calls `action` while nobody else uses the heap, which first becomes one of this thread. False when it has an owner.
template <class Action>
bool takeOver(Heap* heap, Action action) noexcept {
    std::unique_lock lock(registry->mutex);
    if (heap->owner.load()) return false;
    if (!own.hasEnded) {
        adopt(heap);
        lock.unlock();
    }
    if (action()) dropUnused(heap);
    return true;
}

/// When this thread does not own the heap.
[[gnu::noinline]] void releaseElsewhere(Heap* heap, Slab* slab, void* block) noexcept {
    const bool isDone = !heap->owner.load() && takeOver(heap, [=] {
        heap->collectReturned();
        return heap->release(slab, block);
    });
    if (isDone) return;
    heap->releaseFromElsewhere(slab, block);
    // The owner may have ended after taking back what it found.
    if (!heap->owner.load()) takeOver(heap, [=] { return heap->collectReturned(); });
}

}  // namespace

void* allocateBlock(std::size_t bytes, BlockUse use) {
    if (bytes > maxPooledBytes) return ::operator new(bytes);
    const std::size_t sizeClass = bytes == 0 ? 1 : (bytes + granule - 1) / granule;
    const std::size_t kind = sizeClass + (use == BlockUse::LONG_LIVED ? sizeClasses : 0);
    if (!own.heaps) return allocateFirst(kind);
    if (void* const block = own.heaps->take(kind)) return block;
    return allocateElsewhere(kind);
}

void releaseBlock(void* block, std::size_t bytes) noexcept {
    if (bytes > maxPooledBytes) {
        ::operator delete(block);
        return;
    }
    Slab* const slab = slabOf(block);
    Heap* const heap = slab->heap;
    if (heap->owner.load(std::memory_order_relaxed) != &own) {
        releaseElsewhere(heap, slab, block);
    } else if (heap->release(slab, block)) {
        dropUnused(heap);
    }
}

#endif

}  // namespace LumCommon::detail
