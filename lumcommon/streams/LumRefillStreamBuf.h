#pragma once

#include <lumcommon/core/Api.h>

#include <cstddef>
#include <memory>
#include <span>
#include <streambuf>

namespace LumCommon {

/// What the library's stream buffers have in common that read their bytes block by block. A derived class says where
/// the next ones come from.
///
/// The last bytes before the read position stay in front of each new block, so that they can be put back. A read at the
/// end asks the derived class again. Seeking is not supported.
/// Failure: what refill() throws passes through; the get area then stands at its end.
/// Threads: one at a time.
class LUM_API LumRefillStreamBuf : public std::streambuf {
public:
    LumRefillStreamBuf(const LumRefillStreamBuf&) = delete;
    LumRefillStreamBuf& operator=(const LumRefillStreamBuf&) = delete;
    ~LumRefillStreamBuf() override;

    // What the operations of std::streambuf and of streams come down to; it can be called directly as well.
    int_type underflow() override;

protected:
    /// There is nothing to read before allocateBlock().
    /// @param blockBytes    how many bytes are asked for at a time.
    /// @param putbackBytes  how many that were read can be put back at least, as far as there are so many.
    LumRefillStreamBuf(std::size_t blockBytes, std::size_t putbackBytes) noexcept;

    /// Puts the next bytes into `room`, as many as there are up to its size, and returns their number; 0 at the end.
    virtual std::size_t refill(std::span<char> room) = 0;

    /// Does nothing when there is a block. Failure: std::bad_alloc.
    void allocateBlock();
    /// Frees the block; the get area is empty afterwards.
    void releaseBlock() noexcept;
    bool hasBlock() const noexcept { return block_ != nullptr; }
    /// All of the block, the bytes for putting back included; null before allocateBlock().
    char* getBlock() const noexcept { return block_.get(); }

    /// Fills the get area with what `source`, called as refill() is, puts into the room. The area must be at its end,
    /// and there must be a block.
    /// @return false at the end of the source; bytes can be put back also then.
    template <class Source>
    bool fillFrom(Source source) {
        char* const room = makeRoom();
        const std::size_t count = source(std::span<char>(room, blockBytes_));
        setg(block_.get(), room, room + count);
        return count != 0;
    }

private:
    char* makeRoom() noexcept;

    std::unique_ptr<char[]> block_;
    std::size_t blockBytes_;
    std::size_t putbackBytes_;
};

}  // namespace LumCommon
