#pragma once

#include <lumcommon/names/VocabularyName.h>

namespace LumCommon {

/// Identifier in the SVG vocabulary; 0 means "not in the vocabulary".
enum SVGNameEnum : std::uint16_t {
    SVG_NULL = 0,  ///< "not in the vocabulary"
#define LUM_NAME(id, text) SVG_##id,
#include <lumcommon/names/SVGNames.inc>
#undef LUM_NAME
    SVG_END_,  ///< one past the last name
};

static_assert(SVG_END_ == 135 && SVG_mask == 134);

/// A name of the SVG vocabulary (134 names); see VocabularyName.
class LUM_API SVGName : public VocabularyName<SVGNameEnum> {
public:
    using VocabularyName::VocabularyName;
    /// The entry of the name's string; 0 when there is none.   Cost: one hash and compare.
    explicit SVGName(LumName name);
    /// The same of a name by its identifier.
    explicit SVGName(LumNameEnum name) : SVGName(LumName(name)) {}
    /// Implemented in values/NamesFromValues.cpp.
    explicit SVGName(const LumValue& value);

    /// The entry of the text; 0 when there is none.   Cost: one hash and compare.
    static SVGName find(const UnicodeString& text) noexcept;
    /// The interned name of the same string; the null name for 0.
    LumName toName() const;
    /// Part of LumCommon::cleanup(). The vocabulary is constant data, so there is nothing to release.
    static void cleanup();
};

}  // namespace LumCommon
