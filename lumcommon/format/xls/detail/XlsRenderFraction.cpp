#include <lumcommon/format/xls/detail/XlsDigitRuns.h>
#include <lumcommon/format/xls/detail/XlsFraction.h>
#include <lumcommon/format/xls/detail/XlsRender.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

#include <algorithm>
#include <string>

namespace LumCommon::detail {

namespace {

using Kind = XlsPieceKind;
using Part = XlsPart;

bool isPlaceholder(const XlsPiece& piece) {
    return piece.kind == Kind::FORCED_DIGIT || piece.kind == Kind::OPTIONAL_DIGIT || piece.kind == Kind::SPACED_DIGIT ||
           piece.kind == Kind::FIXED_DENOMINATOR;
}

/// Which pieces of a fraction disappear because the whole number or the fraction is absent, and whether spaces take
/// their places.
class AbsentPieces {
public:
    enum class Fate { SHOWN, BLANK, GONE };

    AbsentPieces(const FMT& section, const XlsRules& rules, bool isWholeAbsent, bool isFractionAbsent) {
        if (!isWholeAbsent && !isFractionAbsent) return;
        if (!rules.absentPartsTakeLiterals) {
            blanksParts_ = isFractionAbsent;
            return;
        }
        bool isInFraction = false;
        const std::size_t count = section.pieces.size();
        for (std::size_t i = 0; i < count; ++i) {
            const XlsPiece& piece = section.pieces[i];
            if (!isPlaceholder(piece)) continue;
            if (piece.part == Part::INTEGER) {
                begin_ = i + 1;
            } else if (isFractionAbsent) {
                end_ = i + 1;
            } else if (!isInFraction) {
                end_ = i;
            }
            isInFraction = piece.part != Part::INTEGER;
        }
        const XlsDigitCounts& denominator = section.denominator;
        const bool isSpaced =
            section.integer.spaced > 0 || section.numerator.spaced > 0 || (isFractionAbsent && denominator.spaced > 0);
        fate_ = isSpaced ? Fate::BLANK : Fate::GONE;
    }

    Fate of(std::size_t index, const XlsPiece& piece) const {
        if (index >= begin_ && index < end_) return fate_;
        const bool isPart = piece.kind == Kind::FRACTION_BAR || (isPlaceholder(piece) && piece.part != Part::INTEGER);
        return blanksParts_ && isPart ? Fate::BLANK : Fate::SHOWN;
    }

    /// How many spaces take the place of a piece.
    static std::int32_t widthOf(const XlsPiece& piece) {
        if (isPlaceholder(piece) || piece.kind == Kind::LITERAL) return piece.count;
        return piece.kind == Kind::FRACTION_BAR || piece.kind == Kind::SKIP || piece.kind == Kind::PERCENT ? 1 : 0;
    }

private:
    bool blanksParts_ = false;
    std::size_t begin_ = 0, end_ = 0;
    Fate fate_ = Fate::SHOWN;
};

/// Writes a denominator, left-aligned in its placeholders.
void putDenominator(const FMT& section, std::uint64_t value, XlsWriter& out) {
    std::string text = std::to_string(value);
    if (section.fixedDenominator == 0) {
        const auto forced = static_cast<std::size_t>(section.denominator.forced);
        if (text.size() < forced) text.insert(0, forced - text.size(), '0');
    }
    out.number(text);
    const std::int64_t unused = section.denominator.total() - static_cast<std::int64_t>(text.size());
    out.spaces(std::min<std::int64_t>(section.denominator.spaced, unused));
}

}  // namespace

void renderXlsFraction(const FMT& section, const XlsDecimal& magnitude, const XlsRules& rules, XlsWriter& out) {
    const XlsFraction fraction(magnitude, section.denominator.total(), section.fixedDenominator, rules.search);
    const bool hasWhole = section.integer.total() > 0;
    const std::uint64_t part = fraction.numerator == fraction.denominator ? 0 : fraction.numerator;
    const bool isFractionAbsent = hasWhole && part == 0 && section.numerator.forced == 0;
    std::string wholeText = hasWhole ? fraction.whole(magnitude) : std::string();
    // Zero has no whole number only if a single "#" asks for it and the fraction shows a 0.
    const bool isOneOptional = section.integer.total() == 1 && section.integer.optional == 1;
    const bool needsZero = isFractionAbsent || (rules.absentPartsTakeLiterals && !isOneOptional);
    if (hasWhole && part == 0 && wholeText.empty() && needsZero) wholeText = "0";
    std::string numeratorText = hasWhole ? std::to_string(part) : fraction.improperNumerator(magnitude);
    if (numeratorText.empty()) numeratorText = "0";
    const bool isWholeAbsent = hasWhole && wholeText.empty() && section.integer.forced == 0;
    const AbsentPieces absent(section, rules, isWholeAbsent, isFractionAbsent);

    const auto digitsOf = [](const std::string& text) {
        return NaturalDigits{text, static_cast<std::int64_t>(text.size())};
    };
    IntegerRun whole(out, digitsOf(wholeText), section.integer.total(), section.hasThousands);
    IntegerRun numerator(out, digitsOf(numeratorText), section.numerator.total(), false);
    bool isDenominatorWritten = false;
    for (std::size_t i = 0; i < section.pieces.size(); ++i) {
        const XlsPiece& piece = section.pieces[i];
        const AbsentPieces::Fate fate = absent.of(i, piece);
        if (fate != AbsentPieces::Fate::SHOWN) {
            if (fate == AbsentPieces::Fate::BLANK) out.spaces(AbsentPieces::widthOf(piece));
            continue;
        }
        switch (piece.kind) {
            case Kind::FORCED_DIGIT:
            case Kind::OPTIONAL_DIGIT:
            case Kind::SPACED_DIGIT:
            case Kind::FIXED_DENOMINATOR:
                if (piece.part == Part::INTEGER) {
                    whole.place(piece.kind, piece.count);
                } else if (piece.part == Part::NUMERATOR) {
                    numerator.place(piece.kind, piece.count);
                } else if (!isDenominatorWritten) {
                    isDenominatorWritten = true;
                    putDenominator(section, fraction.denominator, out);
                }
                break;
            case Kind::FRACTION_BAR:
                out.put(u'/');
                break;
            case Kind::GENERAL:
                renderXlsGeneral(section, magnitude, XLS_GENERAL_CHARS, rules, out);
                break;
            default:
                renderXlsCommon(section, piece, out);
                break;
        }
    }
}

}  // namespace LumCommon::detail
