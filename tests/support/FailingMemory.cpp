#include <dlfcn.h>
#include <gtest/gtest.h>
#include <lumcommon/core/LumError.h>
#include <support/FailingMemory.h>
#include <unwind.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <new>
#include <sstream>

extern "C" const char __executable_start;

namespace LumTest {

namespace {

/// Of this thread.
struct Watch {
    bool isOn = false;
    bool fallsOnAllAfterIt = false;
    bool hasFailed = false;
    std::size_t left = 0;  // until the one that fails
    std::ptrdiff_t liveBlocks = 0;
    std::array<const char*, 60> frames{};  // where the first one failed
    std::size_t frameCount = 0;
};
constinit thread_local Watch watch;

/// Stop here in a debugger.
[[gnu::noinline]] void refuse() noexcept {
    errno = ENOMEM;
    if (watch.hasFailed) return;
    watch.hasFailed = true;
    watch.frameCount = 0;
    const _Unwind_Trace_Fn keepFrame = [](_Unwind_Context* context, void*) {
        if (watch.frameCount == watch.frames.size()) return _URC_END_OF_STACK;
        watch.frames[watch.frameCount++] = reinterpret_cast<const char*>(_Unwind_GetIP(context));
        return _URC_NO_REASON;
    };
    _Unwind_Backtrace(keepFrame, nullptr);
}

bool fails() noexcept {
    if (!watch.isOn || (watch.left > 0 && --watch.left > 0)) return false;
    if (watch.hasFailed && !watch.fallsOnAllAfterIt) return false;
    refuse();
    return true;
}

std::ptrdiff_t blocksOf(const std::optional<std::string>& text) {
    return text && text->capacity() > std::string().capacity() ? 1 : 0;
}

/// The command that tells where.
std::string whereItFailed() {
    Dl_info program{}, info{};
    ::dladdr(&__executable_start, &program);
    std::ostringstream command;
    command << "addr2line -Cfpie " << program.dli_fname << std::hex;
    for (std::size_t i = 0; i < watch.frameCount; ++i) {
        const char* const frame = watch.frames[i];
        if (::dladdr(frame, &info) && info.dli_fbase == program.dli_fbase) {
            command << " 0x" << frame - static_cast<const char*>(info.dli_fbase) - 1;
        }
    }
    return command.str();
}

/// Calls `use` while that allocation fails. Null when it said so; the reason when it must not throw what it threw.
std::optional<std::string> useWithout(const std::function<std::string()>& use, std::size_t number, bool andAllAfterIt) {
    struct End {
        ~End() { watch.isOn = false; }
    };
    watch.left = number;
    watch.fallsOnAllAfterIt = andAllAfterIt;
    watch.hasFailed = false;
    try {
        const End end;
        watch.isOn = true;
        return use();
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    } catch (const LumCommon::LumError& error) {
        using LumCommon::LumErrorCodeIO;
        const auto isCode = [&error](auto code) { return error.code == static_cast<unsigned>(code); };
        // A stream in which memory ran out is bad, and cannot say why.
        if (isCode(LumCommon::LumErrorCodeLumLIB::OutOfMemory) || isCode(LumErrorCodeIO::InputFailed) ||
            isCode(LumErrorCodeIO::OutputFailed)) {
            return std::nullopt;
        }
        return "LumError " + std::to_string(error.code);
    } catch (const std::exception& exception) {
        return std::string("exception ") + exception.what();
    }
}

void* counted(void* block) noexcept {
    if (block) ++watch.liveBlocks;
    return block;
}

}  // namespace

void MemoryLaw::hold() const {
    make();
    const std::string expected = use();
    drop();
    for (const bool andAllAfterIt : {false, true}) {
        std::size_t number = 1;
        do {
            std::optional<std::string> given, again;
            const auto leavesMore = [&] {
                const std::ptrdiff_t before = watch.liveBlocks - blocksOf(given) - blocksOf(again);
                make();
                given = useWithout(use, number, andAllAfterIt);
                again = given ? std::nullopt : std::optional(use());
                drop();
                return watch.liveBlocks - blocksOf(given) - blocksOf(again) > before;
            };
            // What a cache keeps it keeps once.
            const bool hasLeaked = leavesMore() && leavesMore() && leavesMore();
            if (hasLeaked || given.value_or(expected) != expected || again.value_or(expected) != expected) {
                EXPECT_EQ(given.value_or(expected), expected) << "lost without a word";
                EXPECT_EQ(again.value_or(expected), expected) << "not usable afterwards";
                ADD_FAILURE() << (hasLeaked ? "a leak " : "") << "when allocation " << number << " failed"
                              << (andAllAfterIt ? " and all after it:\n" : ":\n") << whereItFailed();
                return;
            }
            ++number;
        } while (watch.hasFailed);
        EXPECT_GT(number, 2u) << "nothing was allocated";
    }
}

}  // namespace LumTest

using LumTest::counted;
using LumTest::fails;

// The C library and the sanitizers both leave malloc and its kin to a program that defines them, and give it theirs
// under other names.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define LUM_ORIGINAL(function) __interceptor_##function
#else
#define LUM_ORIGINAL(function) __libc_##function
#endif

extern "C" {
void* LUM_ORIGINAL(malloc)(std::size_t bytes) noexcept;
void* LUM_ORIGINAL(calloc)(std::size_t count, std::size_t bytes) noexcept;
void* LUM_ORIGINAL(realloc)(void* block, std::size_t bytes) noexcept;
void* LUM_ORIGINAL(memalign)(std::size_t alignment, std::size_t bytes) noexcept;
void LUM_ORIGINAL(free)(void* block) noexcept;

void* malloc(std::size_t bytes) noexcept { return fails() ? nullptr : counted(LUM_ORIGINAL(malloc)(bytes)); }
void* calloc(std::size_t count, std::size_t bytes) noexcept {
    return fails() ? nullptr : counted(LUM_ORIGINAL(calloc)(count, bytes));
}
void* realloc(void* block, std::size_t bytes) noexcept {
    if (fails()) return nullptr;
    void* const moved = LUM_ORIGINAL(realloc)(block, bytes);
    return block ? moved : counted(moved);
}
void* aligned_alloc(std::size_t alignment, std::size_t bytes) noexcept {
    return fails() ? nullptr : counted(LUM_ORIGINAL(memalign)(alignment, bytes));
}
void free(void* block) noexcept {
    if (block) --LumTest::watch.liveBlocks;
    LUM_ORIGINAL(free)(block);
}
}

// Those of the standard library call malloc; a sanitizer's do not.
[[gnu::noinline]] void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return std::malloc(bytes == 0 ? 1 : bytes);
}
[[gnu::noinline]] void* operator new(std::size_t bytes) {
    if (void* const memory = operator new(bytes, std::nothrow)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return operator new(bytes, std::nothrow); }
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { operator delete(memory); }
