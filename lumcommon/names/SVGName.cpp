#include <lumcommon/names/SVGName.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/names/detail/Vocabulary.h>

namespace LumCommon {

namespace {

constexpr detail::Vocabulary<SVG_END_>::Rows rows = {{
    {},
#define LUM_NAME(id, text) {u"" text, sizeof(u"" text) / sizeof(char16_t) - 1},
#include <lumcommon/names/SVGNames.inc>
#undef LUM_NAME
}};

constinit const detail::Vocabulary<SVG_END_> vocabulary{rows};

}  // namespace

SVGName SVGName::find(const UnicodeString& text) noexcept {
    return static_cast<SVGNameEnum>(vocabulary.find(text.getBuffer(), static_cast<std::size_t>(text.length())));
}

SVGName::SVGName(LumName name) : SVGName(find(name.getString())) {}

LumName SVGName::toName() const {
    const std::u16string_view text = vocabulary.at(id_);
    return detail::internName(text.data(), text.size());
}

void SVGName::cleanup() {}

}  // namespace LumCommon
