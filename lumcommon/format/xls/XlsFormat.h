#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/format/xls/XlsFormatCode.h>

namespace LumCommon {

struct CELLV;

/// A number format code of a spreadsheet, parsed once and used for any number of cells.
///
///     const XlsFormat format(u"#,##0.00;[Red](#,##0.00)");
///     XlsFormat::Result cell = format.format(-1234.5);    // text "(1,234.50)", color 0xFF0000, section 1
///
/// The codes are those of SpreadsheetML (ECMA-376-1, numFmt). Names of months and days are English, the decimal point
/// is "." and the thousands separator "," in every locale. Digits are those of the decimal value rounded to 15
/// significant digits; further rounding is half up on these, so that 2.675 with two decimals is 2.68.
///
/// Where a code leaves something open:
/// - What follows a fourth ";" is not read, nor what follows the first MAX_CODE_UNITS units.
/// - Each "@" writes the text, until MAX_REPEATED_UNITS are exceeded; further ones write nothing. In a fourth section
///   General does so as well.
/// - A bracket without end is a literal; one whose content is unknown writes nothing. Of several colours, conditions
///   or numeral styles in a section the first counts.
/// - A quoted text without end goes on to the end of the code; "\", "_" and "*" at the end write nothing.
/// - A section with an era or with a tag of the language Japanese anywhere makes the code Japanese: "e" is a year.
/// - A negative number in a section that was not chosen for its sign is written behind "-", even when its digits
///   round to zero or the section has none. Negative zero is zero.
/// - An exponent has as many digits as its placeholders, but two at least.
/// - A denominator with n placeholders is searched below 10^n, and below 10^18; a fixed one beyond nine digits is
///   999,999,999. A fraction that is zero leaves blanks, unless its numerator has a "0" or there is no whole number.
/// - Literals, skips and fills may stand between the bar of a fraction and its placeholders.
/// - A fill ("*") writes nothing and a skip ("_") one space: there is no column here. XlsFormatString::fmtnum() fits a
///   text into one.
/// - Japanese numerals replace digit by digit; General, and the fields of dates but for the year, use ten, hundred
///   and thousand.
///
/// Failure: nothing is thrown but for exhausted memory. A value that cannot be shown has an empty text and a negative
/// section; spreadsheets fill such a cell with "#".
/// Cost: linear in the code, and formatting in the parsed code and the text (once for each "@"). Threads: a format is
/// not changed by formatting; it may be used by several threads at a time.
class LUM_API XlsFormat {
public:
    static constexpr int MAX_CODE_UNITS = 1 << 20;
    static constexpr int MAX_REPEATED_UNITS = 1 << 24;
    static constexpr int NO_COLOR = -1;

    /// What Result::section says where no section is used.
    enum Failure : int {
        NO_SECTION = -1,        ///< none applies
        CONDITION_FAILED = -2,  ///< the condition of the only section does not hold
        NOT_A_DATE = -3,        ///< a date or time is asked of a value below 0 or beyond the year 9999
    };

    struct Result {
        UnicodeString text;
        int color = NO_COLOR;  ///< 0xRRGGBB of the section
        int section = 0;       ///< index of the section used, or a Failure
    };

    /// General, in the 1900 system.
    XlsFormat();
    /// @param is1904  days count from 1904-01-01 as 0; false: from 1900-01-01 as 1, with a 29 February 1900.
    explicit XlsFormat(const UnicodeString& code, bool is1904 = false);

    /// NaN and infinities are shown as "#NUM!", with NO_SECTION.
    Result format(double value) const;
    /// A code without a section for text shows it as it is, with NO_SECTION.
    Result format(const UnicodeString& text) const;
    /// The number or the text of a cell. The date system is that of the format, not the cell's.
    Result format(const CELLV& cell) const;
    /// The same into a result that is used again and again, which spares allocations.
    void format(double value, Result& result) const;
    void format(const UnicodeString& text, Result& result) const;

    const FMT2& getSections() const noexcept { return code_; }
    bool is1904() const noexcept { return is1904_; }

private:
    FMT2 code_;
    bool is1904_ = false;
};

}  // namespace LumCommon
