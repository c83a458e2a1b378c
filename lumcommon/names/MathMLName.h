#pragma once

#include <lumcommon/names/VocabularyName.h>

namespace LumCommon {

/// Identifier in the MathML vocabulary; 0 means "not in the vocabulary".
enum MathMLNameEnum : std::uint16_t {
    MATHML_NULL = 0,  ///< "not in the vocabulary"
#define LUM_NAME(id, text) MATHML_##id,
#include <lumcommon/names/MathMLNames.inc>
#undef LUM_NAME
    MATHML_END_,  ///< one past the last name
};

static_assert(MATHML_END_ == 435 && MATHML_other == 434);

/// A name of the MathML vocabulary (434 names); see VocabularyName.
class LUM_API MathMLName : public VocabularyName<MathMLNameEnum> {
public:
    using VocabularyName::VocabularyName;
    /// The entry of the name's string; 0 when there is none.   Cost: one hash and compare.
    explicit MathMLName(LumName name);
    /// The same of a name by its identifier.
    explicit MathMLName(LumNameEnum name) : MathMLName(LumName(name)) {}
    /// Implemented in values/NamesFromValues.cpp.
    explicit MathMLName(const LumValue& value);

    /// The entry of the text; 0 when there is none.   Cost: one hash and compare.
    static MathMLName find(const UnicodeString& text) noexcept;
    /// The interned name of the same string; the null name for 0.
    LumName toName() const;
    /// Part of LumCommon::cleanup(). The vocabulary is constant data, so there is nothing to release.
    static void cleanup();
};

}  // namespace LumCommon
