#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/format/xls/detail/XlsSectionText.h>
#include <lumcommon/format/xls/detail/XlsTables.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

using Kind = XlsPieceKind;

/// The character that a piece repeats: a letter for a field of the calendar or the clock, a sign for a piece of a
/// number or for a text; 0 for pieces that are written in another way.
char16_t repeatedUnitOf(Kind kind) {
    switch (kind) {
        case Kind::YEAR:
            return u'y';
        case Kind::MONTH:
        case Kind::MINUTE:
            return u'm';
        case Kind::DAY:
        case Kind::WEEKDAY:
            return u'd';
        case Kind::HOUR:
            return u'h';
        case Kind::SECOND:
            return u's';
        case Kind::ERA:
            return u'g';
        case Kind::ERA_YEAR:
            return u'e';
        case Kind::FORCED_DIGIT:
            return u'0';
        case Kind::OPTIONAL_DIGIT:
            return u'#';
        case Kind::SPACED_DIGIT:
            return u'?';
        case Kind::POINT:
            return u'.';
        case Kind::COMMA:
            return u',';
        case Kind::PERCENT:
            return u'%';
        case Kind::FRACTION_BAR:
            return u'/';
        case Kind::TEXT:
            return u'@';
        default:
            return 0;
    }
}

/// Writes the normal form: letters as the keyword table has them, all literals quoted.
class SectionText {
public:
    SectionText(const FMT& section, UnicodeString& out) : section_(section), out_(out) {}

    void piece(const XlsPiece& piece);

private:
    void repeat(char16_t unit, std::int32_t count) {
        for (std::int32_t i = 0; i < count; ++i) append(out_, unit);
    }
    /// Keeps two runs of the same letter apart.
    void separate(char16_t letter) {
        if (!out_.isEmpty() && toLowerAscii(out_.charAt(out_.length() - 1)) == letter) append(out_, u"\"\"");
    }
    void elapsed(char16_t letter, std::int32_t count) {
        append(out_, u'[');
        repeat(letter, count);
        append(out_, u']');
    }
    void literal(const XlsPiece& piece);
    void word(std::u16string_view text) { append(out_, text); }

    const FMT& section_;
    UnicodeString& out_;
};

void SectionText::literal(const XlsPiece& piece) {
    bool isOpen = false;
    for (std::int32_t i = piece.start; i < piece.start + piece.count; ++i) {
        const char16_t c = section_.literals.charAt(i);
        if ((c == '"') == isOpen) {
            append(out_, u'"');
            isOpen = !isOpen;
        }
        if (c == '"') append(out_, u'\\');
        append(out_, c);
    }
    if (isOpen) append(out_, u'"');
}

void SectionText::piece(const XlsPiece& piece) {
    if (const char16_t unit = repeatedUnitOf(piece.kind)) {
        const char16_t letter = piece.kind == Kind::YEAR && piece.unit != 0 ? static_cast<char16_t>(piece.unit) : unit;
        if (isAsciiLetter(letter)) separate(letter);
        return repeat(letter, piece.count);
    }
    switch (piece.kind) {
        case Kind::LITERAL:
            return literal(piece);
        case Kind::SKIP:
        case Kind::FILL:
            append(out_, piece.kind == Kind::SKIP ? u'_' : u'*');
            append(out_, piece.unit);
            return;
        case Kind::EXPONENT:
            append(out_, u'E');
            append(out_, static_cast<char16_t>(piece.unit));
            return;
        case Kind::FIXED_DENOMINATOR:
            appendDecimal(out_, section_.fixedDenominator);
            return;
        case Kind::GENERAL:
            separate(u'g');
            return word(u"General");
        case Kind::SECOND_FRACTION:
            append(out_, u'.');
            return repeat(u'0', piece.count);
        case Kind::AM_PM:
            return word(xlsAmPm(piece.count));
        case Kind::ELAPSED_HOURS:
            return elapsed(u'h', piece.count);
        case Kind::ELAPSED_MINUTES:
            return elapsed(u'm', piece.count);
        case Kind::ELAPSED_SECONDS:
            return elapsed(u's', piece.count);
        default:
            return;  // unreachable: the others repeat a character
    }
}

}  // namespace

void setXlsSectionText(FMT& section, const UnicodeString& prefix) {
    assign(section.text, prefix);
    const auto has = [&](Kind kind) {
        return std::ranges::find(section.pieces, kind, &XlsPiece::kind) != section.pieces.end();
    };
    // "e" is a year only in a Japanese code, so the code must be marked as one.
    constexpr unsigned japanese = 0x411;
    if (section.locale != japanese && has(Kind::ERA_YEAR) && !has(Kind::ERA)) {
        append(section.text, u"[$-411]");
        if (section.locale == 0) section.locale = japanese;
    }
    SectionText writer(section, section.text);
    for (const XlsPiece& piece : section.pieces) writer.piece(piece);
}

}  // namespace LumCommon::detail
