#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/LumStrings.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/lang/LumLang.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>
#include <iosfwd>

namespace LumCommon {

/// Text conversions: numbers of pages and lists, Japanese numerals; scanning numbers, quoting, url(...), base64 of
/// property values.
/// Nothing here throws. Threads: any; the functions share no state.
class LUM_API LumUtil {
public:
    LumUtil() = delete;

    /// How a string is quoted: a set of these bits.
    enum QuoteMode : unsigned {
        QUOTE_DOUBLE = 1,    ///< double quotes
        QUOTE_SINGLE = 2,    ///< single quotes; with QUOTE_DOUBLE whichever needs no escaping
        QUOTE_DOUBLING = 4,  ///< a quote inside is written twice
        QUOTE_CSS = 8,       ///< CSS escapes
    };

    /// The text in quotes. Without a quote bit no quotes are added, and only QUOTE_CSS changes anything.
    static UnicodeString quoteString(const UnicodeString& text, unsigned mode);
    /// The text without surrounding white space and without its quotes; bogus if it is not a string of the mode. If the
    /// mode has neither doubling nor escapes, any text of two or more characters whose first and last are the same
    /// loses both.
    static UnicodeString unquoteString(const UnicodeString& text, unsigned mode);
    /// Reads one string, quoted as `mode` says; without a quote bit it extends to the end. A CSS escape of an invalid
    /// code point (0, surrogates, beyond U+10FFFF) gives U+FFFD.
    /// @param position  zero-terminated UTF-16.
    /// @param end       receives the position after the string, or `position` if the result is bogus.
    /// @param mode  the bits of quoteString().
    static UnicodeString parseString(const char16_t* position, const char16_t*& end, unsigned mode);

    /// The URI as url("..."), with every double quote in it written as %22.
    static UnicodeString quoteUri(const UnicodeString& uri);
    /// The URI inside url(...) or quotes, normalised as LumUri does it.
    static UnicodeString unquoteUri(const UnicodeString& text);

    /// @name Numbers as text
    /// @{

    /// The text of a page or list number.
    ///
    /// The format is a prefix, a token (the first run of ICU's alphanumeric characters and U+2160 to U+2183) and a
    /// suffix; prefix and suffix are copied. A character is a code point. The token asks for
    /// - digits, if it ends with the digit one of a script and either is that digit alone or begins with the script's
    ///   zero: at least as many characters as the token has, including a "-" (always ASCII). One of the scripts is that
    ///   of the ideographs, whose zero U+3007 ICU does not count as alphanumeric: before U+4E00 it is prefix, not
    ///   padding;
    /// - letters or numerals, if it is one of "A", "a", "I", "i", the first letters of the Greek, Cyrillic, Arabic,
    ///   Hebrew, Hangul and kana alphabets, the first stem or branch, or a full-width or number form of these; stem
    ///   and branch together count 1 to 60 in the sexagenary cycle;
    /// - the alphabet that the token itself spells out, if it has two or more characters and the first is wide.
    ///
    /// Numbers that a token cannot express are written in ASCII decimal: those below 1 (Hebrew writes 0), Roman
    /// numerals above 3999 ("i") or 39999 ("I"), the cycle above 60, and all numbers with any other token.
    /// @param separator  put between groups of `size` digits, from the right; only digits are grouped. A "-" counts as
    ///     a digit, and a separator never comes first. If it is empty or `size` below 1, nothing is grouped.
    /// @param language  whose alphabet "A", "a" and the Greek and Cyrillic tokens use; the country does not matter, and
    ///     "nb" and "nn" use the Norwegian alphabet. An empty or unknown language counts in A to Z, in Greek or in
    ///     Russian letters.
    /// @param letterValue  ignored.
    /// Failure: bogus if the result is longer than a string can be.
    /// Cost: O(length of format and result).   Threads: any; the alphabets are constant data.
    /// @param number  any int.
    /// @param format  as above.
    /// @param size  how many digits a group has.
    static UnicodeString formatNumber(int number, const UnicodeString& format, const UnicodeString& separator, int size,
                                      const LumLang& language, LumNameEnum letterValue = NAME_NULL);
    /// The same without a language.
    static UnicodeString formatNumber(int number, const UnicodeString& format,
                                      const UnicodeString& separator = LumEmptyString::EMPTY_VALUE, int size = 0);

    /// As printf does with "%d", "%lld" and "%g" in the C locale: the decimal point is always ".".
    static UnicodeString toString(int number);
    /// With "%ld".
    static UnicodeString toString(long number) { return toString(static_cast<long long>(number)); }
    /// With "%lld".
    static UnicodeString toString(long long number);
    /// With "%g": six significant digits.
    static UnicodeString toString(double number);
    /// Appends the decimal digits of a number, without sign.
    static void toString64Sub(UnicodeString& text, unsigned long long number);

    /// Rewrites the runs of ASCII digits in a text as Japanese numerals; see Kansuji::convert for the styles.
    /// @param style      NAME_grouping, NAME_readable; any other name: digit by digit.
    /// @param digits     NAME_kanji, NAME_latin (full-width); any other name: a text whose first ten characters replace
    ///                   the kanji digits 0 to 9; if there are fewer, the other digits stay.
    /// @param unitChars  characters that replace ten, hundred, thousand and the large units; if there are fewer, the
    ///                   other units stay.
    /// @param further    ignored.
    /// Cost: O(length).
    /// @param text  of which all but the digits stays.
    static UnicodeString convertKansuji(const UnicodeString& text, LumName style, LumName digits,
                                        const UnicodeString& unitChars = {}, const UnicodeString& further = {});
    /// The same for the decimal text of a number; a minus sign is copied.
    static UnicodeString convertKansuji(int number, LumName style, LumName digits, const UnicodeString& unitChars = {},
                                        const UnicodeString& further = {});

    /// The most UTF-16 units that makeABCSeq1() and makeABCNum1() write if `count` is at least 2.
    static constexpr int LETTERS_MAX = 31;
    /// The most UTF-16 units that makeRoman() writes for numbers up to 39999 if the table has every letter they need.
    /// Above that, each further 10000 takes one more. Where the letter for five or ten is missing, the one below it is
    /// repeated instead, up to 9 times.
    static constexpr int ROMAN_MAX = 19;

    /// Writes a number in Roman numerals and returns the end of what was written, or `buffer` if the number is below 1
    /// or above `largest`.
    /// @param buffer  must have room for ROMAN_MAX units; no terminator is written.
    /// @param table   the letters for 1, 5, 10, 50, 100, 500, 1000, 5000 and 10000, in this order; 0 for a missing
    ///     letter. It must be as long as `largest` requires: seven letters for 3999.
    /// @param firstSingle  the character for 1 if 1 to 12 have consecutive characters of one letter each; otherwise 0.
    /// @param number  from 1 on.
    /// @param largest  the greatest number that the table can write.
    static char16_t* makeRoman(char16_t* buffer, int number, const char16_t* table, int largest,
                               char16_t firstSingle = 0);
    /// Writes a number in `count` letters that follow one another, bijectively: with 26 letters from a, 26 is z and 27
    /// is aa. Returns the end of what was written, or `buffer` if number or count is below 1.
    /// @param buffer  must have room for LETTERS_MAX units, or for `number` units if `count` is 1.
    /// @param number  from 1 on.
    /// @param firstLetter  stands for 1.
    /// @param count  the number of letters.
    static char16_t* makeABCSeq1(char16_t* buffer, int number, char16_t firstLetter, int count);
    /// The same with the first `count` letters of an alphabet.
    static char16_t* makeABCNum1(char16_t* buffer, int number, const char16_t* alphabet, int count);
    /// Appends a number in Hebrew numerals; a number below 1 appends nothing.
    /// @param separator, size  ignored.
    /// @param level  the power of 1000 that the number counts in, clamped to 0 to 9.
    /// @param text  receives the letters at its end.
    /// @param number  as it is to be written.
    static void makeHebrewNum(UnicodeString& text, int number,
                              const UnicodeString& separator = LumEmptyString::EMPTY_VALUE, int size = 0,
                              int level = 0);
    /// The text with the separator between groups of `size` characters, counted from its end. Unchanged if the
    /// separator is empty or the size below 1; bogus if the result is longer than a string can be.
    static UnicodeString makeGrouping(const UnicodeString& digits, const UnicodeString& separator, int size);
    /// Does nothing and need not be called: the alphabets are compiled in.
    static void loadAlphabets();

    /// @}

    /// Base64 (RFC 4648, padded, no line breaks) of the next `length` bytes, or of all that are left if there are
    /// fewer. Bogus if the result is longer than a string can be.
    static UnicodeString encodeBase64(std::istream& in, int length);
    /// A data: URI of the next `length` bytes.
    static UnicodeString encodeBase64(std::istream& in, int length, const UnicodeString& mediaType,
                                      const UnicodeString& parameters);
    /// Writes the decoded bytes of the first `length` units of `text`; units outside the alphabet are skipped, and "="
    /// ends the data. False if the stream failed.
    static bool decodeBase64(const UnicodeString& text, int length, std::ostream& out);
    /// The digit of a six-bit value in the base64 alphabet.
    static char16_t stEncode(unsigned value);

    /// Scans an optional sign, digits, and a fraction ("12." and ".5" are numbers); no exponent. The point is "." in
    /// every locale.
    /// @param position     zero-terminated UTF-16; leading white space is skipped.
    /// @param end          receives the position after the number, or `position` if there is none (the result is 0).
    /// @param hasFraction  receives whether there was a "."; may be null.
    static double parseNumber(const char16_t* position, const char16_t*& end, bool* hasFraction = nullptr);
    /// Scans white space and hexadecimal digits, at most `maxDigits` (-1: no limit). A number beyond 32 bits gives
    /// 0xFFFFFFFF; without a digit the result is 0 and `end` is `position`.
    static std::uint32_t parseHexNum(const char16_t* position, const char16_t*& end, int maxDigits = -1);

    /// Does nothing, as the class keeps only constant data; called by LumCommon::cleanup().
    static void cleanup();
};

}  // namespace LumCommon
