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
/// Every text is a code. Where its meaning is not obvious:
/// - A code ends at a fourth ";" and after MAX_CODE_UNITS units; the rest is not read.
/// - Each "@" writes the text, as does General in a fourth section, until more than MAX_REPEATED_UNITS units have been
///   written; later ones write nothing.
/// - An unclosed bracket is a literal; a bracket with unknown content writes nothing. If a section has several colours,
///   conditions or numeral styles, the first one counts.
/// - An unclosed quoted text extends to the end of the code; "\", "_" and "*" at the very end write nothing.
/// - An era or a Japanese language tag in any section makes the whole code Japanese: "e" is then a year.
/// - A negative number gets a "-" in front unless its section was chosen for its sign, even if its digits round to zero
///   or the section has no digits. Negative zero is zero.
/// - An exponent has as many digits as its placeholders, but at least two.
/// - A denominator with n placeholders is searched below 10^n and below 10^18; a fixed one of more than nine digits is
///   999,999,999. A fraction of zero is left blank unless its numerator has a "0" or the section shows no whole number.
/// - Literals, skips and fills may stand between the bar of a fraction and its placeholders.
/// - A fill ("*") writes nothing and a skip ("_") one space, as there is no column here. XlsFormatString::fmtnum() can
///   fit a text into a column.
/// - Japanese numerals replace digits one by one, except in General and in all date and time fields but the year, which
///   use the units ten, hundred and thousand.
///
/// Failure: nothing throws except when memory runs out. A value that cannot be shown has an empty text and a negative
/// section; spreadsheets fill such a cell with "#".
/// Cost: parsing is linear in the code, formatting linear in the parsed code and the text (once for each "@").
/// Threads: formatting does not change a format; several threads may use one at the same time.
class LUM_API XlsFormat {
public:
    static constexpr int MAX_CODE_UNITS = 1 << 20;
    static constexpr int MAX_REPEATED_UNITS = 1 << 24;
    static constexpr int NO_COLOR = -1;

    /// The value of Result::section if no section is used.
    enum Failure : int {
        NO_SECTION = -1,        ///< no section applies
        CONDITION_FAILED = -2,  ///< the condition of the only section does not hold
        NOT_A_DATE = -3,        ///< a date or time section, and the value is after the year 9999 or negative (a
                                ///< negative time without a date is shown in the 1904 system)
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
    /// A code without a section for texts shows the text unchanged, with NO_SECTION.
    Result format(const UnicodeString& text) const;
    /// The number or the text of a cell. The date system is that of the format, not that of the cell.
    Result format(const CELLV& cell) const;
    /// The same into an existing result, which saves allocations when it is reused.
    void format(double value, Result& result) const;
    void format(const UnicodeString& text, Result& result) const;

    /// The parsed code. Borrowed from the format.
    const FMT2& getSections() const noexcept { return code_; }
    bool is1904() const noexcept { return is1904_; }

private:
    FMT2 code_;
    bool is1904_ = false;
};

}  // namespace LumCommon
