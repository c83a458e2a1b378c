#include <lumcommon/core/LumError.h>
#include <lumcommon/dom/detail/XmlWriter.h>

#include <cxxabi.h>  // abi::__forced_unwind
#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <ostream>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace LumCommon::detail {
namespace {

constexpr std::size_t BUFFER_SIZE = 32 * 1024;
// Text is encoded in blocks, so that one check for room serves many units. A unit becomes at most 8 bytes ("&#65535;"),
// a pair at most 10. Vector stores may reach 16 bytes past the last byte that counts.
constexpr std::size_t BLOCK_UNITS = 2048;
constexpr std::size_t BYTES_PER_UNIT = 8;
constexpr std::size_t STORE_SLACK = 16;
static_assert(BLOCK_UNITS * BYTES_PER_UNIT + STORE_SLACK <= BUFFER_SIZE);

constexpr unsigned ANY_MODE = 0x0F;
constexpr unsigned DROPPED = 0x10;  // always special: dropped unless the mode escapes it

/// For each ASCII character the modes in which it cannot be copied as it is.
constexpr std::array<std::uint8_t, 128> specialTable = [] {
    std::array<std::uint8_t, 128> table{};
    for (unsigned c = 0; c < 32; ++c) table[c] = TEXT_ESCAPE_CONTROL | DROPPED;
    table['\t'] = table['\n'] = table['\r'] = TEXT_ESCAPE_CONTROL;
    table['&'] = table['<'] = table['>'] = ANY_MODE;
    table['"'] = TEXT_ESCAPE_QUOTE;
    table['\''] = TEXT_ESCAPE_APOSTROPHE;
    return table;
}();

char* append(char* out, std::string_view text) { return std::copy(text.begin(), text.end(), out); }

char* appendReference(char* out, UChar32 c) {
    out = append(out, "&#");
    out = std::to_chars(out, out + 10, static_cast<std::uint32_t>(c)).ptr;
    *out++ = ';';
    return out;
}

/// Writes an ASCII character at which copying stopped: one that specialTable marks for the mode, or a control
/// character, as the vector code stops at every one except the line feed.
char* appendSpecial(char* out, char16_t c, unsigned mode) {
    if (!(specialTable[c] & (mode | DROPPED))) {
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
            break;
    }
    const bool isWritten = c >= 32 || (mode & TEXT_ESCAPE_CONTROL);
    return isWritten ? appendReference(out, c) : out;
}

#if defined(__SSE2__)
/// Finds the bytes of a packed run that cannot be copied as they are. Packing with saturation turns units from U+0100
/// to U+7FFF into 0xFF and those above into 0, so that one signed comparison with the space finds everything that is
/// not ASCII along with the control characters.
class SpecialFinder {
public:
    explicit SpecialFinder(unsigned mode)
        // '&' is 0x26 and '"' is 0x22: with the differing bit masked out, one comparison finds both. A mask of 0 can
        // never give 0xFF, so that raw text finds neither.
        : ampMask_(_mm_set1_epi8(static_cast<char>(mode == TEXT_RAW             ? 0
                                                   : (mode & TEXT_ESCAPE_QUOTE) ? 0xFB
                                                                                : 0xFF))),
          amp_(_mm_set1_epi8(static_cast<char>(mode == TEXT_RAW             ? 0xFF
                                               : (mode & TEXT_ESCAPE_QUOTE) ? 0x22
                                                                            : 0x26))),
          // '<' is 0x3C and '>' is 0x3E.
          angleMask_(_mm_set1_epi8(static_cast<char>(mode == TEXT_RAW ? 0 : 0xFD))),
          angle_(_mm_set1_epi8(static_cast<char>(mode == TEXT_RAW ? 0xFF : 0x3C))) {}

    unsigned operator()(__m128i bytes) const {
        const __m128i low =
            _mm_andnot_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')), _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')));
        const __m128i amp = _mm_cmpeq_epi8(_mm_and_si128(bytes, ampMask_), amp_);
        const __m128i angle = _mm_cmpeq_epi8(_mm_and_si128(bytes, angleMask_), angle_);
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(low, _mm_or_si128(amp, angle))));
    }

private:
    __m128i ampMask_, amp_, angleMask_, angle_;
};

__m128i load(const char16_t* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
#endif

/// Copies ASCII characters up to the first that needs more than copying.
char* copyPlain(const char16_t*& position, const char16_t* end, unsigned mode, char* out) {
    const char16_t* from = position;
#if defined(__SSE2__)
    if (!(mode & ~static_cast<unsigned>(TEXT_ATTRIBUTE))) {
        const SpecialFinder findSpecial(mode);
        while (end - from >= 16) {
            const __m128i bytes = _mm_packus_epi16(load(from), load(from + 8));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
            const int plain = std::countr_zero(findSpecial(bytes) | 0x10000u);
            from += plain;
            out += plain;
            if (plain < 16) {
                position = from;
                return out;
            }
        }
        if (end - from >= 8) {
            const __m128i units = load(from);
            const __m128i bytes = _mm_packus_epi16(units, units);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
            const int plain = std::countr_zero((findSpecial(bytes) & 0xFFu) | 0x100u);
            from += plain;
            out += plain;
        }
    }
#endif
    const unsigned stops = mode | DROPPED;
    while (from != end && *from < 0x80 && !(specialTable[*from] & stops)) *out++ = static_cast<char>(*from++);
    position = from;
    return out;
}

/// Encodes up to the next ASCII character. An unpaired surrogate is encoded in three bytes, as if it were a character.
char* encodeUtf8(const char16_t*& position, const char16_t* end, char* out) {
    const char16_t* from = position;
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    while (from != end && *from >= 0x80) {
        const std::uint32_t c = *from++;
        if (c < 0x800) {
            *out++ = byte(0xC0 | (c >> 6));
        } else if (U16_IS_LEAD(c) && from != end && U16_IS_TRAIL(*from)) {
            const auto pair = static_cast<std::uint32_t>(U16_GET_SUPPLEMENTARY(c, *from));
            ++from;
            *out++ = byte(0xF0 | (pair >> 18));
            *out++ = byte(0x80 | ((pair >> 12) & 0x3F));
            *out++ = byte(0x80 | ((pair >> 6) & 0x3F));
            *out++ = byte(0x80 | (pair & 0x3F));
            continue;
        } else {
            *out++ = byte(0xE0 | (c >> 12));
            *out++ = byte(0x80 | ((c >> 6) & 0x3F));
        }
        *out++ = byte(0x80 | (c & 0x3F));
    }
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
    return nullptr;         // then every character beyond ASCII becomes a reference
}

}  // namespace

XmlWriter::XmlWriter()
    : buffer_(std::make_unique_for_overwrite<char[]>(BUFFER_SIZE)),
      cursor_(buffer_.get()),
      limit_(buffer_.get() + BUFFER_SIZE) {}

XmlWriter::~XmlWriter() { ucnv_close(converter_); }

void XmlWriter::setStream(std::ostream* stream) noexcept {
    stream_ = stream;
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

void XmlWriter::check() {
    if (!stream_) throwCommonError(LumErrorCodeIO::NoOutput, LumCommonErrorSource::SerializerCheckStream);
    if (stream_->fail()) fail();  // the bad or the fail bit
}

void XmlWriter::text(const char16_t* units, std::size_t count, unsigned mode) {
    while (count > 0) {
        std::size_t block = std::min(count, BLOCK_UNITS);
        if (block < count && U16_IS_LEAD(units[block - 1])) --block;  // keeps pairs together
        reserve(block * BYTES_PER_UNIT + STORE_SLACK);
        cursor_ = encode(units, units + block, mode, cursor_);
        units += block;
        count -= block;
    }
}

void XmlWriter::text(const UnicodeString& text, unsigned mode) {
    if (text.length() > 0) this->text(text.getBuffer(), static_cast<std::size_t>(text.length()), mode);
}

void XmlWriter::name(LumName name) {
    NameSlot& slot = slots_[name.getEnum() % NAME_SLOTS];
    if (slot.id != name.getEnum()) fillSlot(slot, name);
    if (slot.length == NameSlot::TOO_LONG) return text(name.getString(), TEXT_RAW);
    reserve(NameSlot::CAPACITY);
    std::memcpy(cursor_, slot.bytes, NameSlot::CAPACITY);  // a fixed size costs less than a call
    cursor_ += slot.length;
}

void XmlWriter::qualifiedName(LumName prefix, LumName localName) {
    if (!prefix.isNull()) {
        name(prefix);
        ascii(":");
    }
    name(localName);
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
    } catch (const std::ios_base::failure&) {  // the stream has exceptions enabled; our own error says more
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

char* XmlWriter::encode(const char16_t* from, const char16_t* end, unsigned mode, char* out) {
    for (;;) {
        out = copyPlain(from, end, mode, out);
        if (from == end) return out;
        if (*from < 0x80) {
            out = appendSpecial(out, *from++, mode);
        } else {
            out = isShiftJis_ ? encodeShiftJis(from, end, out) : encodeUtf8(from, end, out);
        }
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
            out = appendReference(out, from[-1]);
        }
    }
    position = from;
    return out;
}

void XmlWriter::fillSlot(NameSlot& slot, LumName name) {
    const UnicodeString& string = name.getString();
    const auto count = static_cast<std::size_t>(string.length());
    slot.id = name.getEnum();
    slot.length = NameSlot::TOO_LONG;
    if (count > NameSlot::CAPACITY) return;
    char bytes[NameSlot::CAPACITY * BYTES_PER_UNIT + STORE_SLACK];
    const char* const end = encode(string.getBuffer(), string.getBuffer() + count, TEXT_RAW, bytes);
    const auto length = static_cast<std::size_t>(end - bytes);
    if (length > NameSlot::CAPACITY) return;
    std::memcpy(slot.bytes, bytes, length);
    slot.length = static_cast<std::uint8_t>(length);
}

}  // namespace LumCommon::detail
