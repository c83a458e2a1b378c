#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/detail/NeverDestroyed.h>

namespace LumCommon {
namespace {

/// The process-wide lock.
LumLock* globalLock() noexcept {
    static detail::NeverDestroyed<LumLock> lock;
    return &*lock;
}

}  // namespace

LumLock::LumLock() noexcept { pthread_mutex_init(&mutex_, nullptr); }

LumLock::~LumLock() { pthread_mutex_destroy(&mutex_); }

LumMutex::LumMutex() : LumMutex(globalLock()) {}

LumMutex::LumMutex(LumLock* lockToTake) : lock_(lockToTake) { lock(); }

LumMutex::~LumMutex() { unlock(); }

void LumMutex::lock() {
    // Threads that do not hold the lock read the holder too. They can see any value but their own id, which only they
    // store, so no ordering is needed.
    const pthread_t self = pthread_self();
    if (lock_->holder_.load(std::memory_order_relaxed) == self) return;
    pthread_mutex_lock(&lock_->mutex_);
    lock_->holder_.store(self, std::memory_order_relaxed);
    lock_->guard_.store(this, std::memory_order_relaxed);
}

void LumMutex::unlock() {
    if (lock_->guard_.load(std::memory_order_relaxed) != this) return;
    // Both are cleared: a second unlock() of this guard must find that it no longer holds the lock.
    lock_->guard_.store(nullptr, std::memory_order_relaxed);
    lock_->holder_.store(pthread_t{}, std::memory_order_relaxed);
    pthread_mutex_unlock(&lock_->mutex_);
}

}  // namespace LumCommon
