#include <lumcommon/core/detail/CaseMapping.h>

#include <unicode/locid.h>

namespace LumCommon::detail {

UnicodeString toLowerCase(UnicodeString text) {
    text.toLower(icu::Locale::getRoot());
    return text;
}

UnicodeString toUpperCase(UnicodeString text) {
    text.toUpper(icu::Locale::getRoot());
    return text;
}

}  // namespace LumCommon::detail
