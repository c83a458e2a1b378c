#pragma once

#include <lumcommon/core/Api.h>

#include <pthread.h>

#include <atomic>

namespace LumCommon {

class LumMutex;

/// A lock that the thread holding it may take again. It is taken and released only through LumMutex.
class LUM_API LumLock {
public:
    /// A lock that is free.
    LumLock() noexcept;
    /// The lock must be free.
    ~LumLock();
    LumLock(const LumLock&) = delete;
    LumLock& operator=(const LumLock&) = delete;

private:
    friend class LumMutex;
    pthread_mutex_t mutex_;
    std::atomic<pthread_t> holder_{};       // 0 when free
    std::atomic<const LumMutex*> guard_{};  // the guard that took the lock
};

/// Guard of a LumLock: takes it on construction, releases it on unlock() or destruction.
///
/// A second guard on the same lock in the same thread neither takes nor releases it: the outermost guard does both.
/// The destructor does what unlock() does. Threads: one guard belongs to one thread.
class LUM_API LumMutex {
public:
    /// Guards the process-wide lock of the library.
    LumMutex();
    /// Guards `lock`, which must outlive the guard and must not be null.
    explicit LumMutex(LumLock* lock);
    /// Releases the lock when this guard took it.
    ~LumMutex();
    LumMutex(const LumMutex&) = delete;
    LumMutex& operator=(const LumMutex&) = delete;

    /// Takes the lock, unless the calling thread holds it already.
    void lock();
    /// Releases the lock when this guard took it; does nothing otherwise.
    void unlock();

    // The compiler's own operations: not every standard library has std::atomic_ref, which says the same.

    /// Add or subtract one and return the new value. The two are atomic with respect to each other, on any thread;
    /// they are lock-free, so counting never waits for a mutex.
    static int interlockedIncrement(int& value) noexcept { return __atomic_add_fetch(&value, 1, __ATOMIC_RELAXED); }
    /// Subtracts one and returns the new value; see interlockedIncrement().
    static int interlockedDecrement(int& value) noexcept { return __atomic_sub_fetch(&value, 1, __ATOMIC_ACQ_REL); }

private:
    LumLock* lock_;
};

}  // namespace LumCommon
