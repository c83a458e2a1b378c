#pragma once

#include <unicode/uclean.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// Counts every allocation of the process, those of C++ and those that ICU makes for its strings, and keeps the largest
// size. One source of a program includes this file.

namespace LumTest {

inline std::atomic<std::size_t> allocations{0};
inline std::atomic<std::size_t> largestAllocation{0};

inline void* countedAllocate(std::size_t bytes) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (bytes > largestAllocation) largestAllocation = bytes;
    return std::malloc(bytes == 0 ? 1 : bytes);
}

/// Makes ICU's allocations count as well. Blocks that it has already are freed as ever.
inline bool countMemoryOfIcu() {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(
        nullptr, [](const void*, std::size_t bytes) { return countedAllocate(bytes); },
        [](const void*, void* block, std::size_t bytes) {
            allocations.fetch_add(1, std::memory_order_relaxed);
            return std::realloc(block, bytes);
        },
        [](const void*, void* block) { std::free(block); }, &status);
    return U_SUCCESS(status);
}

}  // namespace LumTest

// Inlined, the pairs would look mismatched to the compiler.
[[gnu::noinline]] void* operator new(std::size_t bytes) {
    if (void* memory = LumTest::countedAllocate(bytes)) return memory;
    throw std::bad_alloc();
}
// A sanitizer brings its own form, whose blocks std::free may not release.
[[gnu::noinline]] void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return LumTest::countedAllocate(bytes);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
