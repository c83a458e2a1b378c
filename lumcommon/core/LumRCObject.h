#pragma once

#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/LumObjectBase.h>

#include <cstddef>
#include <new>

namespace LumCommon {

template <class T>
class LumPtr;

/// An object with an intrusive reference count.
///
/// An object starts at count 0 and goes straight into a LumPtr; the release that brings the count below 1 deletes
/// it. The count changes only through LumMutex::interlockedIncrement and interlockedDecrement, so LumPtrs to one
/// object may be copied and destroyed on several threads; nothing else about the object is protected.
///
/// Memory: objects up to 512 bytes, those of derived classes included, lie in slabs that the library shares among
/// objects of the same size: allocating and releasing is a few instructions, and a mutex once in 64 KB. Larger ones,
/// arrays and classes that need more alignment than new gives come from the global heap. There is no form with
/// std::nothrow. A derived class may have operators of its own.
class LUM_API LumRCObject : public LumObjectBase {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x90AF0240u;

    bool isA(unsigned int typeId) const override;

    /// The number of references currently held.   Threads: a snapshot; it may be out of date by the time it is
    /// returned.
    int getRefCount() const noexcept { return __atomic_load_n(&refCount_, __ATOMIC_RELAXED); }

    /// Takes one reference. Prefer LumPtr; this is for classes that hold references without one.
    void addRef() const noexcept { LumMutex::interlockedIncrement(refCount_); }
    /// Gives one reference back and deletes the object when none is left.
    void releaseRef() const noexcept {
        if (LumMutex::interlockedDecrement(refCount_) < 1) delete this;
    }

    /// Called by the release of the last reference; not to be called otherwise.
    ~LumRCObject() override;

    /// From the slabs, or from the heap where the class comment says so. Failure: std::bad_alloc.
    static void* operator new(std::size_t bytes);
    /// The object goes to `place`, memory of the caller's.
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    /// From the heap, for classes of more alignment than usual. Failure: std::bad_alloc.
    static void* operator new(std::size_t bytes, std::align_val_t alignment) {
        return ::operator new(bytes, alignment);
    }
    /// Gives back what the operator new with one argument gave.
    static void operator delete(void* block, std::size_t bytes) noexcept;
    /// Pairs with the operator new of a given place: frees nothing.
    static void operator delete(void*, void*) noexcept {}
    /// Gives back what the operator new with an alignment gave.
    static void operator delete(void* block, std::size_t, std::align_val_t alignment) noexcept {
        ::operator delete(block, alignment);
    }

protected:
    // For classes that hold many objects and choose the order in which they release them. When one of these returns
    // true, the caller deletes the object.

    /// Takes the first reference of an object that no other thread can see yet; costs no atomic instruction.
    void takeFirstRef() noexcept { refCount_ = 1; }
    /// Gives one reference back. True when it was the last one.
    bool dropRef() noexcept {
        // A count of 1 is the caller's own: no other thread has a reference from which it could take another one.
        if (__atomic_load_n(&refCount_, __ATOMIC_ACQUIRE) == 1) {
            refCount_ = 0;
            return true;
        }
        return LumMutex::interlockedDecrement(refCount_) < 1;
    }
    /// As dropRef(), for an object that no other thread knows; costs no atomic instruction.
    bool dropRefUnshared() noexcept { return --refCount_ < 1; }

private:
    mutable int refCount_ = 0;
};

}  // namespace LumCommon
