#pragma once

#include <lumcommon/names/LumName.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <memory>
#include <string_view>

struct UConverter;

namespace LumCommon::detail {

/// What is escaped while text is encoded; a bit set. Any bit also escapes "&", "<" and ">".
enum TextMode : unsigned {
    TEXT_RAW = 0,
    TEXT_ESCAPE_MARKUP = 1,
    TEXT_ESCAPE_QUOTE = 2,
    TEXT_ESCAPE_APOSTROPHE = 4,
    TEXT_ESCAPE_CONTROL = 8,
    TEXT_CONTENT = TEXT_ESCAPE_MARKUP,
    TEXT_ATTRIBUTE = TEXT_ESCAPE_MARKUP | TEXT_ESCAPE_QUOTE,
};

/// Encodes and escapes text into the bytes of an output stream.
///
/// Bytes gather in a buffer; commit() hands them to the stream's buffer in one call, at the end of each operation
/// unless the caller gathers the bytes of several. Control characters that XML does not allow are dropped. In Shift_JIS
/// a character that the code page lacks becomes a decimal reference; so does a surrogate pair, as one reference to its
/// character, because references to its halves would not be well-formed. Errors: a missing output throws code 0x1005, a
/// failed one 0x1007, even if the failure is an exception of the stream's buffer.
class XmlWriter {
public:
    XmlWriter();
    ~XmlWriter();
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    /// Null for no output. What has not been committed is discarded.
    void setStream(std::ostream* stream) noexcept;
    /// Whether a failure of this stream has been thrown. Does not touch the stream.
    bool isBroken() const noexcept { return isBroken_; }
    /// Selects Shift_JIS with the flag, UTF-8 without it.
    void selectShiftJis(bool isShiftJis);

    /// Throws unless the stream can be written to.
    void check();
    /// Only for short fixed texts.
    void ascii(std::string_view text) {
        reserve(text.size());
        std::memcpy(cursor_, text.data(), text.size());
        cursor_ += text.size();
    }
    void text(const char16_t* units, std::size_t count, unsigned mode);
    void text(const UnicodeString& text, unsigned mode);
    /// The name's string, unescaped.
    void name(LumName name);
    /// "prefix:local", or "local" when the prefix is null.
    void qualifiedName(LumName prefix, LumName localName);
    /// Hands the buffered bytes to the stream.
    void commit();
    /// The same, for places where nothing may be thrown.
    void commitQuietly() noexcept;
    /// commit(), then flushes the stream.
    void sync();
    /// Whether bytes have been written since the last sync().
    bool isDirty() const noexcept { return isDirty_ || cursor_ != buffer_.get(); }
    /// Whether the caller leaves it to the buffer when bytes are handed over.
    bool isGathering() const noexcept { return isGathering_; }
    void setGathering(bool isGathering) {
        isGathering_ = isGathering;
        if (!isGathering) commit();
    }
    void stopGatheringQuietly() noexcept {
        isGathering_ = false;
        commitQuietly();
    }

private:
    // Names recur all the time, so their bytes are cached. 64 bytes per slot; a name that does not fit is encoded each
    // time.
    struct NameSlot {
        static constexpr std::size_t CAPACITY = 56;
        static constexpr std::uint8_t TOO_LONG = 0xFF;
        LumNameEnum id = NAME_NULL;
        std::uint8_t length = 0;
        char bytes[CAPACITY + 3];
    };
    static constexpr std::size_t NAME_SLOTS = 256;

    void reserve(std::size_t byteCount) {
        if (static_cast<std::size_t>(limit_ - cursor_) < byteCount) commit();
    }
    void markFailed() noexcept;
    [[noreturn]] void fail();
    bool put(const char* bytes, std::size_t count);
    char* encode(const char16_t* from, const char16_t* end, unsigned mode, char* out);
    char* encodeShiftJis(const char16_t*& from, const char16_t* end, char* out);
    void fillSlot(NameSlot& slot, LumName name);

    std::ostream* stream_ = nullptr;
    std::unique_ptr<char[]> buffer_;
    char* cursor_;
    char* limit_;
    bool isShiftJis_ = false;
    bool isDirty_ = false;
    bool isBroken_ = false;
    bool isGathering_ = false;
    UConverter* converter_ = nullptr;  // null in UTF-8
    std::array<NameSlot, NAME_SLOTS> slots_{};
};

}  // namespace LumCommon::detail
