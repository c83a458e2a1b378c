#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/PlatformText.h>

#include <unicode/localpointer.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

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
