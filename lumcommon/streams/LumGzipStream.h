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

/// Reads gzip data (RFC 1952); data that are not gzip are passed through.
///
/// From a file every member of it is read, one after the other, and checked. From a stream the first member is read and
/// its checksum and length are not checked; what follows it is ignored. Up to 10 bytes that were read can be put back.
/// Seeking is not supported. Memory: constant, whatever the data claim.
/// Failure: nothing is thrown. Data that are corrupt or cut end early: a piece of 4096 bytes in which a stream's data
/// turn out to be so is not delivered, all pieces before it are.
/// Threads: one at a time.
class LUM_API LumGzipStreamBuf : public LumRefillStreamBuf {
public:
    /// @param path  in the platform's encoding.
    explicit LumGzipStreamBuf(const char* path);
    explicit LumGzipStreamBuf(const UnicodeString& path);
    /// Reads the header at once and the data as they are needed. Without a gzip header `s` is read from where it
    /// stands.
    /// @param s  must outlive the buffer.
    explicit LumGzipStreamBuf(std::istream& s);
    ~LumGzipStreamBuf() override;

    /// Opens a file in place of what was read before. False when it cannot be opened, is a directory, or `path` is
    /// null.
    bool open(const char* path);
    bool open(const UnicodeString& path);
    /// False when a file could not be opened.
    bool is_open() const noexcept { return hasBlock(); }

    /// Reads past a gzip header. True when there is one; it may still be cut short, and then no data follow. False
    /// otherwise, and `s` stands where it stood, unless it can neither seek nor put back.
    static bool checkHeader(std::istream& s);

private:
    std::size_t refill(std::span<char> room) override;

    std::unique_ptr<detail::FileInflater> file_;  // the three are alternatives; a plain stream has neither
    std::unique_ptr<detail::StreamInflater> member_;
    std::istream* source_ = nullptr;
};

/// An input stream over a LumGzipStreamBuf of its own. Threads: one at a time.
class LUM_API LumGzipStream : public std::istream {
public:
    explicit LumGzipStream(const char* path);
    explicit LumGzipStream(const UnicodeString& path);
    explicit LumGzipStream(std::istream& s);
    /// Takes over a buffer, which is deleted with the stream. Null reads like a file that could not be opened.
    explicit LumGzipStream(LumGzipStreamBuf* buffer);
    ~LumGzipStream() override;

    bool is_open() const noexcept { return buffer_ && buffer_->is_open(); }

private:
    explicit LumGzipStream(std::unique_ptr<LumGzipStreamBuf> buffer);

    std::unique_ptr<LumGzipStreamBuf> buffer_;
};

/// Writes gzip data (RFC 1952, one member, best compression).
///
/// A flush, and so std::endl, completes the member: what is written after it fails and does not appear. Destruction
/// completes it as well. Up to 4096 bytes wait before they are compressed.
/// Failure: end of file, which sets badbit in a stream over the buffer; nothing is thrown.
/// Threads: one at a time.
class LUM_API LumGzipOStreamBuf : public std::streambuf {
public:
    /// Writes a file, cut to nothing first.
    explicit LumGzipOStreamBuf(const UnicodeString& path);
    /// @param s  must outlive the buffer.
    explicit LumGzipOStreamBuf(std::ostream& s);
    LumGzipOStreamBuf(const LumGzipOStreamBuf&) = delete;
    LumGzipOStreamBuf& operator=(const LumGzipOStreamBuf&) = delete;
    ~LumGzipOStreamBuf() override;

    /// True while bytes can be written: the target is open and the member is not complete.
    bool is_open() const noexcept;

    // What the operations of std::streambuf and of streams come down to; it can be called directly as well.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// Completes the member; 0 when all of it was written, also when that was done before, else -1.
    int sync() override;
    /// Compresses what waits in the put area. With Z_FINISH of zlib the member is completed as by sync(), with
    /// Z_NO_FLUSH it goes on. 0, or -1 when the member has failed or was complete before.
    int encodeBuffer(int flush);

private:
    void initZStream();

    std::unique_ptr<detail::GzipDeflater> deflater_;  // null once the member is complete or has failed
    std::unique_ptr<char[]> buffer_;
    MaybeOwned<std::ostream> target_;
    bool hasFailed_ = false;
};

}  // namespace LumCommon
