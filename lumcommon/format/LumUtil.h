#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>
#include <iosfwd>

namespace LumCommon {

/// Text conversions for property values: scanning numbers, quoting, url(...), base64, Japanese numerals.
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

    /// The text in quotes. Without a quote bit there are none, and only QUOTE_CSS then changes anything.
    static UnicodeString quoteString(const UnicodeString& text, unsigned mode);
    /// The text without white space around it and without its quotes; bogus when it is not a string of the mode. Where
    /// the mode has neither doubling nor escapes, any text that ends with its first character loses both.
    static UnicodeString unquoteString(const UnicodeString& text, unsigned mode);
    /// Reads one string, quoted as `mode` says; without a quote bit it goes on to the end. A CSS escape of what is no
    /// character (0, surrogates, beyond U+10FFFF) gives U+FFFD.
    /// @param position  zero-terminated UTF-16.
    /// @param end       gets the position after the string; `position` when the result is bogus.
    static UnicodeString parseString(const char16_t* position, const char16_t*& end, unsigned mode);

    /// url("...") with every double quote in the URI written as %22.
    static UnicodeString quoteUri(const UnicodeString& uri);
    /// The URI inside url(...) or quotes, normalised as LumUri does.
    static UnicodeString unquoteUri(const UnicodeString& text);

    /// Base64 (RFC 4648, padded, no line breaks) of the next `length` bytes, or of those that are there. Bogus when the
    /// result is beyond the length of a string.
    static UnicodeString encodeBase64(std::istream& in, int length);
    /// A data: URI of the next `length` bytes.
    static UnicodeString encodeBase64(std::istream& in, int length, const UnicodeString& mediaType,
                                      const UnicodeString& parameters);
    /// Writes the decoded bytes of the first `length` units of `text`; units outside the alphabet are passed over and
    /// "=" ends the data. False when the stream failed.
    static bool decodeBase64(const UnicodeString& text, int length, std::ostream& out);
    /// The digit of a six-bit value in the base64 alphabet.
    static char16_t stEncode(unsigned value);

    /// Scans an optional sign, digits, and a fraction ("12." and ".5" are numbers); no exponent. The point is "." in
    /// every locale.
    /// @param position     zero-terminated UTF-16; white space at its start is passed over.
    /// @param end          gets the position after the number, or `position` when there is none (the result is then 0).
    /// @param hasFraction  set to whether there was a "."; may be null.
    static double parseNumber(const char16_t* position, const char16_t*& end, bool* hasFraction = nullptr);
    /// Scans white space and hexadecimal digits, at most `maxDigits` (-1: no limit). A number beyond 32 bits gives
    /// 0xFFFFFFFF.
    static std::uint32_t parseHexNum(const char16_t* position, const char16_t*& end, int maxDigits = -1);

    /// Releases what the class keeps; part of LumCommon::cleanup().
    static void cleanup();

    /// Rewrites the runs of ASCII digits in a text as Japanese numerals; see Kansuji::convert for the styles.
    /// @param style      NAME_grouping, NAME_readable; any other name: digit by digit.
    /// @param digits     NAME_kanji, NAME_latin (full-width); any other name: a text whose first ten characters replace
    ///                   the kanji digits 0 to 9, as far as it has them.
    /// @param unitChars  characters that replace ten, hundred, thousand and the large units, as far as there are any.
    /// @param further    has no influence.
    /// Cost: O(length).
    static UnicodeString convertKansuji(const UnicodeString& text, LumName style, LumName digits,
                                        const UnicodeString& unitChars = {}, const UnicodeString& further = {});
    /// The same for the decimal text of a number; a minus sign is copied.
    static UnicodeString convertKansuji(int number, LumName style, LumName digits, const UnicodeString& unitChars = {},
                                        const UnicodeString& further = {});
};

}  // namespace LumCommon
