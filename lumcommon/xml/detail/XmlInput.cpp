#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/streams/detail/StreamReading.h>
#include <lumcommon/xml/detail/OpenInput.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlInput.h>

#include <unicode/utf16.h>

#include <cxxabi.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace LumCommon::detail {

namespace {

constexpr std::size_t blockBytes = 32768;
constexpr std::size_t windowUnits = 8192;  // small enough to stay in the first-level cache while it is scanned
constexpr std::ptrdiff_t maxNotedUnits = 256;
constexpr std::size_t putBackUnits = 16;  // more than any look-ahead pushes back

/// Leaves the state that an extraction would leave, except where the stream is set to throw for it: there it has not
/// failed.
void setState(std::istream& in, std::ios::iostate bits) {
    if (!(in.exceptions() & (in.rdstate() | bits))) in.setstate(bits);
}

}  // namespace

/// Hands out the bytes that were read before the charset was known, then the rest of the stream.
class XmlInput::Remainder : public std::streambuf {
public:
    Remainder(XmlInput& input, const unsigned char* from, const unsigned char* to)
        : stream(this), input_(input), block_(from, to) {
        char* const start = reinterpret_cast<char*>(block_.data());
        setg(start, start, start + block_.size());
    }

    std::istream stream;

private:
    int_type underflow() override {
        block_.resize(blockBytes);
        char* const start = reinterpret_cast<char*>(block_.data());
        const std::streamsize count = input_.readMetered(*input_.stream_, start, blockBytes);
        if (count <= 0) return end();
        setg(start, start, start + count);
        return traits_type::to_int_type(*start);
    }
    int_type end() {
        if (isBroken(*input_.stream_)) stream.setstate(std::ios::badbit);
        return traits_type::eof();
    }

    XmlInput& input_;
    std::vector<unsigned char> block_;
};

XmlInput::XmlInput()
    : bytes_(new unsigned char[blockBytes]),  // without clearing either: small documents would feel it
      window_(new char16_t[putBackUnits + windowUnits]) {
    std::fill_n(window_.get(), putBackUnits, u'\0');
    counted_ = window_.get() + putBackUnits;
}

XmlInput::~XmlInput() {
    if (ownsStream_) delete stream_;
}

void XmlInput::setStream(std::istream* stream, bool ownsStream) noexcept {
    stream_ = stream;
    ownsStream_ = ownsStream;
}

bool XmlInput::convertFrom(const UnicodeString& charset) {
    if (!isDetected_) {
        if (!isCharset(charset)) return false;
        givenCharset_ = charset;
        return true;
    }
    const std::string name = utf8Of(charset);
    auto remainder = std::make_unique<Remainder>(*this, bytes_.get() + byteStart_, bytes_.get() + byteEnd_);
    auto converted = std::make_unique<LumKobStream>(&remainder->stream, name.c_str());
    if (!converted->is_open()) return false;
    remainder_ = std::move(remainder);
    converted_ = std::move(converted);
    byteStart_ = byteEnd_ = 0;
    isAtEnd_ = false;
    decoder_.encoding = XmlEncoding::Utf16LE;
    return true;
}

bool XmlInput::isCharset(const UnicodeString& name) { return LumKobStreamBuf(nullptr, utf8Of(name).c_str()).is_open(); }

std::istream* XmlInput::source() noexcept { return converted_ ? converted_.get() : stream_; }

void XmlInput::meterBy(InputMeter& meter, bool isExternal) {
    meter_ = &meter;
    account_.isExternal = isExternal;
    if (auto* const inflating = dynamic_cast<InflatingInput*>(stream_)) {
        account_.isInflated = true;
        inflating->meterBy(meter, account_);
    }
}

/// What `in` has to give at once, as far as the limits allow; 0 at its end.
std::streamsize XmlInput::readMetered(std::istream& in, char* to, std::size_t most) {
    std::streambuf* const buffer = in.rdbuf();
    if (!buffer || in.bad() || buffer->sgetc() == std::char_traits<char>::eof()) return 0;
    // A buffer that cannot tell what it holds has at least the byte just looked at.
    const auto available = static_cast<std::size_t>(std::max<std::streamsize>(buffer->in_avail(), 1));
    most = std::min(most, available);
    if (meter_) most = meter_->room(account_, most);
    const std::streamsize count = most ? buffer->sgetn(to, static_cast<std::streamsize>(most)) : 0;
    if (meter_ && count > 0) meter_->add(account_, static_cast<std::size_t>(count));
    return count;
}

/// The same from what converts the bytes, which reads metered itself.
std::streamsize XmlInput::readConverted(char* to, std::size_t most) {
    std::streambuf* const buffer = converted_->rdbuf();
    if (converted_->bad() || buffer->sgetc() == std::char_traits<char>::eof()) return 0;
    const std::streamsize available = std::max<std::streamsize>(buffer->in_avail(), 1);
    return buffer->sgetn(to, std::min(available, static_cast<std::streamsize>(most)));
}

bool XmlInput::fillBytes() {
    if (isAtEnd_) return false;
    if (byteStart_ > 0) {
        std::memmove(bytes_.get(), bytes_.get() + byteStart_, byteEnd_ - byteStart_);
        byteEnd_ -= byteStart_;
        byteStart_ = 0;
    }
    std::istream* const in = source();
    char* const to = reinterpret_cast<char*>(bytes_.get() + byteEnd_);
    const std::size_t room = blockBytes - byteEnd_;
    std::streamsize count = 0;
    try {
        count = converted_ ? readConverted(to, room) : readMetered(*in, to, room);
    } catch (const abi::__forced_unwind&) {
        throw;  // the thread is being cancelled
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        // As with every extraction from a stream: what its buffer throws ends the input.
        hasFailed_ = true;
        setState(*in, std::ios::badbit);
    }
    if (count <= 0) {
        isAtEnd_ = true;
        if (isBroken(*in)) hasFailed_ = true;
        setState(*in, std::ios::eofbit);
        return false;
    }
    byteEnd_ += static_cast<std::size_t>(count);
    return true;
}

int XmlInput::peekByte(std::size_t index) {
    while (byteEnd_ - byteStart_ <= index) {
        if (!fillBytes()) return -1;
    }
    return bytes_[byteStart_ + index];
}

bool XmlInput::refill(XmlCursor& cursor) {
    if (isAtInvalid_) return false;
    char16_t* const base = window_.get() + putBackUnits;
    if (cursor.cur) {
        settlePosition(cursor.end);
        // Units that were pushed back into the window before it was first filled lie in front of `base` too.
        const std::size_t kept =
            std::min<std::size_t>(putBackUnits, static_cast<std::size_t>(cursor.cur - window_.get()));
        std::memmove(base - kept, cursor.cur - kept, kept * sizeof(char16_t));
    }
    char16_t* to = base;
    char16_t* const toEnd = base + windowUnits;
    decoder_.hasSurrogates = heldLead_ != 0;
    if (heldLead_ != 0) *to++ = std::exchange(heldLead_, u'\0');
    const auto hasTooLittle = [&] { return to == base || (to == base + 1 && U16_IS_LEAD(*base)); };
    do {
        const unsigned char* from = bytes_.get() + byteStart_;
        const unsigned char* const fromEnd = bytes_.get() + byteEnd_;
        if (from != fromEnd) decoder_.decode(from, fromEnd, isAtEnd_, to, toEnd, isLeashed_);
        byteStart_ = static_cast<std::size_t>(from - bytes_.get());
    } while (hasTooLittle() && (fillBytes() || byteStart_ != byteEnd_));
    // The halves of a pair may come one by one; the window does not end between them.
    if (to > base + 1 && U16_IS_LEAD(to[-1])) heldLead_ = *--to;
    counted_ = base;
    feedsEnd_ = nullptr;
    cursor = {base, to, base};
    if (decoder_.isStrict) endAtInvalid(cursor, to);
    return cursor.end != base;
}

/// Counts up to there.
void XmlInput::settlePosition(const char16_t* end) {
    if (feedsEnd_) {
        position_ = positionBy(feedsEnd_, end);
    } else {
        position_.advance(counted_, end, decoder_.hasSurrogates);
    }
    counted_ = end;
    feedsEnd_ = nullptr;
}

const char16_t* XmlInput::findInvalid(const char16_t* from, const char16_t* end) const {
    end = findInvalidUnit(from, end);
    // What the decoder of a few bytes and the converters of ICU let through.
    if (decoder_.encoding == XmlEncoding::Ascii) end = std::find_if(from, end, [](char16_t c) { return c > 0x7F; });
    if (converted_) end = std::find(from, end, static_cast<char16_t>(replacementChar));
    return end;
}

void XmlInput::endAtInvalid(XmlCursor& cursor, const char16_t* end) {
    cursor.end = findInvalid(cursor.cur, end);
    isAtInvalid_ = cursor.end != end;
    decodedEnd_ = end;
}

void XmlInput::passInvalid(XmlCursor& cursor) {
    settlePosition(cursor.end);
    cursor.cur = cursor.high = cursor.end + 1;
    endAtInvalid(cursor, decodedEnd_);
}

TextPosition XmlInput::countPosition(const XmlCursor& cursor) {
    if (!cursor.cur) return position_;
    const std::ptrdiff_t distance = cursor.high - counted_;
    if (distance > 0) {
        position_.advance(counted_, cursor.high, decoder_.hasSurrogates);
        counted_ = cursor.high;
    }
    // Long ways are counted as fast as they would be noted.
    if (distance > maxNotedUnits || decoder_.hasSurrogates) return position_;
    if (!feeds_) feeds_.reset(new std::uint16_t[windowUnits]);
    feedsEnd_ = findLineFeeds(counted_, cursor.end, feeds_.get());
    nextFeed_ = feeds_.get();
    return position_;
}

void XmlInput::pushUncounted(XmlCursor& cursor, char16_t unit) {
    if (!cursor.cur) {
        const char16_t* const base = window_.get() + putBackUnits;
        cursor = {base, base, base};
    }
    window_[static_cast<std::size_t>(cursor.end - window_.get())] = unit;
    ++cursor.end;
    cursor.high = cursor.end;
    counted_ = cursor.end;
    feedsEnd_ = nullptr;
}

void XmlInput::detected(XmlEncoding encoding, const char16_t* name, bool isMarked, std::size_t bytesTaken) {
    decoder_.encoding = encoding;
    encodingName = name;
    hasBom = isMarked;
    byteStart_ += bytesTaken;
}

bool XmlInput::detectUtf32OrUtf16BE(XmlCursor& cursor) {
    const int second = peekByte(1);
    if (second > 0) {
        detected(XmlEncoding::Utf16BE, u"UTF-16BE", false, 2);
        pushUncounted(cursor, static_cast<char16_t>(second));
        return true;
    }
    const int third = peekByte(2);
    const int fourth = peekByte(3);
    if (second < 0 || third < 0 || fourth < 0) return true;
    const bool isMarked = third == 0xFE && fourth == 0xFF;
    detected(XmlEncoding::Utf32BE, isMarked ? u"UTF-32" : u"UTF-32BE", isMarked, 4);
    if (!isMarked) pushUncounted(cursor, static_cast<char16_t>((third << 8) | fourth));
    return true;
}

void XmlInput::detectByLessThan(XmlCursor& cursor) {
    const XmlEncoding named = decoder_.encoding;
    if (named != XmlEncoding::Undecided && named != XmlEncoding::Utf16Generic && named != XmlEncoding::Utf32Generic) {
        return;
    }
    if (peekByte(1) != 0) {
        detected(XmlEncoding::Utf8, u"UTF-8", false, 1);
        pushUncounted(cursor, u'<');
        return;
    }
    if (peekByte(2) != 0) {
        detected(XmlEncoding::Utf16LE, u"UTF-16LE", false, 2);
        pushUncounted(cursor, u'<');
        return;
    }
    const int fourth = peekByte(3);
    if (fourth == 0) {
        detected(XmlEncoding::Utf32LE, u"UTF-32LE", false, 4);
        pushUncounted(cursor, u'<');
        return;
    }
    detected(XmlEncoding::Utf16LE, u"UTF-16LE", false, fourth < 0 ? 2 : 4);
    pushUncounted(cursor, u'<');
    if (fourth > 0) pushUncounted(cursor, static_cast<char16_t>(fourth << 8));
}

bool XmlInput::detectByMark(XmlCursor& cursor, int first) {
    const int second = peekByte(1);
    if (first == 0xFE && second == 0xFF) {
        detected(XmlEncoding::Utf16BE, u"UTF-16", true, 2);
        return true;
    }
    if (first == 0xEF && second == 0xBB && peekByte(2) == 0xBF) {
        detected(XmlEncoding::Utf8, u"UTF-8", true, 3);
        return true;
    }
    if (first != 0xFF || second != 0xFE) return false;
    const int third = peekByte(2);
    const int fourth = peekByte(3);
    if (third == 0 && fourth == 0) {
        detected(XmlEncoding::Utf32LE, u"UTF-32", true, 4);
    } else if (third < 0 || fourth < 0) {
        detected(XmlEncoding::Utf16LE, u"UTF-16", true, 2);
    } else {
        const auto unit = static_cast<char16_t>((fourth << 8) | third);
        // What may not be text as it is has to pass through the decoder.
        const bool isText = !decoder_.isStrict || (unit >= 0x20 && unit < 0xFFFE && !U16_IS_SURROGATE(unit));
        detected(XmlEncoding::Utf16LE, u"UTF-16", true, isText ? 4 : 2);
        if (isText) pushUncounted(cursor, unit);
    }
    return true;
}

bool XmlInput::startsWithMark() {
    switch (peekByte(0)) {
        case 0x00:
            return peekByte(1) == 0x00 && peekByte(2) == 0xFE && peekByte(3) == 0xFF;
        case 0xEF:
            return peekByte(1) == 0xBB && peekByte(2) == 0xBF;
        case 0xFE:
            return peekByte(1) == 0xFF;
        case 0xFF:
            return peekByte(1) == 0xFE;
        default:
            return false;
    }
}

bool XmlInput::detectEncoding(XmlCursor& cursor) {
    isDetected_ = true;
    if (!givenCharset_.isEmpty() && !startsWithMark()) convertFrom(givenCharset_);
    const int first = peekByte(0);
    switch (first) {
        case 0x00:
            return detectUtf32OrUtf16BE(cursor);
        case '<':
            detectByLessThan(cursor);
            return true;
        case 0xEF:
        case 0xFE:
        case 0xFF:
            return detectByMark(cursor, first);
        default:
            return true;
    }
}

}  // namespace LumCommon::detail
