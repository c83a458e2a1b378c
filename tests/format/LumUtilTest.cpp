#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/rbnf.h>
#include <unicode/uchar.h>

#include <lumcommon/lumcommon.h>
#include <support/CommaLocale.h>
#include <support/DataRows.h>
#include <support/OnThreads.h>
#include <support/Utf8.h>

#include <climits>
#include <cstdio>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::Fields;
using LumTest::integerOf;
using LumTest::utf8;

unsigned quotingOf(const UnicodeString& letters) {
    static_assert(LumUtil::QUOTE_DOUBLE == 1 && LumUtil::QUOTE_SINGLE == 2 && LumUtil::QUOTE_DOUBLING == 4);
    unsigned mode = 0;
    for (unsigned bit = 0; bit < 4; ++bit) mode |= letters.indexOf(u"ds2c"[bit]) < 0 ? 0 : 1u << bit;
    return mode;
}

std::string number(const Fields& fields) {
    UnicodeString text = fields[0];
    const char16_t* const begin = text.getTerminatedBuffer();
    const char16_t* end = nullptr;
    bool hasFraction = true;
    const double value = LumUtil::parseNumber(begin, end, &hasFraction);
    return LumTest::printed(value) + " " + std::to_string(end - begin) + (hasFraction ? " point" : "");
}

std::string hexadecimal(const Fields& fields) {
    UnicodeString text = fields[0];
    const char16_t* const begin = text.getTerminatedBuffer();
    const char16_t* end = nullptr;
    char result[32];
    const std::uint32_t value = LumUtil::parseHexNum(begin, end, integerOf(fields[1]));
    std::snprintf(result, sizeof result, "%X %td", value, end - begin);
    return result;
}

std::string decode(const UnicodeString& text, int length) {
    std::ostringstream out;
    EXPECT_TRUE(LumUtil::decodeBase64(text, length, out));
    return out.str();
}

std::string encode(const Fields& fields) {
    std::istringstream in(utf8(fields[0]));
    const UnicodeString text = LumUtil::encodeBase64(in, 100);
    EXPECT_EQ(decode(text, 100), utf8(fields[0]));
    return utf8(text);
}

/// What a writer of units writes into a heap block of just `room` units, so that one more is seen by a sanitizer.
template <class Write>
std::string written(int room, Write write) {
    std::vector<char16_t> buffer(static_cast<std::size_t>(room));
    const char16_t* const end = write(buffer.data());
    return utf8(UnicodeString(buffer.data(), static_cast<std::int32_t>(end - buffer.data())));
}

std::string roman(const Fields& fields) {
    const std::vector<char16_t> table(fields[1].getBuffer(), fields[1].getBuffer() + fields[1].length());
    return written(LumUtil::ROMAN_MAX, [&](char16_t* buffer) {
        return LumUtil::makeRoman(buffer, integerOf(fields[0]), table.data(), integerOf(fields[2]), fields[3][0]);
    });
}

std::string letters(const Fields& fields) {
    return written(integerOf(fields[2]), [&](char16_t* buffer) {
        return LumUtil::makeABCSeq1(buffer, integerOf(fields[0]), u'a', integerOf(fields[1]));
    });
}

std::string hebrew(const Fields& fields) {
    UnicodeString text(u"|");
    LumUtil::makeHebrewNum(text, integerOf(fields[0]), u",", 1, integerOf(fields[1]));
    return utf8(text);
}

std::string inPlace(const Fields& fields) {
    UnicodeString text = fields[0];
    const char16_t* const begin = text.getTerminatedBuffer();
    const char16_t* end = nullptr;
    const std::string result = utf8(LumUtil::parseString(begin, end, quotingOf(fields[1])));
    return result + " " + std::to_string(end - begin);
}

TEST(LumUtil, readsAndWritesTextsInEveryLocale) {
    const LumTest::CommaLocale locale;
    LumTest::checkRows(
        "format/texts.txt",
        {{"quote", [](const Fields& f) { return utf8(LumUtil::quoteString(f[0], quotingOf(f[1]))); }},
         {"inPlace", inPlace},
         {"unquote", [](const Fields& f) { return utf8(LumUtil::unquoteString(f[0], quotingOf(f[1]))); }},
         {"quoteUri", [](const Fields& f) { return utf8(LumUtil::quoteUri(f[0])); }},
         {"unquoteUri", [](const Fields& f) { return utf8(LumUtil::unquoteUri(f[0])); }},
         {"print", [](const Fields& f) { return utf8(LumUtil::toString(LumTest::numberOf(f[0]))); }},
         {"number", number},
         {"roman", roman},
         {"letters", letters},
         {"hebrew", hebrew},
         {"hexadecimal", hexadecimal},
         {"encode", encode},
         {"decode", [](const Fields& f) { return decode(f[0], integerOf(f[1])); }}});
    EXPECT_EQ(written(2, [](char16_t* b) { return LumUtil::makeABCNum1(b, 5, u"xyz", 3); }), "xy");
    EXPECT_EQ(utf8(LumUtil::toString(INT_MIN)), "-2147483648");
    for (const long number : {1000000007L, -5000000000000000000L, LONG_MIN})  // the second has a chunk of zeros
        EXPECT_EQ(utf8(LumUtil::toString(number)), std::to_string(number));
    UnicodeString text(u"|");
    LumUtil::toString64Sub(text, 18446744073709551615u);
    EXPECT_EQ(utf8(text), "|18446744073709551615");
}

TEST(LumUtil, base64TakesBlocksOfEverySize) {
    for (const std::size_t size : {3071u, 3072u, 3073u, 6145u}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7);
        std::istringstream in(bytes + "rest");
        EXPECT_EQ(decode(LumUtil::encodeBase64(in, static_cast<int>(size)), INT_MAX), bytes);
        EXPECT_EQ(in.get(), 'r') << "read further than asked";
    }
    std::istringstream in("foo");
    EXPECT_EQ(utf8(LumUtil::encodeBase64(in, 3, u"text/plain", u"charset=utf-8")),
              "data:text/plain;charset=utf-8;base64,Zm9v");
    EXPECT_EQ(utf8(LumUtil::encodeBase64(in, -1, u"image/png", u"")), "data:image/png;base64,");
    for (const auto& [value, digit] : {std::pair{25u, u'Z'}, {26u, u'a'}, {52u, u'0'}, {62u, u'+'}, {63u, u'/'}})
        EXPECT_EQ(LumUtil::stEncode(value), digit);
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    EXPECT_FALSE(LumUtil::decodeBase64(u"Zm9v", 4, out));
}

std::string formatted(const Fields& fields) {
    std::istringstream numbers(utf8(fields[4]));
    UnicodeString all;
    for (int number; numbers >> number; all.append(u' ')) {
        UnicodeString text =
            LumUtil::formatNumber(number, fields[0], fields[1], integerOf(fields[2]), LumLang(fields[3]), NAME_block);
        all.append(text.findAndReplace(u" ", u"_"));
    }
    return utf8(all.trim());
}

TEST(LumUtilNumbers, areWhatTheFilesSay) {
    for (const char* file : {"format/numbers.txt", "format/alphabets.txt"}) {
        LumTest::checkRows(file, {{"format", formatted}});
    }
}

TEST(LumUtilNumbers, longFormatsAndSeparators) {
    constexpr int many = 100000;
    const UnicodeString zeros(many, u'0', many);
    const UnicodeString padded = LumUtil::formatNumber(INT_MIN, zeros + u"1");
    EXPECT_EQ(padded.length(), many + 1);
    EXPECT_EQ(utf8(UnicodeString(padded, 0, 3)), "-00");
    EXPECT_TRUE(padded.endsWith(u"02147483648"));

    const UnicodeString dashes(many, u'-', many);
    EXPECT_EQ(LumUtil::formatNumber(2, dashes + u"a" + dashes), dashes + u"b" + dashes);
    const UnicodeString wide(many, 0x3042, many);
    EXPECT_EQ(LumUtil::formatNumber(many + 1, wide).length(), 2);

    const UnicodeString grouped = LumUtil::formatNumber(7, zeros + u"1", u"<>", 1);
    EXPECT_EQ(grouped.length(), 3 * many + 1);
    EXPECT_TRUE(grouped.startsWith(u"0<>0<>") && grouped.endsWith(u"<>0<>7"));
    // 10^10 units are no string.
    EXPECT_TRUE(LumUtil::formatNumber(7, zeros + u"1", dashes, 1).isBogus());
    // Prefix and suffix must not hide it.
    EXPECT_TRUE(LumUtil::formatNumber(7, u"(" + zeros + u"1)", dashes, 1).isBogus());
    EXPECT_EQ(utf8(LumUtil::makeGrouping(u"\U0001D7D8\U0001D7D9\U0001D7DA", u",", 2)),
              "\U0001D7D8,\U0001D7D9\U0001D7DA");
}

// Meant for the thread sanitizer as much as for its expectations: nobody has formatted before.
TEST(LumUtilNumbersThreads, formatFirstAtOnce) {
    LumTest::onThreads(8, [](unsigned self) {
        if (self % 2 == 0) LumUtil::loadAlphabets();
        for (int round = 0; round < 200; ++round) {
            EXPECT_EQ(utf8(LumUtil::formatNumber(27, u"a", UnicodeString(), 0, LumLang("sv-SE"))), "\u00E5");
            EXPECT_EQ(utf8(LumUtil::formatNumber(47, u"\u3042")), "\u3042\u3042");
        }
    });
}

/// A number as ICU writes it by one of its systems of numerals.
UnicodeString icuNumeral(int number, const char16_t* system) {
    static UErrorCode status = U_ZERO_ERROR;
    static const icu::RuleBasedNumberFormat format(icu::URBNF_NUMBERING_SYSTEM, icu::Locale::getRoot(), status);
    UnicodeString text;
    icu::FieldPosition position;
    return format.format(number, system, text, position, status);
}

TEST(LumUtilNumbers, romanNumeralsAgreeWithIcuAfterNormalisation) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* compatible = icu::Normalizer2::getNFKCInstance(status);
    ASSERT_TRUE(U_SUCCESS(status));
    for (int number = 1; number <= 39999; ++number) {
        UnicodeString expected = icuNumeral(number, u"%roman-upper");
        const UnicodeString tokens(number > 3999 ? u"I\uFF29\u2160" : u"I\uFF29\u2160i\uFF49\u2170");
        for (int i = 0; i < tokens.length(); ++i) {
            const UnicodeString text = compatible->normalize(LumUtil::formatNumber(number, tokens[i]), status);
            if (i == 3) expected.toLower(icu::Locale::getRoot());
            ASSERT_EQ(text, expected) << number << ' ' << utf8(tokens[i]) << ' ' << utf8(text);
        }
    }
}

// ICU writes the same letters; it marks numerals with geresh and gershayim, closes thousands with geresh where we put a
// space, and ends some numerals with the final form of pe. Those marks are taken out. Its remaining habits are listed.
TEST(LumUtilNumbers, hebrewAgreesWithIcu) {
    const auto bare = [](UnicodeString text) {
        for (const char16_t* mark : {u"\u05F3", u"\u05F4", u" "}) text.findAndReplace(mark, u"");
        return text.findAndReplace(u"\u05E3", u"\u05E4");
    };
    // Numerals that ICU puts into another order, as they spell words of bad luck.
    const std::set<int> reordered = {298, 304, 344, 698, 744};
    std::set<int> different;
    for (int number = 1; number < 1000000; number += number < 20000 ? 1 : 97) {
        const UnicodeString theirs = icuNumeral(number, u"%hebrew"), ours = LumUtil::formatNumber(number, u"\u05D0");
        if (bare(ours) == bare(theirs)) continue;
        const int thousands = number / 1000;
        const int part = reordered.contains(thousands) ? thousands : number % 1000;
        EXPECT_TRUE(reordered.contains(part)) << number << ": " << utf8(ours) << ", ICU " << utf8(theirs);
        different.insert(part);
    }
    EXPECT_EQ(different, reordered) << "a listed difference has gone";
}

TEST(LumUtilNumbers, digitsOfEveryScriptHaveTheirValues) {
    constexpr int ours = 18;  // scripts whose digits are written; younger ones are not
    int written = 0;
    for (UChar32 one = 1; one < 0x10000; ++one) {
        if (u_charType(one) != U_DECIMAL_DIGIT_NUMBER || u_charDigitValue(one) != 1) continue;
        SCOPED_TRACE(one);
        const UnicodeString alone = LumUtil::formatNumber(1, UnicodeString(one));
        const UnicodeString padded =
            LumUtil::formatNumber(1023456789, UnicodeString(one - 1).append(UnicodeString(11, one, 11)));
        written += alone[0] == one;
        if (alone == u"1" && one != u'1') continue;
        ASSERT_EQ(padded.length(), 12);
        for (std::int32_t i = 0; i < padded.length(); ++i) {
            EXPECT_EQ(u_charDigitValue(padded[i]), "001023456789"[i] - '0');
            EXPECT_EQ(u_charType(padded[i]), U_DECIMAL_DIGIT_NUMBER);
        }
    }
    EXPECT_EQ(written, ours);
}

std::string readable(const std::string& digits) {
    return utf8(LumUtil::convertKansuji(UnicodeString::fromUTF8(digits), NAME_readable, NAME_kanji, u"", u""));
}

std::string inStyle(const Fields& f) {
    return utf8(LumUtil::convertKansuji(f[3], LumName(f[0]), LumName(f[1]), f[2], u"ignored"));
}

TEST(Kansuji, writesRunsOfDigitsInEachStyle) { LumTest::checkRows("format/kansuji.txt", {{"kansuji", inStyle}}); }

TEST(Kansuji, writesNumbersAsTheirDecimalText) {
    for (const int number : {0, 7, -15, INT32_MAX, INT32_MIN})
        EXPECT_EQ(utf8(LumUtil::convertKansuji(number, NAME_readable, NAME_kanji)), readable(std::to_string(number)));
}

TEST(Kansuji, convertsSingleCharacters) {
    Kansuji table;
    const UnicodeString converted(
        u"\uFF0B\u3001\uFF0D\u30FB\uFF0F\u3007\u4E00\u4E8C\u4E09\u56DB\u4E94\u516D\u4E03\u516B\u4E5D\uFF1A");
    for (UChar32 c = 0; c < 0x10000; ++c) {
        const UChar32 expected = c >= u'+' && c <= u':' ? converted[c - u'+'] : c > 0x20 && c < 0x7F ? c + 0xFEE0 : c;
        ASSERT_EQ(table.toKansuji(c), expected) << std::hex << c;
    }
    table.setDigitLatin();
    EXPECT_EQ(table.toKansuji(u'7'), u'\uFF17');
    table.setDigitKanji();
    EXPECT_EQ(table.toKansuji(u'7'), u'\u4E03');
    EXPECT_EQ(table.getCharacter(-1), 0xFFFD);
    EXPECT_EQ(table.getCharacter(Kansuji::COUNT), 0xFFFD);
}

/// ICU's Japanese spellout and the readable form agree on every number below 10^18, where ICU's rules end: there is no
/// difference to list.
TEST(Kansuji, readsAsIcuSpellsNumbersOut) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::RuleBasedNumberFormat judge(icu::URBNF_SPELLOUT, icu::Locale::getJapanese(), error);
    ASSERT_TRUE(U_SUCCESS(error));
    const Kansuji table;
    const auto compare = [&](std::int64_t number) {
        if (HasFailure()) return;
        UnicodeString expected;
        judge.format(number, expected);
        const UnicodeString got =
            table.convert(LumUtil::toString(static_cast<long long>(number)), Kansuji::STYLE_READABLE);
        ASSERT_EQ(got, expected) << number << ": " << utf8(got) << ", ICU " << utf8(expected);
    };
    constexpr std::int64_t endOfIcu = 1'000'000'000'000'000'000;
    for (int number = 0; number < 100'000'000; number += number < 30'000 ? 1 : 991) compare(number);
    for (std::int64_t power = 1; power < endOfIcu; power *= 10)
        for (const std::int64_t number : {power - 1, power, power + 1, 9 * power, 10 * power - 1}) compare(number);
    std::mt19937_64 random(5);
    for (int i = 0; i < 30'000; ++i) compare(static_cast<std::int64_t>((random() >> (random() % 60)) % endOfIcu));
}

TEST(Kansuji, longRunsAreReadToTheirEnd) {
    const std::string million(1'000'000, '0');
    EXPECT_EQ(readable(million + "20"), "\u4E8C\u5341");
    const UnicodeString ones = UnicodeString(1'000'052, u'1', 1'000'052);
    const UnicodeString read = LumUtil::convertKansuji(ones, NAME_readable, NAME_kanji);
    EXPECT_EQ(utf8(read.tempSubString(999'999, 6)), "\u4E00\u5343\u767E\u5341\u4E00\u6975");
    EXPECT_EQ(read.length(), 1'000'000 + 13 * 4 + 12);
    const UnicodeString grouped =
        LumUtil::convertKansuji(UnicodeString::fromUTF8("1" + million), NAME_grouping, NAME_kanji);
    EXPECT_EQ(grouped.length(), 1'000'001 - 48 + 1);
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_TRUE(LumUtil::convertKansuji(bogus, NAME_grouping, NAME_kanji).isBogus());
}

}  // namespace
