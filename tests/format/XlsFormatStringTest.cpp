#include <gtest/gtest.h>

#include <lumcommon/format/xls/XlsFormatString.h>
#include <support/Utf8.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::utf8;
using Xls = XlsFormatString;

FMT2 parsed(const char16_t* code) {
    FMT2 result;
    Xls::fmtget(code, result);
    return result;
}

TEST(XlsFormatString, selectsSections) {
    struct Case {
        const char* fault;
        const char16_t* code;
        double value;
        int section;
    };
    const Case cases[] = {
        {"0 among three", u"0;-0;z", 0, 2},
        {"negative zero is below", u"0;-0;z", -0.0, 2},
        {"not a number among three", u"0;-0;z", std::nan(""), -1},
        {"not a number among three with a condition", u"[>1]0;-0;z", std::nan(""), 2},
        {"the only one refuses", u"[<0]0", 0, -2},
        {"the only one beside a text section refuses", u"[<0]0;@", 0, -2},
        {"no condition holds", u"[<0]0;[>5]0", 3, -1},
        {"default of the second beside a condition", u"[>100]0;0;0", -1, 1},
        {"default of the first beside a condition", u"0;[<-9]0;0", 1, 0},
        {"fourth is for no number", u"0;0;0;0", 0, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(Xls::fmtsel(Xls::VALUE_NUMBER, c.value, parsed(c.code)), c.section);
    }
    EXPECT_EQ(Xls::fmtsel(Xls::VALUE_TEXT, 0, parsed(u"0;@;\"a\"@")), 1);
    EXPECT_EQ(Xls::fmtsel(Xls::VALUE_TEXT, 0, parsed(u"0;0;0;\"a\"")), -1);
}

TEST(XlsFormatString, evaluatesConditions) {
    // below, equal, above, not a number
    const bool expected[][4] = {{false, false, false, false}, {false, true, true, false},  {true, true, false, false},
                                {true, false, true, true},    {true, false, false, false}, {false, false, true, false},
                                {false, true, false, false},  {false, false, false, false}};
    const double values[] = {1, 2, 3, std::nan("")};
    for (int condition = 0; condition < 8; ++condition) {
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(Xls::iscond(values[i], condition, 2), expected[condition][i]) << condition << ' ' << i;
    }
}

/// Every day of a system, one after the other.
void walkCalendar(int baseYear, int firstSerial, int lastSerial, int weekday) {
    int year = baseYear, month = 1, day = 1;
    for (int serial = firstSerial; serial <= lastSerial; ++serial) {
        int y = baseYear, m = 0, d = 0, w = 0, era = 0;
        ASSERT_TRUE(Xls::fmtdate(serial + 0.999, y, m, d, w, era));
        ASSERT_TRUE(y == year && m == month && d == day && w == weekday) << serial << ": " << y << '-' << m << '-' << d;
        weekday = (weekday + 1) % 7;
        if (++day <= Xls::DateOfMonth(year, month)) continue;
        day = 1;
        if (++month <= 12) continue;
        month = 1;
        ++year;
    }
    EXPECT_EQ(year, 10000);
    int y = baseYear, m = 0, d = 0, w = 0, era = 0;
    EXPECT_FALSE(Xls::fmtdate(lastSerial + 1, y, m, d, w, era));
    EXPECT_FALSE(Xls::fmtdate(-1e-9, y, m, d, w, era));
    EXPECT_FALSE(Xls::fmtdate(std::nan(""), y, m, d, w, era));
    EXPECT_EQ(y, baseYear);
}

TEST(XlsFormatString, knowsEveryDay) {
    walkCalendar(1900, 1, 2958465, 0);
    walkCalendar(1904, 0, 2957003, 5);
    int year = 1900, month = 0, day = -1, weekday = 0, era = -1;
    EXPECT_TRUE(Xls::fmtdate(0, year, month, day, weekday, era));
    EXPECT_TRUE(year == 1900 && month == 1 && day == 0 && weekday == 6 && era == 0);
    const std::vector<std::pair<int, int>> years = {{1900, 366}, {1901, 365}, {2000, 366}, {2080, 366},
                                                    {2100, 365}, {2200, 365}, {2400, 366}, {9999, 365}};
    for (const auto& [y, days] : years) EXPECT_EQ(Xls::DateOfYear(y), days) << y;
    EXPECT_EQ(Xls::DateOfMonth(1900, 2), 29);
    EXPECT_EQ(Xls::DateOfMonth(2001, 13), 0);
}

TEST(XlsFormatString, knowsErasUpToHeisei) {
    const std::vector<std::pair<double, int>> bounds = {{0, 0},    {4594, 0},  {4594.9, 0}, {4595, 1},   {9855, 1},
                                                        {9856, 2}, {32515, 2}, {32516, 3},  {2958465, 3}};
    for (const auto& [serial, era] : bounds) {
        EXPECT_EQ(Xls::RekiOfNum(serial, 1900), era) << serial;
        if (serial < 1462) continue;
        EXPECT_EQ(Xls::RekiOfNum(serial - 1462, 1904), era) << serial;
    }
    EXPECT_EQ(Xls::WeekOfNum(1), 0);
    EXPECT_EQ(Xls::WeekOfNum(0, 1904), 5);
    EXPECT_EQ(Xls::WeekOfNum(-1), -1);
}

TEST(XlsFormatString, tellsTimes) {
    struct Case {
        const char* fault;
        double serial;
        int field;
        int decimals;
        std::int64_t expected;
    };
    const double almostOne = (59 * 60 + 59.6) / 86400;
    const Case cases[] = {
        {"seconds do not carry into hours", almostOne, 'h', 0, 1},
        {"seconds do not carry into minutes", almostOne, 'm', 0, 0},
        {"rounds what is shown", almostOne, 's', 1, 59},
        {"no decimals asked for", almostOne, '0', 0, 0},
        {"half is not up", 12.345 / 86400, '0', 2, 35},
        {"midnight", 2.9999999, 'h', 0, 0},
        {"day of midnight", 2.9999999, 'd', 0, 3},
        {"elapsed midnight", 2.9999999, 'H', 0, 72},
        {"elapsed minutes", 1.5, 'M', 0, 2160},
        {"smallest double", 5e-324, 's', 3, 0},
        {"negative", -0.5, 'h', 0, -1},
        {"no number", std::nan(""), 'h', 0, -1},
        {"unknown field", 0.5, 'x', 0, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(Xls::fmttime(c.serial, c.field, c.decimals), c.expected);
    }
}

TEST(XlsFormatString, worksOnDigitStrings) {
    const std::vector<std::array<std::string, 3>> rows = {
        {"binary fraction shows", Xls::convDblStr(0.1 + 0.2), "0.3"},
        {"denormal", Xls::convDblStr(5e-324), "0"},
        {"negative", Xls::convDblStr(-2.675), "-2.675"},
        {"16 digits", Xls::convDblStr(1234567890.1234567), "1234567890.12346"},
        {"half of the 15th digit", Xls::convDblStr(1234567890123.125), "1234567890123.13"},
        {"32 decimals", Xls::ConvertFltToStr(0.5), "0.50000000000000000000000000000000"},
        {"no number", Xls::ConvertFltToStr(std::nan("")), "0"},
        {"point at the end", Xls::DblStrDel0("12.000"), "12"},
        {"zeros of an integer", Xls::DblStrDel0("1200"), "1200"},
        {"multiplies beyond the digits", Xls::DblStrMul10("1.25", 4), "12500"},
        {"multiplies within the digits", Xls::DblStrMul10("-0.0125"), "-0.125"},
        {"divides before the digits", Xls::DblStrDiv10("12.5", 4), "0.00125"},
        {"rounds 2.675 down", Xls::DblStrRoff("2.67499999999999982236431605997495353221893310546875", 2).substr(0, 5),
         "2.680"},
        {"rounds 1.005 down", Xls::DblStrDel0(Xls::DblStrRoff(Xls::ConvertFltToStr(1.005), 2)), "1.01"},
        {"carry over the point", Xls::DblStrRoff("9.995", 2), "10.000"},
        {"carry out of nothing", Xls::DblStrRoff("0.5", 0), "1.0"},
        {"rounds before the point", Xls::DblStrRoff("1250.5", -2), "1300.0"},
        {"rounds all away", Xls::DblStrRoff("49", -2), "0"},
        {"rounds up to another digit", Xls::DblStrRoff("50", -2), "100"},
        {"15 digits below one", Xls::Dbl15Roff("0.0012345678901234567"), "0.0012345678901234600"},
        {"carry of 15 digits", Xls::Dbl15Roff("9999999999999995"), "10000000000000000"},
        {"leading zeros", Xls::Dbl15Roff("007"), "7"},
        {"garbage", Xls::DblStrRoff("x", 2), "0"},
        {"two digits of exponent", Xls::ConvertExponent(-4), "E-04"},
    };
    for (const auto& [fault, result, expected] : rows) EXPECT_EQ(result, expected) << fault;
    EXPECT_EQ(Xls::countKetasu("-123.45"), 5);
    EXPECT_EQ(Xls::intKeta("-123.45"), 3);
    int exponent = 0;
    EXPECT_EQ(Xls::MYfrexp(-1234.5, exponent), "-1.2345");
    EXPECT_EQ(exponent, 3);
    EXPECT_EQ(Xls::MYfrexp(5e-324, exponent), "4.94065645841247");
    EXPECT_EQ(exponent, -324);
}

/// The short way to 15 digits, which formatting takes, against the expansion of the double.
TEST(XlsFormatString, roundsDoublesAsTheirExpansion) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        double value = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 60) - 53);
        if (i % 2 == 0) value = std::round(value * 8) / 8;  // these have ties
        if (i % 5 == 0) value = std::nextafter(std::round(value * 100) / 100, i % 2 == 0 ? 0 : 1e300);
        if (value == 0) continue;
        int exponent = 0;
        const std::string digits = Xls::DblStrMul10(Xls::MYfrexp(value, exponent), 0);
        const std::string expected = Xls::convDblStr(value);
        ASSERT_EQ(exponent >= 0 ? Xls::DblStrDel0(Xls::DblStrMul10(digits, exponent))
                                : Xls::DblStrDel0(Xls::DblStrDiv10(digits, -exponent)),
                  expected);
    }
}

/// Finds a fraction by trying all numerators, as it is defined.
std::string searched(double fraction, int places) {
    const double limit = std::pow(10, places);
    double best = 1, numerator = 0, denominator = 1;
    for (double k = 1; k < limit && fraction > 1e-6; ++k) {
        const double x = k / fraction;
        const double rounded = x - std::floor(x) > 0.5 ? std::floor(x) + 1 : std::floor(x);
        if (rounded >= limit) break;
        const double error = std::fabs(x - rounded) / rounded;
        if (error + 1e-8 > best) continue;
        best = error;
        numerator = k;
        denominator = rounded;
    }
    return std::to_string(static_cast<int>(numerator)) + "/" + std::to_string(static_cast<int>(denominator));
}

TEST(XlsFormatString, findsFractions) {
    for (int n = 1; n < 499; ++n) {
        const double fraction = std::stod(Xls::convDblStr(n / 499.0));
        for (int places = 1; places <= 4; ++places) {
            ASSERT_EQ(Xls::yeFraction(fraction, places), searched(fraction, places)) << n;
        }
    }
    struct Case {
        const char* fault;
        double value;
        int places;
        int fixed;
        const char* expected;
    };
    constexpr Case cases[] = {
        {"sign kept", -1.5, 1, 0, "3/2"},
        {"whole left out", 2.25, 1, 0, "9/4"},
        {"too small to be searched", 3.000001, 3, 0, "3/1"},
        {"integer overflows", 1e30, 1, 0, "9223372036854775807/1"},
        {"not a number", std::numeric_limits<double>::quiet_NaN(), 1, 0, "0/1"},
        {"goes on when nothing can be better", 3.14159265358979, 18, 0, "103993/33102"},
        {"ends at 10^5 or 5e7", 0.333333329999999, 18, 0, "33333313/99999940"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(Xls::yeFraction(c.value, c.places, c.fixed), c.expected);
    }
}

TEST(XlsFormatString, fitsGeneralIntoWidths) {
    struct Case {
        double value;
        std::vector<std::string> widths;  // 11, 9, 7, 5, 3, 1
    };
    const Case cases[] = {
        {1234.56789, {"1234.56789", "1234.5679", "1234.57", "1235", "1E+03", "1E+03"}},
        {0.00012345678, {"0.000123457", "0.0001235", "0.00012", "1E-04", "0", "0"}},
        {123456, {"123456", "123456", "123456", "1E+05", "1E+05", "1E+05"}},
        {99999.97, {"99999.97", "99999.97", "100000", "1E+05", "1E+05", "1E+05"}},
        {-2.5, {"-2.5", "-2.5", "-2.5", "-2.5", "-2.5", "-3"}},
        {1e-9, {"0.000000001", "1E-09", "1E-09", "1E-09", "0", "0"}},
        {1e100, {"1E+100", "1E+100", "1E+100", "1E+100", "1E+100", "1E+100"}},
    };
    for (const Case& c : cases) {
        for (std::size_t i = 0; i < c.widths.size(); ++i) {
            const std::string text = Xls::ConvGeneral(c.value, 11 - 2 * static_cast<int>(i));
            EXPECT_EQ(text, c.widths[i]) << c.value << ' ' << i;
        }
    }
}

struct Column {
    std::size_t calls = 0;
    static bool fits(void* context, const UnicodeString& text, LumLength width, int first, int second) {
        EXPECT_EQ(first, 3);
        EXPECT_EQ(second, 4);
        ++static_cast<Column*>(context)->calls;
        return static_cast<float>(text.length()) <= width.getPoints();
    }
    static bool always(void*, const UnicodeString&, LumLength, int, int) { return true; }
};

TEST(XlsFormatString, fillsAndShrinksToAColumn) {
    struct Case {
        const char* fault;
        const char16_t* code;
        double value;
        float width;
        const char* text;
    };
    constexpr Case cases[] = {
        {"fill in the middle", u"$* 0.00", 3.5, 10, "$     3.50"},
        {"fill at the end", u"0*-", 7, 4, "7---"},
        {"second fill counts", u"*a0*b", 7, 3, "aa7"},
        {"exactly full", u"0*-", 123, 3, "123"},
        {"general with fewer digits", u"General", 3.14159265, 5, "3.142"},
        {"general with a literal", u"\"x\"General", -3.14159265, 5, "-x3.1"},
        {"digits of a code are dropped", u"0.000", 3.14159265, 3, "3.142"},
        {"general that cannot fit", u"General", 123456, 2, "1E+05"},
        {"number as a text", u"@", 3.14159265, 4, "3.14"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        Column column;
        UnicodeString text;
        int color = 0;
        EXPECT_EQ(Xls::fmtnum(CELLV(), c.value, c.code, text, color, Column::fits, LumLength(c.width, UNIT_PT), 3, 4,
                              &column),
                  0);
        EXPECT_EQ(utf8(text), c.text);
        EXPECT_LE(column.calls, 24u);
    }
    UnicodeString text;
    int color = 0;
    EXPECT_EQ(Xls::fmtnum(CELLV(), 7, u"0*-", text, color, Column::always), 0);
    EXPECT_EQ(text.length(), 1025);
    EXPECT_EQ(Xls::fmtnum(CELLV(0, 1904), 0, u"[Red]yyyy", text, color), 0);
    EXPECT_EQ(utf8(text), "1904");
    EXPECT_EQ(color, 0xFF0000);
    EXPECT_EQ(Xls::fmtstr(CELLV(), u"t", u"0;[Blue]\"a\"@", text, color), 1);
    EXPECT_EQ(utf8(text), "at");
    EXPECT_EQ(color, 0x0000FF);
    EXPECT_TRUE(Xls::FormatString(u"[>5]0", 1).isBogus());
    EXPECT_EQ(utf8(Xls::FormatString(u"[>5]0", 6)), "6");
}

TEST(XlsFormatString, describesSections) {
    const FMT2 code = parsed(u"[red][>=1.50]$#,##0.0#?,%;0E-00;# ?\?/100;[DBNum2][$-411][hh]:mm:ss.00 AM/PM*x_y");
    ASSERT_EQ(code.count, 4);
    const FMT& number = code.sections[0];
    EXPECT_TRUE(number.kind == FMT::NUMBER && number.color == 3 && number.condition == 1 && number.operand == 1.5);
    EXPECT_TRUE(number.integer.forced == 1 && number.integer.optional == 3 && number.integer.spaced == 0);
    EXPECT_TRUE(number.decimals.total() == 3 && number.forcedDecimals == 1);
    EXPECT_TRUE(number.hasPoint && number.hasThousands && number.scaleCommas == 1 && number.percents == 1);
    EXPECT_EQ(utf8(number.literals), "$");
    EXPECT_EQ(utf8(number.text), "[Red][>=1.5]\"$\"#,##0.0#?,%");
    EXPECT_TRUE(code.sections[1].exponentSign == '-' && code.sections[1].exponent.forced == 2);
    EXPECT_TRUE(code.sections[2].isFraction && code.sections[2].fixedDenominator == 100);
    EXPECT_EQ(code.sections[2].numerator.spaced, 2);
    const FMT& time = code.sections[3];
    EXPECT_TRUE(time.kind == FMT::DATE_TIME && time.elapsedHours && !time.elapsedMinutes && !time.hasDate);
    EXPECT_TRUE(time.amPm == 1 && time.secondDecimals == 2 && time.dbNum == 2 && time.locale == 0x411);
    EXPECT_TRUE(time.fills == 1 && time.skips == 1);
    EXPECT_EQ(utf8(time.text), "[DBNum2][$-411][hh]\":\"mm\":\"ss.00\" \"AM/PM*x_y");
}

TEST(XlsFormatString, rendersByOneSection) {
    const FMT2 code = parsed(u"0.00;yyyy");
    EXPECT_EQ(utf8(Xls::fmtnumN(-2.675, code.sections[0])), "-2.68");
    EXPECT_EQ(utf8(Xls::fmtnumD("-123456789012345678.5", code.sections[0])), "-123456789012346000.00");
    EXPECT_EQ(utf8(Xls::fmtnumD("0.0049999999999999999", code.sections[0])), "0.01");
    EXPECT_EQ(utf8(Xls::fmtnumN(1, code.sections[1])), "");
    EXPECT_EQ(utf8(Xls::sethanzenNumS(u"a10", 3)), "a\xEF\xBC\x91\xEF\xBC\x90");
    EXPECT_EQ(Xls::setzenNum(3, 2), u'\u53C2');
    EXPECT_EQ(Xls::setzenNum(10, 1), 0);
    EXPECT_EQ(Xls::setzenTani(3, 2), u'\u9621');
    EXPECT_EQ(Xls::setzenTani(8, 1), u'\u5104');
    EXPECT_EQ(Xls::setzenTani(5, 1), 0);
}

}  // namespace
