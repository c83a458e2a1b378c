#include <gtest/gtest.h>
#include <lumcommon/core/LumMutex.h>
#include <support/OnThreads.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace LumCommon;

/// Whether another thread gets `lock` while this thread waits a moment. The thread is joined by the destructor, once
/// the lock is free.
class Taker {
public:
    explicit Taker(LumLock& lock)
        : thread_([this, &lock] {
              const LumMutex guard(&lock);
              hasLock_ = true;
          }) {}
    ~Taker() { thread_.join(); }
    bool hasLockAfter(std::chrono::milliseconds wait) const {
        const auto end = std::chrono::steady_clock::now() + wait;
        while (!hasLock_ && std::chrono::steady_clock::now() < end) std::this_thread::yield();
        return hasLock_;
    }

private:
    std::atomic<bool> hasLock_{false};
    std::thread thread_;
};

constexpr std::chrono::milliseconds tooShortToMatter{50};
constexpr std::chrono::milliseconds longEnough{20000};

TEST(LumMutex, onlyTheGuardThatTookTheLockReleasesIt) {
    LumLock lock;
    LumMutex outer(&lock);
    outer.unlock();
    LumMutex holder(&lock);
    outer.unlock();  // no longer the holder
    {
        LumMutex inner(&lock);
        inner.unlock();
        const LumMutex innermost(&lock);
    }
    const Taker first(lock);
    EXPECT_FALSE(first.hasLockAfter(tooShortToMatter)) << "an inner or a stale guard released the lock";
    holder.unlock();
    EXPECT_TRUE(first.hasLockAfter(longEnough)) << "the holder kept the lock";
    outer.lock();
    const Taker second(lock);
    EXPECT_FALSE(second.hasLockAfter(tooShortToMatter)) << "lock() took nothing";
    outer.unlock();
}

template <class... Lock>
void countOnFourThreads(int& unprotected, Lock... lock) {
    LumTest::onThreads(4, [&](unsigned) {
        for (int i = 0; i < 5000; ++i) {
            LumMutex outer(lock...);
            const LumMutex inner(lock...);
            ++unprotected;
            outer.unlock();  // the destructor must not release it again, from under the next thread
        }
    });
}

TEST(LumMutex, serialisesThreadsThroughNestedGuards) {
    LumLock own;
    int unprotected = 0;
    countOnFourThreads(unprotected, &own);
    countOnFourThreads(unprotected);  // the lock of the process
    EXPECT_EQ(unprotected, 40000);
}

TEST(LumMutex, interlockedCountsLoseNothing) {
    int count = 7;
    EXPECT_EQ(LumMutex::interlockedIncrement(count), 8);
    EXPECT_EQ(LumMutex::interlockedDecrement(count), 7);
    std::atomic<int> sawTheStart{0};
    LumTest::onThreads(4, [&](unsigned) {
        for (int i = 0; i < 20000; ++i) LumMutex::interlockedIncrement(count);
        for (int i = 0; i < 20000; ++i) {
            if (LumMutex::interlockedDecrement(count) == 7) ++sawTheStart;
        }
    });
    EXPECT_EQ(count, 7);
    EXPECT_GE(sawTheStart, 1) << "the last decrement did not return the value that it made";
}

}  // namespace
