#pragma once

#include <lumcommon/names/VocabularyName.h>

namespace LumCommon {

/// Identifier in the SVG vocabulary; 0 means "not in the vocabulary".
enum SVGNameEnum : std::uint16_t {
    SVG_NULL = 0,
#define LUM_NAME(id, text) SVG_##id,
#include <lumcommon/names/SVGNames.inc>
#undef LUM_NAME
    SVG_END_,  // one past the last name
};

static_assert(SVG_END_ == 135 && SVG_mask == 134);

/// A name of the SVG vocabulary (134 names); see VocabularyName.
class LUM_API SVGName : public VocabularyName<SVGNameEnum> {
public:
    using VocabularyName::VocabularyName;
    explicit SVGName(LumName name);
    explicit SVGName(LumNameEnum name) : SVGName(LumName(name)) {}
    /// Implemented in values/NamesFromValues.cpp.
    explicit SVGName(const LumValue& value);

    static SVGName find(const UnicodeString& text) noexcept;
    LumName toName() const;
    static void cleanup();
};

}  // namespace LumCommon
