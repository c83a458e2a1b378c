#include <lumcommon/streams/LumInflaterStream.h>
#include <lumcommon/streams/detail/RawInflater.h>
#include <lumcommon/streams/detail/StreamReading.h>

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
    rest_ = data_;
    setg(nullptr, nullptr, nullptr);
}

std::size_t LumInflaterStreamBuf::refill(std::span<char> room) {
    return inflater_->fill(rest_, room, [] { return std::span<const char>(); });
}

LumInflaterStream::LumInflaterStream(const char* data, std::size_t size, bool copy)
    : LumInflaterStream(std::make_unique<LumInflaterStreamBuf>(data, size, copy)) {}

LumInflaterStream::LumInflaterStream(LumInflaterStreamBuf* buffer)
    : LumInflaterStream(std::unique_ptr<LumInflaterStreamBuf>(buffer)) {}

LumInflaterStream::LumInflaterStream(std::unique_ptr<LumInflaterStreamBuf> buffer)
    : std::istream(buffer.get()), buffer_(std::move(buffer)) {}

LumInflaterStream::~LumInflaterStream() = default;

void LumInflaterStream::reset() {
    clear();
    buffer_->reset();
}

}  // namespace LumCommon
