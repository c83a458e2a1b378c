#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>

#include <cstddef>
#include <istream>
#include <memory>
#include <span>

namespace LumCommon {

namespace detail {
class RawInflater;
}

/// Inflates raw deflate data (RFC 1951) in memory, the form in which members of zip archives are stored.
///
/// Up to 10 bytes that were read can be put back. Seeking is not supported; reset() starts over. Memory: constant apart
/// from the copy, whatever the data claim.
/// Failure: nothing is thrown but std::bad_alloc (badbit in a stream), also by each read from then on until reset().
/// Corrupt or truncated data end early: the piece of 4096 bytes in which the fault shows is not delivered, all pieces
/// before it are. hasFailed() and the badbit of a LumInflaterStream then tell so.
/// Threads: one at a time.
class LUM_API LumInflaterStreamBuf : public LumRefillStreamBuf {
public:
    /// @param data  `size` bytes of compressed data; may be null only if `size` is 0.
    /// @param copy  true: the buffer works on a copy. false: the bytes must outlive it.
    /// @param size  in bytes.
    LumInflaterStreamBuf(const char* data, std::size_t size, bool copy);
    ~LumInflaterStreamBuf() override;

    /// Starts over from the first byte.
    void reset();

    /// Overrides that of std::streambuf: the same bytes, but whole pieces are inflated where the caller wants them.
    std::streamsize xsgetn(char* to, std::streamsize count) override;

private:
    std::size_t inflatePieces(std::span<char> room);
    std::size_t refill(std::span<char> room) override;

    std::unique_ptr<char[]> copy_;
    std::span<const char> data_;
    std::span<const char> rest_;
    std::unique_ptr<detail::RawInflater> inflater_;
};

/// An input stream with its own LumInflaterStreamBuf. Threads: one at a time.
class LUM_API LumInflaterStream : public std::istream {
public:
    /// The arguments are those of the buffer.
    LumInflaterStream(const char* data, std::size_t size, bool copy);
    /// Takes over a buffer (not null) and deletes it with the stream.
    explicit LumInflaterStream(LumInflaterStreamBuf* buffer);
    ~LumInflaterStream() override;

    /// Starts over from the first byte and clears the stream's error state.
    void reset();

private:
    explicit LumInflaterStream(std::unique_ptr<LumInflaterStreamBuf> buffer);

    std::unique_ptr<LumInflaterStreamBuf> buffer_;
};

}  // namespace LumCommon
