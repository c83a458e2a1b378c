#pragma once

#include <lumcommon/core/Api.h>

#include <cstddef>
#include <ios>
#include <memory>
#include <span>
#include <streambuf>

namespace LumCommon {

/// Base class of the library's stream buffers that read block by block. A derived class supplies the bytes.
///
/// The last bytes before the read position are kept in front of each new block, so that they can be put back. A read at
/// the end asks the derived class again. Seeking is not supported.
/// Failure: a source that breaks ends the reading, and hasFailed() tells that end from the true one. Exceptions thrown
/// by refill() propagate; the get area is then at its end. Threads: one at a time.
class LUM_API LumRefillStreamBuf : public std::streambuf {
public:
    LumRefillStreamBuf(const LumRefillStreamBuf&) = delete;
    LumRefillStreamBuf& operator=(const LumRefillStreamBuf&) = delete;
    ~LumRefillStreamBuf() override;

    // Overrides of std::streambuf, public so that they can also be called directly.
    /// Asks the derived class for the next block. End of file where there is none.
    int_type underflow() override;

    /// Whether reading has ended because the source is broken: what has been read is not all there is.
    bool hasFailed() const noexcept { return hasFailed_; }
    /// Names the stream over this buffer whose badbit is to tell of a failure too; null: none. The streams of the
    /// library name themselves. It is not owned, and must live as long as it is named.
    void tellFailuresTo(std::ios* stream) noexcept { stream_ = stream; }

protected:
    /// There is nothing to read before allocateBlock().
    /// @param blockBytes    how many bytes are asked for at a time.
    /// @param putbackBytes  how many bytes can always be put back, once that many have been read.
    LumRefillStreamBuf(std::size_t blockBytes, std::size_t putbackBytes) noexcept;

    /// Puts the next bytes into `room`, as many as are available up to its size, and returns their number; 0 at the
    /// end, and after fail().
    virtual std::size_t refill(std::span<char> room) = 0;

    /// Allocates the block unless there is one. Failure: std::bad_alloc.
    void allocateBlock();
    /// Marks the end that is being reached as a failure. Throws where the stream is set to throw for its badbit.
    void fail();
    /// Makes hasFailed() false again: for a derived class that starts over.
    void forgetFailure() noexcept { hasFailed_ = false; }
    /// Frees the block and forgets a failure; the get area is empty afterwards.
    void releaseBlock() noexcept;
    /// Whether there is a block to read into.
    bool hasBlock() const noexcept { return block_ != nullptr; }
    /// The whole block, the bytes for putting back included; null before allocateBlock().
    char* getBlock() const noexcept { return block_.get(); }

    /// Fills the get area from `source`, which is called like refill(). The area must be at its end, and there must be
    /// a block.
    /// @return false at the end of the source; bytes can still be put back then.
    template <class Source>
    bool fillFrom(Source source) {
        char* const room = makeRoom();
        const std::size_t count = source(std::span<char>(room, blockBytes_));
        setg(block_.get(), room, room + count);
        return count != 0;
    }

    /// For a derived class that reads past the block: makes the get area what it would be if `read` had come through
    /// it. The area must be at its end, and there must be a block.
    void setRead(std::span<const char> read) noexcept;

private:
    char* makeRoom() noexcept;

    std::unique_ptr<char[]> block_;
    std::size_t blockBytes_;
    std::size_t putbackBytes_;
    std::ios* stream_ = nullptr;
    bool hasFailed_ = false;
};

}  // namespace LumCommon
