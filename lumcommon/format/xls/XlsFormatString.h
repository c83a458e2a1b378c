#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/values/LumLength.h>
#include <lumcommon/values/LumValue.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace LumCommon {

/// A cell: its value, and the date system of its workbook.
struct LUM_API CELLV {
    /// What a cell holds.
    enum Kind : int {
        NUMBER,  ///< a number, dates and times included
        TEXT,    ///< a text
    };

    /// The number 0 in the 1900 system.
    CELLV() = default;
    /// A number.
    explicit CELLV(double value, int workbookBaseYear = 1900) : number(value), baseYear(workbookBaseYear) {}
    /// A text.
    explicit CELLV(const UnicodeString& value) : kind(TEXT), text(value) {}
    /// A number whatever its unit; a real becomes the shortest decimal that reads back as it (0.1, not
    /// 0.100000001490116). Any other value becomes text, as LumValue::toString() prints it.
    explicit CELLV(const LumValue& value, int workbookBaseYear = 1900);

    Kind kind = NUMBER;   ///< which of the next two counts
    double number = 0;    ///< of kind NUMBER
    UnicodeString text;   ///< of kind TEXT
    int baseYear = 1900;  ///< 1900 or 1904: the date system
};

/// The single steps of formatting cells by spreadsheet number format codes. To format cells, use XlsFormat, which takes
/// the steps in the right order and documents what codes mean; these functions are for callers that need one step, or
/// that fit texts into columns.
///
/// A digit string is a decimal number as ASCII text: "-" or nothing, digits, and "." and digits where there is a
/// fraction. The operations on digit strings keep the sign, ignore everything from the first character that does not
/// belong to a digit string, and give "0" if there are no digits.
///
/// Failure: nothing throws except when memory runs out; all other failures are in the return value.
/// Cost: linear in the arguments. Threads: any; the functions share no state.
class LUM_API XlsFormatString {
public:
    XlsFormatString() = delete;

    /// What a `color` receives where a section has none.
    static constexpr int NO_COLOR = -1;

    /// Says whether a text fits into a width.
    /// @param context  what the caller passed, as are the width and the two integers; the library examines none of
    ///                 them.
    using MeasureCallback = bool (*)(void* context, const UnicodeString& text, LumLength width, int first, int second);

    /// The kinds of values of fmtsel().
    enum ValueKind : int {
        VALUE_NUMBER = CELLV::NUMBER,  ///< the value is looked at
        VALUE_TEXT = CELLV::TEXT,      ///< the value is not looked at
    };
    /// The fields of fmttime(); their values are the letters of the fields.
    enum TimeField : int {
        TIME_HOUR = 'h',             ///< 0 to 23
        TIME_MINUTE = 'm',           ///< 0 to 59
        TIME_SECOND = 's',           ///< 0 to 59
        TIME_FRACTION = '0',         ///< the decimals of the second: 0 to 9, 99 or 999; 0 if none are requested
        TIME_DAYS = 'd',             ///< whole days, one more if the time was rounded up to midnight
        TIME_ELAPSED_HOURS = 'H',    ///< including whole days, as the next two do
        TIME_ELAPSED_MINUTES = 'M',  ///< including whole hours
        TIME_ELAPSED_SECONDS = 'S',  ///< including whole minutes
    };

    /// The text of a number in the 1900 system; bogus if no section applies or it is not a date. NaN and infinities
    /// give "#NUM!".
    static UnicodeString FormatString(const UnicodeString& code, double value);

    /// The text of a number, fitted to a width if a measure is given: a General keeps as many digits as fit (at most 11
    /// characters), and the first fill is repeated as often as it fits (at most 1024 times). If nothing fits, the
    /// shortest text is given. Without a measure nothing is filled.
    /// @param cell     gives the date system; the value shown is `value`.
    /// @param color    receives 0xRRGGBB, or NO_COLOR.
    /// @param measure  null: no fitting. Neither it nor `context` is kept.
    /// @return the index of the section used, or an XlsFormat::Failure; `result` is then empty.
    /// @param value  the number.
    /// @param code  the format code.
    /// @param result  receives the text.
    /// @param width  for `measure`.
    /// @param first  for `measure`.
    /// @param second  for `measure`.
    /// @param context  for `measure`.
    static int fmtnum(const CELLV& cell, double value, const UnicodeString& code, UnicodeString& result, int& color,
                      MeasureCallback measure = nullptr, LumLength width = LumLength(), int first = 0, int second = 0,
                      void* context = nullptr);
    /// The same with a code that fmtget() has parsed.
    static int fmtnum(const CELLV& cell, double value, const FMT2& code, UnicodeString& result, int& color,
                      MeasureCallback measure = nullptr, LumLength width = LumLength(), int first = 0, int second = 0,
                      void* context = nullptr);
    /// Shows a text: by the first section with "@", else by a fourth section, else unchanged.
    /// @return the index of the section, or -1 for an unchanged text.
    static int fmtstr(const CELLV& cell, const UnicodeString& value, const UnicodeString& code, UnicodeString& result,
                      int& color);
    /// The same with a code that fmtget() has parsed.
    static int fmtstr(const CELLV& cell, const UnicodeString& value, const FMT2& code, UnicodeString& result,
                      int& color);

    /// Parses a code and returns the number of its sections, 1 to 4. The old content of `out` is dropped.
    static int fmtget(const UnicodeString& code, FMT2& out);
    /// The section for a value: -1 if none applies, -2 if the only section has a condition that fails. If only one of
    /// two sections has a condition, the other one takes what is not negative if it comes first, and everything left
    /// if it comes second.
    /// @param kind  a ValueKind; `value` matters only for numbers.
    /// @param value  the number of the cell.
    /// @param code  as parsed by fmtget().
    static int fmtsel(int kind, double value, const FMT2& code);
    /// Whether a value meets a condition. Operators: 1 >=, 2 <=, 3 <>, 4 <, 5 >, 6 =; false for others.
    static bool iscond(double value, int condition, double operand);

    /// The date of a serial number, whose fraction is ignored. False, with nothing set, if it is not a date.
    /// @param year     in: 1904 for that date system, else 1900; out: the year.
    /// @param month    1 to 12.
    /// @param day      1 to 31; 0 for serial 0 of the 1900 system.
    /// @param weekday  0 is Sunday.
    /// @param era      0 Meiji, 1 Taisho, 2 Showa, 3 Heisei.
    /// @param serial  days, as a cell has them.
    static bool fmtdate(double serial, int& year, int& month, int& day, int& weekday, int& era);
    /// One field of the time of a serial number, which is rounded half up to `decimals` decimals of a second.
    /// @param field     a TimeField.
    /// @param decimals  0 to 3.
    /// @return the field; -1 for a negative or infinite serial, for one of 10,000,000,000 days or more, and for an
    ///         unknown field.
    /// @param serial  days, of which the fraction is the time of the day.
    static std::int64_t fmttime(double serial, int field, int decimals);
    /// The days of a year, 365 or 366; 1900 counts as a leap year.
    static int DateOfYear(int year);
    /// The days of a month; 0 if `month` is not 1 to 12.
    static int DateOfMonth(int year, int month);
    /// The weekday of a serial number, 0 for Sunday; -1 if it is not a date.
    static int WeekOfNum(double serial, int baseYear = 1900);
    /// The Japanese era of a serial number: 0 Meiji, 1 Taisho, 2 Showa, 3 Heisei; no later era is known.
    static int RekiOfNum(double serial, int baseYear = 1900);

    /// The exact decimal expansion, rounded to 32 decimals, all of them written; "0" for NaN and infinities.
    static std::string ConvertFltToStr(double value);
    /// The decimal of a number as spreadsheets see it: 15 significant digits of ConvertFltToStr(), no trailing zeros.
    static std::string convDblStr(double value);
    /// Removes the zeros at the end of the fraction, and the point if it comes last.
    static std::string DblStrDel0(std::string_view digits);
    /// Moves the point to the right (multiplies) or to the left (divides). There are no leading zeros except one
    /// directly before the point. `places` is limited to 1,000,000 either way.
    static std::string DblStrMul10(std::string_view digits, int places = 1);
    /// Moves the point to the left; see DblStrMul10().
    static std::string DblStrDiv10(std::string_view digits, int places = 1);
    /// Rounds to 15 significant digits and then to `decimals` (negative: before the point), half up both times; the
    /// digits after the kept ones become "0".
    static std::string DblStrRoff(std::string_view digits, int decimals);
    /// Rounds to 15 significant digits, half up; the digits after them become "0".
    static std::string Dbl15Roff(std::string_view digits);
    /// The number of digits, before and after the point.
    static int countKetasu(std::string_view digits);
    /// The number of digits before the point.
    static int intKeta(std::string_view digits);
    /// The digits of a number with one digit before the point, and its power of ten: 1234.5 gives "1.2345" and 3.
    static std::string MYfrexp(double value, int& exponent);
    /// An exponent as text: "E", the sign, and at least two digits.
    static std::string ConvertExponent(int exponent);
    /// What General shows in at most `maxChars` characters, not counting "-": scientific notation from 99999999999
    /// upwards and below 1e-9, and between 1e-9 and 0.001 if that shows more digits. "0" for NaN and infinities.
    static std::string ConvGeneral(double value, int maxChars = 11);
    /// The fraction nearest to the absolute value of a number.
    /// @param places            placeholders of the denominator, which stays below 10^places; 1 to 18.
    /// @param denominator       receives the denominator, or the largest int if it does not fit.
    /// @param fixedDenominator  above 0: the denominator to use; the result is not reduced.
    /// @param numerator         receives the numerator including the whole number, or the largest std::int64_t if it
    ///                          does not fit.
    /// @param value  finite; its sign is ignored.
    static void convFrac(double value, int places, int fixedDenominator, std::int64_t& numerator, int& denominator);
    /// The same as text, such as "22/7"; the denominator always fits.
    static std::string yeFraction(double value, int places, int fixedDenominator = 0);

    /// A number formatted by the given number section, sign included; no section is selected. Empty for sections of
    /// another kind.
    static UnicodeString fmtnumN(double value, const FMT& section);
    /// The same for a digit string, of which 15 significant digits count.
    static UnicodeString fmtnumD(std::string_view digits, const FMT& section);

    /// Replaces ASCII digits by those of a style of Japanese numerals: 1 kanji, 2 formal kanji, 3 full-width digits.
    /// Other characters stay, and with any other style all do.
    static UnicodeString sethanzenNumS(const UnicodeString& text, int style);
    /// The character for a digit, 0 to 9, in a style; U+0000 for other digits and styles.
    static char16_t setzenNum(int digit, int style);
    /// The character for 10^power in a style, for the powers 1, 2, 3, 4, 8, 12 and 16; U+0000 for others.
    static char16_t setzenTani(int power, int style);
};

}  // namespace LumCommon
