// The two vocabularies and the look-ups in them.
#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/SVGName.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/names/detail/Vocabulary.h>

namespace LumCommon {

namespace {

#define LUM_NAME(id, text) {u"" text, sizeof(u"" text) / sizeof(char16_t) - 1},

constexpr detail::Vocabulary<MATHML_END_>::Rows mathMLRows = {{
    {},
#include <lumcommon/names/MathMLNames.inc>
}};

constexpr detail::Vocabulary<SVG_END_>::Rows svgRows = {{
    {},
#include <lumcommon/names/SVGNames.inc>
}};

#undef LUM_NAME

constinit const detail::Vocabulary<MATHML_END_> mathMLVocabulary{mathMLRows};
constinit const detail::Vocabulary<SVG_END_> svgVocabulary{svgRows};

template <std::size_t count>
LumName nameOf(const detail::Vocabulary<count>& vocabulary, std::size_t id) {
    const std::u16string_view text = vocabulary.at(id);
    return detail::internName(text.data(), text.size());
}

}  // namespace

MathMLName MathMLName::find(const UnicodeString& text) noexcept {
    return static_cast<MathMLNameEnum>(
        mathMLVocabulary.find(text.getBuffer(), static_cast<std::size_t>(text.length())));
}
MathMLName::MathMLName(LumName name) : MathMLName(find(name.getString())) {}
LumName MathMLName::toName() const { return nameOf(mathMLVocabulary, getEnum()); }
void MathMLName::cleanup() {}

SVGName SVGName::find(const UnicodeString& text) noexcept {
    return static_cast<SVGNameEnum>(svgVocabulary.find(text.getBuffer(), static_cast<std::size_t>(text.length())));
}
SVGName::SVGName(LumName name) : SVGName(find(name.getString())) {}
LumName SVGName::toName() const { return nameOf(svgVocabulary, getEnum()); }
void SVGName::cleanup() {}

}  // namespace LumCommon
