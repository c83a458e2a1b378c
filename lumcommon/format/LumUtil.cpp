// Number scanning and quoting: only the public functions. The work is done in values/detail/, next to the values.

#include <lumcommon/format/LumUtil.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/values/detail/NumberScan.h>
#include <lumcommon/values/detail/Quoting.h>

namespace LumCommon {

static_assert(+LumUtil::QUOTE_DOUBLE == +detail::QUOTE_BIT_DOUBLE);
static_assert(+LumUtil::QUOTE_SINGLE == +detail::QUOTE_BIT_SINGLE);
static_assert(+LumUtil::QUOTE_DOUBLING == +detail::QUOTE_BIT_DOUBLING);
static_assert(+LumUtil::QUOTE_CSS == +detail::QUOTE_BIT_CSS);

UnicodeString LumUtil::quoteString(const UnicodeString& text, unsigned mode) { return detail::quoteString(text, mode); }

UnicodeString LumUtil::unquoteString(const UnicodeString& text, unsigned mode) {
    return detail::unquoteString(text, mode);
}

UnicodeString LumUtil::parseString(const char16_t* position, const char16_t*& end, unsigned mode) {
    detail::UnitCursor cursor(position, nullptr);
    UnicodeString result = detail::scanString(cursor, mode);
    end = cursor.get();
    return result;
}

UnicodeString LumUtil::quoteUri(const UnicodeString& uri) { return detail::quoteUri(uri); }

UnicodeString LumUtil::unquoteUri(const UnicodeString& text) { return LumUri(text).toString(); }

double LumUtil::parseNumber(const char16_t* position, const char16_t*& end, bool* hasFraction) {
    detail::UnitCursor cursor(position, nullptr);
    const detail::ScannedNumber number = detail::scanNumber(cursor);
    end = cursor.get();
    if (hasFraction) *hasFraction = number.hasFraction;
    return number.value;
}

std::uint32_t LumUtil::parseHexNum(const char16_t* position, const char16_t*& end, int maxDigits) {
    detail::UnitCursor cursor(position, nullptr);
    const std::uint32_t number = detail::scanHexNumber(cursor, maxDigits);
    end = cursor.get();
    return number;
}

// The class keeps only constant data, so there is nothing to release.
void LumUtil::cleanup() {}

}  // namespace LumCommon
