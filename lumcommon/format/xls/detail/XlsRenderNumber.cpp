#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/detail/XlsDigitRuns.h>
#include <lumcommon/format/xls/detail/XlsGeneral.h>
#include <lumcommon/format/xls/detail/XlsRender.h>
#include <lumcommon/format/xls/detail/XlsTables.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

#include <algorithm>
#include <string>

namespace LumCommon::detail {

namespace {

using Kind = XlsPieceKind;
using Part = XlsPart;

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

/// The whole number that the mantissa or number shows; zero may have a digit for placeholders that need none.
NaturalDigits shownInteger(const FMT& section, const XlsDecimal& value, const XlsRules& rules) {
    const bool isZeroMantissa = section.exponentSign != 0 && value.isZero() && section.integer.total() > 0;
    return isZeroMantissa && rules.zeroMantissaIsDigit ? NaturalDigits{"0", 1} : integerOf(value);
}

void renderPlain(const FMT& section, XlsDecimal value, const XlsNumberStyle& style, XlsWriter& out) {
    const XlsDecimal unrounded = value;
    std::int64_t exponent = 0;
    if (section.exponentSign != 0) {
        exponent = takeExponent(value, section);
    } else {
        value.round(section.decimals.total());
    }
    const std::string exponentDigits = xlsExponent(exponent, style.rules->exponentDigits).substr(2);
    IntegerRun integer(out, shownInteger(section, value, *style.rules), section.integer.total(), section.hasThousands);
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
                renderXlsGeneral(section, unrounded, style.generalChars, *style.rules, out);
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

void renderXlsGeneral(const FMT& section, const XlsDecimal& magnitude, int maxChars, const XlsRules& rules,
                      XlsWriter& out) {
    std::string text = xlsGeneral(magnitude, maxChars, rules);
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

void renderXlsNumber(const FMT& section, const XlsDecimal& value, const XlsNumberStyle& style, XlsWriter& out) {
    if (section.pieces.empty()) return;
    out.setStyle(section.dbNum, xlsNumeralZero(static_cast<unsigned>(section.numerals)));
    if (value.isNegative()) out.put(u'-');
    XlsDecimal magnitude = value.abs();
    if (section.exponentSign == 0 || style.rules->scalesMantissa) {
        magnitude.scale(2 * std::int64_t{section.percents} - 3 * std::int64_t{section.scaleCommas});
    }
    if (section.isFraction) {
        renderXlsFraction(section, magnitude, *style.rules, out);
    } else {
        renderPlain(section, magnitude, style, out);
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
