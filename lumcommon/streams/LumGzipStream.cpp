#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/streams/detail/RawInflater.h>
#include <lumcommon/streams/detail/StreamReading.h>

#define ZLIB_CONST
#include <zlib.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace LumCommon {
namespace detail {

/// A file as zlib reads it: all members of a gzip file, or the bytes of any other.
class FileInflater {
public:
    explicit FileInflater(const char* path) : file_(gzopen(path, "rbe")) {}
    ~FileInflater() {
        if (file_) gzclose(file_);
    }
    FileInflater(const FileInflater&) = delete;
    FileInflater& operator=(const FileInflater&) = delete;

    bool isOpen() const noexcept { return file_ != nullptr; }
    std::size_t read(std::span<char> room) noexcept {
        const int count = gzread(file_, room.data(), static_cast<unsigned>(room.size()));
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    /// Whether the last read met an error, or a file that is cut short.
    bool isBroken() const noexcept {
        int error = Z_OK;
        gzerror(file_, &error);
        return error != Z_OK && error != Z_STREAM_END;
    }

private:
    gzFile file_;
};

/// The data of one gzip member whose header has been read.
class StreamInflater {
public:
    std::size_t read(std::istream& source, std::span<char> room) {
        const std::size_t count = inflater_.fill(rest_, room, [this, &source] { return readInput(source); });
        if (checksTrailer_) {
            sum_ = crc32_z(sum_, reinterpret_cast<const Bytef*>(room.data()), count);
            size_ += static_cast<std::uint32_t>(count);
        }
        return count;
    }
    void checkTrailer(bool checks) noexcept { checksTrailer_ = checks; }
    /// Whether the data, of which there are no more, are whole. May read the trailer.
    bool isWhole(std::istream& source) {
        if (!inflater_.hasEnded()) return false;
        if (!checksTrailer_) return true;
        checksTrailer_ = false;  // it is read once
        return readNumber(source) == sum_ && readNumber(source) == size_;
    }

private:
    std::span<const char> readInput(std::istream& source) { return {input_.data(), readBytes(source, input_)}; }
    /// Four bytes after the data, low byte first; a value that no sum has where they are missing.
    std::uint64_t readNumber(std::istream& source) {
        std::uint64_t number = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            if (rest_.empty()) rest_ = readInput(source);
            if (rest_.empty()) return ~std::uint64_t{0};
            number |= std::uint64_t{static_cast<unsigned char>(rest_.front())} << shift;
            rest_ = rest_.subspan(1);
        }
        return number;
    }

    RawInflater inflater_;
    std::array<char, refillBytes> input_;
    std::span<const char> rest_;
    bool checksTrailer_ = false;
    uLong sum_ = 0;           // CRC-32, in the type of zlib
    std::uint32_t size_ = 0;  // modulo 2^32, as in the trailer
};

/// Produces one gzip member.
class GzipDeflater {
public:
    GzipDeflater() {
        constexpr int gzipWrapper = 15 + 16;
        constexpr int mostMemory = 9;
        isReady_ =
            deflateInit2(&z_, Z_BEST_COMPRESSION, Z_DEFLATED, gzipWrapper, mostMemory, Z_DEFAULT_STRATEGY) == Z_OK;
        emptyOutput();
    }
    ~GzipDeflater() {
        if (isReady_) deflateEnd(&z_);
    }
    GzipDeflater(const GzipDeflater&) = delete;
    GzipDeflater& operator=(const GzipDeflater&) = delete;

    /// Compresses `data` and, with Z_FINISH, everything held back; false if that or writing to `target` fails.
    bool run(std::span<const char> data, int flush, std::ostream& target) {
        if (!isReady_) return false;
        z_.next_in = reinterpret_cast<const Bytef*>(data.data());
        z_.avail_in = static_cast<uInt>(data.size());
        while (flush == Z_FINISH || z_.avail_in != 0) {
            const int result = deflate(&z_, flush);
            const bool isComplete = result == Z_STREAM_END;
            if (!isComplete && result != Z_OK && result != Z_BUF_ERROR) return false;
            if ((isComplete || z_.avail_out == 0) && !writeOutput(target)) return false;
            if (isComplete) return true;
        }
        return true;
    }

private:
    void emptyOutput() noexcept {
        z_.next_out = reinterpret_cast<Bytef*>(output_.data());
        z_.avail_out = static_cast<uInt>(output_.size());
    }
    bool writeOutput(std::ostream& target) {
        target.write(output_.data(), static_cast<std::streamsize>(output_.size() - z_.avail_out));
        emptyOutput();
        return target.good();
    }

    z_stream z_{};
    std::array<char, refillBytes> output_;
    bool isReady_ = false;
};

}  // namespace detail

namespace {

/// Moves a stream back over the bytes last read from it.
void giveBack(std::istream& s, std::string_view bytes) {
    if (s.bad()) return;
    s.clear();
    if (bytes.empty()) return;
    const auto back = -static_cast<std::streamoff>(bytes.size());
    if (s.rdbuf()->pubseekoff(back, std::ios_base::cur, std::ios_base::in) != std::streampos(std::streamoff(-1)))
        return;
    while (!bytes.empty() && s.rdbuf()->sputbackc(bytes.back()) != std::char_traits<char>::eof())
        bytes.remove_suffix(1);
}

/// Skips the optional parts of a gzip header that its flags announce.
void skipOptionalParts(std::istream& s, unsigned flags) {
    enum : unsigned { HEADER_CRC = 2, EXTRA = 4, NAME = 8, COMMENT = 16 };
    if ((flags & EXTRA) != 0) {
        std::array<char, 2> size{};
        if (detail::readBytes(s, size) != size.size()) return;
        s.ignore(static_cast<unsigned char>(size[0]) + 256 * static_cast<unsigned char>(size[1]));
    }
    constexpr auto noLimit = std::numeric_limits<std::streamsize>::max();
    if ((flags & NAME) != 0) s.ignore(noLimit, 0);
    if ((flags & COMMENT) != 0) s.ignore(noLimit, 0);
    if ((flags & HEADER_CRC) != 0) s.ignore(2);
}

bool readHeader(std::istream& s) {
    if (!s.good() || s.rdbuf()->sgetc() == std::char_traits<char>::eof()) return false;
    std::array<char, 4> start{};  // 1F 8B, the method, the flags
    const std::size_t got = detail::readBytes(s, start);
    constexpr unsigned reservedFlags = 0xE0;
    constexpr std::string_view gzipDeflated = "\x1F\x8B\x08";
    const auto flags = static_cast<unsigned char>(start[3]);
    const std::string_view bytes(start.data(), got);
    if (got < start.size() || !bytes.starts_with(gzipDeflated) || (flags & reservedFlags) != 0) {
        giveBack(s, bytes);
        return false;
    }
    s.ignore(6);  // time, extra flags, operating system
    skipOptionalParts(s, flags);
    return true;
}

}  // namespace

LumGzipStreamBuf::LumGzipStreamBuf(const char* path) : LumRefillStreamBuf(detail::refillBytes, detail::putbackBytes) {
    open(path);
}

LumGzipStreamBuf::LumGzipStreamBuf(const UnicodeString& path)
    : LumRefillStreamBuf(detail::refillBytes, detail::putbackBytes) {
    open(path);
}

LumGzipStreamBuf::LumGzipStreamBuf(std::istream& s)
    : LumRefillStreamBuf(detail::refillBytes, detail::putbackBytes), source_(&s) {
    allocateBlock();
    if (checkHeader(s)) member_ = std::make_unique<detail::StreamInflater>();
}

LumGzipStreamBuf::~LumGzipStreamBuf() = default;

bool LumGzipStreamBuf::open(const char* path) {
    releaseBlock();
    file_.reset();
    member_.reset();
    source_ = nullptr;
    // A directory can be opened but not read.
    std::error_code error;
    if (!path || std::filesystem::is_directory(path, error)) return false;
    auto file = std::make_unique<detail::FileInflater>(path);
    if (!file->isOpen()) return false;
    allocateBlock();
    file_ = std::move(file);
    return true;
}

bool LumGzipStreamBuf::open(const UnicodeString& path) {
    const auto platformPath = detail::toPlatformPath(path);
    return open(platformPath ? platformPath->c_str() : nullptr);
}

bool LumGzipStreamBuf::checkHeader(std::istream& s) {
    try {
        return readHeader(s);
    } catch (...) {
        // Nothing more is read from a stream that throws.
        return false;
    }
}

void LumGzipStreamBuf::setChecksTrailer(bool checks) noexcept {
    if (member_) member_->checkTrailer(checks);
}

std::size_t LumGzipStreamBuf::refill(std::span<char> room) {
    std::size_t count = 0;
    if (file_) {
        count = file_->read(room);
    } else {
        count = member_ ? member_->read(*source_, room) : detail::readBytes(*source_, room);
    }
    if (count == 0 && isBroken()) fail();
    return count;
}

bool LumGzipStreamBuf::isBroken() {
    if (file_) return file_->isBroken();
    if (member_) return !member_->isWhole(*source_);
    return detail::isBroken(*source_);
}

LumGzipStream::LumGzipStream(const char* path) : LumGzipStream(std::make_unique<LumGzipStreamBuf>(path)) {}

LumGzipStream::LumGzipStream(const UnicodeString& path) : LumGzipStream(std::make_unique<LumGzipStreamBuf>(path)) {}

LumGzipStream::LumGzipStream(std::istream& s) : LumGzipStream(std::make_unique<LumGzipStreamBuf>(s)) {}

LumGzipStream::LumGzipStream(LumGzipStreamBuf* buffer) : LumGzipStream(std::unique_ptr<LumGzipStreamBuf>(buffer)) {}

LumGzipStream::LumGzipStream(std::unique_ptr<LumGzipStreamBuf> buffer)
    : std::istream(buffer.get()), buffer_(std::move(buffer)) {
    if (buffer_) buffer_->tellFailuresTo(this);
}

LumGzipStream::~LumGzipStream() = default;

LumGzipOStreamBuf::LumGzipOStreamBuf(const UnicodeString& path) {
    if (const auto platformPath = detail::toPlatformPath(path)) {
        auto file = std::make_unique<std::ofstream>(*platformPath, std::ios_base::binary | std::ios_base::trunc);
        if (file->is_open()) target_ = std::unique_ptr<std::ostream>(std::move(file));
    }
    if (target_) initZStream();
    hasFailed_ = !target_;
}

LumGzipOStreamBuf::LumGzipOStreamBuf(std::ostream& s) : target_(&s, false) { initZStream(); }

LumGzipOStreamBuf::~LumGzipOStreamBuf() { sync(); }

bool LumGzipOStreamBuf::is_open() const noexcept { return deflater_ != nullptr; }

void LumGzipOStreamBuf::initZStream() {
    deflater_ = std::make_unique<detail::GzipDeflater>();
    buffer_ = std::make_unique_for_overwrite<char[]>(detail::refillBytes);
    setp(buffer_.get(), buffer_.get() + detail::refillBytes);
}

int LumGzipOStreamBuf::encodeBuffer(int flush) {
    if (!deflater_) return -1;
    const std::span<const char> waiting(pbase(), pptr());
    bool isDone = false;
    try {
        isDone = deflater_->run(waiting, flush, *target_);
    } catch (...) {
        // Thrown because of the target's exception mask; isDone stays false, so the member has failed.
    }
    hasFailed_ = !isDone;
    if (isDone && flush != Z_FINISH) {
        setp(buffer_.get(), buffer_.get() + detail::refillBytes);
    } else {
        // Without a put area, every byte goes to overflow(), which refuses it.
        setp(nullptr, nullptr);
        deflater_.reset();
    }
    return isDone ? 0 : -1;
}

LumGzipOStreamBuf::int_type LumGzipOStreamBuf::overflow(int_type c) {
    if (encodeBuffer(Z_NO_FLUSH) != 0) return traits_type::eof();
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    *pptr() = traits_type::to_char_type(c);
    pbump(1);
    return c;
}

int LumGzipOStreamBuf::sync() {
    if (deflater_) encodeBuffer(Z_FINISH);
    if (target_.isOwned() && !target_->flush()) hasFailed_ = true;
    return hasFailed_ ? -1 : 0;
}

}  // namespace LumCommon
