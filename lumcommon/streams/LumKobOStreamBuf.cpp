#include <lumcommon/streams/LumKobOStreamBuf.h>
#include <lumcommon/streams/LumMemStream.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace LumCommon {

// init() casts one to the other.
static_assert(static_cast<CConvLineEnds>(LumKobOStreamBuf::LF_TO_CRLF) == CConvLineEnds::toCrLf);
static_assert(static_cast<CConvLineEnds>(LumKobOStreamBuf::LF_TO_CR) == CConvLineEnds::toCr);
static_assert(static_cast<CConvLineEnds>(LumKobOStreamBuf::LF_TO_LF) == CConvLineEnds::toLf);
static_assert(static_cast<CConvLineEnds>(LumKobOStreamBuf::LF_KEEP) == CConvLineEnds::keep);

LumKobOStreamBuf::LumKobOStreamBuf(std::ostream* out, const char* encoding, bool bom, LF_CONVERT lf, bool flag)
    : out_(out) {
    init(encoding, bom, lf, flag);
}

LumKobOStreamBuf::~LumKobOStreamBuf() { term(); }

bool LumKobOStreamBuf::init(const char* encoding, bool bom, LF_CONVERT lf, bool flag) {
    isOpen_ = false;
    setp(nullptr, nullptr);
    CConvOptions options;
    options.writeMark = bom;
    options.lineEnds = static_cast<CConvLineEnds>(lf);
    options.littleEndian = flag;
    options.sourceIsUnits = true;
    if (!block_) block_ = std::make_unique_for_overwrite<char[]>(BLOCK_BYTES);
    if (!output_) output_ = std::make_unique_for_overwrite<char[]>(BLOCK_BYTES);
    int result = cconvInitConvert(context_, options, encoding);
    if (result == 0) result = cconvChgCharset(context_, options, "UTF-16");
    if (result != 0) {
        cconvTermConvert(context_);
        if (result == cconvOutOfMemory) throw std::bad_alloc();
        return false;
    }
    // One byte short of the block, so that overflow() has room for its character.
    setp(block_.get(), block_.get() + BLOCK_BYTES - 1);
    isOpen_ = true;
    return true;
}

void LumKobOStreamBuf::term() noexcept {
    if (isOpen_) {
        // Half a unit at the very end has no meaning; everything else is written.
        convertAll(static_cast<unsigned>(pptr() - pbase()) & ~1u, true);
        isOpen_ = false;
        setp(nullptr, nullptr);
    }
    cconvTermConvert(context_);
}

bool LumKobOStreamBuf::isLimitOver() {
    flushBlock();
    return limit_ != 0 && outputLength_ > limit_;
}

unsigned int LumKobOStreamBuf::getOutputLength() const noexcept {
    return static_cast<unsigned int>(std::min<std::uint64_t>(outputLength_, std::numeric_limits<unsigned int>::max()));
}

void LumKobOStreamBuf::writeRawBuffer(const char* data, unsigned int n) {
    flushBlock();
    if (data) writeRaw(data, n);
}

void LumKobOStreamBuf::writeRawStream(std::istream& in) {
    if (isLimitOver()) return;
    // Keep only the blocks being read, so that memory is bounded for a stream of any length. sgetc() recycles them;
    // getBuffer() alone would keep them all.
    LumMemStream chunks(&in, LumMemStreamBuf::defaultGrowBytes, false);
    chunks.rdbuf()->setKeepMemory(false);
    while (!traits_type::eq_int_type(chunks.rdbuf()->sgetc(), traits_type::eof())) {
        const char* chunk = nullptr;
        const std::size_t count = chunks.rdbuf()->getBuffer(chunk);
        writeRaw(chunk, count);
    }
}

LumKobOStreamBuf::int_type LumKobOStreamBuf::overflow(int_type c) {
    if (!isOpen_) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return flushBlock() ? traits_type::not_eof(c) : traits_type::eof();
}

int LumKobOStreamBuf::sync() { return flushBlock() ? 0 : -1; }

/// How many bytes of the put area can be converted before more follow.
std::size_t LumKobOStreamBuf::countReadyBytes() const noexcept {
    const std::size_t units = static_cast<std::size_t>(pptr() - pbase()) / sizeof(char16_t);
    if (units == 0) return 0;
    char16_t last;
    std::memcpy(&last, pbase() + (units - 1) * sizeof last, sizeof last);
    const bool waits = last == 0 || (last >= 0xD800 && last < 0xDC00);
    return (waits ? units - 1 : units) * sizeof(char16_t);
}

/// Converts and writes what is ready; the rest moves to the start of the put area.
bool LumKobOStreamBuf::flushBlock() noexcept {
    if (!isOpen_) return false;
    const std::size_t ready = countReadyBytes();
    const std::size_t waiting = static_cast<std::size_t>(pptr() - pbase()) - ready;
    const bool isWritten = ready == 0 || convertAll(static_cast<unsigned>(ready), false);
    std::memmove(block_.get(), block_.get() + ready, waiting);
    setp(block_.get(), block_.get() + BLOCK_BYTES - 1);
    pbump(static_cast<int>(waiting));
    return isWritten;
}

/// Converts the first `bytes` bytes of the put area, up to the limit. With `isLast` the text ends there.
bool LumKobOStreamBuf::convertAll(unsigned bytes, bool isLast) noexcept {
    context_.input = block_.get();
    context_.inputConsumed = 0;
    context_.inputAvailable = bytes;
    context_.isLastInput = isLast;
    context_.output = output_.get();
    bool isWritten = true;
    for (;;) {
        std::uint64_t room = BLOCK_BYTES;
        if (limit_ != 0) room = std::min(room, limit_ > outputLength_ ? limit_ - outputLength_ : 0);
        context_.outputCapacity = static_cast<unsigned>(room);
        if (cconvConvert(context_) != 0) return false;
        if (context_.outputProduced == 0) {
            // Nothing fits: the next character would exceed the limit. It stays in the conversion and is never written.
            if (limit_ != 0 && context_.isOutputFull)
                outputLength_ = std::max(outputLength_, std::uint64_t{limit_} + 1);
            return isWritten;
        }
        isWritten = hand(output_.get(), context_.outputProduced) && isWritten;
        outputLength_ += context_.outputProduced;
    }
}

bool LumKobOStreamBuf::hand(const char* bytes, std::size_t count) noexcept {
    try {
        return out_ && out_->write(bytes, static_cast<std::streamsize>(count)).good();
    } catch (...) {
        return false;
    }
}

/// Writes bytes unconverted, up to the limit, and counts them all.
bool LumKobOStreamBuf::writeRaw(const char* data, std::size_t n) noexcept {
    std::size_t admitted = n;
    if (limit_ != 0) {
        admitted =
            limit_ > outputLength_ ? static_cast<std::size_t>(std::min<std::uint64_t>(n, limit_ - outputLength_)) : 0;
    }
    outputLength_ += n;
    return admitted == 0 || hand(data, admitted);
}

}  // namespace LumCommon
