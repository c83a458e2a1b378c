#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/uri/LumDataUri.h>
#include <lumcommon/uri/LumUriSub.h>
#include <lumcommon/values/LumTokenizer.h>

namespace LumCommon {
namespace {

using View = std::u16string_view;

constexpr std::size_t schemeUnits = 5;  // data:

bool isNumber(const LumValue& value) {
    return value.isNumeric() && value.getUnit() != UNIT_CHAR && value.getUnit() != UNIT_COLOR;
}

}  // namespace

LumDataUri::LumDataUri(const UnicodeString& s, URISTRTYPE type) : LumUri(s, type) { init(); }

LumDataUri::LumDataUri(const LumUri& base, const UnicodeString& s, URISTRTYPE type) : LumUri(base, s, type) { init(); }

LumDataUri::~LumDataUri() = default;

void LumDataUri::init() {
    dataStart_ = -1;
    page_ = 0;
    hasParameters_ = false;
    mediaType_.remove();
    if (!isDataScheme()) return;
    if (!isDecoded_) {
        UnicodeString decoded = detail::copyOf(uri_);
        LumUriSub::unescapeHH(decoded);  // the scheme has no escapes
        uri_.swap(decoded);
        isDecoded_ = true;
    }
    const View uri = detail::viewOf(uri_);
    std::size_t end = uri.find_first_of(u";,", schemeUnits);
    if (end == View::npos) return;
    mediaType_ = detail::checked(detail::textOf(uri.substr(schemeUnits, end - schemeUnits)).trim());
    hasParameters_ = uri[end] == u';';
    while (uri[end] == u';') {
        const std::size_t start = end + 1;
        end = uri.find_first_of(u";,", start);
        if (end == View::npos) return;
        readParameter(detail::textOf(uri.substr(start, end - start)));
    }
    dataStart_ = static_cast<std::int32_t>(end) + 1;
}

void LumDataUri::readParameter(const UnicodeString& parameter) {
    LumTokenizer tokenizer(parameter);
    if (tokenizer.nextToken() != LumTokenizer::TOKEN_NAME || tokenizer.getText() != u"page") return;
    if (tokenizer.nextToken() != u'=') return;
    LumValue value = tokenizer.nextTokenValueSigned();
    if (!isNumber(value)) value = LumValue::parse(value.toString());
    if (isNumber(value) && value.getIntegerValue() > 0) page_ = value.getIntegerValue();
}

}  // namespace LumCommon
