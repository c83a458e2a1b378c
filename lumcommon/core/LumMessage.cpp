#include <lumcommon/core/LumMessage.h>

#include <unicode/fmtable.h>
#include <unicode/msgfmt.h>

#include <iterator>

namespace LumCommon {

LumMessage::LumMessage(const UnicodeString& pattern, const UnicodeString& a0, const UnicodeString& a1,
                       const UnicodeString& a2, const UnicodeString& a3) {
    const icu::Formattable arguments[] = {a0, a1, a2, a3};
    UErrorCode status = U_ZERO_ERROR;
    icu::MessageFormat::format(pattern, arguments, static_cast<int32_t>(std::size(arguments)), *this, status);
    if (U_FAILURE(status)) remove();
}

}  // namespace LumCommon
