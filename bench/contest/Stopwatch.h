#pragma once

#include <ctime>

namespace LumBench {

inline double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Measures the CPU time of the calling thread, which other programs on the machine disturb least.
class Stopwatch {
public:
    /// Seconds since construction or since the last call.
    double lap() {
        const double now = secondsOf(CLOCK_THREAD_CPUTIME_ID), passed = now - last_;
        last_ = now;
        return passed;
    }

private:
    double last_ = secondsOf(CLOCK_THREAD_CPUTIME_ID);
};

/// Keeps the compiler from dropping work whose result nobody uses.
inline void use(std::size_t value) { asm volatile("" : : "r"(value) : "memory"); }

}  // namespace LumBench
