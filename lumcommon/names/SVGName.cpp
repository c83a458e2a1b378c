#include <lumcommon/names/SVGName.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/names/detail/Vocabulary.h>
#include <lumcommon/values/LumValue.h>

namespace LumCommon {

namespace {

constexpr detail::Vocabulary<SVG_END_>::Rows rows = {{
    {},
#define LUM_NAME(id, text) {u"" text, sizeof(u"" text) / sizeof(char16_t) - 1},
#include <lumcommon/names/SVGNames.inc>
#undef LUM_NAME
}};

constinit const detail::Vocabulary<SVG_END_> vocabulary{rows};

SVGNameEnum find(const UnicodeString& text) {
    return static_cast<SVGNameEnum>(vocabulary.find(text.getBuffer(), static_cast<std::size_t>(text.length())));
}

}  // namespace

SVGName::SVGName(LumName name) : id_(find(name.getString())) {}

SVGName::SVGName(const LumValue& value) : id_(find(value.toString())) {}

LumName SVGName::toName() const {
    const std::u16string_view text = vocabulary.at(id_);
    return detail::internName(text.data(), text.size());
}

void SVGName::cleanup() {}

}  // namespace LumCommon
