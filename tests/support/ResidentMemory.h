#pragma once

#include <cstddef>
#include <fstream>

namespace LumTest {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isMemoryTold = false;  // the sanitizers keep memory of their own
#else
constexpr bool isMemoryTold = true;
#endif

/// What the process has in memory.
inline std::size_t residentBytes() {
    std::size_t all = 0, pages = 0;
    std::ifstream("/proc/self/statm") >> all >> pages;
    return pages * 4096;
}

}  // namespace LumTest
