#include <gtest/gtest.h>

#include <lumcommon/format/Kansuji.h>
#include <lumcommon/format/LumUtil.h>
#include <support/DataRows.h>
#include <support/Utf8.h>

#include <unicode/rbnf.h>

#include <cstdlib>
#include <random>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

std::string readable(const std::string& digits) {
    return utf8(LumUtil::convertKansuji(text(digits), NAME_readable, NAME_kanji, u"", u""));
}

std::string inStyle(const LumTest::Fields& f) {
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
        const UnicodeString got = table.convert(text(std::to_string(number)), Kansuji::STYLE_READABLE);
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
    const UnicodeString ones = text(std::string(1'000'052, '1'));
    const UnicodeString read = LumUtil::convertKansuji(ones, NAME_readable, NAME_kanji);
    EXPECT_EQ(utf8(read.tempSubString(999'999, 6)), "\u4E00\u5343\u767E\u5341\u4E00\u6975");
    EXPECT_EQ(read.length(), 1'000'000 + 13 * 4 + 12);
    const UnicodeString grouped = LumUtil::convertKansuji(text("1" + million), NAME_grouping, NAME_kanji);
    EXPECT_EQ(grouped.length(), 1'000'001 - 48 + 1);
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_TRUE(LumUtil::convertKansuji(bogus, NAME_grouping, NAME_kanji).isBogus());
}

}  // namespace
