#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/format/xls/XlsFormatCode.h>

#include <memory>

namespace LumCommon {

struct CELLV;
namespace detail {
struct XlsCodeNames;
}

/// A number format code of a spreadsheet, parsed once and used for any number of cells.
///
///     const XlsFormat format(u"#,##0.00;[Red](#,##0.00)");
///     XlsFormat::Result cell = format.format(-1234.5);    // text "(1,234.50)", color 0xFF0000, section 1
///
/// The codes are those of SpreadsheetML (ECMA-376-1, numFmt). The decimal point is "." and the thousands separator ","
/// in every locale. Digits are those of the decimal value rounded to 15 significant digits; further rounding is half up
/// on these, so that 2.675 with two decimals is 2.68.
///
/// Cells are shown as spreadsheet programs show them, or by the simpler rules of XlsFormatString; see Rules. Every text
/// is a code. Where its meaning is not obvious, in both:
/// - A code ends at a fourth ";" and after MAX_CODE_UNITS units; the rest is not read.
/// - Each "@" writes the text, as does General in a fourth section, until more than MAX_REPEATED_UNITS units have been
///   written; later ones write nothing.
/// - An unclosed bracket is a literal; a bracket with unknown content writes nothing. If a section has several colours,
///   conditions or numeral styles, the first one counts.
/// - An unclosed quoted text extends to the end of the code; "\", "_" and "*" at the very end write nothing.
/// - An era or a Japanese language tag in any section makes the whole code Japanese: "e" is then a year of an era.
/// - A negative number gets a "-" in front unless its section was chosen for its sign, even if its digits round to zero
///   or the section has no digits. Negative zero is zero.
/// - A denominator with n placeholders is below 10^n; a fixed one of more than nine digits is 999,999,999. A fraction
/// of
///   zero is left blank unless its numerator has a "0" or the section shows no whole number.
/// - Literals, skips and fills may stand between the bar of a fraction and its placeholders.
/// - A fill ("*") writes nothing and a skip ("_") one space, as there is no column here. XlsFormatString::fmtnum() can
///   fit a text into a column.
/// - Japanese numerals replace digits one by one, except in General and in all date and time fields but the year, which
///   use the units ten, hundred and thousand.
///
/// Failure: nothing throws except when memory runs out. A value that cannot be shown has a negative section.
/// Cost: parsing is linear in the code, and loads the names of days and months if a tag asks for those of another
/// language than English; formatting is linear in the parsed code and the text (once for each "@").
/// Threads: formatting does not change a format; several threads may use one at the same time.
class LUM_API XlsFormat {
public:
    /// How many UTF-16 units of a code are read.
    static constexpr int MAX_CODE_UNITS = 1 << 20;
    /// How many UTF-16 units repeated texts may have made before another "@" writes nothing.
    static constexpr int MAX_REPEATED_UNITS = 1 << 24;
    /// The value of Result::color without a colour.
    static constexpr int NO_COLOR = -1;

    /// How cells are shown where spreadsheet programs and XlsFormatString differ.
    enum class Rules {
        /// As spreadsheet programs show them in an English system.
        ///
        /// Cells:
        /// - A number that cannot be shown is "########", as in a narrow column. One that the condition of the only
        ///   section rejects is shown as General, and so is one whose code has only sections for texts.
        /// - Like a second section without conditions, a first or second section whose condition only negative numbers
        ///   meet shows no sign; but not if it is the only section, or the first one with "<=" and the second has
        ///   another condition than ">".
        ///
        /// Numbers:
        /// - An exponent has as many digits as its placeholders, at least one. "%" and "," do not scale in scientific
        ///   notation. The mantissa of zero has a digit if there is a placeholder for it.
        /// - A fraction is the last convergent of the continued fraction whose denominator has room, at most 7 digits:
        ///   0.456 is 1/2 with one digit and 26/57 with two.
        /// - A whole number or a fraction that is absent takes the literals between the two, and those inside the
        ///   fraction, with it. If these parts have a "?", spaces take their places.
        /// - General is scientific from 100000000000 upwards. A code may call it by its name in Japanese, Chinese and
        ///   Korean programs, and AM/PM by its Chinese one.
        /// - A tag chooses numerals: [$-D000000] is Thai digits.
        ///
        /// Dates and times:
        /// - Days, months and AM/PM are in the language of a tag ([$-407], [$-de-DE]); [$-F800] and [$-F400] are
        ///   English. "am/pm" in any case of its letters is AM or PM.
        /// - "m" after seconds is minutes, unless these have theirs before them. In a section with "[h]", "[m]" or
        ///   "[s]", the same letter without brackets is that total too, and "m" is never a month without a day or year.
        /// - "aaa" and "aaaa" are weekdays, "b" is the Buddhist year, and "e" outside of Japanese codes is the year,
        /// from
        ///   1911 if the tag is that of Taiwan; "b1" and "b2" write nothing. [$-1070000] makes years Buddhist.
        /// - The era Reiwa began on 2019-05-01. [$-ja-JP-x-gannen] writes the first year of an era as a word.
        /// - The 1904 system has negative dates, with a "-" in front.
        SPREADSHEET,
        /// As XlsFormatString::fmtnum() and fmtstr() show them without a measure: exponents of at least two digits, the
        /// fractions of convFrac() with denominators below 10^18, all literals, English names, eras up to Heisei, and
        /// no
        /// text for a number that cannot be shown.
        CONTRACT,
    };

    /// The value of Result::section if no section is used.
    enum Failure : int {
        NO_SECTION = -1,        ///< no section applies
        CONDITION_FAILED = -2,  ///< the condition of the only section does not hold
        NOT_A_DATE = -3,        ///< a date or time section, and the value is after the year 9999 or negative (in the
                                ///< 1904 system negative times are shown, and by Rules::SPREADSHEET negative dates)
    };

    /// What a cell shows.
    struct Result {
        UnicodeString text;    ///< what stands in the cell; may be empty
        int color = NO_COLOR;  ///< 0xRRGGBB of the section
        int section = 0;       ///< index of the section used, or a Failure
    };

    /// General, in the 1900 system.
    XlsFormat();
    /// @param is1904  days count from 1904-01-01 as 0; false: from 1900-01-01 as 1, with a 29 February 1900.
    /// @param code  any text.
    /// @param rules  how cells are shown where the two ways differ.
    explicit XlsFormat(const UnicodeString& code, bool is1904 = false, Rules rules = Rules::SPREADSHEET);

    /// NaN and infinities are shown as "#NUM!", with NO_SECTION.
    Result format(double value) const;
    /// A code without a section for texts shows the text unchanged, with NO_SECTION.
    Result format(const UnicodeString& text) const;
    /// The number or the text of a cell. The date system is that of the format, not that of the cell.
    Result format(const CELLV& cell) const;
    /// The same into an existing result, which saves allocations when it is reused.
    void format(double value, Result& result) const;
    /// The same of a text, into an existing result.
    void format(const UnicodeString& text, Result& result) const;

    /// The parsed code. Borrowed from the format.
    const FMT2& getSections() const noexcept { return code_; }
    /// Whether days count from 1904-01-01.
    bool is1904() const noexcept { return is1904_; }
    /// The rules that cells are shown by.
    Rules getRules() const noexcept { return rules_; }

private:
    FMT2 code_;
    bool is1904_ = false;
    Rules rules_ = Rules::SPREADSHEET;
    std::shared_ptr<const detail::XlsCodeNames> names_;  ///< null for English
};

}  // namespace LumCommon
