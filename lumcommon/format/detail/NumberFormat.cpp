#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/format/detail/NumberFormat.h>

#include <lumcommon/format/detail/Alphabets.h>
#include <lumcommon/format/detail/Numerals.h>
#include <lumcommon/format/detail/ReadyTexts.h>
#include <lumcommon/format/detail/RomanNumerals.h>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace LumCommon::detail {

namespace {

constexpr char16_t DIGIT_ONES[] = {
#define LUM_DIGITS(one) one,
#include <lumcommon/format/detail/DecimalDigits.inc>
#undef LUM_DIGITS
};
static_assert(std::ranges::is_sorted(DIGIT_ONES));

constexpr int latinLetters = 26;

/// Appends a number in the style of one token. False, with nothing appended, for a number the style cannot express.
using Appender = bool (*)(UnicodeString& text, int number, std::string_view language);

template <class LetterAt>
bool appendLetterSequence(UnicodeString& text, int number, int base, LetterAt letterAt) {
    char16_t letters[longestLetterSequence];
    const char16_t* const end = writeLetters(letters, number, base, letterAt);
    append(text, std::u16string_view(static_cast<const char16_t*>(letters), end));
    return end != letters;
}

bool appendInAlphabet(UnicodeString& text, int number, Letters alphabet) {
    return appendLetterSequence(text, number, static_cast<int>(alphabet.size()),
                                [alphabet](int index) { return alphabet[static_cast<std::size_t>(index)]; });
}

template <Sequence sequence>
bool appendSequence(UnicodeString& text, int number, std::string_view) {
    return appendInAlphabet(text, number, getSequence(sequence));
}

template <char16_t first>
bool appendRun(UnicodeString& text, int number, std::string_view) {
    return appendLetterSequence(text, number, latinLetters, [](int i) { return static_cast<char16_t>(first + i); });
}

/// Latin letters, or whatever letters the language has.
template <LetterCase letterCase>
bool appendLetters(UnicodeString& text, int number, std::string_view language) {
    constexpr char16_t first = letterCase == LetterCase::UPPER ? u'A' : u'a';
    const Letters alphabet = findAlphabet(language, letterCase);
    return alphabet.empty() ? appendRun<first>(text, number, language) : appendInAlphabet(text, number, alphabet);
}

/// The letters of the language if it is written in the script, otherwise those of the script's own alphabet.
template <LetterScript script, LetterCase letterCase>
bool appendLettersOf(UnicodeString& text, int number, std::string_view language) {
    static_assert(script != LetterScript::LATIN);
    constexpr bool isUpper = letterCase == LetterCase::UPPER;
    constexpr Sequence fallback = script == LetterScript::GREEK
                                      ? (isUpper ? Sequence::GREEK_UPPER : Sequence::GREEK_LOWER)
                                      : (isUpper ? Sequence::RUSSIAN_UPPER : Sequence::RUSSIAN_LOWER);
    const Letters alphabet = findAlphabet(language, letterCase, script);
    return appendInAlphabet(text, number, alphabet.empty() ? getSequence(fallback) : alphabet);
}

template <const RomanNumerals& numerals>
bool appendRoman(UnicodeString& text, int number, std::string_view) {
    char16_t letters[longestRoman];
    const char16_t* const end = writeRoman(letters, number, numerals);
    append(text, std::u16string_view(static_cast<const char16_t*>(letters), end));
    return end != letters;
}

bool appendHebrewToken(UnicodeString& text, int number, std::string_view) { return appendHebrewNumber(text, number); }

struct TokenRow {
    char16_t character;
    Appender append;
};

constexpr TokenRow TOKENS[] = {
#define LUM_TOKEN(character, appender) {character, appender},
#include <lumcommon/format/detail/NumberTokens.inc>
#undef LUM_TOKEN
};
static_assert(std::ranges::is_sorted(TOKENS, {}, &TokenRow::character));

/// A format, split up. The token is the first run of letters, digits and Roman number forms; most styles look only at
/// its first and last character.
struct Token {
    explicit Token(const UnicodeString& format);

    std::int32_t begin = 0;  ///< in units of the format, as is `end`
    std::int32_t end = 0;
    std::int32_t characters = 0;
    UChar32 first = 0;
    UChar32 last = 0;
};

bool isTokenCharacter(UChar32 c) {
    if (c < 0x80) return isAsciiLetterOrDigit(c);
    return (c >= 0x2160 && c <= 0x2183) || u_isalnum(c);
}

Token::Token(const UnicodeString& format) {
    const char16_t* const units = format.getBuffer();
    const std::int32_t length = format.length();
    for (std::int32_t next = 0; next < length;) {
        const std::int32_t position = next;
        UChar32 c;
        U16_NEXT(units, next, length, c);
        if (isTokenCharacter(c)) {
            if (characters++ == 0) {
                begin = position;
                first = c;
            }
            last = c;
            end = next;
        } else if (characters > 0) {
            return;
        }
    }
    if (characters == 0) begin = end = length;
}

/// The ten digits that a token counts in; `isThere` is false if it does not ask for digits.
struct DigitTable {
    char16_t digits[10];
    bool isThere = false;
};

DigitTable findDigits(const Token& token) {
    DigitTable table{{}, true};
    if (std::ranges::binary_search(DIGIT_ONES, token.last)) {
        std::iota(table.digits, std::end(table.digits), static_cast<char16_t>(token.last - 1));
    } else {
        table.isThere = false;
        for (const Sequence sequence : {Sequence::IDEOGRAPHIC_DIGITS, Sequence::KOREAN_DIGITS}) {
            const Letters digits = getSequence(sequence);
            if (digits[1] != token.last) continue;
            std::ranges::copy(digits, table.digits);
            table.isThere = true;
        }
    }
    table.isThere = table.isThere && (token.characters == 1 || token.first == table.digits[0]);
    return table;
}

/// The number padded with zeros to `width` characters, sign included, as "%0*d" pads. The sign stays ASCII.
UnicodeString toDigits(int number, std::int32_t width, const char16_t* digits) {
    char16_t units[longestDecimal<int>];
    const char16_t* const end = writeDecimal(units, number);
    UnicodeString text;
    char16_t* position = units;
    if (number < 0) append(text, *position++);
    std::transform(position, units + (end - units), position, [digits](char16_t c) { return digits[c - u'0']; });
    const auto padding = width - static_cast<std::int32_t>(end - units);
    if (padding > 0) append(text, checked(UnicodeString(padding, static_cast<UChar32>(digits[0]), padding)));
    append(text, std::u16string_view(static_cast<const char16_t*>(position), end));
    return text;
}

UnicodeString toDecimal(int number) {
    UnicodeString text;
    appendDecimal(text, number);
    return text;
}

bool isWide(UChar32 c) {
    const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_FULLWIDTH || width == U_EA_WIDE;
}

/// The sixty-year cycle: a stem and a branch, each running through its own sequence.
bool appendCycle(UnicodeString& text, int number) {
    if (number < 1 || number > 60) return false;
    for (const Letters letters : {getSequence(Sequence::STEMS), getSequence(Sequence::BRANCHES)}) {
        append(text, letters[static_cast<std::size_t>(number - 1) % letters.size()]);
    }
    return true;
}

/// Counts in the characters of the token itself.
bool appendInToken(UnicodeString& text, int number, const UnicodeString& token, std::int32_t characters) {
    int indexes[longestLetterSequence];
    const int* const end =
        writeLetters(static_cast<int*>(indexes), number, characters, [](int index) { return index; });
    for (const int* index = indexes; index != end; ++index) {
        append(text, static_cast<char32_t>(token.char32At(token.moveIndex32(0, *index))));
    }
    return end != indexes;
}

/// What a one-character token asks for, digits aside; null if it asks for nothing.
const TokenRow* findToken(const Token& token) {
    if (token.characters != 1) return nullptr;
    const TokenRow* row = std::ranges::lower_bound(TOKENS, token.first, {}, &TokenRow::character);
    return row != std::end(TOKENS) && row->character == token.first ? row : nullptr;
}

/// Appends a number in the style of a token of several characters. False, with nothing appended, if the token has no
/// such style or the style cannot express the number.
bool appendInCharacters(UnicodeString& text, int number, const Token& token, const UnicodeString& format) {
    if (token.characters < 2) return false;
    const UnicodeString characters = format.tempSubStringBetween(token.begin, token.end);
    const char16_t cycle[] = {getSequence(Sequence::STEMS)[0], getSequence(Sequence::BRANCHES)[0]};
    if (characters == UnicodeString(false, cycle, 2)) return appendCycle(text, number);
    return isWide(token.first) && appendInToken(text, number, characters, token.characters);
}

/// The number in grouped digits.
UnicodeString toGroups(int number, const Token& token, const DigitTable& table, const NumberFormat& how) {
    const UnicodeString digits = table.isThere ? toDigits(number, token.characters, table.digits) : toDecimal(number);
    return groupDigits(digits, how.separator, how.groupingSize);
}

UnicodeString formatByToken(int number, const NumberFormat& how) {
    const Token token(how.format);
    const std::u16string_view format = viewOf(how.format);
    UnicodeString text;
    append(text, format.substr(0, static_cast<std::size_t>(token.begin)));
    const TokenRow* const row = findToken(token);
    const DigitTable table = row ? DigitTable{} : findDigits(token);
    const bool isWritten = row ? row->append(text, number, how.language)
                               : !table.isThere && appendInCharacters(text, number, token, how.format);
    if (!isWritten) {
        const UnicodeString digits = toGroups(number, token, table, how);
        const std::int64_t length = std::int64_t{text.length()} + digits.length() + how.format.length() - token.end;
        if (digits.isBogus() || length > INT32_MAX) {
            text.setToBogus();
            return text;
        }
        append(text, digits);
    }
    append(text, format.substr(static_cast<std::size_t>(token.end)));
    return text;
}

constexpr int readyNumbers = 999;

template <char16_t first>
constexpr char16_t* writeLatin(char16_t* out, int number) {
    return writeLetters(out, number, latinLetters, [](int i) { return static_cast<char16_t>(first + i); });
}

template <const RomanNumerals& numerals>
constexpr char16_t* writeRomanIn(char16_t* out, int number) {
    return writeRoman(out, number, numerals);
}

constexpr char16_t* writeDigits(char16_t* out, int number) {
    for (int level = number >= 100 ? 100 : number >= 10 ? 10 : 1; level > 0; level /= 10) {
        *out++ = static_cast<char16_t>(u'0' + number / level % 10);
    }
    return out;
}

constexpr ReadyTextsStore<readyNumbers, writeDigits> readyDecimal;
constexpr ReadyTextsStore<readyNumbers, writeLatin<u'A'>> readyUpperLatin;
constexpr ReadyTextsStore<readyNumbers, writeLatin<u'a'>> readyLowerLatin;
constexpr ReadyTextsStore<readyNumbers, writeRomanIn<Roman::ASCII_UPPER>> readyUpperRoman;
constexpr ReadyTextsStore<readyNumbers, writeRomanIn<Roman::ASCII_LOWER>> readyLowerRoman;

/// The ready-made texts for a format of just that character, in the Latin alphabet and without grouping.
ReadyTexts findReadyTexts(char16_t token) {
    switch (token) {
        case u'1':
            return readyDecimal.get();
        case u'A':
            return readyUpperLatin.get();
        case u'a':
            return readyLowerLatin.get();
        case u'I':
            return readyUpperRoman.get();
        case u'i':
            return readyLowerRoman.get();
        default:
            return {};
    }
}

}  // namespace

UnicodeString formatNumber(int number, const NumberFormat& how) {
    const std::int32_t length = how.format.length();
    const bool isGrouped = how.groupingSize >= 1 && !how.separator.isEmpty();
    if (length <= 1) {
        const char16_t token = length == 0 ? u'1' : how.format[0];
        if (!isGrouped && how.language.empty()) {
            const ReadyTexts texts = findReadyTexts(token);
            if (texts.has(number)) return texts.get(number);
        }
        if (token == u'1') {
            return isGrouped ? groupDigits(toDecimal(number), how.separator, how.groupingSize) : toDecimal(number);
        }
    }
    return formatByToken(number, how);
}

}  // namespace LumCommon::detail
