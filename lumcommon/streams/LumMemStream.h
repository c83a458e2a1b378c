#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/MaybeOwned.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <istream>
#include <memory>
#include <span>
#include <streambuf>
#include <string>

namespace LumCommon {

/// A seekable in-memory stream buffer, made of blocks of equal size, that can be fed from other streams.
///
/// It can be written like a file, read back, sought in both directions, truncated and searched. Streams added as
/// sources are read only when a read, a seek or a search needs their bytes, which are appended to what the buffer
/// holds, one source after another; this makes a stream that cannot seek seekable. Data never move once they are
/// written: growing adds a block and copies nothing. For bytes that are complete and only read, LumStrStream is
/// lighter.
///
/// Positions count bytes from the start of the first block. Reading and writing have separate positions.
/// Failure: running out of memory throws std::bad_alloc, which a stream over the buffer turns into badbit; no other
/// errors are raised, and what the buffer holds stays. A source that fails or throws has ended; at the end of the data
/// hasFailed() and the badbit of a LumMemStream then tell so.
/// Threads: one at a time; there is no lock.
class LUM_API LumMemStreamBuf : public std::streambuf {
public:
    /// The size of a block in bytes unless the caller names another.
    static constexpr unsigned defaultGrowBytes = 8192;

    /// @param source     the first source; null for none. Nothing is read yet.
    /// @param growBytes  the size of a block in bytes; 0 stands for the default.
    /// @param ownSource  true: the buffer deletes `source` once it is used up, or at its own destruction; also when
    ///                   this throws.
    explicit LumMemStreamBuf(std::istream* source = nullptr, unsigned growBytes = defaultGrowBytes,
                             bool ownSource = false);
    /// An empty buffer with the block size and the keepMemory setting of `other`; its content is not copied.
    LumMemStreamBuf(const LumMemStreamBuf& other);
    LumMemStreamBuf& operator=(const LumMemStreamBuf&) = delete;
    /// Deletes the owned sources that are left.
    ~LumMemStreamBuf() override;

    /// True by default. When false, reading on from the sources reuses the block before the one last read, so that a
    /// long sequential read holds only two blocks. Positions then count from the older of the two, and a put position
    /// in a reused block is lost: writing starts at 0 again. Seeking and searching keep every block that they read.
    void setKeepMemory(bool keepMemory) noexcept { keepMemory_ = keepMemory; }
    /// What setKeepMemory() set.
    bool getKeepMemory() const noexcept { return keepMemory_; }

    /// Whether a source broke: the content is not all there was. remove() forgets it.
    bool hasFailed() const noexcept { return hasFailed_; }
    /// Names the stream over this buffer whose badbit is to tell of that, too, when its reader reaches the end; null:
    /// none. A LumMemStream names itself. It is not owned, and must live as long as it is named.
    void tellFailuresTo(std::ios* stream) noexcept { stream_ = stream; }

    /// The size of a block in bytes.
    unsigned getGrowBytes() const noexcept { return growBytes_; }
    /// Changes the size of a block. Ignored once there is a block, and for 0.
    void setGrowBytes(unsigned growBytes) noexcept;

    /// Adds a source after those still waiting; null is ignored. If the last block is not full it is filled at once,
    /// and a reader at its end sees the new bytes.
    /// @param own  true: the buffer deletes `source`, once it is used up, at its own destruction, or if this throws.
    /// @param source  read when its bytes are needed, to its end.
    void setSource(std::istream* source, bool own);

    /// The number of bytes. Cost: reads every source to its end.
    std::size_t length();
    /// Appends the whole content to `s`. Cost: reads every source to its end.
    void appendToString(std::string& s);
    /// Drops the content and the sources and sets both positions to 0. Owned sources are deleted.
    void remove();
    /// Truncates the content to `newLength` bytes; ignored if it is not longer than that. A position past the new end
    /// moves to it. Cost: reads every source to its end.
    void trim(std::size_t newLength);

    /// The number of bytes that can be read without leaving the current block or asking a source.
    std::size_t getRemains() const noexcept { return static_cast<std::size_t>(egptr() - gptr()); }
    /// Reads without copying: points `p` at the rest of the current block and moves the read position past it.
    /// @return the number of bytes at `p`; 0 at the end. They stay valid until they are trimmed, removed or abandoned,
    /// or their block is reused (see setKeepMemory()).
    std::size_t getBuffer(const char*& p);
    /// Frees the blocks before the one being read. Positions then count from that block; a put position before it is
    /// lost, and writing starts at 0 again.
    void abandonBuffer();

    /// Copies up to `count` bytes from `in` to the put position.
    /// @param in  must not read from this buffer.
    /// @return the number of bytes copied; fewer if `in` ended or failed.
    /// @param count  in bytes.
    std::size_t copyStream(std::istream& in, std::size_t count);
    /// Copies everything that `src` yields to the put position. Null and this buffer itself are ignored. Exceptions
    /// thrown by `src` propagate; the bytes copied before stay.
    LumMemStreamBuf& operator<<(std::streambuf* src);

    /// Moves the read position to the first byte of the next occurrence of `pattern`.
    /// @param len  the length of the pattern in bytes; 0 for strlen(pattern).
    /// @return false, without moving, if it is not found or is empty.
    /// Cost: each byte is examined once, whatever the pattern; blocks read from sources are kept.
    /// @param pattern  any bytes, if `len` is given.
    bool searchSeek(const char* pattern, unsigned len = 0);
    /// Moves the read position past `pattern` if that comes next; otherwise returns false without moving.
    bool skipSeek(const char* pattern, unsigned len = 0);
    /// Moves the read position past the next line end, or to the end if there is none. A run of CRs and LFs is one line
    /// end.
    void seekEOL();

    /// The checksum of an OpenType table: the sum, modulo 2^32, of the content as big-endian 32-bit words, the last one
    /// padded with zeros. The block size must be a multiple of 4. Cost: reads every source to its end.
    std::uint32_t calcOTFTableChecksum();

    // Overrides of std::streambuf, public so that they can also be called directly.
    /// Makes the next byte readable, from the next block or from a source. End of file where there is none.
    int_type underflow() override;
    /// Adds a block where the old one is full, then writes `c` unless it is end of file.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// Writes `n` bytes at the put position and returns `n`.
    std::streamsize xsputn(const char* s, std::streamsize n) override;
    /// Steps back one byte without storing anything. Returns end of file at position 0 and if `c` is end of file, so
    /// that unget() fails at the start of a block where putback() works.
    int_type pbackfail(int_type c = traits_type::eof()) override;
    /// From `std::ios::cur`, a mode of exactly `in` counts from the read position, any other from the put position.
    pos_type seekoff(off_type off, std::ios_base::seekdir dir,
                     std::ios_base::openmode mode = std::ios_base::in | std::ios_base::out) override;
    /// The position just past the last byte is valid; one further returns -1 without moving.
    pos_type seekpos(pos_type pos, std::ios_base::openmode mode = std::ios_base::in | std::ios_base::out) override;

private:
    friend class LumMemStream;
    LumMemStreamBuf(MaybeOwned<std::istream> source, unsigned growBytes);

    void appendBuffer(bool fresh);
    void recycleFrontBlock();
    void fillFromSources();
    void dropFrontSource();
    void dropFrontBlocks(std::size_t count);
    void flushBuffer() noexcept;
    std::size_t totalBytes() const noexcept;
    std::size_t validBytes(std::size_t block) const noexcept;
    std::size_t readPosition() const noexcept;
    std::size_t putPosition() const noexcept;
    void setGetArea(std::size_t block, std::size_t offset) noexcept;
    void setPutArea(std::size_t block, std::size_t offset) noexcept;
    void enterNextPutBlock();
    void readyPutArea();
    void advancePut(std::size_t count) noexcept;
    std::size_t putRoom() const noexcept;
    std::span<const char> runAt(std::size_t position);

    std::deque<std::unique_ptr<char[]>> blocks_;  // all but the last are full
    std::size_t getBlock_ = 0;                    // the block of the get area, while there is one
    std::size_t putBlock_ = 0;                    // the block of the put area, while there is one
    std::size_t lastBlockFill_ = 0;               // valid bytes of the last block
    // The front one is read first; none waits while the last block has room.
    std::deque<MaybeOwned<std::istream>> sources_;
    unsigned growBytes_;
    bool keepMemory_ = true;
    bool hasFailed_ = false;
    std::ios* stream_ = nullptr;
};

/// A stream for reading and writing with its own LumMemStreamBuf.
/// Threads: one at a time.
class LUM_API LumMemStream : public std::iostream {
public:
    /// The arguments are those of the buffer.
    explicit LumMemStream(std::istream* source = nullptr, unsigned growBytes = LumMemStreamBuf::defaultGrowBytes,
                          bool ownSource = false);
    /// Copies the content, the positions, the block size and the keepMemory setting; the sources of `other` are read to
    /// their ends. If `other` has failed, its positions are not copied: the copy, which has not failed, reads from 0
    /// and writes at the end. Cost: O(length of `other`).
    LumMemStream(LumMemStream& other);
    LumMemStream& operator=(const LumMemStream&) = delete;
    ~LumMemStream() override;

    /// The buffer; it lives as long as the stream.
    LumMemStreamBuf* rdbuf() const noexcept { return const_cast<LumMemStreamBuf*>(&buffer_); }

private:
    LumMemStream(MaybeOwned<std::istream> source, unsigned growBytes);

    LumMemStreamBuf buffer_;
};

}  // namespace LumCommon
