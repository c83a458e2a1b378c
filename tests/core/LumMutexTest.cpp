#include <gtest/gtest.h>
#include <lumcommon/core/LumMutex.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

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

template <class Work>
void onFourThreads(Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}

TEST(LumMutex, onlyTheOutermostGuardReleases) {
    LumLock lock;
    LumMutex outer(&lock);
    {
        LumMutex inner(&lock);
        inner.unlock();
        LumMutex innermost(&lock);
    }
    const Taker taker(lock);
    EXPECT_FALSE(taker.hasLockAfter(tooShortToMatter)) << "an inner guard released the lock";
    outer.unlock();
    EXPECT_TRUE(taker.hasLockAfter(longEnough)) << "the outer guard kept the lock";
}

TEST(LumMutex, aGuardThatReleasedMayLockAgainAndReleasesOnce) {
    LumLock lock;
    LumMutex first(&lock);
    first.unlock();
    {
        LumMutex second(&lock);
        first.unlock();  // no longer the taker
        const Taker taker(lock);
        EXPECT_FALSE(taker.hasLockAfter(tooShortToMatter)) << "a stale guard released the lock of another";
        second.unlock();
    }
    first.lock();
    const Taker taker(lock);
    EXPECT_FALSE(taker.hasLockAfter(tooShortToMatter)) << "lock() took nothing";
    first.unlock();
}

TEST(LumMutex, serialisesThreadsThroughNestedGuards) {
    LumLock own;
    int unprotected = 0;
    onFourThreads([&] {
        for (int i = 0; i < 5000; ++i) {
            LumMutex outer(&own);
            const LumMutex inner(&own);
            ++unprotected;
            outer.unlock();  // the destructor must not release it again, from under the next thread
        }
    });
    onFourThreads([&] {
        for (int i = 0; i < 5000; ++i) {
            LumMutex outer;  // the lock of the process
            const LumMutex inner;
            ++unprotected;
            outer.unlock();
        }
    });
    EXPECT_EQ(unprotected, 40000);
}

TEST(LumMutex, interlockedCountsLoseNothing) {
    int count = 7;
    EXPECT_EQ(LumMutex::interlockedIncrement(count), 8);
    EXPECT_EQ(LumMutex::interlockedDecrement(count), 7);
    std::atomic<int> sawTheStart{0};
    onFourThreads([&] {
        for (int i = 0; i < 20000; ++i) LumMutex::interlockedIncrement(count);
        for (int i = 0; i < 20000; ++i) {
            if (LumMutex::interlockedDecrement(count) == 7) ++sawTheStart;
        }
    });
    EXPECT_EQ(count, 7);
    EXPECT_GE(sawTheStart, 1) << "the last decrement did not return the value that it made";
}

}  // namespace
