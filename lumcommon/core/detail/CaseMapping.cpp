#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>

#include <unicode/locid.h>

namespace LumCommon::detail {

UnicodeString toLowerCase(const UnicodeString& text) {
    return text.isBogus() ? text : checked(copyOf(text).toLower(icu::Locale::getRoot()));
}

UnicodeString toUpperCase(const UnicodeString& text) {
    return text.isBogus() ? text : checked(copyOf(text).toUpper(icu::Locale::getRoot()));
}

}  // namespace LumCommon::detail
