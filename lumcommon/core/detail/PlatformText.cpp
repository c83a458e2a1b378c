#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/PlatformText.h>

#include <unicode/localpointer.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <limits>

namespace LumCommon::detail {
namespace {

/// The default converter, set to stop at characters that cannot be mapped; null when it cannot be opened.
icu::LocalUConverterPointer openStrictConverter() {
    UErrorCode status = U_ZERO_ERROR;
    icu::LocalUConverterPointer converter(ucnv_open(nullptr, &status));
    checkMemory(status);
    if (U_FAILURE(status)) return icu::LocalUConverterPointer();
    ucnv_setFromUCallBack(converter.getAlias(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setToUCallBack(converter.getAlias(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    return converter;
}

constexpr char16_t firstByteUnit = 0xDC80;  // of the byte 80

char16_t unitOfByte(unsigned char byte) { return static_cast<char16_t>(firstByteUnit + (byte - 0x80)); }

/// The byte that a code point stands for; -1 for a character.
int byteOfUnit(UChar32 c) { return c >= firstByteUnit && c <= 0xDCFF ? 0x80 + (c - firstByteUnit) : -1; }

/// Whether some units stand for bytes.
bool hasByteUnits(std::u16string_view units) {
    for (std::size_t i = 0; i < units.size();) {
        UChar32 c;
        U16_NEXT(units.data(), i, units.size(), c);
        if (byteOfUnit(c) >= 0) return true;
    }
    return false;
}

std::string bytesOfUnits(std::u16string_view units) {
    std::string bytes;
    for (std::size_t i = 0; i < units.size();) {
        UChar32 c;
        U16_NEXT(units.data(), i, units.size(), c);
        if (const int byte = byteOfUnit(c); byte >= 0) {
            bytes += static_cast<char>(byte);
        } else {
            bytes += utf8Of(UnicodeString(c));
        }
    }
    return bytes;
}

/// The text of UTF-8; what is none is told byte by byte.
UnicodeString textOfUtf8(std::string_view bytes) {
    UnicodeString text;
    const auto size = checkedLength(bytes.size());
    for (std::int32_t i = 0; i < size;) {
        const std::int32_t start = i;
        UChar32 c;
        U8_NEXT(reinterpret_cast<const std::uint8_t*>(bytes.data()), i, size, c);
        if (c >= 0) {
            append(text, static_cast<char32_t>(c));
        } else {
            i = start + 1;
            append(text, unitOfByte(static_cast<unsigned char>(bytes[static_cast<std::size_t>(start)])));
        }
    }
    return text;
}

/// True when a measuring call succeeded or lacked nothing but room.
bool isMeasured(UErrorCode status) {
    return status == U_BUFFER_OVERFLOW_ERROR || status == U_STRING_NOT_TERMINATED_WARNING || U_SUCCESS(status);
}

}  // namespace

std::optional<std::string> toPlatformPath(const UnicodeString& path) {
    const std::u16string_view units = viewOf(path);
    if (units.find(u'\0') != std::u16string_view::npos) return std::nullopt;
    std::string bytes;
    if (units.empty()) return bytes;
    if (hasByteUnits(units)) return bytesOfUnits(units);
    if (const icu::LocalUConverterPointer converter = openStrictConverter(); converter.isValid()) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t sizeBytes =
            ucnv_fromUChars(converter.getAlias(), nullptr, 0, units.data(), path.length(), &status);
        if (sizeBytes > 0 && isMeasured(status)) {
            bytes.resize(static_cast<std::size_t>(sizeBytes));
            status = U_ZERO_ERROR;
            ucnv_fromUChars(converter.getAlias(), bytes.data(), sizeBytes, units.data(), path.length(), &status);
            if (U_SUCCESS(status)) return bytes;
            bytes.clear();
        }
    }
    return utf8Of(path);
}

UnicodeString fromPlatformPath(std::string_view bytes) {
    UnicodeString text = fromPlatformText(std::string(bytes).c_str());
    if (toPlatformPath(text) == bytes) return text;
    text = textOfUtf8(bytes);
    return toPlatformPath(text) == bytes ? text : asPlatformBytes(bytes);
}

UnicodeString asPlatformBytes(std::string_view bytes) {
    UnicodeString text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        append(text, byte < 0x80 ? static_cast<char16_t>(byte) : unitOfByte(byte));
    }
    return text;
}

UnicodeString fromPlatformText(const char* bytes) {
    const std::string_view text(bytes);
    UnicodeString result;
    if (text.empty() || text.size() > std::numeric_limits<int32_t>::max() / 2) return result;
    const auto sizeBytes = static_cast<int32_t>(text.size());
    if (const icu::LocalUConverterPointer converter = openStrictConverter(); converter.isValid()) {
        // No charset turns one byte into more than two units.
        const int32_t capacityUnits = 2 * sizeBytes;
        UErrorCode status = U_ZERO_ERROR;
        char16_t* const units = result.getBuffer(capacityUnits);
        if (!units) throw std::bad_alloc();
        const int32_t length =
            ucnv_toUChars(converter.getAlias(), units, capacityUnits, text.data(), sizeBytes, &status);
        result.releaseBuffer(U_SUCCESS(status) ? length : 0);
        checkMemory(status);
        if (U_SUCCESS(status)) return result;
    }
    return fromUtf8(text);
}

}  // namespace LumCommon::detail
