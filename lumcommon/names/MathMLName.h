#pragma once

#include <lumcommon/names/VocabularyName.h>

namespace LumCommon {

/// Identifier in the MathML vocabulary; 0 means "not in the vocabulary".
enum MathMLNameEnum : std::uint16_t {
    MATHML_NULL = 0,
#define LUM_NAME(id, text) MATHML_##id,
#include <lumcommon/names/MathMLNames.inc>
#undef LUM_NAME
    MATHML_END_,  // one past the last name
};

static_assert(MATHML_END_ == 435 && MATHML_other == 434);

/// A name of the MathML vocabulary (434 names); see VocabularyName.
class LUM_API MathMLName : public VocabularyName<MathMLNameEnum> {
public:
    using VocabularyName::VocabularyName;
    explicit MathMLName(LumName name);
    explicit MathMLName(LumNameEnum name) : MathMLName(LumName(name)) {}
    /// Implemented in values/NamesFromValues.cpp.
    explicit MathMLName(const LumValue& value);

    static MathMLName find(const UnicodeString& text) noexcept;
    LumName toName() const;
    static void cleanup();
};

}  // namespace LumCommon
