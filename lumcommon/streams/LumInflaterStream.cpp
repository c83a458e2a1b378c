#include <lumcommon/streams/LumInflaterStream.h>
#include <lumcommon/streams/detail/RawInflater.h>
#include <lumcommon/streams/detail/StreamReading.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace LumCommon {

LumInflaterStreamBuf::LumInflaterStreamBuf(const char* data, std::size_t size, bool copy)
    : LumRefillStreamBuf(detail::refillBytes, detail::putbackBytes),
      data_(data, size),
      inflater_(std::make_unique<detail::RawInflater>()) {
    allocateBlock();
    if (copy && size != 0) {
        copy_ = std::make_unique_for_overwrite<char[]>(size);
        std::memcpy(copy_.get(), data, size);
        data_ = {copy_.get(), size};
    }
    rest_ = data_;
}

LumInflaterStreamBuf::~LumInflaterStreamBuf() = default;

void LumInflaterStreamBuf::reset() {
    inflater_->restart();
    forgetFailure();
    rest_ = data_;
    setg(nullptr, nullptr, nullptr);
}

std::size_t LumInflaterStreamBuf::refill(std::span<char> room) {
    const std::size_t count = inflater_->fill(rest_, room, [] { return std::span<const char>(); });
    // Some archives hold nothing at all for an empty member.
    if (count == 0 && !inflater_->hasEnded() && !data_.empty()) fail();
    return count;
}

/// Fills `room`, a number of whole pieces, and returns the number of bytes; fewer at the end. The piece in which a
/// fault shows does not count.
std::size_t LumInflaterStreamBuf::inflatePieces(std::span<char> room) {
    const std::size_t size = room.size();
    auto outcome = detail::RawInflater::Outcome::MORE;
    while (!room.empty() && outcome == detail::RawInflater::Outcome::MORE) outcome = inflater_->step(rest_, room);
    const std::size_t count = size - room.size();
    return outcome == detail::RawInflater::Outcome::BROKEN ? count - count % detail::refillBytes : count;
}

std::streamsize LumInflaterStreamBuf::xsgetn(char* to, std::streamsize count) {
    const auto room = std::span(to, count > 0 ? static_cast<std::size_t>(count) : 0);
    std::size_t done = 0;
    while (done < room.size()) {
        std::size_t piece = std::min(room.size() - done, static_cast<std::size_t>(egptr() - gptr()));
        if (piece > 0) {
            std::memcpy(room.data() + done, gptr(), piece);
            gbump(static_cast<int>(piece));
        } else if (const std::size_t rest = room.size() - done; rest >= detail::refillBytes) {
            piece = inflatePieces(room.subspan(done, rest - rest % detail::refillBytes));
            setRead(room.subspan(done, piece));
            if (piece == 0) {
                if (!inflater_->hasEnded() && !data_.empty()) fail();
                break;
            }
        } else if (underflow() == traits_type::eof()) {
            break;
        }
        done += piece;
    }
    return static_cast<std::streamsize>(done);
}

LumInflaterStream::LumInflaterStream(const char* data, std::size_t size, bool copy)
    : LumInflaterStream(std::make_unique<LumInflaterStreamBuf>(data, size, copy)) {}

LumInflaterStream::LumInflaterStream(LumInflaterStreamBuf* buffer)
    : LumInflaterStream(std::unique_ptr<LumInflaterStreamBuf>(buffer)) {}

LumInflaterStream::LumInflaterStream(std::unique_ptr<LumInflaterStreamBuf> buffer)
    : std::istream(buffer.get()), buffer_(std::move(buffer)) {
    if (buffer_) buffer_->tellFailuresTo(this);
}

LumInflaterStream::~LumInflaterStream() = default;

void LumInflaterStream::reset() {
    clear();
    buffer_->reset();
}

}  // namespace LumCommon
