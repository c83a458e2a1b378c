#pragma once

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>

// Stands between the library and the system: this binary's calls on files, those of the shared libraries included, come
// through here. To be included once.

namespace LumTest {

enum class CallFault { FAILS, INTERRUPTED, SHORT };

/// While it lives, the n-th call on a file, counted from 1, fails, is interrupted once, or reads or writes one byte.
class FaultyCalls {
public:
    FaultyCalls(CallFault fault, int number) {
        s_fault = fault;
        s_left = number;
    }
    ~FaultyCalls() { s_left = -1; }
    /// False if there were fewer calls.
    bool hasCome() const { return s_left == 0; }

    /// Whether this call is the one. A `SHORT` one changes the count of bytes instead.
    static bool strikes(std::size_t* bytes = nullptr) {
        if (s_left <= 0 || --s_left > 0) return false;
        if (s_fault == CallFault::SHORT && bytes && *bytes > 1) *bytes = 1;
        errno = s_fault == CallFault::FAILS ? EIO : EINTR;
        return s_fault != CallFault::SHORT;
    }
    template <class... Arguments>
    static int unlessStruck(long call, Arguments... arguments) {
        return strikes() ? -1 : static_cast<int>(::syscall(call, arguments...));
    }

private:
    inline static CallFault s_fault;
    inline static int s_left = -1;
};

}  // namespace LumTest

#define LUM_CALL extern "C" __attribute__((visibility("default")))

LUM_CALL ssize_t write(int file, const void* bytes, std::size_t count) {
    return LumTest::FaultyCalls::strikes(&count) ? -1 : ::syscall(SYS_write, file, bytes, count);
}
LUM_CALL ssize_t read(int file, void* bytes, std::size_t count) {
    return LumTest::FaultyCalls::strikes(&count) ? -1 : ::syscall(SYS_read, file, bytes, count);
}
LUM_CALL int openat(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int mode = va_arg(rest, int);
    va_end(rest);
    return LumTest::FaultyCalls::unlessStruck(SYS_openat, folder, path, flags, mode);
}
LUM_CALL int fsync(int file) { return LumTest::FaultyCalls::unlessStruck(SYS_fsync, file); }
LUM_CALL int fchmod(int file, mode_t mode) { return LumTest::FaultyCalls::unlessStruck(SYS_fchmod, file, mode); }
LUM_CALL int renameat(int from, const char* old, int to, const char* name) {
    return LumTest::FaultyCalls::unlessStruck(SYS_renameat2, from, old, to, name, 0);
}
