#pragma once

#include <lumcommon/core/Api.h>

#include <cstddef>
#include <istream>
#include <memory>
#include <streambuf>

namespace LumCommon {

/// An input stream over an array of bytes; seeking works in both directions.
/// Threads: one at a time.
class LUM_API LumStrStream : public std::istream {
public:
    /// The buffer of the stream: its get area is the array.
    class LUM_API StrStreamBuf : public std::streambuf {
    public:
        /// @param data  `size` bytes; may be null only if `size` is 0.
        /// @param copy  true: the buffer works on a copy. false: the bytes must outlive it.
        /// @param size  in bytes.
        StrStreamBuf(const char* data, std::size_t size, bool copy);
        ~StrStreamBuf() override;

    protected:
        /// A position outside 0 to `size` or a mode without `in` returns -1 without moving.
        pos_type seekoff(off_type off, std::ios_base::seekdir dir,
                         std::ios_base::openmode mode = std::ios_base::in) override;
        /// As seekoff() from the start.
        pos_type seekpos(pos_type pos, std::ios_base::openmode mode = std::ios_base::in) override;

    private:
        std::unique_ptr<char[]> copy_;
    };

    /// The arguments are those of the buffer.
    LumStrStream(const char* data, std::size_t size, bool copy);
    ~LumStrStream() override;

private:
    StrStreamBuf buffer_;
};

}  // namespace LumCommon
