#include <lumcommon/streams/detail/RawInflater.h>

#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>

namespace LumCommon::detail {
namespace {

constexpr int rawDeflate = -15;  // the largest window, and no header
constexpr std::size_t mostAtOnce = std::numeric_limits<uInt>::max();

}  // namespace

RawInflater::RawInflater() : stream_(std::make_unique<z_stream>()) {
    const int result = inflateInit2(stream_.get(), rawDeflate);
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    isReady_ = result == Z_OK;
}

RawInflater::~RawInflater() {
    if (isReady_) inflateEnd(stream_.get());
}

void RawInflater::restart() noexcept {
    hasEnded_ = false;
    if (isReady_) inflateReset(stream_.get());
}

RawInflater::Outcome RawInflater::step(std::span<const char>& data, std::span<char>& room) {
    if (!isReady_) return Outcome::BROKEN;
    z_stream& z = *stream_;
    const auto given = static_cast<uInt>(std::min(data.size(), mostAtOnce));
    const auto free = static_cast<uInt>(std::min(room.size(), mostAtOnce));
    z.next_in = reinterpret_cast<const Bytef*>(data.data());
    z.avail_in = given;
    z.next_out = reinterpret_cast<Bytef*>(room.data());
    z.avail_out = free;
    const int result = ::inflate(&z, Z_NO_FLUSH);
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    data = data.subspan(given - z.avail_in);
    room = room.subspan(free - z.avail_out);
    hasEnded_ = result == Z_STREAM_END;
    if (hasEnded_) return Outcome::END;
    // Without input, zlib delivers what it holds back; if that is nothing, it reports an error.
    return result == Z_OK ? Outcome::MORE : Outcome::BROKEN;
}

}  // namespace LumCommon::detail
