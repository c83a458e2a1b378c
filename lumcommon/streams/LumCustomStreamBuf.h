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

/// A stream buffer over the callbacks of a controller, for reading or for writing, but one object for one of them.
///
/// Up to 8192 bytes are asked for at a time; up to 10 that were read can be put back. Bytes written are handed over
/// when the buffer is full (8202 of them), on a flush of the stream and at destruction. Failure: end of file, also for
/// a read that reports more bytes than it was asked for. What a callback throws passes through, except at destruction.
/// Threads: one at a time.
class LUM_API LumCustomStreamBuf : public LumRefillStreamBuf {
public:
    /// @param controller  must outlive the buffer; with null nothing can be read or written.
    explicit LumCustomStreamBuf(LumCustomStreamController* controller);
    /// Hands over the bytes that are left; a failure is not reported.
    ~LumCustomStreamBuf() override;

    /// True when there is a buffer to read into or write from.
    bool is_open() const noexcept { return hasBlock(); }
    /// Hands over the bytes that wait. Returns their number, or -1 when not all were taken; they then stay where they
    /// are.
    int flushBuffer();

    // What the operations of std::streambuf and of streams come down to; they can be called directly as well.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// What std::ostream::flush() reaches: flushBuffer(), 0 or -1.
    int sync() override;
    /// The number of bytes written so far, those that wait included; the arguments are ignored.
    pos_type seekoff(off_type off, std::ios_base::seekdir dir,
                     std::ios_base::openmode mode = std::ios_base::in | std::ios_base::out) override;

private:
    std::size_t refill(std::span<char> room) override;
    bool handOver();

    LumCustomStreamController* controller_;
    std::uint64_t writtenBytes_ = 0;
};

}  // namespace LumCommon
