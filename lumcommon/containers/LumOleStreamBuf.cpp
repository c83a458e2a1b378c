#include <lumcommon/containers/LumOleStreamBuf.h>
#include <lumcommon/containers/OleStream.h>

#include <algorithm>

namespace LumCommon {
namespace {

constexpr int blockBytes = 4096;

}  // namespace

LumOleStreamBuf::LumOleStreamBuf(OleStream* stream, int limit) : stream_(stream), limitBytes_(limit) {}

LumOleStreamBuf::~LumOleStreamBuf() = default;

LumOleStreamBuf::int_type LumOleStreamBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    if (!stream_) return traits_type::eof();
    if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(blockBytes);
    long long wanted = blockBytes;
    if (limitBytes_ >= 0) wanted = std::min(wanted, limitBytes_ - blocksBytes_);
    if (wanted <= 0) return traits_type::eof();
    const unsigned got =
        stream_->OLEread(reinterpret_cast<unsigned char*>(buffer_.get()), static_cast<unsigned>(wanted));
    if (got == 0) return traits_type::eof();
    blocksBytes_ += blockBytes;
    setg(buffer_.get(), buffer_.get(), buffer_.get() + got);
    return traits_type::to_int_type(*gptr());
}

}  // namespace LumCommon
