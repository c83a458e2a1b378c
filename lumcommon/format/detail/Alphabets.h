#pragma once

#include <string_view>

namespace LumCommon::detail {

/// An alphabet that numbers are counted in; each letter is one UTF-16 unit.
using Letters = std::u16string_view;

/// The sequences that are the same in every language, and the digits that are not consecutive characters.
enum class Sequence {
#define LUM_SEQUENCE(name, count, letters) name,
#include <lumcommon/format/detail/Sequences.inc>
#undef LUM_SEQUENCE
};

enum class LetterScript { LATIN, GREEK, CYRILLIC };
enum class LetterCase { UPPER, LOWER };

Letters getSequence(Sequence sequence) noexcept;

/// The alphabet of a language, in whatever script it is written; empty if there is none.
/// @param language  ISO 639-1 code; the empty language has no alphabet.
Letters findAlphabet(std::string_view language, LetterCase letterCase) noexcept;
/// The same, but also empty if the language is written in another script.
Letters findAlphabet(std::string_view language, LetterCase letterCase, LetterScript script) noexcept;

}  // namespace LumCommon::detail
