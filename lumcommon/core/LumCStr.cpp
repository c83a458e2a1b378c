#include <lumcommon/core/LumCStr.h>
#include <lumcommon/core/detail/CheckedText.h>

#include <unicode/localpointer.h>
#include <unicode/ucnv.h>

namespace LumCommon {

LumCStr::LumCStr(const UnicodeString& text) : UnicodeString(detail::copyOf(text)) {}

const std::string& LumCStr::getMBString(const char* codepage) {
    const bool isSameCodepage = codepage ? codepage_ == codepage : !codepage_.has_value();
    if (isMade_ && isSameCodepage && converted_ == *this) return narrow_;
    return makeMBString(codepage);
}

const std::string& LumCStr::makeMBString(const char* codepage) {
    // The name may point into codepage_ or narrow_, so it is copied before either changes.
    std::optional<std::string> name;
    if (codepage) name = codepage;
    std::string bytes;

    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUConverterPointer converter(ucnv_open(name ? name->c_str() : nullptr, &status));
    detail::checkMemory(status);
    if (U_SUCCESS(status)) {
        const int32_t sizeBytes = extract(nullptr, 0, converter.getAlias(), status);
        // The measuring call reports the lack of room as its status, or, for an empty text, the missing terminator.
        if (sizeBytes > 0 && status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            bytes.resize(static_cast<std::size_t>(sizeBytes));
            extract(bytes.data(), sizeBytes, converter.getAlias(), status);
            detail::checkMemory(status);
            if (U_FAILURE(status)) bytes.clear();
        }
    }

    detail::assign(converted_, *this);
    narrow_ = std::move(bytes);
    codepage_ = std::move(name);
    isMade_ = true;
    return narrow_;
}

}  // namespace LumCommon
