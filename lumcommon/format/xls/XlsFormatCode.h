#pragma once

#include <lumcommon/core/Text.h>

#include <array>
#include <cstdint>
#include <vector>

namespace LumCommon {

/// What a piece of a section is. XlsPiece::count is the length of a literal, the number of placeholders, or how often
/// the letter of a date or time field stands there. Kinds of one sort stand together.
enum class XlsPieceKind : std::uint8_t {
    LITERAL,            ///< text as it is
    SKIP,               ///< `_`: a space in place of the character `unit`
    FILL,               ///< `*`: the character `unit` is repeated to fill the width
    FORCED_DIGIT,       ///< "0"
    OPTIONAL_DIGIT,     ///< "#"
    SPACED_DIGIT,       ///< "?"
    POINT,              ///< the decimal point
    COMMA,              ///< of FMT::hasThousands or FMT::scaleCommas; writes nothing itself
    PERCENT,            ///< "%"
    EXPONENT,           ///< "E"; `unit` is "+" or "-"
    FRACTION_BAR,       ///< "/" between numerator and denominator
    FIXED_DENOMINATOR,  ///< the digits of FMT::fixedDenominator, `count` of them
    GENERAL,            ///< the number as General shows it
    TEXT,               ///< "@"
    YEAR,               ///< 1, 2: two digits; from 3: four
    MONTH,              ///< 1, 2: digits; 3: short name; 5: initial; else the name
    DAY,
    WEEKDAY,  ///< 3: short name; from 4: the name
    HOUR,
    MINUTE,
    SECOND,
    SECOND_FRACTION,  ///< point and `count` decimals of the seconds, 1 to 3
    AM_PM,            ///< `count` is FMT::amPm
    ERA,              ///< 1: Latin initial; 2: first character; from 3: the name
    ERA_YEAR,
    ELAPSED_HOURS,
    ELAPSED_MINUTES,
    ELAPSED_SECONDS,
};

/// The number that a placeholder belongs to.
enum class XlsPart : std::uint8_t { INTEGER, DECIMALS, EXPONENT, NUMERATOR, DENOMINATOR };

struct XlsPiece {
    XlsPieceKind kind = XlsPieceKind::LITERAL;
    XlsPart part = XlsPart::INTEGER;
    char32_t unit = 0;
    std::int32_t count = 0;
    std::int32_t start = 0;  ///< of a literal, in FMT::literals

    friend bool operator==(const XlsPiece&, const XlsPiece&) = default;
};

/// How many placeholders of each sort one part of a number has.
struct XlsDigitCounts {
    std::int32_t forced = 0;    ///< "0"
    std::int32_t optional = 0;  ///< "#"
    std::int32_t spaced = 0;    ///< "?"

    std::int32_t total() const noexcept { return forced + optional + spaced; }
};

/// One section of a parsed format code.
struct FMT {
    enum Kind : int { NUMBER, DATE_TIME, TEXT };

    Kind kind = NUMBER;
    int condition = 0;    ///< operator 1 to 6 (>=, <=, <>, <, >, =); 0 for none
    double operand = 0;   ///< of the condition
    int color = 0;        ///< number in the palette, 1 to 56; 0 for none
    int dbNum = 0;        ///< style of Japanese numerals, 1 to 3; 0 for none
    unsigned locale = 0;  ///< language of a [$...-...] tag as a number (0x407, 0x411); 0 for none

    // Numbers.
    XlsDigitCounts integer, decimals, exponent, numerator, denominator;
    std::int32_t forcedDecimals = 0;  ///< decimals that are always written: the place of the last "0" after the point
    std::int32_t percents = 0;        ///< each multiplies by 100
    std::int32_t scaleCommas = 0;     ///< each divides by 1000
    int fixedDenominator = 0;         ///< of a fraction; 0: placeholders
    char16_t exponentSign = 0;        ///< "+" or "-" after the E; 0 when not scientific
    bool hasPoint = false;
    bool hasThousands = false;
    bool isFraction = false;
    bool isGeneral = false;  ///< there is a General in it

    // Dates and times.
    bool hasDate = false;  ///< there are fields of the calendar
    bool hasTime = false;  ///< there are fields of the clock, or elapsed ones
    bool elapsedHours = false, elapsedMinutes = false, elapsedSeconds = false;
    int amPm = 0;            ///< form 1 to 4: AM/PM, am/pm, A/P, a/p; 0: a clock of 24 hours
    int secondDecimals = 0;  ///< the most that a field of the section shows, 0 to 3

    // What stands there, in order.
    int fills = 0;
    int skips = 0;
    std::vector<XlsPiece> pieces;
    UnicodeString literals;  ///< the literal pieces, one behind the other
    UnicodeString text;      ///< the section's code in its normal form: it means the same and normalises to itself
};

/// A parsed format code. XlsFormatString::fmtget() makes it; what is changed in it afterwards is not checked.
struct FMT2 {
    int count = 0;                ///< sections, 1 to 4; 0 before parsing
    std::array<FMT, 4> sections;  ///< the first `count` of them
};

}  // namespace LumCommon
