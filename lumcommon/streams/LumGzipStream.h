#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/MaybeOwned.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>

#include <cstddef>
#include <istream>
#include <memory>
#include <ostream>
#include <span>
#include <streambuf>

namespace LumCommon {

namespace detail {
class FileInflater;
class GzipDeflater;
class StreamInflater;
}  // namespace detail

/// Reads gzip data (RFC 1952); anything else is passed through unchanged.
///
/// From a file, all members are read, one after another, and checked. From a stream, only the first member is read,
/// without checking its checksum and length unless setChecksTrailer() is on; anything after it is ignored. Up to 10
/// bytes that were read can be put back. Seeking is not supported. Memory: constant, whatever the data claim.
/// Failure: nothing is thrown but std::bad_alloc (badbit in a stream). Corrupt or truncated data end early: from a
/// stream, the piece of 4096 bytes in which the fault shows is not delivered, all pieces before it are. hasFailed() and
/// the badbit of a LumGzipStream then tell so, as they do when the file or stream itself breaks.
/// Threads: one at a time.
class LUM_API LumGzipStreamBuf : public LumRefillStreamBuf {
public:
    /// @param path  in the platform's encoding.
    explicit LumGzipStreamBuf(const char* path);
    /// The same for a path as text.
    explicit LumGzipStreamBuf(const UnicodeString& path);
    /// Reads the header at once and the data on demand. Without a gzip header, `s` is read from its current position.
    /// @param s  must outlive the buffer.
    explicit LumGzipStreamBuf(std::istream& s);
    ~LumGzipStreamBuf() override;

    /// Opens a file in place of the previous source. False if it cannot be opened, is a directory, or `path` is null.
    bool open(const char* path);
    /// The same for a path as text.
    bool open(const UnicodeString& path);
    /// False if a file could not be opened.
    bool is_open() const noexcept { return hasBlock(); }

    /// Skips a gzip header. True if there is one; it may still be truncated, and then no data follow. False otherwise,
    /// with `s` back at its old position unless it can neither seek nor put back.
    static bool checkHeader(std::istream& s);

    /// Whether the checksum and the length after the data of a stream are checked: where they are wrong or missing, the
    /// reading fails at the end, after all bytes. Off at first; to be set before the first read.
    void setChecksTrailer(bool checks) noexcept;

private:
    std::size_t refill(std::span<char> room) override;
    bool isBroken();

    std::unique_ptr<detail::FileInflater> file_;  // or source_, with member_ if that is gzip data
    std::unique_ptr<detail::StreamInflater> member_;
    std::istream* source_ = nullptr;
};

/// An input stream with its own LumGzipStreamBuf. Threads: one at a time.
class LUM_API LumGzipStream : public std::istream {
public:
    /// Opens a file; is_open() tells whether that worked.
    /// @param path  in the platform's encoding.
    explicit LumGzipStream(const char* path);
    /// The same for a path as text.
    explicit LumGzipStream(const UnicodeString& path);
    /// Reads another stream, which must outlive this one.
    explicit LumGzipStream(std::istream& s);
    /// Takes over a buffer and deletes it with the stream. Null reads like a file that could not be opened.
    explicit LumGzipStream(LumGzipStreamBuf* buffer);
    ~LumGzipStream() override;

    /// False if a file could not be opened, and without a buffer.
    bool is_open() const noexcept { return buffer_ && buffer_->is_open(); }

private:
    explicit LumGzipStream(std::unique_ptr<LumGzipStreamBuf> buffer);

    std::unique_ptr<LumGzipStreamBuf> buffer_;
};

/// Writes gzip data (RFC 1952, one member, best compression).
///
/// A flush, and therefore std::endl, completes the member: anything written after it fails and is not stored.
/// Destruction completes it as well. Up to 4096 bytes are collected before they are compressed.
/// Failure: end of file, which sets badbit in a stream over the buffer; nothing is thrown, except std::bad_alloc by the
/// constructors.
/// Threads: one at a time.
class LUM_API LumGzipOStreamBuf : public std::streambuf {
public:
    /// Writes a file; an existing one is truncated first.
    explicit LumGzipOStreamBuf(const UnicodeString& path);
    /// @param s  must outlive the buffer.
    explicit LumGzipOStreamBuf(std::ostream& s);
    LumGzipOStreamBuf(const LumGzipOStreamBuf&) = delete;
    LumGzipOStreamBuf& operator=(const LumGzipOStreamBuf&) = delete;
    ~LumGzipOStreamBuf() override;

    /// True while bytes can be written: the target is open and the member is not yet complete.
    bool is_open() const noexcept;

    // Overrides of std::streambuf, public so that they can also be called directly.
    /// Deflates what is pending, then takes `c` unless it is end of file. End of file on failure.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// Completes the member. Returns 0 if all of it was written, now or by an earlier call, else -1.
    int sync() override;
    /// Compresses the contents of the put area. With zlib's Z_FINISH the member is completed as by sync(), with
    /// Z_NO_FLUSH it stays open. Returns 0, or -1 if the member has failed or was already complete.
    int encodeBuffer(int flush);

private:
    void initZStream();

    std::unique_ptr<detail::GzipDeflater> deflater_;  // null once the member is complete or has failed
    std::unique_ptr<char[]> buffer_;
    MaybeOwned<std::ostream> target_;
    bool hasFailed_ = false;
};

}  // namespace LumCommon
