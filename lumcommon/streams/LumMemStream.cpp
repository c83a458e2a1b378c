#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/detail/StreamReading.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

namespace LumCommon {

using detail::readBytes;

LumMemStreamBuf::LumMemStreamBuf(std::istream* source, unsigned growBytes, bool ownSource)
    : LumMemStreamBuf(MaybeOwned<std::istream>(source, ownSource), growBytes) {}

LumMemStreamBuf::LumMemStreamBuf(MaybeOwned<std::istream> source, unsigned growBytes)
    : growBytes_(growBytes == 0 ? defaultGrowBytes : growBytes) {
    if (source) sources_.push_back(std::move(source));
}

LumMemStreamBuf::LumMemStreamBuf(const LumMemStreamBuf& other)
    : std::streambuf(), growBytes_(other.growBytes_), keepMemory_(other.keepMemory_) {}

LumMemStreamBuf::~LumMemStreamBuf() {
    while (!sources_.empty()) dropFrontSource();
}

// The blocks and the areas.

std::size_t LumMemStreamBuf::totalBytes() const noexcept {
    return blocks_.empty() ? 0 : (blocks_.size() - 1) * growBytes_ + lastBlockFill_;
}

std::size_t LumMemStreamBuf::validBytes(std::size_t block) const noexcept {
    return block + 1 == blocks_.size() ? lastBlockFill_ : growBytes_;
}

std::size_t LumMemStreamBuf::readPosition() const noexcept {
    return eback() ? getBlock_ * growBytes_ + static_cast<std::size_t>(gptr() - eback()) : 0;
}

std::size_t LumMemStreamBuf::putPosition() const noexcept {
    return pbase() ? putBlock_ * growBytes_ + static_cast<std::size_t>(pptr() - pbase()) : 0;
}

void LumMemStreamBuf::setGetArea(std::size_t block, std::size_t offset) noexcept {
    char* const start = blocks_[block].get();
    getBlock_ = block;
    setg(start, start + offset, start + validBytes(block));
}

void LumMemStreamBuf::setPutArea(std::size_t block, std::size_t offset) noexcept {
    char* const start = blocks_[block].get();
    putBlock_ = block;
    // One byte short, so that overflow() can store its character before it looks for the next block.
    setp(start, start + (growBytes_ - 1));
    advancePut(offset);
}

/// pbump() takes an int, which a large block exceeds.
void LumMemStreamBuf::advancePut(std::size_t count) noexcept {
    for (; count > INT_MAX; count -= INT_MAX) pbump(INT_MAX);
    pbump(static_cast<int>(count));
}

std::size_t LumMemStreamBuf::putRoom() const noexcept {
    return growBytes_ - static_cast<std::size_t>(pptr() - pbase());
}

/// Records how far the put area has been written. Only trim() and remove() shrink the fill of the last block.
void LumMemStreamBuf::flushBuffer() noexcept {
    if (pbase() && putBlock_ + 1 == blocks_.size()) {
        lastBlockFill_ = std::max(lastBlockFill_, static_cast<std::size_t>(pptr() - pbase()));
    }
}

/// Appends a block and fills it from the sources. The last block must be full.
/// @param fresh  false: reuse the memory of an old block if there are two or more.
void LumMemStreamBuf::appendBuffer(bool fresh) {
    if (fresh || blocks_.size() < 2) {
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(growBytes_));
    } else {
        recycleFrontBlock();
    }
    lastBlockFill_ = 0;
    fillFromSources();
}

void LumMemStreamBuf::recycleFrontBlock() {
    dropFrontBlocks(blocks_.size() - 2);
    // Detach the areas from the block before it moves.
    if (pbase() && putBlock_ == 0) setp(nullptr, nullptr);
    if (eback() && getBlock_ == 0) setg(nullptr, nullptr, nullptr);
    blocks_.push_back(std::move(blocks_.front()));
    blocks_.pop_front();
    putBlock_ = pbase() ? putBlock_ - 1 : 0;
    getBlock_ = eback() ? getBlock_ - 1 : 0;
}

/// Frees blocks at the front; an area inside one of them is cleared.
void LumMemStreamBuf::dropFrontBlocks(std::size_t count) {
    if (pbase() && putBlock_ < count) setp(nullptr, nullptr);
    if (eback() && getBlock_ < count) setg(nullptr, nullptr, nullptr);
    blocks_.erase(blocks_.begin(), blocks_.begin() + static_cast<std::ptrdiff_t>(count));
    putBlock_ = pbase() ? putBlock_ - count : 0;
    getBlock_ = eback() ? getBlock_ - count : 0;
}

/// Fills the last block until it is full or no source is left.
void LumMemStreamBuf::fillFromSources() {
    while (!sources_.empty() && lastBlockFill_ < growBytes_) {
        std::istream& source = *sources_.front();
        lastBlockFill_ += readBytes(source, {blocks_.back().get() + lastBlockFill_, growBytes_ - lastBlockFill_});
        if (lastBlockFill_ == growBytes_) break;
        // A short read means that the source has ended or failed; it would not yield anything more.
        if (detail::isBroken(source)) hasFailed_ = true;
        dropFrontSource();
    }
}

void LumMemStreamBuf::dropFrontSource() {
    // Take it off the list before deleting it: its destructor may be user code.
    const MaybeOwned<std::istream> source = std::move(sources_.front());
    sources_.pop_front();
}

void LumMemStreamBuf::setGrowBytes(unsigned growBytes) noexcept {
    if (blocks_.empty() && growBytes != 0) growBytes_ = growBytes;
}

void LumMemStreamBuf::setSource(std::istream* source, bool own) {
    if (!source) return;
    MaybeOwned<std::istream> taken(source, own);
    flushBuffer();
    sources_.push_back(std::move(taken));
    // A reader at the end of a full block gets the new bytes when it asks for the next block, which is soon enough.
    if (blocks_.empty() || lastBlockFill_ == growBytes_) return;
    fillFromSources();
    pubseekoff(0, std::ios_base::cur, std::ios_base::in);
}

// The whole content.

std::size_t LumMemStreamBuf::length() {
    flushBuffer();
    while (!sources_.empty()) appendBuffer(true);
    return totalBytes();
}

void LumMemStreamBuf::appendToString(std::string& s) {
    const std::size_t sizeBytes = length();
    if (sizeBytes == 0) return;
    s.reserve(s.size() + sizeBytes);
    for (std::size_t block = 0; block < blocks_.size(); ++block) s.append(blocks_[block].get(), validBytes(block));
}

void LumMemStreamBuf::remove() {
    setg(nullptr, nullptr, nullptr);
    setp(nullptr, nullptr);
    while (!sources_.empty()) dropFrontSource();
    lastBlockFill_ = 0;
    hasFailed_ = false;
    if (blocks_.empty()) return;
    blocks_.resize(1);
    pubseekpos(0);
}

void LumMemStreamBuf::trim(std::size_t newLength) {
    if (newLength >= length()) return;
    const std::size_t read = std::min(readPosition(), newLength);
    const std::size_t put = std::min(putPosition(), newLength);
    // The areas may be in blocks that are freed; they are set again below.
    setg(nullptr, nullptr, nullptr);
    setp(nullptr, nullptr);
    const std::size_t offset = newLength % growBytes_;
    blocks_.resize(newLength / growBytes_ + (offset != 0 ? 1 : 0));
    lastBlockFill_ = offset == 0 && newLength != 0 ? growBytes_ : offset;
    pubseekpos(static_cast<off_type>(read), std::ios_base::in);
    pubseekpos(static_cast<off_type>(put), std::ios_base::out);
}

void LumMemStreamBuf::abandonBuffer() {
    flushBuffer();
    if (eback()) dropFrontBlocks(getBlock_);
}

std::uint32_t LumMemStreamBuf::calcOTFTableChecksum() {
    if (length() == 0) return 0;
    std::uint32_t sum = 0;
    const auto byteAt = [](const char* p) { return std::uint32_t{static_cast<unsigned char>(*p)}; };
    for (std::size_t block = 0; block < blocks_.size(); ++block) {
        const char* p = blocks_[block].get();
        const std::size_t valid = validBytes(block);
        for (std::size_t word = valid / 4; word != 0; --word, p += 4) {
            sum += byteAt(p) << 24 | byteAt(p + 1) << 16 | byteAt(p + 2) << 8 | byteAt(p + 3);
        }
        if (block + 1 != blocks_.size()) continue;
        for (std::size_t i = 0; i < valid % 4; ++i) sum += byteAt(p + i) << (24 - 8 * i);
    }
    return sum;
}

// Reading.

LumMemStreamBuf::int_type LumMemStreamBuf::underflow() {
    flushBuffer();
    if (!eback()) {
        if (blocks_.empty()) appendBuffer(keepMemory_);
        setGetArea(0, 0);
    }
    if (gptr() == egptr()) {
        // The block may have been written since the area was set, so compare its end with what is valid now.
        std::size_t block = getBlock_;
        auto offset = static_cast<std::size_t>(egptr() - eback());
        if (offset == validBytes(block)) {
            ++block;
            offset = 0;
        }
        if (block < blocks_.size()) {
            setGetArea(block, offset);
        } else if (!sources_.empty()) {
            appendBuffer(keepMemory_);
            setGetArea(blocks_.size() - 1, 0);
        }
    }
    if (gptr() != egptr()) return traits_type::to_int_type(*gptr());
    if (hasFailed_ && stream_) stream_->setstate(std::ios_base::badbit);
    return traits_type::eof();
}

LumMemStreamBuf::int_type LumMemStreamBuf::pbackfail(int_type c) {
    if (!eback() || traits_type::eq_int_type(c, traits_type::eof())) return traits_type::eof();
    if (gptr() != eback()) {
        gbump(-1);
        return c;
    }
    if (getBlock_ == 0) return traits_type::eof();
    setGetArea(getBlock_ - 1, growBytes_ - 1);
    return c;
}

std::size_t LumMemStreamBuf::getBuffer(const char*& p) {
    pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    const std::size_t count = getRemains();
    p = gptr();
    setg(eback(), egptr(), egptr());
    return count;
}

// Writing.

/// Moves the put area to the next block, which is overwritten from its start. The put area's block must be full.
void LumMemStreamBuf::enterNextPutBlock() {
    flushBuffer();
    const std::size_t next = putBlock_ + 1;
    if (next == blocks_.size()) appendBuffer(true);
    setPutArea(next, 0);
}

/// Makes sure that there is a put area with room. It can be full here if an earlier attempt to get a block failed.
void LumMemStreamBuf::readyPutArea() {
    if (!pbase()) {
        if (blocks_.empty()) appendBuffer(true);
        setPutArea(0, 0);
    } else if (putRoom() == 0) {
        enterNextPutBlock();
    }
}

LumMemStreamBuf::int_type LumMemStreamBuf::overflow(int_type c) {
    readyPutArea();
    if (traits_type::eq_int_type(c, traits_type::eof())) return c;
    *pptr() = traits_type::to_char_type(c);
    pbump(1);
    if (putRoom() == 0) enterNextPutBlock();
    return c;
}

std::streamsize LumMemStreamBuf::xsputn(const char* s, std::streamsize n) {
    for (auto rest = static_cast<std::size_t>(std::max<std::streamsize>(n, 0)); rest != 0;) {
        readyPutArea();
        const std::size_t count = std::min(putRoom(), rest);
        std::memcpy(pptr(), s, count);
        advancePut(count);
        s += count;
        rest -= count;
        if (putRoom() == 0) enterNextPutBlock();
    }
    return n;
}

std::size_t LumMemStreamBuf::copyStream(std::istream& in, std::size_t count) {
    std::size_t copied = 0;
    while (in.good() && count > copied) {
        readyPutArea();
        const std::size_t got = readBytes(in, {pptr(), std::min(putRoom(), count - copied)});
        advancePut(got);
        copied += got;
    }
    // As after any other write, move on from a full block: a source added later then goes into the next one at once.
    if (pbase() && putRoom() == 0) enterNextPutBlock();
    return copied;
}

LumMemStreamBuf& LumMemStreamBuf::operator<<(std::streambuf* src) {
    if (!src || src == this) return *this;
    flushBuffer();
    readyPutArea();
    for (;;) {
        const std::size_t room = putRoom();
        const auto got = static_cast<std::size_t>(src->sgetn(pptr(), static_cast<std::streamsize>(room)));
        advancePut(got);
        if (got < room) break;
        enterNextPutBlock();
    }
    flushBuffer();
    return *this;
}

// Seeking.

LumMemStreamBuf::pos_type LumMemStreamBuf::seekoff(off_type off, std::ios_base::seekdir dir,
                                                   std::ios_base::openmode mode) {
    flushBuffer();
    std::size_t base = 0;
    if (dir == std::ios_base::cur) {
        base = mode == std::ios_base::in ? readPosition() : putPosition();
    } else if (dir == std::ios_base::end) {
        base = length();
    } else if (dir != std::ios_base::beg) {
        return pos_type(off_type(-1));
    }
    const auto start = static_cast<off_type>(base);
    if (off > std::numeric_limits<off_type>::max() - start) return pos_type(off_type(-1));
    return seekpos(pos_type(start + off), mode);
}

LumMemStreamBuf::pos_type LumMemStreamBuf::seekpos(pos_type pos, std::ios_base::openmode mode) {
    const off_type target = pos;
    if (target < 0) return pos_type(off_type(-1));
    flushBuffer();
    if (blocks_.empty()) appendBuffer(true);
    const auto position = static_cast<std::uintmax_t>(target);
    while (position >= totalBytes() && !sources_.empty()) appendBuffer(true);
    if (position > totalBytes()) return pos_type(off_type(-1));
    const auto block = static_cast<std::size_t>(position / growBytes_);
    const auto offset = static_cast<std::size_t>(position % growBytes_);
    // The position just past a full last block is in a block that does not exist yet.
    if (block == blocks_.size()) appendBuffer(true);
    if ((mode & std::ios_base::in) != 0) setGetArea(block, offset);
    if ((mode & std::ios_base::out) != 0) setPutArea(block, offset);
    return pos;
}

// Searching.

/// The bytes from `position` to the end of their block, read from the sources if need be; empty at the end.
std::span<const char> LumMemStreamBuf::runAt(std::size_t position) {
    const std::size_t block = position / growBytes_;
    const std::size_t offset = position % growBytes_;
    while (block >= blocks_.size() && !sources_.empty()) appendBuffer(true);
    if (block >= blocks_.size()) return {};
    return {blocks_[block].get() + offset, validBytes(block) - offset};
}

namespace {

/// Finds a pattern in bytes that arrive in runs, examining each byte once (Knuth-Morris-Pratt): a run is never needed
/// again, and no text makes a long pattern slow.
class PatternFinder {
public:
    explicit PatternFinder(std::span<const char> pattern) : pattern_(pattern), fallback_(pattern.size(), 0) {
        for (std::size_t i = 1, matched = 0; i < pattern.size(); ++i) {
            while (matched != 0 && pattern[i] != pattern[matched]) matched = fallback_[matched - 1];
            if (pattern[i] == pattern[matched]) ++matched;
            fallback_[i] = matched;
        }
    }

    /// The number of bytes of the run up to the end of the match, or 0 if the match does not end in it.
    std::size_t find(std::span<const char> run) {
        const char* p = run.data();
        const char* const end = p + run.size();
        while (p != end) {
            if (matched_ == 0) {
                p = static_cast<const char*>(std::memchr(p, pattern_[0], static_cast<std::size_t>(end - p)));
                if (!p) return 0;
            }
            while (matched_ != 0 && *p != pattern_[matched_]) matched_ = fallback_[matched_ - 1];
            if (*p == pattern_[matched_]) ++matched_;
            ++p;
            if (matched_ == pattern_.size()) return static_cast<std::size_t>(p - run.data());
        }
        return 0;
    }

private:
    std::span<const char> pattern_;
    std::vector<std::size_t> fallback_;  // for each prefix the length of its longest proper border
    std::size_t matched_ = 0;
};

std::span<const char> patternBytes(const char* pattern, unsigned len) {
    if (!pattern) return {};
    return {pattern, len != 0 ? len : std::strlen(pattern)};
}

constexpr bool isLineEnd(char c) { return c == '\r' || c == '\n'; }

}  // namespace

bool LumMemStreamBuf::searchSeek(const char* pattern, unsigned len) {
    const std::span<const char> bytes = patternBytes(pattern, len);
    if (bytes.empty()) return false;
    pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    PatternFinder finder(bytes);
    std::size_t position = readPosition();
    for (std::span<const char> run = runAt(position); !run.empty(); run = runAt(position)) {
        if (const std::size_t matchEnd = finder.find(run)) {
            pubseekpos(static_cast<off_type>(position + matchEnd - bytes.size()), std::ios_base::in);
            return true;
        }
        position += run.size();
    }
    return false;
}

bool LumMemStreamBuf::skipSeek(const char* pattern, unsigned len) {
    std::span<const char> rest = patternBytes(pattern, len);
    if (rest.empty()) return false;
    pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    std::size_t position = readPosition();
    while (!rest.empty()) {
        const std::span<const char> run = runAt(position);
        const std::size_t compared = std::min(run.size(), rest.size());
        if (compared == 0 || std::memcmp(run.data(), rest.data(), compared) != 0) return false;
        position += compared;
        rest = rest.subspan(compared);
    }
    pubseekpos(static_cast<off_type>(position), std::ios_base::in);
    return true;
}

void LumMemStreamBuf::seekEOL() {
    pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    std::size_t position = readPosition();
    bool isPastLineEnd = false;
    for (std::span<const char> run = runAt(position); !run.empty(); run = runAt(position)) {
        const auto stop = std::ranges::find_if(run, [&isPastLineEnd](char c) {
            if (!isLineEnd(c)) return isPastLineEnd;
            isPastLineEnd = true;
            return false;
        });
        position += static_cast<std::size_t>(stop - run.begin());
        if (stop != run.end()) break;
    }
    pubseekpos(static_cast<off_type>(position), std::ios_base::in);
}

// The stream.

LumMemStream::LumMemStream(std::istream* source, unsigned growBytes, bool ownSource)
    : LumMemStream(MaybeOwned<std::istream>(source, ownSource), growBytes) {}

LumMemStream::LumMemStream(MaybeOwned<std::istream> source, unsigned growBytes)
    : std::iostream(nullptr), buffer_(std::move(source), growBytes) {
    std::iostream::rdbuf(&buffer_);
    buffer_.tellFailuresTo(this);
}

LumMemStream::LumMemStream(LumMemStream& other)
    : std::basic_ios<char>(), std::iostream(nullptr), buffer_(other.buffer_) {
    std::iostream::rdbuf(&buffer_);
    buffer_.tellFailuresTo(this);
    if (other.buffer_.length() == 0) return;
    // Ask the buffers directly: asking a stream that has reached its end would make it fail.
    const pos_type read = other.buffer_.pubseekoff(0, cur, in);
    const pos_type put = other.buffer_.pubseekoff(0, cur, out);
    other.buffer_.pubseekpos(0, in);
    try {
        buffer_ << &other.buffer_;
    } catch (...) {
        other.buffer_.pubseekpos(read, in);
        throw;
    }
    other.buffer_.pubseekpos(read, in);
    if (other.fail()) return;
    buffer_.pubseekpos(read, in);
    buffer_.pubseekpos(put, out);
}

LumMemStream::~LumMemStream() = default;

}  // namespace LumCommon
