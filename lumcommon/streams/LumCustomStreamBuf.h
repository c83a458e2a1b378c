#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace LumCommon {

/// Supplied by the library's user: gives or takes the bytes of a LumCustomStreamBuf.
class LUM_API LumCustomStreamController {
public:
    virtual ~LumCustomStreamController();
    /// Puts up to `len` bytes into `buf`. Returns their number, 0 at the end, a negative number on error.
    virtual int read(char* buf, int len) = 0;
    /// Takes `len` bytes. Returns how many were taken; fewer than `len` is a failure.
    virtual int write(const char* buf, int len) = 0;
};

/// A stream buffer over the callbacks of a controller. One object either reads or writes, not both.
///
/// Reads ask for up to 8192 bytes at a time, and up to 10 bytes that were read can be put back. Written bytes are
/// handed over when the buffer is full (8202 bytes), when the stream is flushed and at destruction.
/// Failure: end of file, also if a read callback reports more bytes than it was asked for. Exceptions thrown by a
/// callback propagate, except at destruction.
/// Threads: one at a time.
class LUM_API LumCustomStreamBuf : public LumRefillStreamBuf {
public:
    /// @param controller  must outlive the buffer; with null nothing can be read or written.
    explicit LumCustomStreamBuf(LumCustomStreamController* controller);
    /// Hands over the pending bytes; a failure is not reported.
    ~LumCustomStreamBuf() override;

    /// True if there is a buffer to read into or write from.
    bool is_open() const noexcept { return hasBlock(); }
    /// Hands over the pending bytes. Returns their number, or -1 if not all were taken; they then all stay pending.
    int flushBuffer();

    // Overrides of std::streambuf, public so that they can also be called directly.
    /// Takes `c`, unless it is end of file, and hands over what is pending. End of file on failure.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// Called by std::ostream::flush(): does flushBuffer() and returns 0 or -1.
    int sync() override;
    /// Returns the number of bytes written so far, pending ones included; the arguments are ignored.
    pos_type seekoff(off_type off, std::ios_base::seekdir dir,
                     std::ios_base::openmode mode = std::ios_base::in | std::ios_base::out) override;

private:
    std::size_t refill(std::span<char> room) override;
    bool handOver();

    LumCustomStreamController* controller_;
    std::uint64_t writtenBytes_ = 0;
};

}  // namespace LumCommon
