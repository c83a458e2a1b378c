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

/// Takes UTF-16 code units, two bytes each in the machine's byte order, and writes them to a stream in a given charset.
///
/// Units are collected in a block of 4096 bytes. A flush converts them and passes them on; it does not flush the
/// destination. A final high surrogate, U+0000 or half unit is held back until more follows; term() writes the first
/// two as they are and drops half a unit. A character that the charset lacks becomes "?"; a wide one (East Asian width)
/// becomes U+3013 if the charset has that. Half of a surrogate pair becomes U+FFFD, or "?" if the charset lacks that.
/// Failure: overflow() and sync() report it; exceptions thrown by the destination are caught. The constructor, init()
/// and writeRawStream() throw std::bad_alloc; after init() the buffer is then closed.
/// Threads: one at a time.
class LUM_API LumKobOStreamBuf : public std::streambuf {
public:
    /// What line ends (CR LF, CR, LF) are written as.
    enum LF_CONVERT {
        LF_TO_CRLF = 0,  ///< CR LF
        LF_TO_CR = 1,    ///< CR
        LF_TO_LF = 2,    ///< LF
        LF_KEEP = 3,     ///< as they came
    };

    /// @param out       the destination; not owned, must outlive the buffer.
    /// @param encoding  the charset's name as the conversion knows it (LumKobStreamBuf::getLibraryName is not applied).
    ///                  An unknown or null name leaves the buffer closed: it accepts nothing.
    /// @param bom       begin with a byte order mark if the charset has one.
    /// @param flag      the byte order of "UTF-16" and "UTF-32": true for little-endian.
    /// @param lf  what line ends become.
    LumKobOStreamBuf(std::ostream* out, const char* encoding, bool bom, LF_CONVERT lf, bool flag);
    /// Writes what is left, like term().
    ~LumKobOStreamBuf() override;
    LumKobOStreamBuf(const LumKobOStreamBuf&) = delete;
    LumKobOStreamBuf& operator=(const LumKobOStreamBuf&) = delete;

    /// Starts over with this charset. Anything the previous conversion held back is dropped; the counts continue.
    /// @return false if the charset is unknown or null; the buffer is then closed.
    bool init(const char* encoding, bool bom, LF_CONVERT lf, bool flag);
    /// Whether units are accepted.
    bool is_open() const noexcept { return isOpen_; }
    /// Writes everything held back and whatever the charset requires at the end (ISO-2022-JP shifts back to ASCII),
    /// then closes the buffer.
    void term() noexcept;
    /// The destination; null if there is none. Borrowed.
    std::ostream* getOutputStream() const noexcept { return out_; }

    /// Limits the number of bytes written, raw ones included; 0 for no limit. A character that does not fit within the
    /// limit is not written in part: it and everything after it are dropped.
    void setLimit(unsigned int n) noexcept { limit_ = n; }
    /// Flushes; true if more was passed in than the limit admits.
    bool isLimitOver();
    /// The bytes counted so far, without units collected since the last flush; the largest unsigned int if there are
    /// more. Beyond the limit, converted text counts as one byte and raw bytes count in full.
    unsigned int getOutputLength() const noexcept;

    /// Flushes, then writes bytes unconverted, up to the limit; all of them are counted.
    void writeRawBuffer(const char* data, unsigned int n);
    /// The same with all bytes of a stream. If the limit has already been exceeded, nothing is read or counted;
    /// otherwise bytes beyond the limit are still read and counted.
    void writeRawStream(std::istream& in);

    // Overrides of std::streambuf, public so that they can also be called directly.
    /// Takes `c`, unless it is end of file, and converts what is pending. End of file on failure.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// Returns 0, or -1 if the buffer is closed or the destination fails; what could not be written is dropped.
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
