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
/// The stream's chain of sectors is walked as far as reading and seeking need it. Where it is broken (it loops, ends
/// before the stated size, or leads out of the file) reads stop short.
/// Threads: one at a time for all streams of a file and the file itself.
class LUM_API OleStream {
public:
    /// @param file  must outlive the stream. There is nothing to read before GetStreamChain().
    explicit OleStream(OleCompFile* file);
    OleStream(const OleStream&) = delete;
    OleStream& operator=(const OleStream&) = delete;
    ~OleStream();

    /// Opens the stream at a place of the directory, at position 0. False when there is no stream, or one that should
    /// lie in the mini stream of a file that has none; the stream is then empty. A stream of no bytes always opens.
    [[nodiscard]] bool GetStreamChain(int dirIndex);
    /// Walks the chain until it has more than `k` sectors (mini sectors for a stream in the mini stream). False when it
    /// is shorter, or broken.
    bool GetStreamChainIndex(int k);

    /// Reads up to `n` bytes; the number read, less than `n` at the end and where the chain or the file is broken.
    /// Cost: a run of sectors that lie together is read at once.
    unsigned OLEread(unsigned char* buf, unsigned n);
    /// Moves to `offset` bytes from the start, the current position or the end (SEEK_SET, SEEK_CUR, SEEK_END).
    /// Returns where in the file that byte lies; for the end of the stream the place behind its last byte, or 0 in a
    /// stream of no bytes.
    /// Failure: -1. A negative position or unknown `whence` moves nothing; behind the sectors of the stream the
    /// position is set all the same, and reads there give 0.
    /// Cost: O(sectors up to there) the first time.
    long OLEseek(int offset, int whence);
    /// In bytes from the start.
    long OLEtell() const noexcept { return static_cast<long>(position_); }
    /// In bytes, as stated in the directory: less may be there.
    unsigned GetStreamSize() const noexcept { return sizeBytes_; }
    bool isMini() const noexcept { return isMini_; }

    /// Writes the whole stream to a file, which is replaced. The position stays.
    /// @param path  in the platform's encoding.
    /// Failure: false when the file cannot be written or the stream is shorter than it states; the file then holds
    /// what could be read.
    [[nodiscard]] bool CopyToFile(const unsigned char* path);
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
