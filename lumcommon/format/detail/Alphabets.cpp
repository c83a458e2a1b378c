#include <lumcommon/format/detail/Alphabets.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace LumCommon::detail {

namespace {

struct SequenceRow {
    std::size_t count;
    Letters letters;
};

constexpr SequenceRow SEQUENCES[] = {
#define LUM_SEQUENCE(name, count, letters) {count, letters},
#include <lumcommon/format/detail/Sequences.inc>
#undef LUM_SEQUENCE
};

struct AlphabetRow {
    std::string_view language;
    LetterScript script;
    std::size_t upperCount;
    Letters upper;
    std::size_t lowerCount;
    Letters lower;
};

constexpr AlphabetRow ALPHABETS[] = {
#define LUM_ALPHABET(language, script, upperCount, upper, lowerCount, lower) \
    {language, LetterScript::script, upperCount, upper, lowerCount, lower},
#include <lumcommon/format/detail/Alphabets.inc>
#undef LUM_ALPHABET
};

static_assert(std::ranges::all_of(SEQUENCES, [](const SequenceRow& row) { return row.letters.size() == row.count; }));
static_assert(std::ranges::all_of(ALPHABETS, [](const AlphabetRow& row) {
    return row.upper.size() == row.upperCount && row.lower.size() == row.lowerCount;
}));
static_assert(std::ranges::is_sorted(ALPHABETS, {}, &AlphabetRow::language));

const AlphabetRow* findRow(std::string_view language) noexcept {
    if (language.empty()) return nullptr;
    const AlphabetRow* found = std::ranges::lower_bound(ALPHABETS, language, {}, &AlphabetRow::language);
    return found != std::end(ALPHABETS) && found->language == language ? found : nullptr;
}

Letters getLetters(const AlphabetRow& row, LetterCase letterCase) noexcept {
    return letterCase == LetterCase::UPPER ? row.upper : row.lower;
}

}  // namespace

Letters getSequence(Sequence sequence) noexcept { return SEQUENCES[static_cast<std::size_t>(sequence)].letters; }

Letters findAlphabet(std::string_view language, LetterCase letterCase) noexcept {
    const AlphabetRow* row = findRow(language);
    return row ? getLetters(*row, letterCase) : Letters();
}

Letters findAlphabet(std::string_view language, LetterCase letterCase, LetterScript script) noexcept {
    const AlphabetRow* row = findRow(language);
    return row && row->script == script ? getLetters(*row, letterCase) : Letters();
}

}  // namespace LumCommon::detail
