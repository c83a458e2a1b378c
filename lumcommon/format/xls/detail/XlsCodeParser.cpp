#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/detail/XlsCodeParser.h>
#include <lumcommon/format/xls/detail/XlsCodeScan.h>
#include <lumcommon/format/xls/detail/XlsSectionText.h>
#include <lumcommon/format/xls/detail/XlsTables.h>

#include <algorithm>
#include <iterator>

namespace LumCommon::detail {

namespace {

using Kind = XlsPieceKind;
using Part = XlsPart;

bool isPlaceholder(const XlsRawPiece& piece) {
    return piece.token == XlsToken::DIGIT_0 || piece.token == XlsToken::DIGIT_OPTIONAL ||
           piece.token == XlsToken::DIGIT_SPACED;
}

bool isClock(Kind kind) { return kind >= Kind::HOUR && kind <= Kind::AM_PM; }
bool isCalendar(Kind kind) { return kind >= Kind::YEAR && kind <= Kind::ERA_YEAR && !isClock(kind); }

/// Interprets the raw pieces of one section.
class SectionParser {
public:
    SectionParser(std::u16string_view code, XlsRawSection& raw, bool isJapanese, const XlsRules& rules, FMT& out)
        : code_(code), raw_(raw.pieces), isJapanese_(isJapanese), rules_(rules), out_(out) {}

    void run();

private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    void decideKind();
    void textSection();
    void dateSection();
    void dateLetters(const XlsRawPiece& piece);
    bool isMinute() const;
    void monthIsMinute();
    void yearLetter(const XlsRawPiece& piece);
    void elapsed(const XlsRawPiece& piece);
    void secondFraction(std::size_t index);
    void elapsedHasNoMonths();
    void numberSection();
    void numberPiece(std::size_t index);
    void findFraction();
    void findPlaces();
    void placeholder(const XlsRawPiece& piece, Part part);
    Part partOf(std::size_t index) const;
    void comma(std::size_t index);
    void fixedDenominator();
    std::size_t pastLiterals(std::size_t index, int step) const;

    bool common(const XlsRawPiece& piece);
    void literal(std::int32_t begin, std::int32_t end);
    void asWritten(const XlsRawPiece& piece) { literal(piece.begin, piece.end); }
    XlsPiece& put(Kind kind, std::int32_t count = 1, char32_t unit = 0, Part part = Part::INTEGER) {
        return out_.pieces.emplace_back(XlsPiece{kind, part, unit, count, 0});
    }

    std::u16string_view code_;
    const std::vector<XlsRawPiece>& raw_;
    bool isJapanese_;
    const XlsRules& rules_;
    FMT& out_;

    // For numbers: indexes of raw pieces.
    std::size_t first_ = npos, lastInteger_ = npos, last_ = npos;  ///< placeholders
    std::size_t point_ = npos, exponent_ = npos;
    std::size_t numerator_ = npos, bar_ = npos, denominator_ = npos, denominatorEnd_ = npos;
    // For dates.
    std::size_t lastField_ = npos;  ///< index in out_.pieces of the last field other than AM/PM
    bool hasMinute_ = false;
};

void SectionParser::run() {
    out_.pieces.reserve(raw_.size());
    decideKind();
    switch (out_.kind) {
        case FMT::TEXT:
            return textSection();
        case FMT::DATE_TIME:
            return dateSection();
        case FMT::NUMBER:
            return numberSection();
    }
}

void SectionParser::decideKind() {
    bool isDate = false;
    for (const XlsRawPiece& piece : raw_) {
        switch (piece.token) {
            case XlsToken::AT:
                out_.kind = FMT::TEXT;
                return;
            case XlsToken::LETTERS:
            case XlsToken::AM_PM:
            case XlsToken::ELAPSED:
                isDate = true;
                break;
            case XlsToken::LETTERS_E:
                isDate = isDate || isJapanese_ || rules_.readsAllDateLetters;
                break;
            default:
                break;
        }
    }
    out_.kind = isDate ? FMT::DATE_TIME : FMT::NUMBER;
}

void SectionParser::literal(std::int32_t begin, std::int32_t end) {
    const std::int32_t length = end - begin;
    if (out_.pieces.empty() || out_.pieces.back().kind != Kind::LITERAL) {
        put(Kind::LITERAL, 0).start = out_.literals.length();
    }
    out_.pieces.back().count += length;
    append(out_.literals, code_.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(length)));
}

/// Handles the pieces that mean the same in every kind of section; false for other pieces.
bool SectionParser::common(const XlsRawPiece& piece) {
    switch (piece.token) {
        case XlsToken::LITERAL:
            asWritten(piece);
            return true;
        case XlsToken::SKIP:
            put(Kind::SKIP, 1, piece.unit);
            ++out_.skips;
            return true;
        case XlsToken::FILL:
            put(Kind::FILL, 1, piece.unit);
            ++out_.fills;
            return true;
        default:
            return false;
    }
}

void SectionParser::textSection() {
    for (const XlsRawPiece& piece : raw_) {
        if (common(piece)) continue;
        if (piece.token == XlsToken::AT) {
            put(Kind::TEXT);
        } else if (piece.token == XlsToken::ELAPSED) {
            literal(piece.begin - 1, piece.end + 1);  // with its brackets
        } else {
            asWritten(piece);
        }
    }
}

void SectionParser::dateSection() {
    for (std::size_t i = 0; i < raw_.size(); ++i) {
        const XlsRawPiece& piece = raw_[i];
        if (common(piece)) continue;
        switch (piece.token) {
            case XlsToken::LETTERS:
                dateLetters(piece);
                break;
            case XlsToken::LETTERS_E:
                yearLetter(piece);
                break;
            case XlsToken::EXPONENT:
                if (rules_.readsAllDateLetters) {  // "e-m-d" begins with a year
                    yearLetter({XlsToken::LETTERS_E, U'e', piece.begin, piece.begin + 1, 1});
                    literal(piece.begin + 1, piece.end);
                } else {
                    asWritten(piece);
                }
                break;
            case XlsToken::ELAPSED:
                elapsed(piece);
                break;
            case XlsToken::AM_PM:
                put(Kind::AM_PM, piece.count);
                if (out_.amPm == 0) out_.amPm = piece.count;
                break;
            case XlsToken::POINT:
                if (i + 1 < raw_.size() && raw_[i + 1].token == XlsToken::DIGIT_0 && !out_.pieces.empty() &&
                    (out_.pieces.back().kind == Kind::SECOND || out_.pieces.back().kind == Kind::ELAPSED_SECONDS)) {
                    secondFraction(++i);
                } else {
                    asWritten(piece);
                }
                break;
            default:
                asWritten(piece);
                break;
        }
    }
    for (const XlsPiece& piece : out_.pieces) {
        out_.hasDate = out_.hasDate || isCalendar(piece.kind);
        out_.hasTime = out_.hasTime || isClock(piece.kind) || piece.kind >= Kind::ELAPSED_HOURS;
    }
    if (rules_.elapsesPlainFields) elapsedHasNoMonths();
}

/// A month in digits beside elapsed time is a minute, unless there is a day or a year.
void SectionParser::elapsedHasNoMonths() {
    if (!out_.elapsedHours && !out_.elapsedMinutes && !out_.elapsedSeconds) return;
    const auto isMonth = [](const XlsPiece& piece) { return piece.kind == Kind::MONTH && piece.count <= 2; };
    const bool isDate = std::ranges::any_of(
        out_.pieces, [&](const XlsPiece& piece) { return isCalendar(piece.kind) && !isMonth(piece); });
    if (isDate) return;
    for (XlsPiece& piece : out_.pieces) {
        if (isMonth(piece)) piece.kind = Kind::MINUTE;
    }
    out_.hasDate = false;
}

void SectionParser::secondFraction(std::size_t index) {
    const XlsRawPiece& zeros = raw_[index];
    const std::int32_t shown = std::min(zeros.count, 3);
    put(Kind::SECOND_FRACTION, shown);
    out_.secondDecimals = std::max(out_.secondDecimals, static_cast<int>(shown));
    if (zeros.count > shown) literal(zeros.begin + shown, zeros.end);
}

void SectionParser::dateLetters(const XlsRawPiece& piece) {
    const std::int32_t count = piece.count;
    switch (piece.unit) {
        case 'y':
            put(Kind::YEAR, count <= 2 ? 2 : 4);
            break;
        case 'd':
            if (count <= 2) {
                put(Kind::DAY, count);
            } else {
                put(Kind::WEEKDAY, std::min(count, 4));
            }
            break;
        case 'a':
            put(Kind::WEEKDAY, std::min(count, 4));
            break;
        case 'b':
            put(Kind::YEAR, count <= 2 ? 2 : 4, U'b');
            break;
        case 'm': {
            const bool isTime = count <= 2 && isMinute();
            put(isTime ? Kind::MINUTE : Kind::MONTH, count > 5 ? 4 : count);
            hasMinute_ = hasMinute_ || isTime;
            break;
        }
        case 'h':
            put(Kind::HOUR, std::min(count, 2));
            break;
        case 's':
            monthIsMinute();
            put(Kind::SECOND, std::min(count, 2));
            break;
        case 'g':
            put(Kind::ERA, std::min(count, 3));
            break;
        default:  // r: ee, rr: gggee
            if (count > 1) put(Kind::ERA, 3);
            put(Kind::ERA_YEAR, 2);
            break;
    }
    lastField_ = out_.pieces.size() - 1;
}

void SectionParser::yearLetter(const XlsRawPiece& piece) {
    if (isJapanese_) {
        put(Kind::ERA_YEAR, std::min(piece.count, 2));
    } else if (rules_.readsAllDateLetters) {
        put(Kind::YEAR, 4, U'e');
    } else {
        return asWritten(piece);
    }
    lastField_ = out_.pieces.size() - 1;
}

/// Whether an "m" here is a minute because of the field before it. Seconds that have their minutes need no others.
bool SectionParser::isMinute() const {
    if (lastField_ == npos) return false;
    const Kind last = out_.pieces[lastField_].kind;
    if (last == Kind::HOUR || last == Kind::ELAPSED_HOURS) return true;
    return rules_.secondsMakeMinutes && !hasMinute_ && (last == Kind::SECOND || last == Kind::ELAPSED_SECONDS);
}

/// Seconds follow, so a month in digits just before them is a minute.
void SectionParser::monthIsMinute() {
    if (lastField_ == npos) return;
    XlsPiece& last = out_.pieces[lastField_];
    if (last.kind != Kind::MONTH || last.count > 2) return;
    last.kind = Kind::MINUTE;
    hasMinute_ = true;
}

void SectionParser::elapsed(const XlsRawPiece& piece) {
    switch (piece.unit) {
        case 'h':
            put(Kind::ELAPSED_HOURS, piece.count);
            out_.elapsedHours = true;
            break;
        case 'm':
            put(Kind::ELAPSED_MINUTES, piece.count);
            out_.elapsedMinutes = true;
            break;
        default:
            monthIsMinute();
            put(Kind::ELAPSED_SECONDS, piece.count);
            out_.elapsedSeconds = true;
            break;
    }
    lastField_ = out_.pieces.size() - 1;
}

/// The index of the next piece in the direction of `step` that is not a literal; npos if there is none. A literal digit
/// is passed only to the left of the bar: to its right it is the denominator.
std::size_t SectionParser::pastLiterals(std::size_t index, int step) const {
    const auto isPassed = [&](XlsToken token) {
        return token == XlsToken::LITERAL || token == XlsToken::SKIP || token == XlsToken::FILL ||
               token == XlsToken::LETTERS_E || (token == XlsToken::DIGIT_LITERAL && step < 0);
    };
    do {
        index += static_cast<std::size_t>(step);
        if (index >= raw_.size()) return npos;  // an index below 0 has wrapped around
    } while (isPassed(raw_[index].token));
    return index;
}

void SectionParser::findFraction() {
    std::size_t bar = npos;
    for (std::size_t i = 0; i < raw_.size(); ++i) {
        if (raw_[i].token == XlsToken::POINT || raw_[i].token == XlsToken::EXPONENT) return;
        if (raw_[i].token != XlsToken::SLASH || bar != npos) continue;
        const std::size_t before = pastLiterals(i, -1);
        const std::size_t behind = pastLiterals(i, 1);
        if (before == npos || behind == npos || !isPlaceholder(raw_[before])) continue;
        if (isPlaceholder(raw_[behind]) || raw_[behind].token == XlsToken::DIGIT_LITERAL) bar = i;
    }
    if (bar == npos) return;
    bar_ = bar;
    out_.isFraction = true;
    numerator_ = pastLiterals(bar, -1);
    while (numerator_ > 0 && isPlaceholder(raw_[numerator_ - 1])) --numerator_;
    denominator_ = pastLiterals(bar, 1);
    const bool isFixed = raw_[denominator_].token == XlsToken::DIGIT_LITERAL;
    denominatorEnd_ = denominator_;
    while (denominatorEnd_ < raw_.size() && (isFixed ? raw_[denominatorEnd_].token == XlsToken::DIGIT_LITERAL ||
                                                           raw_[denominatorEnd_].token == XlsToken::DIGIT_0
                                                     : isPlaceholder(raw_[denominatorEnd_]))) {
        ++denominatorEnd_;
    }
}

/// Where the parts of the number begin and end.
void SectionParser::findPlaces() {
    for (std::size_t i = 0; i < raw_.size(); ++i) {
        const XlsRawPiece& piece = raw_[i];
        if (piece.token == XlsToken::POINT && point_ == npos && exponent_ == npos) point_ = i;
        if (piece.token == XlsToken::EXPONENT && exponent_ == npos && first_ != npos) exponent_ = i;
        if (!isPlaceholder(piece) || i >= denominatorEnd_) continue;
        if (first_ == npos) first_ = i;
        if (point_ == npos && exponent_ == npos) lastInteger_ = i;
        last_ = i;
    }
    if (out_.isFraction) lastInteger_ = last_;
}

Part SectionParser::partOf(std::size_t index) const {
    if (bar_ != npos) {
        if (index < numerator_) return Part::INTEGER;
        return index < bar_ ? Part::NUMERATOR : Part::DENOMINATOR;
    }
    if (index > exponent_ && exponent_ != npos) return Part::EXPONENT;
    return point_ != npos && index > point_ ? Part::DECIMALS : Part::INTEGER;
}

void SectionParser::numberSection() {
    findFraction();
    findPlaces();
    for (std::size_t i = 0; i < raw_.size(); ++i) {
        if (i == denominator_ && raw_[i].token == XlsToken::DIGIT_LITERAL) {
            fixedDenominator();
            i = denominatorEnd_ - 1;
        } else {
            numberPiece(i);
        }
    }
}

void SectionParser::numberPiece(std::size_t index) {
    const XlsRawPiece& piece = raw_[index];
    if (common(piece)) return;
    switch (piece.token) {
        case XlsToken::DIGIT_0:
        case XlsToken::DIGIT_OPTIONAL:
        case XlsToken::DIGIT_SPACED:
            if (index >= denominatorEnd_) {
                asWritten(piece);  // a number ends with its denominator
            } else {
                placeholder(piece, partOf(index));
            }
            break;
        case XlsToken::COMMA:
            comma(index);
            break;
        case XlsToken::PERCENT:
            put(Kind::PERCENT);
            ++out_.percents;
            break;
        case XlsToken::GENERAL:
            put(Kind::GENERAL);
            out_.isGeneral = true;
            break;
        case XlsToken::POINT:
            if (index == point_) {
                put(Kind::POINT);
                out_.hasPoint = true;
            } else {
                asWritten(piece);
            }
            break;
        case XlsToken::EXPONENT:
            if (index == exponent_) {
                put(Kind::EXPONENT, 1, piece.unit);
                out_.exponentSign = static_cast<char16_t>(piece.unit);
            } else {
                asWritten(piece);
            }
            break;
        case XlsToken::SLASH:
            if (index == bar_) {
                put(Kind::FRACTION_BAR);
            } else {
                asWritten(piece);
            }
            break;
        default:
            asWritten(piece);
            break;
    }
}

void SectionParser::placeholder(const XlsRawPiece& piece, Part part) {
    XlsDigitCounts* const counts[] = {&out_.integer, &out_.decimals, &out_.exponent, &out_.numerator,
                                      &out_.denominator};
    XlsDigitCounts& count = *counts[static_cast<std::size_t>(part)];
    switch (piece.token) {
        case XlsToken::DIGIT_0:
            put(Kind::FORCED_DIGIT, piece.count, 0, part);
            count.forced += piece.count;
            if (part == Part::DECIMALS) out_.forcedDecimals = count.total();
            break;
        case XlsToken::DIGIT_OPTIONAL:
            put(Kind::OPTIONAL_DIGIT, piece.count, 0, part);
            count.optional += piece.count;
            break;
        default:
            put(Kind::SPACED_DIGIT, piece.count, 0, part);
            count.spaced += piece.count;
            break;
    }
}

void SectionParser::comma(std::size_t index) {
    if (first_ == npos || index < first_) return asWritten(raw_[index]);
    put(Kind::COMMA);
    const bool isBeforePoint = point_ != npos && index < point_;
    if (index > last_ || (isBeforePoint && index > lastInteger_)) {
        ++out_.scaleCommas;
    } else {
        out_.hasThousands = true;
    }
}

void SectionParser::fixedDenominator() {
    constexpr int largest = 999'999'999;
    std::int64_t value = 0;
    for (std::size_t i = denominator_; i < denominatorEnd_; ++i) {
        for (std::int32_t at = raw_[i].begin; at < raw_[i].end && value <= largest; ++at) {
            value = value * 10 + (code_[static_cast<std::size_t>(at)] - '0');
        }
    }
    out_.fixedDenominator = static_cast<int>(std::min<std::int64_t>(value, largest));
    std::int32_t digits = 0;
    for (int rest = out_.fixedDenominator; rest != 0; rest /= 10) ++digits;
    put(Kind::FIXED_DENOMINATOR, digits, 0, Part::DENOMINATOR);
}

}  // namespace

int parseXlsCode(const UnicodeString& code, const XlsRules& rules, FMT2& out) {
    out = FMT2();
    const std::u16string_view units(code.getBuffer(),
                                    static_cast<std::size_t>(std::min(code.length(), XlsFormat::MAX_CODE_UNITS)));
    XlsCodeScan scan(units, rules, out);
    out.count = scan.run();
    for (int i = 0; i < out.count; ++i) {
        FMT& section = out.sections[static_cast<std::size_t>(i)];
        SectionParser(units, scan.section(i), scan.isJapanese(), rules, section).run();
        setXlsSectionText(section, scan.section(i).prefix);
    }
    return out.count;
}

}  // namespace LumCommon::detail
