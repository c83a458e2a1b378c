#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>

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

/// A name of the SVG vocabulary (134 names). Threads: any; a value.
class LUM_API SVGName {
public:
    constexpr SVGName() noexcept = default;
    constexpr SVGName(SVGNameEnum id) noexcept : id_(id) {}
    /// The vocabulary's entry for the name's string, 0 when there is none.   Cost: one hash and compare.
    explicit SVGName(LumName name);
    explicit SVGName(LumNameEnum name) : SVGName(LumName(name)) {}
    /// The same for the value's string form (values/NamesFromValues.cpp).
    explicit SVGName(const LumValue& value);

    /// The vocabulary's entry for a string, 0 when there is none.
    static SVGName find(const UnicodeString& text) noexcept;

    constexpr SVGNameEnum getEnum() const noexcept { return id_; }
    /// The interned name of the same string; the null name for 0.
    LumName toName() const;

    /// Part of LumCommon::cleanup(). The vocabulary is constant data, so there is nothing to release.
    static void cleanup();

    friend constexpr bool operator==(SVGName a, SVGName b) noexcept { return a.id_ == b.id_; }

private:
    SVGNameEnum id_ = SVG_NULL;
};

}  // namespace LumCommon
