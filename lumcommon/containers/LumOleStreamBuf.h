#pragma once

#include <lumcommon/core/Api.h>

#include <memory>
#include <streambuf>

namespace LumCommon {

class OleStream;

/// Lets a std::istream read a stream of a compound file, starting at the stream's position. It cannot seek.
/// Threads: as for the stream.
class LUM_API LumOleStreamBuf : public std::basic_streambuf<char> {
public:
    /// @param stream  must outlive this object; null reads as empty.
    /// @param limit   the number of bytes after which the input ends; negative for no limit.
    LumOleStreamBuf(OleStream* stream, int limit);
    ~LumOleStreamBuf() override;

protected:
    /// Reads the next block of the stream. End of file where there is none.
    int_type underflow() override;

private:
    OleStream* stream_;
    int limitBytes_;
    long long blocksBytes_ = 0;  // total of the blocks read so far, each counted as full
    std::unique_ptr<char[]> buffer_;
};

}  // namespace LumCommon
