#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumNameEnum.h>

#include <cstddef>
#include <cstdint>
#include <functional>

namespace LumCommon {

class LumValue;

/// An interned name: one integer that stands for one string. Comparing names is comparing integers.
///
/// Names interned at run time live as long as at least one LumDocument, NamespaceManager or parser exists; after that
/// an identifier reads as the empty string until it is assigned again.
/// Threads: a value; it may be copied, compared and read on any thread.
class LUM_API LumName {
public:
    /// The null name.
    constexpr LumName() noexcept = default;
    /// The name with that identifier, which is not checked.
    constexpr LumName(LumNameEnum id) noexcept : id_(id) {}
    /// The name that the value holds, or else its string form, interned. Implemented in values/NamesFromValues.cpp.
    explicit LumName(const LumValue& value);
    /// The interned name of `text`.
    explicit LumName(const UnicodeString& text);

    /// The identifier.
    constexpr LumNameEnum getEnum() const noexcept { return id_; }
    /// Whether it is the null name.
    constexpr bool isNull() const noexcept { return id_ == NAME_NULL; }
    /// The string; empty for the null name. The reference is valid as long as the name is.
    const UnicodeString& getString() const;

    /// A new name that has not been interned before: `prefix` (or "N"), "-" and a number. It is a valid XML name if the
    /// prefix is one.
    static LumName generateID(const UnicodeString& prefix);

    /// Whether both stand for one string.
    friend constexpr bool operator==(LumName a, LumName b) noexcept { return a.id_ == b.id_; }
    /// The order of identifiers, not of strings.
    friend constexpr auto operator<=>(LumName a, LumName b) noexcept { return a.id_ <=> b.id_; }

private:
    LumNameEnum id_ = NAME_NULL;
};

}  // namespace LumCommon

/// Names can be keys of unordered containers.
template <>
struct std::hash<LumCommon::LumName> {
    /// Spreads the identifiers, which are mostly small and next to each other.
    std::size_t operator()(LumCommon::LumName name) const noexcept {
        return static_cast<std::size_t>((std::uint64_t{name.getEnum()} * 0x9E3779B97F4A7C15u) >> 20);
    }
};
