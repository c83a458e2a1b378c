#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/detail/WritableText.h>
#include <lumcommon/dom/detail/XmlWriter.h>

#include <cxxabi.h>  // abi::__forced_unwind
#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <charconv>
#include <new>
#include <ostream>

namespace LumCommon::detail {
namespace {

constexpr std::size_t BUFFER_SIZE = 32 * 1024;
// Text is encoded in blocks, so that one check for room serves many units. Copying may write past the last byte that
// counts.
constexpr std::size_t BLOCK_UNITS = 2048;
constexpr std::size_t STORE_SLACK = plainTextSlack;

char* append(char* out, std::string_view text) { return std::copy(text.begin(), text.end(), out); }

char* appendReference(char* out, UChar32 c) {
    out = append(out, "&#");
    out = std::to_chars(out, out + 10, static_cast<std::uint32_t>(c)).ptr;
    *out++ = ';';
    return out;
}

/// Writes an ASCII character at which copying stopped. A control character that is not plain is dropped.
template <TextMode mode>
char* appendSpecial(char* out, char16_t c) {
    if (isPlain(c, mode)) {
        *out++ = static_cast<char>(c);
        return out;
    }
    switch (c) {
        case u'&':
            return append(out, "&amp;");
        case u'<':
            return append(out, "&lt;");
        case u'>':
            return append(out, "&gt;");
        case u'"':
            return append(out, "&quot;");
        default:
            return out;
    }
}

/// Encodes up to the next ASCII character. An unpaired surrogate is encoded in three bytes, as if it were a character.
/// @param isChecked  refuses U+FFFF.
char* encodeUtf8(const char16_t*& position, const char16_t* end, bool isChecked, char* out) {
    const char16_t* from = position;
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    std::uint32_t highest = 0;  // of the units of three bytes: costs less than a branch for each
    while (from != end && *from >= 0x80) {
        const std::uint32_t c = *from++;
        if (c < 0x800) {
            *out++ = byte(0xC0 | (c >> 6));
            *out++ = byte(0x80 | (c & 0x3F));
            continue;
        }
        if (U16_IS_LEAD(c) && from != end && U16_IS_TRAIL(*from)) {
            const auto pair = static_cast<std::uint32_t>(U16_GET_SUPPLEMENTARY(c, *from));
            ++from;
            *out++ = byte(0xF0 | (pair >> 18));
            *out++ = byte(0x80 | ((pair >> 12) & 0x3F));
            *out++ = byte(0x80 | ((pair >> 6) & 0x3F));
            *out++ = byte(0x80 | (pair & 0x3F));
            continue;
        }
        highest = std::max(highest, c);
        *out++ = byte(0xE0 | (c >> 12));
        *out++ = byte(0x80 | ((c >> 6) & 0x3F));
        *out++ = byte(0x80 | (c & 0x3F));
    }
    if (highest == 0xFFFF && isChecked) failCharacter(0xFFFF);
    position = from;
    return out;
}

/// Leaves the error in place. ICU's own callback silently skips ignorable characters, such as the soft hyphen, which
/// would then be lost.
void U_CALLCONV stopAtUnmappable(const void*, UConverterFromUnicodeArgs*, const UChar*, int32_t, UChar32,
                                 UConverterCallbackReason, UErrorCode*) {}

UConverter* openShiftJis() {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open("cp932", &status);
    if (U_SUCCESS(status)) ucnv_setFromUCallBack(converter, stopAtUnmappable, nullptr, nullptr, nullptr, &status);
    if (U_SUCCESS(status)) return converter;
    ucnv_close(converter);  // accepts null
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    return nullptr;  // then every character beyond ASCII becomes a reference
}

}  // namespace

XmlWriter::XmlWriter()
    : buffer_(std::make_unique_for_overwrite<char[]>(BUFFER_SIZE)),
      cursor_(buffer_.get()),
      limit_(buffer_.get() + BUFFER_SIZE) {}

XmlWriter::~XmlWriter() { ucnv_close(converter_); }

void XmlWriter::setStream(std::ostream* stream) noexcept {
    stream_ = stream;
    state_ = stream;
    cursor_ = buffer_.get();
    isDirty_ = false;
    isBroken_ = false;
}

void XmlWriter::selectShiftJis(bool isShiftJis) {
    if (isShiftJis == isShiftJis_) return;
    ucnv_close(converter_);
    converter_ = nullptr;
    if (isShiftJis) converter_ = openShiftJis();
    isShiftJis_ = isShiftJis;
    slots_.fill(NameSlot{});
}

void XmlWriter::failCheck() {
    if (!stream_) throwCommonError(LumErrorCodeIO::NoOutput, LumCommonErrorSource::SerializerCheckStream);
    fail();
}

template <TextMode mode>
char* XmlWriter::encode(const char16_t* from, const char16_t* end, char* out) {
    for (;;) {
        out = copyPlain<mode>(from, end, out);
        if (from == end) return out;
        if (*from < 0x80) {
            out = appendSpecial<mode>(out, *from++);
        } else {
            out = isShiftJis_ ? encodeShiftJis(from, end, out) : encodeUtf8(from, end, isChecked_, out);
        }
    }
}

void XmlWriter::text(const char16_t* units, std::size_t count, TextMode mode) {
    static_assert(BLOCK_UNITS * BYTES_PER_UNIT + STORE_SLACK <= BUFFER_SIZE);
    while (count > 0) {
        std::size_t block = std::min(count, BLOCK_UNITS);
        if (block < count && U16_IS_LEAD(units[block - 1])) --block;  // keeps pairs together
        reserve(block * BYTES_PER_UNIT + STORE_SLACK);
        cursor_ = encode(units, units + block, mode, cursor_);
        units += block;
        count -= block;
    }
}

void XmlWriter::text(const UnicodeString& text, TextMode mode) {
    if (text.length() > 0) this->text(text.getBuffer(), static_cast<std::size_t>(text.length()), mode);
}

void XmlWriter::attribute(LumName prefix, LumName localName, const UnicodeString& value) {
    const NameSlot& name = slot(prefix, localName);
    const auto count = static_cast<std::size_t>(value.length());
    if (!name.isCached() || count > SHORT_TEXT) {
        longName(" ", prefix, localName, "=\"");
        text(value, TEXT_ATTRIBUTE);
        return ascii("\"");
    }
    char* out = room(SHORT_TEXT * BYTES_PER_UNIT + NameSlot::CAPACITY + STORE_SLACK);
    *out++ = ' ';
    out = name.append(out);
    *out++ = '=';
    *out++ = '"';
    const char16_t* const units = value.getBuffer();
    if (count > 0) out = encode<TEXT_ATTRIBUTE>(units, units + count, out);
    *out++ = '"';
    cursor_ = out;
}

void XmlWriter::longName(std::string_view before, LumName prefix, LumName localName, std::string_view after) {
    ascii(before);
    if (!prefix.isNull()) {
        text(prefix.getString(), TEXT_RAW);
        ascii(":");
    }
    text(localName.getString(), TEXT_RAW);
    ascii(after);
}

/// Whoever gathers does not check the stream before each operation.
void XmlWriter::makeRoom() {
    commit();
    if (isGathering_) check();
}

void XmlWriter::commit() {
    const auto count = static_cast<std::size_t>(cursor_ - buffer_.get());
    cursor_ = buffer_.get();
    if (count > 0 && !put(buffer_.get(), count)) fail();
}

void XmlWriter::commitQuietly() noexcept {
    const auto count = static_cast<std::size_t>(cursor_ - buffer_.get());
    cursor_ = buffer_.get();
    if (count > 0 && !put(buffer_.get(), count)) markFailed();
}

void XmlWriter::sync() {
    check();
    commit();
    bool isSynced = false;
    try {
        isSynced = stream_->rdbuf()->pubsync() != -1;
    } catch (const abi::__forced_unwind&) {  // the thread is being cancelled
        throw;
    } catch (...) {
    }
    if (!isSynced) fail();
    isDirty_ = false;
}

void XmlWriter::markFailed() noexcept {
    isBroken_ = true;
    try {
        stream_->setstate(std::ios_base::badbit);
    } catch (...) {  // the stream has exceptions enabled, which may even want memory; our own error says more
    }
}

void XmlWriter::fail() {
    markFailed();
    throwCommonError(LumErrorCodeIO::OutputFailed, LumCommonErrorSource::SerializerCheckStream);
}

/// Writes straight to the stream's buffer: the stream's own write() silently does nothing when the end-of-file bit is
/// set, as it may be on a stream that is also used for reading.
bool XmlWriter::put(const char* bytes, std::size_t count) {
    isDirty_ = true;
    try {
        const auto wanted = static_cast<std::streamsize>(count);
        return stream_->rdbuf()->sputn(bytes, wanted) == wanted;
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
        return false;
    }
}

char* XmlWriter::encodeContent(const char16_t* from, const char16_t* end, char* out) {
    return encode<TEXT_CONTENT>(from, end, out);
}

char* XmlWriter::encode(const char16_t* from, const char16_t* end, TextMode mode, char* out) {
    switch (mode) {
        case TEXT_CONTENT:
            return encode<TEXT_CONTENT>(from, end, out);
        case TEXT_ATTRIBUTE:
            return encode<TEXT_ATTRIBUTE>(from, end, out);
        default:
            return encode<TEXT_RAW>(from, end, out);
    }
}

/// Encodes up to the next ASCII character. The code page has no supplementary characters, so the converter is given
/// only runs without surrogates, and every unit that it rejects is a whole character.
char* XmlWriter::encodeShiftJis(const char16_t*& position, const char16_t* end, char* out) {
    const char16_t* from = position;
    while (from != end && *from >= 0x80) {
        if (U16_IS_SURROGATE(*from)) {
            UChar32 c = *from++;
            if (U16_IS_LEAD(c) && from != end && U16_IS_TRAIL(*from)) c = U16_GET_SUPPLEMENTARY(c, *from++);
            if (isChecked_ && U_IS_SURROGATE(c)) failCharacter(static_cast<char16_t>(c));
            out = appendReference(out, c);
            continue;
        }
        const char16_t* const runEnd =
            std::find_if(from, end, [](char16_t c) { return c < 0x80 || U16_IS_SURROGATE(c); });
        while (from != runEnd) {
            const char16_t* const start = from;
            UErrorCode status = converter_ ? U_ZERO_ERROR : U_INVALID_CHAR_FOUND;
            const char* const limit = out + static_cast<std::ptrdiff_t>(BYTES_PER_UNIT) * (runEnd - from);
            ucnv_fromUnicode(converter_, &out, limit, &from, runEnd, nullptr, true, &status);
            if (U_SUCCESS(status)) continue;
            if (converter_) ucnv_resetFromUnicode(converter_);
            if (from == start) ++from;
            if (isChecked_ && from[-1] >= 0xFFFE) failCharacter(from[-1]);
            out = appendReference(out, from[-1]);
        }
    }
    position = from;
    return out;
}

/// The slot of a name that is not in the first of its four, or the one that it is given. Were there no others, names
/// with one slot would drive each other out wherever they take turns.
const XmlWriter::NameSlot& XmlWriter::findSlot(std::size_t place, LumName prefix, LumName localName) {
    // Names that are used together often have identifiers in a row, so the four are far apart.
    constexpr std::size_t stride = NAME_SLOTS / 4;
    std::size_t given = place ^ (stride * (nextVictim_++ % 4));
    for (std::size_t i = 4; i-- > 0;) {
        const std::size_t other = place ^ (stride * i);
        if (slots_[other].isOf(prefix, localName)) return slots_[other];
        if (slots_[other].prefix == NameSlot::NOBODY) given = other;
    }
    fillSlot(slots_[given], prefix, localName);
    return slots_[given];
}

void XmlWriter::fillSlot(NameSlot& slot, LumName prefix, LumName localName) {
    slot.prefix = NameSlot::NOBODY;  // whatever is thrown from here on
    slot.length = NameSlot::TOO_LONG;
    UnicodeString string;
    if (!prefix.isNull()) append(append(string, prefix.getString()), u':');
    const std::u16string_view name = viewOf(append(string, localName.getString()));
    char room[NameSlot::CAPACITY * BYTES_PER_UNIT + STORE_SLACK];
    std::unique_ptr<char[]> largeRoom;
    if (name.size() > NameSlot::CAPACITY) {
        largeRoom = std::make_unique_for_overwrite<char[]>(name.size() * BYTES_PER_UNIT + STORE_SLACK);
    }
    char* const bytes = largeRoom ? largeRoom.get() : room;
    const char* const end = encode(name.data(), name.data() + name.size(), TEXT_RAW, bytes);
    // A name has no "&", so one in its bytes begins a reference to a character that the encoding lacks.
    if (!isQualifiedName(name) || std::find(bytes, bytes + (end - bytes), '&') != end) {
        if (isChecked_) failName(name);
        return;
    }
    slot.prefix = prefix;
    slot.localName = localName;
    const auto length = static_cast<std::size_t>(end - bytes);
    if (length > NameSlot::CAPACITY) return;
    std::memcpy(slot.bytes, bytes, length);
    slot.length = static_cast<std::uint8_t>(length);
}

void XmlWriter::checkDeclared(LumName prefix) {
    checkNCName(viewOf(prefix.getString()));
    slot(LumName(), prefix);
}

}  // namespace LumCommon::detail
