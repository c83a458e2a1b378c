#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/CodePoints.h>
#include <lumcommon/format/Kansuji.h>

#include <algorithm>
#include <string_view>

namespace LumCommon {

namespace {

constexpr UChar32 KANJI[] = {
#define LUM_KANSUJI(character) character,
#include <lumcommon/format/KansujiCharacters.inc>
#undef LUM_KANSUJI
};

static_assert(std::size(KANJI) == Kansuji::COUNT);

constexpr UChar32 FULL_WIDTH_OFFSET = 0xFEE0;
constexpr std::size_t GROUP_DIGITS = 4;
/// The most digits that the large units can express: a group for each of them, and the last group, which has none.
constexpr std::size_t READABLE_DIGITS = GROUP_DIGITS * (Kansuji::LARGE_UNIT_COUNT + 1);

using Digits = std::u16string_view;

/// Replaces `room` characters at `at` with those of the text; if there are fewer, the others stay.
void replaceCharacters(UChar32* at, int room, const UnicodeString& text) {
    for (std::int32_t i = 0; room > 0 && i < text.length(); i = text.moveIndex32(i, 1), --room)
        *at++ = text.char32At(i);
}

/// Writes runs of digits into a text.
class RunWriter {
public:
    RunWriter(const Kansuji& table, UnicodeString& text) : table_(table), text_(text) {}

    void write(Digits run, Kansuji::Style style) {
        switch (style) {
            case Kansuji::STYLE_GROUPING:
                return writeGrouped(run);
            case Kansuji::STYLE_READABLE:
                return writeReadable(run);
            default:
                return writeDigits(run);
        }
    }

private:
    void writeDigits(Digits run) {
        for (const char16_t c : run) writeDigit(c);
    }

    void writeGrouped(Digits run) {
        const std::size_t afterLastNonZero = run.find_last_not_of(u'0') + 1;  // 0 if all are zeros
        for (std::size_t i = 0; i < run.size();) {
            writeDigit(run[i++]);
            const std::size_t left = run.size() - i;
            if (left % GROUP_DIGITS != 0 || !hasLargeUnit(left / GROUP_DIGITS)) continue;
            writeLargeUnit(left / GROUP_DIGITS);
            if (i >= afterLastNonZero) return;
        }
    }

    void writeReadable(Digits run) {
        run.remove_prefix(std::min(run.find_first_not_of(u'0'), run.size()));
        if (run.empty()) return write(Kansuji::INDEX_DIGIT);
        const std::size_t beyondUnits = run.size() > READABLE_DIGITS ? run.size() - READABLE_DIGITS : 0;
        writeDigits(run.substr(0, beyondUnits));
        run.remove_prefix(beyondUnits);
        // Digits before the first group count in its large unit, so that unit must be written.
        bool needsUnit = beyondUnits > 0;
        while (!run.empty()) {
            const std::size_t groupsAfter = (run.size() - 1) / GROUP_DIGITS;
            const Digits group = run.substr(0, run.size() - groupsAfter * GROUP_DIGITS);
            run.remove_prefix(group.size());
            if (writeGroup(group) || needsUnit) writeLargeUnit(groupsAfter);
            needsUnit = false;
        }
    }

    /// Writes up to four digits with the small units; false when all of them are zeros.
    bool writeGroup(Digits group) {
        bool wrote = false;
        for (std::size_t i = 0; i < group.size(); ++i) {
            const char16_t digit = group[i];
            if (digit == u'0') continue;
            const std::size_t power = group.size() - 1 - i;
            if (digit != u'1' || power == 0) writeDigit(digit);
            if (power > 0) write(Kansuji::INDEX_SMALL_UNIT + static_cast<int>(power) - 1);
            wrote = true;
        }
        return wrote;
    }

    /// @param groupsAfter  how many groups of four digits follow.
    static constexpr bool hasLargeUnit(std::size_t groupsAfter) {
        return groupsAfter > 0 && groupsAfter <= Kansuji::LARGE_UNIT_COUNT;
    }

    void writeLargeUnit(std::size_t groupsAfter) {
        if (hasLargeUnit(groupsAfter)) write(Kansuji::INDEX_LARGE_UNIT + static_cast<int>(groupsAfter) - 1);
    }

    void writeDigit(char16_t digit) { write(Kansuji::INDEX_DIGIT + (digit - u'0')); }
    void write(int index) { detail::append(text_, static_cast<char32_t>(table_.getCharacter(index))); }

    const Kansuji& table_;
    UnicodeString& text_;
};

}  // namespace

Kansuji::Kansuji() { std::ranges::copy(KANJI, characters_.begin()); }

void Kansuji::setDigitKanji() { std::copy_n(KANJI, DIGIT_COUNT, characters_.begin()); }

void Kansuji::setDigitLatin() {
    for (int i = 0; i < DIGIT_COUNT; ++i) characters_[static_cast<std::size_t>(i)] = u'0' + FULL_WIDTH_OFFSET + i;
}

void Kansuji::setDigits(const UnicodeString& characters) {
    replaceCharacters(characters_.data() + INDEX_DIGIT, DIGIT_COUNT, characters);
}

void Kansuji::setUnits(const UnicodeString& characters) {
    replaceCharacters(characters_.data() + INDEX_SMALL_UNIT, SMALL_UNIT_COUNT + LARGE_UNIT_COUNT, characters);
}

UChar32 Kansuji::getCharacter(int index) const noexcept {
    return index >= 0 && index < COUNT ? characters_[static_cast<std::size_t>(index)] : detail::replacementCharacter;
}

UChar32 Kansuji::toKansuji(UChar32 character) const noexcept {
    if (detail::isAsciiDigit(character)) return getCharacter(INDEX_DIGIT + (character - u'0'));
    if (character == u',') return getCharacter(INDEX_COMMA);
    if (character == u'.') return getCharacter(INDEX_POINT);
    return character > 0x20 && character < 0x7F ? character + FULL_WIDTH_OFFSET : character;
}

UnicodeString Kansuji::convert(const UnicodeString& text, Style style) const {
    if (text.isBogus()) return text;
    UnicodeString result;
    RunWriter writer(*this, result);
    const Digits units(text.getBuffer(), static_cast<std::size_t>(text.length()));
    const auto endOf = [units](std::size_t from, bool digits) {
        while (from < units.size() && detail::isAsciiDigit(units[from]) == digits) ++from;
        return from;
    };
    for (std::size_t i = 0; i < units.size();) {
        const std::size_t run = endOf(i, false);
        detail::append(result, units.substr(i, run - i));
        i = endOf(run, true);
        if (i > run) writer.write(units.substr(run, i - run), style);
    }
    return result;
}

}  // namespace LumCommon
