#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/names/detail/Vocabulary.h>
#include <lumcommon/values/LumValue.h>

namespace LumCommon {

namespace {

constexpr detail::Vocabulary<MATHML_END_>::Rows rows = {{
    {},
#define LUM_NAME(id, text) {u"" text, sizeof(u"" text) / sizeof(char16_t) - 1},
#include <lumcommon/names/MathMLNames.inc>
#undef LUM_NAME
}};

constinit const detail::Vocabulary<MATHML_END_> vocabulary{rows};

MathMLNameEnum find(const UnicodeString& text) {
    return static_cast<MathMLNameEnum>(vocabulary.find(text.getBuffer(), static_cast<std::size_t>(text.length())));
}

}  // namespace

MathMLName::MathMLName(LumName name) : id_(find(name.getString())) {}

MathMLName::MathMLName(const LumValue& value) : id_(find(value.toString())) {}

LumName MathMLName::toName() const {
    const std::u16string_view text = vocabulary.at(id_);
    return detail::internName(text.data(), text.size());
}

void MathMLName::cleanup() {}

}  // namespace LumCommon
