#pragma once

#include <thread>
#include <vector>

namespace LumTest {

/// Runs `work(i)` for each i below `count` on a thread of its own, all at once, until all have ended.
template <class Work>
void onThreads(unsigned count, Work work) {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

}  // namespace LumTest
