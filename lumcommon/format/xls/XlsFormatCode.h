#pragma once

#include <lumcommon/core/Text.h>

#include <array>
#include <cstdint>
#include <vector>

namespace LumCommon {

// A format code that has been parsed: FMT2 holds its sections, an FMT its pieces, each an XlsPiece. XlsFormat and
// XlsFormatString::fmtget() make these structures. Read them to find out what a code shows, for example whether cells
// with it are dates, how many decimals they have or which colour, without taking the code apart again.

/// What a piece of a section is. The comments say what XlsPiece::count means for each kind: a length, a number of
/// placeholders, or the form of a date or time field. For kinds whose comment does not mention it, it is 1.
///
/// Where a form is a number of digits, shorter numbers are padded with zeros, except in Japanese numerals with units. A
/// field that a code writes with another number of letters has the form that it means ("yyyyy" is 4).
///
/// Kinds of one sort are adjacent: literals, numbers, text, calendar, clock, era, elapsed time.
enum class XlsPieceKind : std::uint8_t {
    LITERAL,            ///< text that is written unchanged; `count` is its length in UTF-16 units
    SKIP,               ///< `_`: one space in place of the character `unit`
    FILL,               ///< `*`: the character `unit`, repeated to fill the width
    FORCED_DIGIT,       ///< `count` times "0": always a digit
    OPTIONAL_DIGIT,     ///< `count` times "#": leaves out insignificant zeros
    SPACED_DIGIT,       ///< `count` times "?": a space for an insignificant zero
    POINT,              ///< the decimal point
    COMMA,              ///< one that set FMT::hasThousands or counts in FMT::scaleCommas; writes nothing itself
    PERCENT,            ///< "%"
    EXPONENT,           ///< "E"; `unit` is "+" (the sign is always written) or "-" (only when negative)
    FRACTION_BAR,       ///< "/" between numerator and denominator
    FIXED_DENOMINATOR,  ///< FMT::fixedDenominator, which has `count` digits
    GENERAL,            ///< the number as General shows it; in a fourth section, a text
    TEXT,               ///< "@": the text of the cell
    YEAR,             ///< 2: the last two digits; 4: all four; `unit` is "b" for the Buddhist year, "e" for that of the
                      ///< language (that of Taiwan counts from 1911), 0 for the common one
    MONTH,            ///< 1, 2: digits; 3: short name; 4: name; 5: initial
    DAY,              ///< 1, 2: digits of the day of the month
    WEEKDAY,          ///< 3: short name; 4: name
    HOUR,             ///< 1, 2: digits, of 12 hours if FMT::amPm is not 0, otherwise of 24
    MINUTE,           ///< 1, 2: digits
    SECOND,           ///< 1, 2: digits
    SECOND_FRACTION,  ///< the point and `count` decimals of the second, 1 to 3
    AM_PM,            ///< `count` is the form, 1 to 5, see FMT::amPm
    ERA,              ///< 1: Latin initial; 2: first character of the name; 3: name
    ERA_YEAR,         ///< 1, 2: digits of the year in its era
    ELAPSED_HOURS,    ///< hours, whole days included, in at least `count` digits; likewise the next two
    ELAPSED_MINUTES,  ///< minutes, whole hours included
    ELAPSED_SECONDS,  ///< seconds, whole minutes included
};

/// The part of a number that a placeholder belongs to.
enum class XlsPart : std::uint8_t {
    INTEGER,      ///< before the point
    DECIMALS,     ///< after the point
    EXPONENT,     ///< after "E"
    NUMERATOR,    ///< before the bar of a fraction
    DENOMINATOR,  ///< after the bar of a fraction
};

/// One piece of a section: what it writes, in which form. A run of equal placeholders is one piece, and so are adjacent
/// literals. Comparing looks at the fields alone, not at the text of a literal.
struct XlsPiece {
    XlsPieceKind kind = XlsPieceKind::LITERAL;  ///< what it writes
    XlsPart part = XlsPart::INTEGER;            ///< of placeholders and FIXED_DENOMINATOR; INTEGER for other kinds
    char32_t unit = 0;                          ///< a code point, for SKIP, FILL, EXPONENT and YEAR; 0 for other kinds
    std::int32_t count = 0;                     ///< see XlsPieceKind
    std::int32_t start = 0;  ///< of a literal: its first UTF-16 unit in FMT::literals; 0 for other kinds

    /// Whether all fields are equal.
    friend bool operator==(const XlsPiece&, const XlsPiece&) = default;
};

/// How many placeholders of each sort one part of a number has.
struct XlsDigitCounts {
    std::int32_t forced = 0;    ///< "0"
    std::int32_t optional = 0;  ///< "#"
    std::int32_t spaced = 0;    ///< "?"

    /// The number of all placeholders of the part.
    std::int32_t total() const noexcept { return forced + optional + spaced; }
};

/// One section of a parsed format code: when it applies, and what it writes.
///
/// Fields that mean nothing for the kind of the section keep their defaults. Of several brackets of one sort (colour,
/// condition, numeral style, language) the first in the section counts.
/// Ownership: a section owns its pieces and texts; nothing refers to the code it was made from.
/// Threads: a plain value; several threads may read one at the same time.
struct FMT {
    /// What the section shows. One with "@" is of kind TEXT, else one with a field of a date or time is of kind
    /// DATE_TIME; any other is of kind NUMBER, even without a placeholder.
    enum Kind : int {
        NUMBER,     ///< a number, or nothing but literals
        DATE_TIME,  ///< fields of a date or time
        TEXT,       ///< the text of the cell
    };

    Kind kind = NUMBER;   ///< what the section shows
    int condition = 0;    ///< operator 1 to 6 (>=, <=, <>, <, >, =), as for XlsFormatString::iscond(); 0 for none
    double operand = 0;   ///< what the condition compares with; finite
    int color = 0;        ///< number in the palette, 1 to 56; 0 for none
    int dbNum = 0;        ///< style of Japanese numerals, 1 to 3; 0 for none
    unsigned locale = 0;  ///< language of a [$...-...] tag as a 16-bit number (0x407, 0x411); 0 for none. A section
                          ///< with ERA_YEAR but neither ERA nor tag gets 0x411

    int numerals = 0;  ///< by the first of the four bytes of such a tag: 2 Arabic to 19 Mongolian; 0 for European ones
    int calendar = 0;  ///< by the second byte: 4 Taiwan, 5 Korea, 7 Thailand; 0 for the common one

    // Numbers.
    XlsDigitCounts integer;           ///< placeholders of the whole number
    XlsDigitCounts decimals;          ///< placeholders after the point
    XlsDigitCounts exponent;          ///< placeholders of the exponent
    XlsDigitCounts numerator;         ///< placeholders of the numerator
    XlsDigitCounts denominator;       ///< placeholders of the denominator
    std::int32_t forcedDecimals = 0;  ///< decimals that are always written: up to the last "0" after the point
    std::int32_t percents = 0;        ///< number of "%": each multiplies the value by 100
    std::int32_t scaleCommas = 0;     ///< commas after the last digit before the point, or after all digits: each
                                      ///< divides the value by 1000
    int fixedDenominator = 0;         ///< of a fraction, 1 to 999,999,999; 0 if it has placeholders instead
    char16_t exponentSign = 0;        ///< "+" or "-" after the "E"; 0 if the number is not in scientific notation
    bool hasPoint = false;            ///< there is a decimal point, perhaps without decimals
    bool hasThousands = false;        ///< "," separates the thousands of the whole number
    bool isFraction = false;          ///< numerator and denominator, with or without a whole number
    bool isGeneral = false;           ///< there is a General

    // Dates and times.
    bool hasDate = false;         ///< there are fields of the calendar: the value must be a date
    bool namesFirstYear = false;  ///< the first year of an era is written as its name, by [$-ja-JP-x-gannen]
    bool hasTime = false;         ///< there are fields of the clock or of elapsed time
    bool elapsedHours = false;    ///< there is a field of ELAPSED_HOURS
    bool elapsedMinutes = false;  ///< there is a field of ELAPSED_MINUTES
    bool elapsedSeconds = false;  ///< there is a field of ELAPSED_SECONDS
    int amPm = 0;  ///< the first form of AM/PM, 1 to 5: AM/PM, am/pm, A/P, a/p, Chinese; 0 for a clock of 24 hours
    int secondDecimals = 0;  ///< the most decimals of a second that a field shows, 0 to 3: times are rounded to these

    // What the section writes, in order.
    int fills = 0;                 ///< number of FILL pieces, of which only the first is ever filled
    int skips = 0;                 ///< number of SKIP pieces
    std::vector<XlsPiece> pieces;  ///< empty for an empty section, which shows nothing
    UnicodeString literals;        ///< the texts of all LITERAL pieces, one after the other
    UnicodeString text;            ///< a normal form of its code: it means the same and is its own normal form
};

/// A parsed format code, as XlsFormatString::fmtget() and XlsFormat make it. Parsing cannot fail: every text is a code.
///
/// Formatting trusts these fields. A program that changes them, or fills them in itself, must keep them consistent and
/// within the ranges given here; nothing is checked.
/// Cost: memory and the time of a copy are linear in the code, of which XlsFormat::MAX_CODE_UNITS units are read.
/// Threads: a plain value; several threads may read one at the same time.
struct FMT2 {
    int count = 0;                ///< number of sections, 1 to 4; 0 before parsing
    std::array<FMT, 4> sections;  ///< the first `count` are in use; the others have their defaults
};

}  // namespace LumCommon
