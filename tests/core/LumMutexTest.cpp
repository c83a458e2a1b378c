#include <gtest/gtest.h>
#include <lumcommon/core/LumMutex.h>
#include <support/OnThreads.h>

#include <atomic>
#include <chrono>
#include <future>

namespace {

using namespace LumCommon;

/// Takes the lock on another thread. What is returned is ready when it has been taken, and destroyed only then.
std::future<void> take(LumLock& lock) {
    return std::async(std::launch::async, [&lock] { const LumMutex guard(&lock); });
}

constexpr std::chrono::milliseconds tooShortToMatter{50};
constexpr std::chrono::milliseconds longEnough{20000};
constexpr auto isTaken = std::future_status::ready;

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
    const auto first = take(lock);
    EXPECT_NE(first.wait_for(tooShortToMatter), isTaken) << "an inner or a stale guard released the lock";
    holder.unlock();
    EXPECT_EQ(first.wait_for(longEnough), isTaken) << "the holder kept the lock";
    outer.lock();
    const auto second = take(lock);
    EXPECT_NE(second.wait_for(tooShortToMatter), isTaken) << "lock() took nothing";
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
