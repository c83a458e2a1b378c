#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/streams/cconv.h>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>

namespace LumCommon {

/// Takes UTF-16 code units, two bytes a unit in the machine's order, and writes them to a stream in some charset.
///
/// Units gather in a block of 4096 bytes. A flush converts and hands over what has gathered; it does not flush the
/// destination. A last unit that is a high surrogate or U+0000, and half a unit, wait for what follows; term() writes
/// them as they are. A character that the charset lacks becomes "?", one of East Asian width U+3013 where that exists;
/// half of a surrogate pair becomes U+FFFD, or "?" where the charset lacks that.
class LUM_API LumKobOStreamBuf : public std::streambuf {
public:
    /// What line ends (CR LF, CR, LF) are written as.
    enum LF_CONVERT {
        LF_TO_CRLF = 0,
        LF_TO_CR = 1,
        LF_TO_LF = 2,
        LF_KEEP = 3,  // as they came
    };

    /// @param out       the destination; not owned, and alive as long as this.
    /// @param encoding  the charset's name as the conversion knows it (LumKobStreamBuf::getLibraryName has no part in
    ///                  this). An unknown or null name leaves the buffer closed: it takes nothing.
    /// @param bom       begin with a byte order mark, when the charset has one.
    /// @param flag      the byte order of "UTF-16" and "UTF-32": true for the lower byte first.
    LumKobOStreamBuf(std::ostream* out, const char* encoding, bool bom, LF_CONVERT lf, bool flag);
    /// Writes what is left, as term() does.
    ~LumKobOStreamBuf() override;
    LumKobOStreamBuf(const LumKobOStreamBuf&) = delete;
    LumKobOStreamBuf& operator=(const LumKobOStreamBuf&) = delete;

    /// Begins again with this charset; what the conversion before held is dropped, the counts go on.
    /// @return false when the charset is unknown or null: the buffer is closed.
    bool init(const char* encoding, bool bom, LF_CONVERT lf, bool flag);
    bool is_open() const noexcept { return isOpen_; }
    /// Writes everything that waits and what the charset wants at its end (ISO-2022-JP shifts back to ASCII), then
    /// closes.
    void term() noexcept;
    std::ostream* getOutputStream() const noexcept { return out_; }

    /// The largest number of bytes to write, raw ones included; 0 for no limit. A character that does not fit below
    /// the limit is not written in part: it and all that follows is dropped.
    void setLimit(unsigned int n) noexcept { limit_ = n; }
    /// Flushes; true when more was given than the limit admits.
    bool isLimitOver();
    /// The bytes counted so far, without what has gathered since the last flush; the largest unsigned int when there
    /// are more. Beyond the limit, converted text counts one byte and raw bytes count in full.
    unsigned int getOutputLength() const noexcept;

    /// Flushes, then writes bytes as they are, as far as the limit admits; all of them are counted.
    void writeRawBuffer(const char* data, unsigned int n);
    /// The same with all bytes of a stream. With the limit exceeded already, nothing is read or counted. Bytes behind
    /// the limit are read and counted.
    void writeRawStream(std::istream& in);

    // What the operations of std::streambuf and of streams come down to; it can be called directly as well.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// -1 when the buffer is closed or the destination fails; what could not be written is dropped.
    int sync() override;

private:
    bool flushBlock() noexcept;
    bool convertAll(unsigned bytes, bool isLast) noexcept;
    bool hand(const char* bytes, std::size_t count) noexcept;
    bool writeRaw(const char* data, std::size_t n) noexcept;
    std::size_t countReadyBytes() const noexcept;

    static constexpr std::size_t BLOCK_BYTES = 4096;

    std::ostream* out_;
    CConvContext context_;
    std::unique_ptr<char[]> block_;   // the put area
    std::unique_ptr<char[]> output_;  // converted bytes
    std::uint64_t outputLength_ = 0;
    unsigned int limit_ = 0;
    bool isOpen_ = false;
};

}  // namespace LumCommon
