#include <lumcommon/format/xls/detail/XlsDateNames.h>
#include <lumcommon/format/xls/detail/XlsDates.h>
#include <lumcommon/format/xls/detail/XlsRender.h>
#include <lumcommon/format/xls/detail/XlsTables.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

#include <charconv>

namespace LumCommon::detail {

namespace {

using Kind = XlsPieceKind;

class DateRenderer {
public:
    DateRenderer(const FMT& section, const XlsTime& time, const XlsDate& date, const XlsRules& rules,
                 const XlsDateNames* names, XlsWriter& out)
        : section_(section), time_(time), date_(date), rules_(rules), names_(names), out_(out) {}

    void run() {
        for (const XlsPiece& piece : section_.pieces) {
            if (piece.kind <= Kind::FILL) {
                renderXlsCommon(section_, piece, out_);
            } else if (piece.kind >= Kind::ELAPSED_HOURS) {
                elapsed(piece);
            } else if (piece.kind >= Kind::HOUR && piece.kind <= Kind::AM_PM) {
                clock(piece);
            } else {
                calendar(piece);
            }
        }
    }

private:
    void calendar(const XlsPiece& piece);
    void year(const XlsPiece& piece);
    void monthName(std::int32_t form);
    void clock(const XlsPiece& piece);
    void elapsed(const XlsPiece& piece);
    /// Writes at least `width` digits, or numerals with units, without padding, if the style has them.
    void number(std::int64_t value, std::int32_t width, bool isReadable = true);
    void name(std::u16string_view full, bool isShort) { out_.put(isShort ? full.substr(0, xlsShortName) : full); }

    const FMT& section_;
    const XlsTime& time_;
    const XlsDate& date_;
    const XlsRules& rules_;
    const XlsDateNames* names_;
    XlsWriter& out_;
};

void DateRenderer::number(std::int64_t value, std::int32_t width, bool isReadable) {
    char text[24];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    const std::string_view digits(text, static_cast<std::size_t>(end - text));
    constexpr int fullWidthStyle = 3;
    if (isReadable && section_.dbNum != 0 && section_.dbNum != fullWidthStyle) {
        return xlsWriteReadable(out_, digits, section_.dbNum);
    }
    for (auto i = static_cast<std::int32_t>(digits.size()); i < width; ++i) out_.digit('0');
    out_.number(digits);
}

void DateRenderer::year(const XlsPiece& piece) {
    constexpr unsigned republic = 4;
    constexpr unsigned buddhist = 7;
    constexpr unsigned taiwan = 0x404;
    const bool isOfLanguage = piece.unit == U'e';
    auto calendar = static_cast<unsigned>(section_.calendar);
    if (piece.unit == U'b') calendar = buddhist;
    if (isOfLanguage && section_.locale == taiwan) calendar = republic;
    if (!isOfLanguage && calendar == republic) calendar = 0;  // only "e" counts years of the republic
    const int shown = date_.year + xlsCalendarYears(calendar);
    if (shown <= 0) return number(date_.year, 4);  // before the calendar began
    if (isOfLanguage) return number(shown, 1);
    number(piece.count == 2 ? shown % 100 : shown, piece.count, false);
}

void DateRenderer::monthName(std::int32_t form) {
    const auto index = static_cast<std::size_t>(date_.month) - 1;
    const UnicodeString& full = names_->months[index];
    if (form == 3) return out_.text(names_->shortMonths[index]);
    out_.text(full, 0, form == 5 ? full.moveIndex32(0, 1) : full.length());
}

void DateRenderer::calendar(const XlsPiece& piece) {
    const XlsEra& era = xlsEra(date_.era);
    switch (piece.kind) {
        case Kind::YEAR:
            return year(piece);
        case Kind::MONTH:
            if (piece.count <= 2) return number(date_.month, piece.count);
            if (names_) return monthName(piece.count);
            if (piece.count == 5) return out_.put(xlsMonthName(date_.month).front());
            return name(xlsMonthName(date_.month), piece.count == 3);
        case Kind::DAY:
            return number(date_.day, piece.count);
        case Kind::WEEKDAY:
            if (names_) return out_.text((piece.count == 3 ? names_->shortDays : names_->days)[date_.weekday]);
            return name(xlsDayName(date_.weekday), piece.count == 3);
        case Kind::ERA:
            if (piece.count == 1) return out_.put(era.initial);
            return out_.put(piece.count == 2 ? era.name.substr(0, 1) : era.name);
        default:
            if (section_.namesFirstYear && date_.year == era.yearBefore + 1) return out_.put(u'\u5143');
            return number(date_.year - era.yearBefore, piece.count);
    }
}

void DateRenderer::clock(const XlsPiece& piece) {
    switch (piece.kind) {
        case Kind::HOUR: {
            if (section_.elapsedHours && rules_.elapsesPlainFields) return number(time_.elapsedHours(), piece.count);
            const int hour = section_.amPm == 0 ? time_.hour : (time_.hour + 11) % 12 + 1;
            return number(hour, piece.count);
        }
        case Kind::MINUTE:
            return number(section_.elapsedMinutes && rules_.elapsesPlainFields ? time_.elapsedMinutes() : time_.minute,
                          piece.count);
        case Kind::SECOND:
            return number(section_.elapsedSeconds && rules_.elapsesPlainFields ? time_.elapsedSeconds() : time_.second,
                          piece.count);
        case Kind::SECOND_FRACTION: {
            out_.put(u'.');
            int fraction = time_.fraction;
            for (int shown = section_.secondDecimals; shown > piece.count; --shown) fraction /= 10;
            return number(fraction, piece.count, false);
        }
        default: {
            if (names_ && piece.count <= XLS_AMPM_WORDS) return out_.text(names_->amPm[time_.hour < 12 ? 0 : 1]);
            const std::u16string_view form = xlsAmPm(piece.count);
            const std::size_t bar = form.find(u'/');
            return out_.put(time_.hour < 12 ? form.substr(0, bar) : form.substr(bar + 1));
        }
    }
}

void DateRenderer::elapsed(const XlsPiece& piece) {
    switch (piece.kind) {
        case Kind::ELAPSED_HOURS:
            return number(time_.elapsedHours(), piece.count);
        case Kind::ELAPSED_MINUTES:
            return number(time_.elapsedMinutes(), piece.count);
        default:
            return number(time_.elapsedSeconds(), piece.count);
    }
}

}  // namespace

bool renderXlsDate(const FMT& section, const XlsDecimal& value, const XlsNumberStyle& style, const XlsDateNames* names,
                   XlsWriter& out) {
    const bool is1904 = style.is1904;
    // Only the 1904 system has negative times, and perhaps negative dates.
    if (value.isNegative() && (!is1904 || (section.hasDate && !style.rules->hasNegativeDates))) return false;
    const XlsDecimal magnitude = value.abs();
    if (!xlsIsDay(magnitude.whole(), is1904)) return false;
    const XlsTime time(magnitude, section.secondDecimals);
    XlsDate date;
    if (section.hasDate) {
        // A date without a time ignores that its time would be rounded up to the next day.
        const std::int64_t day = section.hasTime ? time.days : magnitude.whole();
        if (!xlsIsDay(day, is1904)) return false;
        date = xlsDate(day, is1904, style.rules->eras);
    }
    out.setStyle(section.dbNum, xlsNumeralZero(static_cast<unsigned>(section.numerals)));
    if (value.isNegative()) out.put(u'-');
    DateRenderer(section, time, date, *style.rules, names, out).run();
    return true;
}

}  // namespace LumCommon::detail
