#include <lumcommon/streams/LumStrStream.h>

#include <cstring>

namespace LumCommon {

LumStrStream::StrStreamBuf::StrStreamBuf(const char* data, std::size_t size, bool copy) {
    if (size == 0) return;
    // The area is never written to: putting back a byte other than the one read fails.
    char* start = const_cast<char*>(data);
    if (copy) {
        copy_ = std::make_unique_for_overwrite<char[]>(size);
        start = copy_.get();
        std::memcpy(start, data, size);
    }
    setg(start, start, start + size);
}

LumStrStream::StrStreamBuf::~StrStreamBuf() = default;

LumStrStream::StrStreamBuf::pos_type LumStrStream::StrStreamBuf::seekoff(off_type off, std::ios_base::seekdir dir,
                                                                         std::ios_base::openmode mode) {
    const off_type size = egptr() - eback();
    off_type base = 0;
    if (dir == std::ios_base::cur) base = gptr() - eback();
    if (dir == std::ios_base::end) base = size;
    // Compare, do not add: an offset from a file may be anything.
    if ((mode & std::ios_base::in) == 0 || off < -base || off > size - base) return pos_type(off_type(-1));
    setg(eback(), eback() + (base + off), egptr());
    return pos_type(base + off);
}

LumStrStream::StrStreamBuf::pos_type LumStrStream::StrStreamBuf::seekpos(pos_type pos, std::ios_base::openmode mode) {
    return seekoff(off_type(pos), std::ios_base::beg, mode);
}

LumStrStream::LumStrStream(const char* data, std::size_t size, bool copy)
    : std::istream(nullptr), buffer_(data, size, copy) {
    rdbuf(&buffer_);
}

LumStrStream::~LumStrStream() = default;

}  // namespace LumCommon
