#include <lumcommon/core/LumMessage.h>
#include <lumcommon/core/detail/CheckedText.h>

#include <unicode/fmtable.h>
#include <unicode/msgfmt.h>

#include <iterator>

namespace LumCommon {

LumMessage::LumMessage(const UnicodeString& pattern, const UnicodeString& a0, const UnicodeString& a1,
                       const UnicodeString& a2, const UnicodeString& a3) {
    const icu::Formattable arguments[] = {a0, a1, a2, a3};
    UErrorCode status = U_ZERO_ERROR;
    const UnicodeString* given[] = {&a0, &a1, &a2, &a3};
    for (std::size_t i = 0; i < std::size(arguments); ++i) {
        const bool isLost = arguments[i].getString(status).isBogus() && !given[i]->isBogus();
        if (isLost) throw std::bad_alloc();
    }
    icu::MessageFormat::format(pattern, arguments, static_cast<int32_t>(std::size(arguments)), *this, status);
    detail::checkMemory(status);
    if (U_FAILURE(status)) remove();
    detail::checked(*this);
}

}  // namespace LumCommon
