#pragma once

#include <lumcommon/core/Api.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace LumCommon {

class OleCompFile;

namespace detail {
class SectorChain;
}

/// A stream of a compound file, opened by OleCompFile::OLEopenStream.
///
/// The stream's chain of sectors is walked only as far as reading and seeking need it. Where it is broken (it loops,
/// ends before the stated size, or leads out of the file), reads stop short.
/// Threads: one at a time for all streams of a file and the file itself.
class LUM_API OleStream {
public:
    /// @param file  must outlive the stream. There is nothing to read before GetStreamChain().
    explicit OleStream(OleCompFile* file);
    OleStream(const OleStream&) = delete;
    OleStream& operator=(const OleStream&) = delete;
    ~OleStream();

    /// Opens the stream with that index in the directory, at position 0. False if there is no such stream, or if it
    /// should be in the mini stream and the file has none; the stream is then empty. A stream of 0 bytes always opens.
    [[nodiscard]] bool GetStreamChain(int dirIndex);
    /// Walks the chain until it has more than `k` sectors (mini sectors for a stream in the mini stream). False if it
    /// is shorter or broken.
    bool GetStreamChainIndex(int k);

    /// Reads up to `n` bytes. Returns the number read, which is less than `n` at the end and where the chain or the
    /// file is broken.
    /// Failure: std::bad_alloc; the position does not change. So it is with OLEseek() and GetStreamChainIndex().
    /// Cost: a run of adjacent sectors is read at once.
    unsigned OLEread(unsigned char* buf, unsigned n);
    /// Moves to `offset` bytes from the start, the current position or the end (SEEK_SET, SEEK_CUR, SEEK_END). Returns
    /// the offset of that byte in the file; at the end of the stream, the offset just past its last byte, or 0 in a
    /// stream of 0 bytes.
    /// Failure: -1. A negative position, one that a long cannot hold, or an unknown `whence` does not move; a position
    /// past the sectors of the stream is set all the same, and reads there give 0.
    /// Cost: O(sectors up to there) the first time.
    long OLEseek(int offset, int whence);
    /// In bytes from the start.
    long OLEtell() const noexcept { return static_cast<long>(position_); }
    /// In bytes, as stated in the directory; there may be fewer.
    unsigned GetStreamSize() const noexcept { return sizeBytes_; }
    /// Whether the stream lies in mini sectors, as small ones do.
    bool isMini() const noexcept { return isMini_; }

    /// Writes the whole stream to a file, replacing it. The position does not change.
    /// @param path  in the platform's encoding.
    /// Failure: false if the file cannot be written or the stream is shorter than stated; the file then holds what
    /// could be read.
    [[nodiscard]] bool CopyToFile(const unsigned char* path);
    /// The same for a path of char.
    [[nodiscard]] bool CopyToFile(const char* path) { return CopyToFile(reinterpret_cast<const unsigned char*>(path)); }

private:
    struct Run {
        std::int64_t offsetInFile = -1;
        std::uint64_t bytes = 0;
    };
    Run findRun(std::uint64_t wantedBytes);
    std::int64_t getUnitOffset(std::size_t index);
    std::uint64_t getUnitSize() const noexcept;

    OleCompFile* file_;
    std::unique_ptr<detail::SectorChain> chain_;
    std::uint32_t sizeBytes_ = 0;
    bool isMini_ = false;
    std::int64_t position_ = 0;
};

}  // namespace LumCommon
