#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>
#include <lumcommon/streams/detail/StreamReading.h>

namespace LumCommon::detail {

bool isBroken(const std::istream& in) noexcept {
    if (in.bad()) return true;
    if (const auto* const buffer = dynamic_cast<const LumRefillStreamBuf*>(in.rdbuf())) return buffer->hasFailed();
    const auto* const memory = dynamic_cast<const LumMemStreamBuf*>(in.rdbuf());
    return memory && memory->hasFailed();
}

}  // namespace LumCommon::detail
