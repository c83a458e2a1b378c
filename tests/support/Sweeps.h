#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

// Techniques that several subsystems try: all prefixes of a file, all sizes of a read, time that grows with the input.

namespace LumTest {

/// Bytes that a stream delivers at a time: one, few (so that every construct is cut), and about a block.
inline constexpr std::size_t readSizes[] = {1, 2, 3, 5, 4096};

/// Calls `check` with each prefix of `bytes`, from none of them to all but one. The prefix has a heap block of its
/// exact size, so that a sanitizer sees a read past its end. Stops at the first failure.
template <class Check>
void forEachPrefix(std::string_view bytes, Check check, std::size_t step = 1) {
    for (std::size_t size = 0; size < bytes.size() && !testing::Test::HasFailure(); size += step) {
        SCOPED_TRACE("cut after " + std::to_string(size) + " bytes");
        const std::string cut(bytes.substr(0, size));
        check(cut);
    }
}

/// The processor time of this thread that `run` takes: the best of three.
template <class Run>
double secondsOf(Run run) {
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        timespec before, after;
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
        run();
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
        best = std::min(best, double(after.tv_sec - before.tv_sec) + double(after.tv_nsec - before.tv_nsec) * 1e-9);
    }
    return best;
}

/// Expects that eight times the input takes far less than 64 times the time.
/// @param run  called with a size; does work on an input of that size.   @param size  the smaller one
template <class Run>
void expectLinearTime(const char* fault, std::size_t size, Run run) {
    SCOPED_TRACE(fault);
    const double small = secondsOf([&] { run(size); });
    const double large = secondsOf([&] { run(8 * size); });
    EXPECT_LT(large, 24 * small + 0.02) << "size " << size << ": " << small << " s, eight times it: " << large << " s";
}

}  // namespace LumTest
