#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>

namespace LumCommon {

/// What MathMLName and SVGName share: the identifier of a string in a fixed list, 0 for "not in the vocabulary".
/// Threads: any; a value.
///
/// Each of the two (Name, below) also has:
///   Name(LumName), Name(LumNameEnum)   the entry for the name's string, 0 when there is none
///   Name(const LumValue&)              the same for the value's string form (values/NamesFromValues.cpp)
///   find(text)                         the same for a string.   Cost, of all four: one hash and compare.
///   toName()                           the interned name of the same string; the null name for 0
///   cleanup()                          part of LumCommon::cleanup(). The vocabulary is constant data, so there is
///                                      nothing to release.
template <class Id>
class VocabularyName {
public:
    /// "Not in the vocabulary".
    constexpr VocabularyName() noexcept = default;
    /// The entry with that identifier, which is not checked.
    constexpr VocabularyName(Id id) noexcept : id_(id) {}

    /// The identifier; 0 for "not in the vocabulary".
    constexpr Id getEnum() const noexcept { return id_; }

    /// Whether both are the same entry.
    friend constexpr bool operator==(VocabularyName a, VocabularyName b) noexcept { return a.id_ == b.id_; }

private:
    Id id_{};
};

}  // namespace LumCommon
