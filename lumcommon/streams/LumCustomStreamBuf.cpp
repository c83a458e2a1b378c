#include <lumcommon/streams/LumCustomStreamBuf.h>
#include <lumcommon/streams/detail/StreamReading.h>

namespace LumCommon {
namespace {

constexpr std::size_t readBytesAtOnce = 8192;
constexpr std::size_t bufferBytes = detail::putbackBytes + readBytesAtOnce;
// One byte short of the buffer, so that overflow() can always store its character.
constexpr std::size_t putAreaBytes = bufferBytes - 1;

}  // namespace

LumCustomStreamController::~LumCustomStreamController() = default;

LumCustomStreamBuf::LumCustomStreamBuf(LumCustomStreamController* controller)
    : LumRefillStreamBuf(readBytesAtOnce, detail::putbackBytes), controller_(controller) {
    if (!controller_) return;
    allocateBlock();
    setp(getBlock(), getBlock() + putAreaBytes);
}

LumCustomStreamBuf::~LumCustomStreamBuf() {
    try {
        flushBuffer();
    } catch (...) {
        // There is nobody left to report it to.
    }
}

std::size_t LumCustomStreamBuf::refill(std::span<char> room) {
    const int count = controller_->read(room.data(), static_cast<int>(room.size()));
    if (count < 0) fail();
    return count <= 0 || static_cast<std::size_t>(count) > room.size() ? 0 : static_cast<std::size_t>(count);
}

/// Gives the put area to the controller. False if not all of it is taken; the put area then stays as it is.
bool LumCustomStreamBuf::handOver() {
    const auto size = static_cast<int>(pptr() - pbase());
    if (controller_->write(pbase(), size) < size) return false;
    setp(getBlock(), getBlock() + putAreaBytes);
    writtenBytes_ += static_cast<std::uint64_t>(size);
    return true;
}

LumCustomStreamBuf::int_type LumCustomStreamBuf::overflow(int_type c) {
    if (!hasBlock()) return traits_type::eof();
    const bool isStored = !traits_type::eq_int_type(c, traits_type::eof());
    if (isStored) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    bool isTaken = false;
    try {
        isTaken = handOver();
    } catch (...) {
        if (isStored) pbump(-1);
        throw;
    }
    if (isTaken) return c;
    // A refused character is not kept pending, so the put area does not run past its end.
    if (isStored) pbump(-1);
    return traits_type::eof();
}

int LumCustomStreamBuf::flushBuffer() {
    const auto size = static_cast<int>(pptr() - pbase());
    if (size == 0) return 0;
    return handOver() ? size : -1;
}

int LumCustomStreamBuf::sync() { return flushBuffer() < 0 ? -1 : 0; }

LumCustomStreamBuf::pos_type LumCustomStreamBuf::seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) {
    return pos_type(static_cast<off_type>(writtenBytes_) + (pptr() - pbase()));
}

}  // namespace LumCommon
