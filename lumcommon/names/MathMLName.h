#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>

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

/// A name of the MathML vocabulary (434 names). Threads: any; a value.
class LUM_API MathMLName {
public:
    constexpr MathMLName() noexcept = default;
    constexpr MathMLName(MathMLNameEnum id) noexcept : id_(id) {}
    /// The vocabulary's entry for the name's string, 0 when there is none.   Cost: one hash and compare.
    explicit MathMLName(LumName name);
    explicit MathMLName(LumNameEnum name) : MathMLName(LumName(name)) {}
    /// The same for the value's string form (values/NamesFromValues.cpp).
    explicit MathMLName(const LumValue& value);

    /// The vocabulary's entry for a string, 0 when there is none.
    static MathMLName find(const UnicodeString& text) noexcept;

    constexpr MathMLNameEnum getEnum() const noexcept { return id_; }
    /// The interned name of the same string; the null name for 0.
    LumName toName() const;

    /// Part of LumCommon::cleanup(). The vocabulary is constant data, so there is nothing to release.
    static void cleanup();

    friend constexpr bool operator==(MathMLName a, MathMLName b) noexcept { return a.id_ == b.id_; }

private:
    MathMLNameEnum id_ = MATHML_NULL;
};

}  // namespace LumCommon
