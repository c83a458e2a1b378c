#pragma once

#include <lumcommon/dom/detail/PlainText.h>
#include <lumcommon/names/LumName.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ios>
#include <iosfwd>
#include <memory>
#include <string_view>

struct UConverter;

namespace LumCommon::detail {

/// Encodes and escapes text into the bytes of an output stream.
///
/// Bytes gather in a buffer; commit() hands them to the stream's buffer in one call, at the end of each operation
/// unless the caller gathers the bytes of several. Control characters that XML does not allow are dropped. In Shift_JIS
/// a character that the code page lacks becomes a decimal reference; so does a surrogate pair, as one reference to its
/// character, because references to its halves would not be well-formed. Errors: a missing output throws code 0x1005, a
/// failed one 0x1007, even if the failure is an exception of the stream's buffer; where names and characters are
/// checked, 0x813.
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
    /// Whether to refuse invalid names, names that the encoding cannot represent, and characters that no parser
    /// accepts: U+FFFF, and in Shift_JIS those whose reference would not be well-formed.
    void setChecked(bool isChecked) noexcept { isChecked_ = isChecked; }
    bool isChecked() const noexcept { return isChecked_; }

    /// Throws unless the stream can be written to.
    void check() {
        if (!state_ || state_->fail()) failCheck();  // the bad or the fail bit
    }
    /// Only for short fixed texts.
    void ascii(std::string_view text) {
        reserve(text.size());
        std::memcpy(cursor_, text.data(), text.size());
        cursor_ += text.size();
    }
    void text(const char16_t* units, std::size_t count, TextMode mode);
    void text(const UnicodeString& text, TextMode mode);
    // Of the following, the first byte is the ">" of a start tag before if `closesTag`. A name is written as
    // "prefix:local", or "local" when the prefix is null, and is not escaped.

    /// "<" and the name.
    void startTag(bool closesTag, LumName prefix, LumName localName) {
        const NameSlot& name = slot(prefix, localName);
        if (!name.isCached()) return longName(closesTag ? "><" : "<", prefix, localName, "");
        char* out = room(NameSlot::CAPACITY + 2);
        *out = '>';
        out += closesTag ? 1 : 0;
        *out++ = '<';
        cursor_ = name.append(out);
    }
    /// "</", the name and ">".
    void endTag(LumName prefix, LumName localName) {
        const NameSlot& name = slot(prefix, localName);
        if (!name.isCached()) return longName("</", prefix, localName, ">");
        char* out = room(NameSlot::CAPACITY + 3);
        *out++ = '<';
        *out++ = '/';
        out = name.append(out);
        *out++ = '>';
        cursor_ = out;
    }
    /// A space, the name, "=" and the value in quotes.
    void attribute(LumName prefix, LumName localName, const UnicodeString& value);
    /// Escaped as content.
    void content(bool closesTag, std::u16string_view text) {
        if (text.size() > SHORT_TEXT) {
            if (closesTag) ascii(">");
            return this->text(text.data(), text.size(), TEXT_CONTENT);
        }
        char* out = room(SHORT_TEXT * BYTES_PER_UNIT + plainTextSlack);
        *out = '>';
        out += closesTag ? 1 : 0;
        cursor_ = out;  // whatever becomes of the text
        if (!text.empty()) cursor_ = encodeContent(text.data(), text.data() + text.size(), out);
    }
    /// Ends a start tag.
    void closeTag(bool isEmpty) {
        char* const out = room(2);
        out[0] = isEmpty ? '/' : '>';
        out[1] = '>';
        cursor_ = out + (isEmpty ? 2 : 1);
    }
    /// `before` and the name, unchecked.
    void name(std::string_view before, LumName prefix, LumName localName) { longName(before, prefix, localName, ""); }
    /// Refuses what cannot be declared as a prefix, where names are checked. Null is the default.
    void checkPrefix(LumName prefix) {
        if (isChecked_ && !prefix.isNull()) checkDeclared(prefix);
    }

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
    // A unit becomes at most 8 bytes ("&#65535;"), a pair at most 10.
    static constexpr std::size_t BYTES_PER_UNIT = 8;
    static constexpr std::size_t SHORT_TEXT = 512;  // units for which one check for room serves all

    // Names recur all the time, so their bytes are cached, of those alone that pass the check: a name that is found
    // needs none. 64 bytes per slot; a name that does not fit is encoded each time.
    struct NameSlot {
        static constexpr std::size_t CAPACITY = 48;
        static constexpr std::uint8_t TOO_LONG = 0xFF;
        static constexpr LumNameEnum NOBODY{0xFFFFFFFF};  // no name has this identifier
        LumName prefix = NOBODY, localName;
        std::uint8_t length = 0;
        char bytes[CAPACITY + 7];

        bool isOf(LumName namePrefix, LumName name) const noexcept { return localName == name && prefix == namePrefix; }
        bool isCached() const noexcept { return length != TOO_LONG; }
        /// Writes CAPACITY bytes, as a fixed size costs less than a call.
        char* append(char* out) const noexcept {
            std::memcpy(out, bytes, CAPACITY);
            return out + length;
        }
    };
    static constexpr std::size_t NAME_SLOTS = 256;

    void reserve(std::size_t byteCount) {
        if (static_cast<std::size_t>(limit_ - cursor_) < byteCount) makeRoom();
    }
    void makeRoom();
    char* room(std::size_t byteCount) {
        reserve(byteCount);
        return cursor_;
    }
    const NameSlot& slot(LumName prefix, LumName localName) {
        const std::size_t place = (localName.getEnum() + 31 * prefix.getEnum()) % NAME_SLOTS;
        const NameSlot& slot = slots_[place];
        return slot.isOf(prefix, localName) ? slot : findSlot(place, prefix, localName);
    }
    const NameSlot& findSlot(std::size_t place, LumName prefix, LumName localName);
    void longName(std::string_view before, LumName prefix, LumName localName, std::string_view after);
    void markFailed() noexcept;
    [[noreturn]] void fail();
    [[noreturn]] void failCheck();
    bool put(const char* bytes, std::size_t count);
    template <TextMode mode>
    char* encode(const char16_t* from, const char16_t* end, char* out);
    char* encode(const char16_t* from, const char16_t* end, TextMode mode, char* out);
    char* encodeContent(const char16_t* from, const char16_t* end, char* out);
    char* encodeShiftJis(const char16_t*& from, const char16_t* end, char* out);
    void checkDeclared(LumName prefix);
    void fillSlot(NameSlot& slot, LumName prefix, LumName localName);

    std::ostream* stream_ = nullptr;
    std::ios* state_ = nullptr;  // the stream as its base class, which it takes a look-up to find
    std::unique_ptr<char[]> buffer_;
    char* cursor_;
    char* limit_;
    bool isShiftJis_ = false;
    bool isDirty_ = false;
    bool isBroken_ = false;
    bool isGathering_ = false;
    bool isChecked_ = false;
    UConverter* converter_ = nullptr;  // null in UTF-8
    unsigned nextVictim_ = 0;
    std::array<NameSlot, NAME_SLOTS> slots_{};
};

}  // namespace LumCommon::detail
