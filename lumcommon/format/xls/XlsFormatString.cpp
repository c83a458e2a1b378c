#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/XlsFormatString.h>
#include <lumcommon/format/xls/detail/XlsCell.h>
#include <lumcommon/format/xls/detail/XlsCodeParser.h>
#include <lumcommon/format/xls/detail/XlsDates.h>
#include <lumcommon/format/xls/detail/XlsNumerals.h>
#include <lumcommon/format/xls/detail/XlsRender.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

#include <charconv>
#include <cmath>

namespace LumCommon {

namespace {

/// The decimal as which a float was most likely written.
double shortestDecimal(float value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    double result = value;
    std::from_chars(text, end, result);
    return result;
}

/// Tries the texts that may stand for a cell against the caller's measure.
class FittedNumber {
public:
    FittedNumber(const FMT2& code, double value, bool is1904, XlsFormatString::MeasureCallback measure, LumLength width,
                 int first, int second, void* context)
        : code_(code),
          value_(value),
          measure_(measure),
          width_(width),
          first_(first),
          second_(second),
          context_(context) {
        style_.is1904 = is1904;
    }

    int show(UnicodeString& text, int& color) {
        int section = detail::showXlsNumber(code_, value_, style_, nullptr, text, color, fill_);
        if (!measure_ || section < 0) return section;
        const bool isAsText = code_.sections[static_cast<std::size_t>(section)].kind == FMT::TEXT;
        const bool canShrink = isAsText || code_.sections[static_cast<std::size_t>(section)].isGeneral;
        while (canShrink && style_.generalChars > 1 && !fits(text)) {
            --style_.generalChars;
            section = detail::showXlsNumber(code_, value_, style_, nullptr, text, color, fill_);
        }
        if (fill_.at >= 0) fillUp(text);
        return section;
    }

private:
    static constexpr int mostFills = 1024;

    bool fits(const UnicodeString& text) const { return measure_(context_, text, width_, first_, second_); }

    UnicodeString filled(const UnicodeString& text, int count) const {
        const auto units = detail::viewOf(text);
        const auto at = static_cast<std::size_t>(fill_.at);
        UnicodeString result = detail::textOf(units.substr(0, at));
        for (int i = 0; i < count; ++i) detail::append(result, static_cast<char32_t>(fill_.character));
        detail::append(result, units.substr(at));
        return result;
    }

    /// Repeats the fill as often as it fits.
    void fillUp(UnicodeString& text) const {
        int fitting = 0;
        int tooMany = 1;
        while (tooMany <= mostFills && fits(filled(text, tooMany))) {
            fitting = tooMany;
            tooMany *= 2;
        }
        while (tooMany - fitting > 1 && fitting < mostFills) {
            const int middle = (fitting + tooMany) / 2;
            (fits(filled(text, middle)) ? fitting : tooMany) = middle;
        }
        text = filled(text, fitting);
    }

    const FMT2& code_;
    double value_;
    XlsFormatString::MeasureCallback measure_;
    LumLength width_;
    int first_;
    int second_;
    void* context_;
    detail::XlsNumberStyle style_;
    detail::XlsFill fill_;
};

}  // namespace

CELLV::CELLV(const LumValue& value, int workbookBaseYear) : baseYear(workbookBaseYear) {
    if (value.getKind() == KIND_INTEGER) {
        number = value.getIntegerValue();
    } else if (value.getKind() == KIND_REAL) {
        number = shortestDecimal(value.getRealValue(UNIT_NONE));
    } else {
        kind = TEXT;
        text = value.toString();
    }
}

UnicodeString XlsFormatString::FormatString(const UnicodeString& code, double value) {
    FMT2 parsed;
    fmtget(code, parsed);
    UnicodeString text;
    int color = NO_COLOR;
    if (fmtnum(CELLV(value), value, parsed, text, color) < 0 && text.isEmpty()) text.setToBogus();
    return text;
}

int XlsFormatString::fmtnum(const CELLV& cell, double value, const UnicodeString& code, UnicodeString& result,
                            int& color, MeasureCallback measure, LumLength width, int first, int second,
                            void* context) {
    FMT2 parsed;
    fmtget(code, parsed);
    return fmtnum(cell, value, parsed, result, color, measure, width, first, second, context);
}

int XlsFormatString::fmtnum(const CELLV& cell, double value, const FMT2& code, UnicodeString& result, int& color,
                            MeasureCallback measure, LumLength width, int first, int second, void* context) {
    FittedNumber number(code, value, cell.baseYear == 1904, measure, width, first, second, context);
    return number.show(result, color);
}

int XlsFormatString::fmtstr(const CELLV& cell, const UnicodeString& value, const UnicodeString& code,
                            UnicodeString& result, int& color) {
    FMT2 parsed;
    fmtget(code, parsed);
    return fmtstr(cell, value, parsed, result, color);
}

int XlsFormatString::fmtstr(const CELLV&, const UnicodeString& value, const FMT2& code, UnicodeString& result,
                            int& color) {
    return detail::showXlsText(code, value, result, color);
}

int XlsFormatString::fmtget(const UnicodeString& code, FMT2& out) {
    return detail::parseXlsCode(code, detail::XLS_CONTRACT_RULES, out);
}

int XlsFormatString::fmtsel(int kind, double value, const FMT2& code) {
    return kind == VALUE_TEXT ? detail::selectXlsText(code) : detail::selectXlsNumber(code, value);
}

bool XlsFormatString::iscond(double value, int condition, double operand) {
    return detail::xlsConditionHolds(value, condition, operand);
}

bool XlsFormatString::fmtdate(double serial, int& year, int& month, int& day, int& weekday, int& era) {
    const bool is1904 = year == 1904;
    if (!(serial >= 0 && serial < 1e9)) return false;
    const auto whole = static_cast<std::int64_t>(serial);
    if (!detail::xlsIsDay(whole, is1904)) return false;
    const detail::XlsDate date = detail::xlsDate(whole, is1904, detail::XLS_CONTRACT_RULES.eras);
    year = date.year;
    month = date.month;
    day = date.day;
    weekday = date.weekday;
    era = date.era;
    return true;
}

std::int64_t XlsFormatString::fmttime(double serial, int field, int decimals) {
    constexpr double beyondDays = 1e10;
    if (!(serial >= 0 && serial < beyondDays)) return -1;
    const detail::XlsTime time(detail::XlsDecimal::exact(serial), decimals < 0 ? 0 : decimals > 3 ? 3 : decimals);
    switch (field) {
        case TIME_HOUR:
            return time.hour;
        case TIME_MINUTE:
            return time.minute;
        case TIME_SECOND:
            return time.second;
        case TIME_FRACTION:
            return time.fraction;
        case TIME_DAYS:
            return time.days;
        case TIME_ELAPSED_HOURS:
            return time.elapsedHours();
        case TIME_ELAPSED_MINUTES:
            return time.elapsedMinutes();
        case TIME_ELAPSED_SECONDS:
            return time.elapsedSeconds();
        default:
            return -1;
    }
}

int XlsFormatString::DateOfYear(int year) { return detail::xlsIsLeapYear(year) ? 366 : 365; }

int XlsFormatString::DateOfMonth(int year, int month) {
    return month < 1 || month > 12 ? 0 : detail::xlsDaysOfMonth(year, month);
}

int XlsFormatString::WeekOfNum(double serial, int baseYear) {
    int year = baseYear, month = 0, day = 0, weekday = 0, era = 0;
    return fmtdate(serial, year, month, day, weekday, era) ? weekday : -1;
}

int XlsFormatString::RekiOfNum(double serial, int baseYear) {
    // Serials before the first date and after the last one have an era as well.
    const double day = serial >= 0 ? std::fmin(serial, 1e9) : 0;
    return detail::xlsEraOfDay(static_cast<std::int64_t>(day), baseYear == 1904, detail::XLS_CONTRACT_RULES.eras);
}

UnicodeString XlsFormatString::fmtnumN(double value, const FMT& section) {
    UnicodeString text;
    if (section.kind != FMT::NUMBER || !std::isfinite(value)) return text;
    detail::XlsWriter writer(text);
    detail::renderXlsNumber(section, detail::XlsDecimal(value), detail::XlsNumberStyle(), writer);
    writer.flush();
    return text;
}

UnicodeString XlsFormatString::fmtnumD(std::string_view digits, const FMT& section) {
    UnicodeString text;
    if (section.kind != FMT::NUMBER) return text;
    detail::XlsWriter writer(text);
    detail::renderXlsNumber(section, detail::XlsDecimal(digits), detail::XlsNumberStyle(), writer);
    writer.flush();
    return text;
}

UnicodeString XlsFormatString::sethanzenNumS(const UnicodeString& text, int style) {
    UnicodeString result = detail::copyOf(text);
    if (style < 1 || style > 3) return result;
    // From here on it owns its units.
    if (!result.isEmpty()) detail::checked(result.setCharAt(0, result.charAt(0)));
    for (std::int32_t i = 0; i < result.length(); ++i) {
        const char16_t c = result.charAt(i);
        // unchecked: it owns its units
        if (detail::isAsciiDigit(c)) result.setCharAt(i, detail::xlsNumeral(c - '0', style));
    }
    return result;
}

char16_t XlsFormatString::setzenNum(int digit, int style) {
    return digit < 0 || digit > 9 || style < 1 || style > 3 ? char16_t{0} : detail::xlsNumeral(digit, style);
}

char16_t XlsFormatString::setzenTani(int power, int style) {
    return style < 1 || style > 3 ? char16_t{0} : detail::xlsNumeralUnit(power, style);
}

}  // namespace LumCommon
