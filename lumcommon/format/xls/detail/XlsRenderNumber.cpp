#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/detail/XlsFraction.h>
#include <lumcommon/format/xls/detail/XlsGeneral.h>
#include <lumcommon/format/xls/detail/XlsRender.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

#include <algorithm>
#include <string>

namespace LumCommon::detail {

namespace {

using Kind = XlsPieceKind;
using Part = XlsPart;

/// The digits of a natural number: the significant ones, followed by zeros.
struct NaturalDigits {
    std::string_view digits;
    std::int64_t length = 0;  ///< including the zeros

    char at(std::int64_t index) const {
        return index < static_cast<std::int64_t>(digits.size()) ? digits[static_cast<std::size_t>(index)] : '0';
    }
};

NaturalDigits integerOf(const XlsDecimal& value) {
    return {value.integerDigits(), std::max<std::int64_t>(value.point(), 0)};
}

/// Puts a natural number into placeholders, from the left; digits that they have no room for come before the first one.
class IntegerRun {
public:
    IntegerRun(XlsWriter& out, NaturalDigits number, std::int64_t places, bool hasThousands)
        : out_(out), number_(number), placesLeft_(places), hasThousands_(hasThousands) {}

    void place(Kind kind, std::int32_t count) {
        rest();
        for (; count > 0; --count) onePlace(kind);
    }
    /// Writes the digits for which no placeholder is left.
    void rest() {
        while (number_.length - next_ > placesLeft_) digit(number_.at(next_++));
    }

private:
    void onePlace(Kind kind) {
        const bool isDigit = number_.length - next_ == placesLeft_;
        --placesLeft_;
        if (isDigit) {
            digit(number_.at(next_++));
        } else if (kind == Kind::FORCED_DIGIT || isStarted_) {
            digit('0');
        } else if (kind == Kind::SPACED_DIGIT) {
            out_.put(u' ');
            if (isSeparated()) out_.put(u' ');
        }
    }
    void digit(char c) {
        isStarted_ = true;
        out_.digit(c);
        if (isSeparated()) out_.put(u',');
    }
    /// Whether a separator follows the place that was just written.
    bool isSeparated() const {
        const std::int64_t behind = std::max(placesLeft_, number_.length - next_);
        return hasThousands_ && behind > 0 && behind % 3 == 0;
    }

    XlsWriter& out_;
    NaturalDigits number_;
    std::int64_t next_ = 0;  ///< digit
    std::int64_t placesLeft_;
    bool hasThousands_;
    bool isStarted_ = false;
};

class DecimalsRun {
public:
    DecimalsRun(XlsWriter& out, const XlsDecimal& value, std::int32_t forced)
        : out_(out),
          value_(value),
          written_(std::max<std::int64_t>(forced, static_cast<std::int64_t>(value.digits().size()) - value.point())) {}

    void place(Kind kind, std::int32_t count) {
        for (; count > 0; --count) {
            if (++number_ <= written_) {
                out_.digit(value_.decimal(number_));
            } else if (kind == Kind::SPACED_DIGIT) {
                out_.put(u' ');
            }
        }
    }

private:
    XlsWriter& out_;
    const XlsDecimal& value_;
    std::int64_t written_;  ///< how many decimals are written as digits
    std::int64_t number_ = 0;
};

void putGeneral(const FMT& section, const XlsDecimal& magnitude, int generalChars, XlsWriter& out) {
    std::string text = xlsGeneral(magnitude, generalChars);
    if (section.dbNum == 0) return out.number(text);
    if (text.find('E') != text.npos) {
        // Numerals with units have no scientific notation; only numbers too large or too small for them keep it.
        const NaturalDigits whole = integerOf(magnitude);
        if (whole.length == 0 || whole.length > static_cast<std::int64_t>(XLS_READABLE_DIGITS)) return out.number(text);
        text.assign(static_cast<std::size_t>(whole.length), '0');
        std::copy(whole.digits.begin(), whole.digits.end(), text.begin());
    }
    const std::string_view number = text;
    const std::size_t point = std::min(number.find('.'), number.size());
    xlsWriteReadable(out, number.substr(0, point), section.dbNum);
    out.number(number.substr(point));
}

/// Returns the exponent for a mantissa with the section's places before the point, and makes `value` that mantissa.
std::int64_t takeExponent(XlsDecimal& value, const FMT& section) {
    const std::int64_t places = section.integer.total();
    const auto exponentFor = [&](std::int64_t point) {
        if (places == 0) return point;
        const std::int64_t first = point - 1;
        const std::int64_t above = first >= 0 ? first : first - (places - 1);  // so that the division rounds down
        return above / places * places;
    };
    if (value.isZero()) return 0;
    const std::int64_t exponent = exponentFor(value.point());
    XlsDecimal mantissa = value;
    mantissa.scale(-exponent);
    mantissa.round(section.decimals.total());
    // Rounding may have added a digit before the point.
    const std::int64_t further = mantissa.isZero() ? 0 : exponentFor(mantissa.point());
    if (further > 0) mantissa.scale(-further);
    value = mantissa;
    return exponent + std::max<std::int64_t>(further, 0);
}

void renderPlain(const FMT& section, XlsDecimal value, int generalChars, XlsWriter& out) {
    const XlsDecimal unrounded = value;
    std::int64_t exponent = 0;
    if (section.exponentSign != 0) {
        exponent = takeExponent(value, section);
    } else {
        value.round(section.decimals.total());
    }
    const std::string exponentDigits = xlsExponent(exponent).substr(2);  // at least two, whatever the code asks for
    IntegerRun integer(out, integerOf(value), section.integer.total(), section.hasThousands);
    DecimalsRun decimals(out, value, section.forcedDecimals);
    IntegerRun exponentRun(out, {exponentDigits, static_cast<std::int64_t>(exponentDigits.size())},
                           section.exponent.total(), false);
    for (const XlsPiece& piece : section.pieces) {
        switch (piece.kind) {
            case Kind::FORCED_DIGIT:
            case Kind::OPTIONAL_DIGIT:
            case Kind::SPACED_DIGIT:
                if (piece.part == Part::INTEGER) {
                    integer.place(piece.kind, piece.count);
                } else if (piece.part == Part::DECIMALS) {
                    decimals.place(piece.kind, piece.count);
                } else {
                    exponentRun.place(piece.kind, piece.count);
                }
                break;
            case Kind::POINT:
                integer.rest();
                out.put(u'.');
                break;
            case Kind::EXPONENT:
                out.put(u'E');
                if (exponent < 0 || piece.unit == '+') out.put(exponent < 0 ? u'-' : u'+');
                if (section.exponent.total() == 0) exponentRun.rest();
                break;
            case Kind::GENERAL:
                putGeneral(section, unrounded, generalChars, out);
                break;
            default:
                renderXlsCommon(section, piece, out);
                break;
        }
    }
}

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

void renderFraction(const FMT& section, const XlsDecimal& magnitude, XlsWriter& out) {
    const XlsFraction fraction(magnitude, section.denominator.total(), section.fixedDenominator);
    const bool hasWhole = section.integer.total() > 0;
    const std::uint64_t part = fraction.numerator == fraction.denominator ? 0 : fraction.numerator;
    const bool isBlank = hasWhole && part == 0 && section.numerator.forced == 0;
    std::string wholeText = hasWhole ? fraction.whole(magnitude) : std::string();
    if (isBlank && wholeText.empty()) wholeText = "0";
    std::string numeratorText = hasWhole ? std::to_string(part) : fraction.improperNumerator(magnitude);
    if (numeratorText.empty()) numeratorText = "0";

    const auto digitsOf = [](const std::string& text) {
        return NaturalDigits{text, static_cast<std::int64_t>(text.size())};
    };
    IntegerRun whole(out, digitsOf(wholeText), section.integer.total(), section.hasThousands);
    IntegerRun numerator(out, digitsOf(numeratorText), section.numerator.total(), false);
    bool isDenominatorWritten = false;
    for (const XlsPiece& piece : section.pieces) {
        switch (piece.kind) {
            case Kind::FORCED_DIGIT:
            case Kind::OPTIONAL_DIGIT:
            case Kind::SPACED_DIGIT:
            case Kind::FIXED_DENOMINATOR:
                if (piece.part == Part::INTEGER) {
                    whole.place(piece.kind, piece.count);
                } else if (isBlank) {
                    out.spaces(piece.count);
                } else if (piece.part == Part::NUMERATOR) {
                    numerator.place(piece.kind, piece.count);
                } else if (!isDenominatorWritten) {
                    isDenominatorWritten = true;
                    putDenominator(section, fraction.denominator, out);
                }
                break;
            case Kind::FRACTION_BAR:
                out.put(isBlank ? u' ' : u'/');
                break;
            case Kind::GENERAL:
                putGeneral(section, magnitude, XLS_GENERAL_CHARS, out);
                break;
            default:
                renderXlsCommon(section, piece, out);
                break;
        }
    }
}

}  // namespace

void renderXlsCommon(const FMT& section, const XlsPiece& piece, XlsWriter& out) {
    switch (piece.kind) {
        case Kind::LITERAL:
            return out.text(section.literals, piece.start, piece.count);
        case Kind::SKIP:
            return out.put(u' ');
        case Kind::FILL:
            return out.fill(piece.unit);
        case Kind::PERCENT:
            return out.put(u'%');
        default:
            return;
    }
}

void renderXlsNumber(const FMT& section, const XlsDecimal& value, int generalChars, XlsWriter& out) {
    if (section.pieces.empty()) return;
    out.setStyle(section.dbNum);
    if (value.isNegative()) out.put(u'-');
    XlsDecimal magnitude = value.abs();
    magnitude.scale(2 * std::int64_t{section.percents} - 3 * std::int64_t{section.scaleCommas});
    if (section.isFraction) {
        renderFraction(section, magnitude, out);
    } else {
        renderPlain(section, magnitude, generalChars, out);
    }
}

void renderXlsText(const FMT& section, const UnicodeString& value, XlsWriter& out) {
    std::int64_t repeated = 0;
    for (const XlsPiece& piece : section.pieces) {
        if (piece.kind == Kind::TEXT || piece.kind == Kind::GENERAL) {
            if (repeated <= XlsFormat::MAX_REPEATED_UNITS) out.text(value, 0, value.length());
            repeated += value.length();
        } else {
            renderXlsCommon(section, piece, out);
        }
    }
}

}  // namespace LumCommon::detail
