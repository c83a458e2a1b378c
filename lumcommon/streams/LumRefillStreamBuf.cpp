#include <lumcommon/streams/LumRefillStreamBuf.h>

#include <algorithm>
#include <cstring>

namespace LumCommon {

LumRefillStreamBuf::LumRefillStreamBuf(std::size_t blockBytes, std::size_t putbackBytes) noexcept
    : blockBytes_(blockBytes), putbackBytes_(putbackBytes) {}

LumRefillStreamBuf::~LumRefillStreamBuf() = default;

void LumRefillStreamBuf::allocateBlock() {
    if (!block_) block_ = std::make_unique_for_overwrite<char[]>(putbackBytes_ + blockBytes_);
}

void LumRefillStreamBuf::releaseBlock() noexcept {
    setg(nullptr, nullptr, nullptr);
    block_.reset();
    hasFailed_ = false;
}

void LumRefillStreamBuf::fail() {
    hasFailed_ = true;
    if (stream_) stream_->setstate(std::ios_base::badbit);
}

/// Moves the bytes that can be put back to the front of the block and returns the place after them.
char* LumRefillStreamBuf::makeRoom() noexcept {
    const std::size_t kept = std::min(static_cast<std::size_t>(gptr() - eback()), putbackBytes_);
    if (kept != 0) std::memmove(block_.get(), gptr() - kept, kept);
    char* const room = block_.get() + kept;
    setg(block_.get(), room, room);
    return room;
}

void LumRefillStreamBuf::setRead(std::span<const char> read) noexcept {
    char* room = makeRoom();
    const std::size_t lastBytes = read.empty() ? 0 : (read.size() - 1) % blockBytes_ + 1;
    if (lastBytes < read.size()) {
        read = read.last(std::min(read.size(), putbackBytes_ + lastBytes));
        room = block_.get();
    }
    char* const end = std::ranges::copy(read, room).out;
    setg(block_.get(), end, end);
}

LumRefillStreamBuf::int_type LumRefillStreamBuf::underflow() {
    if (gptr() != egptr()) return traits_type::to_int_type(*gptr());
    if (!block_ || !fillFrom([this](std::span<char> room) { return refill(room); })) return traits_type::eof();
    return traits_type::to_int_type(*gptr());
}

}  // namespace LumCommon
