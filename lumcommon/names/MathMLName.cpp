#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/names/detail/Vocabulary.h>

namespace LumCommon {

namespace {

constexpr detail::Vocabulary<MATHML_END_>::Rows rows = {{
    {},
#define LUM_NAME(id, text) {u"" text, sizeof(u"" text) / sizeof(char16_t) - 1},
#include <lumcommon/names/MathMLNames.inc>
#undef LUM_NAME
}};

constinit const detail::Vocabulary<MATHML_END_> vocabulary{rows};

}  // namespace

MathMLName MathMLName::find(const UnicodeString& text) noexcept {
    return static_cast<MathMLNameEnum>(vocabulary.find(text.getBuffer(), static_cast<std::size_t>(text.length())));
}

MathMLName::MathMLName(LumName name) : MathMLName(find(name.getString())) {}

LumName MathMLName::toName() const {
    const std::u16string_view text = vocabulary.at(id_);
    return detail::internName(text.data(), text.size());
}

void MathMLName::cleanup() {}

}  // namespace LumCommon
