#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/streams/LumKobStream.h>
#include <lumcommon/xml/detail/InputMeter.h>
#include <lumcommon/xml/detail/TextPosition.h>
#include <lumcommon/xml/detail/XmlDecoder.h>

#include <cstdint>
#include <istream>
#include <memory>

namespace LumCommon::detail {

/// Where the parser reads in a window of units.
struct XmlCursor {
    const char16_t* cur = nullptr;   // the next unit to read
    const char16_t* end = nullptr;   // after the last unit there is
    const char16_t* high = nullptr;  // after the furthest unit that has been read

    // The reported position is the furthest unit read, so a push-back moves `cur` only. Were `high` lowered with it, an
    // error found after a failed look-ahead would name a column that the reader has already passed.
    void touch(const char16_t* p) noexcept {
        if (p > high) high = p;
    }
};

/// One open input of the parser: reads bytes in blocks, decodes them and offers a window of units.
///
/// It takes what the stream's buffer has and never waits for more than the next piece. Until unleash() it decodes one
/// character at a time, as an XML declaration can change the decoder for the very next byte.
class XmlInput {
public:
    XmlInput();
    ~XmlInput();
    XmlInput(const XmlInput&) = delete;
    XmlInput& operator=(const XmlInput&) = delete;

    /// The stream to read, given once, before anything is read.
    /// @param ownsStream  whether the stream is deleted with this.
    void setStream(std::istream* stream, bool ownsStream) noexcept;
    /// Before anything is read: what is read from now on is counted, and held to the limits.
    void meterBy(InputMeter& meter, bool isExternal);

    /// Recognises the encoding from the first bytes. Characters that had to be read for it are in the window, and do
    /// not count as read.
    /// @return false when the first byte promises a byte order mark that does not come.
    bool detectEncoding(XmlCursor& cursor);

    /// Makes more units available when the cursor is at the end of the window. The last few units before the cursor
    /// stay in front of it. False at the end of the input.
    bool refill(XmlCursor& cursor);
    /// Whether the input has ended because it could not be read any further.
    bool hasFailed() const noexcept { return hasFailed_; }

    /// Before anything is read: no window holds what is no character of XML; it ends there. Bytes that are no
    /// characters are none of XML either.
    void checkCharacters() noexcept { decoder_.isStrict = true; }
    /// Whether the window has ended before what is no character, so that refill() gives nothing.
    bool isAtInvalid() const noexcept { return isAtInvalid_; }
    /// Continues the window after it.
    void passInvalid(XmlCursor& cursor);

    /// From now on decodes whole blocks.
    void unleash() noexcept { isLeashed_ = false; }

    /// The position after the furthest unit read.   Cost: constant on average, wherever it is asked.
    TextPosition getPosition(const XmlCursor& cursor) {
        if (!feedsEnd_ || cursor.high < counted_) return countPosition(cursor);
        while (nextFeed_ != feedsEnd_ && counted_ + *nextFeed_ < cursor.high) ++nextFeed_;
        return positionBy(nextFeed_, cursor.high);
    }

    /// Reads what follows in another charset than the decoder knows, through ICU's converters. Before detectEncoding()
    /// that holds unless a byte order mark comes. False, and nothing changed, when the charset is unknown.
    bool convertFrom(const UnicodeString& charset);
    static bool isCharset(const UnicodeString& name);
    bool isConverted() const noexcept { return converted_ != nullptr; }

    XmlEncoding getEncoding() const noexcept { return decoder_.encoding; }
    void setEncoding(XmlEncoding encoding) noexcept { decoder_.encoding = encoding; }

    UnicodeString encodingName;
    bool hasBom = false;
    UnicodeString systemId;
    UnicodeString baseUri;

private:
    class Remainder;

    bool fillBytes();
    void settlePosition(const char16_t* end);
    const char16_t* findInvalid(const char16_t* from, const char16_t* end) const;
    void endAtInvalid(XmlCursor& cursor, const char16_t* end);
    std::streamsize readMetered(std::istream& in, char* to, std::size_t most);
    std::streamsize readConverted(char* to, std::size_t most);
    TextPosition countPosition(const XmlCursor& cursor);
    TextPosition positionBy(const std::uint16_t* nextFeed, const char16_t* high) const noexcept {
        if (nextFeed == feeds_.get()) {
            return {position_.line, position_.column + (high - counted_)};
        }
        return {position_.line + (nextFeed - feeds_.get()), (high - counted_) - nextFeed[-1] - 1};
    }
    std::istream* source() noexcept;
    int peekByte(std::size_t index);
    void pushUncounted(XmlCursor& cursor, char16_t unit);
    void detected(XmlEncoding encoding, const char16_t* name, bool isMarked, std::size_t bytesTaken);
    bool startsWithMark();
    bool detectUtf32OrUtf16BE(XmlCursor& cursor);
    void detectByLessThan(XmlCursor& cursor);
    bool detectByMark(XmlCursor& cursor, int first);

    std::istream* stream_ = nullptr;
    std::unique_ptr<Remainder> remainder_;  // under converted_: bytes read already, then the stream
    std::unique_ptr<LumKobStream> converted_;
    bool ownsStream_ = false;
    UnicodeString givenCharset_;  // what convertFrom() was asked for before the first byte
    bool isDetected_ = false;     // detectEncoding() has looked at the first bytes
    bool isLeashed_ = true;
    char16_t heldLead_ = u'\0';  // decoded, and for the next window
    bool isAtEnd_ = false;       // the stream has no more bytes
    bool hasFailed_ = false;
    bool isAtInvalid_ = false;
    const char16_t* decodedEnd_ = nullptr;  // of the window while it has ended early
    XmlDecoder decoder_;
    TextPosition position_;              // of counted_
    const char16_t* counted_ = nullptr;  // in the window; units before it are in position_
    // The line feeds of the window after counted_, as distances from it; found once a position is asked for.
    std::unique_ptr<std::uint16_t[]> feeds_;
    const std::uint16_t* feedsEnd_ = nullptr;  // null: not looked for, or positions are not that simple
    const std::uint16_t* nextFeed_ = nullptr;  // the first that has not been read
    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t byteStart_ = 0;
    std::size_t byteEnd_ = 0;
    InputMeter* meter_ = nullptr;
    InputMeter::Account account_;
    std::unique_ptr<char16_t[]> window_;
};

}  // namespace LumCommon::detail
