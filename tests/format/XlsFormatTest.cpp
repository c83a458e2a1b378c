#include <gtest/gtest.h>

#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/XlsFormatString.h>
#include <support/CommaLocale.h>
#include <support/DataRows.h>
#include <support/Utf8.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::Fields;
using LumTest::integerOf;
using LumTest::numberOf;
using LumTest::utf8;
using Xls = XlsFormatString;

XlsFormat byContract(const UnicodeString& code) { return XlsFormat(code, false, XlsFormat::Rules::CONTRACT); }

FMT2 parsed(const UnicodeString& code) {
    FMT2 result;
    Xls::fmtget(code, result);
    return result;
}

std::string cell(const Fields& fields) {
    const XlsFormat::Result result = byContract(fields[0]).format(numberOf(fields[1]));
    char color[32] = "-";
    if (result.color != XlsFormat::NO_COLOR) std::snprintf(color, sizeof color, "%06X", unsigned(result.color));
    return utf8(result.text) + " ~ " + std::to_string(result.section) + " ~ " + color;
}

/// Of every proper fraction with the denominator.
std::string fractions(const Fields& fields) {
    std::string all;
    for (int n = 1; n < integerOf(fields[0]); ++n) {
        const double fraction = numberOf(UnicodeString::fromUTF8(Xls::convDblStr(n / numberOf(fields[0]))));
        all += (n == 1 ? "" : " ") + Xls::yeFraction(fraction, integerOf(fields[1]));
    }
    return all;
}

bool fitsColumn(void* calls, const UnicodeString& text, LumLength width, int first, int second) {
    EXPECT_TRUE(first == 3 && second == 4);
    ++*static_cast<int*>(calls);
    return static_cast<float>(text.length()) <= width.getPoints();
}

std::string column(const Fields& fields) {
    UnicodeString text;
    int color = 0, calls = 0;
    const LumLength width(static_cast<float>(numberOf(fields[2])), UNIT_PT);
    EXPECT_EQ(Xls::fmtnum(CELLV(), numberOf(fields[1]), fields[0], text, color, fitsColumn, width, 3, 4, &calls), 0);
    EXPECT_LE(calls, 24);
    return utf8(text);
}

std::string date(const Fields& fields) {
    const double serial = numberOf(fields[0]);
    const int era = Xls::RekiOfNum(serial, 1900);
    EXPECT_TRUE(serial < 1462 || Xls::RekiOfNum(serial - 1462, 1904) == era);
    return std::to_string(Xls::WeekOfNum(serial)) + " " + std::to_string(era);
}

std::string mantissa(const Fields& fields) {
    int exponent = 0;
    const std::string digits = Xls::MYfrexp(numberOf(fields[0]), exponent);
    return digits + " " + std::to_string(exponent);
}

/// The same repeated so often would take hours if any step looked back at what it has read.
std::string longCode(const Fields& fields) {
    UnicodeString code;
    while (code.length() < 300'000) code.append(fields[0]);
    const XlsFormat format(code);
    for (const double value : {1234.5678, -0.001, 1.7976931348623157e308}) {
        EXPECT_LE(format.format(value).text.length(), 16 * code.length());
    }
    EXPECT_LE(format.format(u"ab").text.length(), 2 * code.length());
    return "";
}

const LumTest::Operations steps = {
    {"cell", cell},
    {"shown", [](const Fields& f) { return utf8(byContract(f[0]).format(numberOf(f[1])).text); }},
    {"shownText", [](const Fields& f) { return utf8(byContract(f[0]).format(f[1]).text); }},
    {"section",
     [](const Fields& f) { return std::to_string(Xls::fmtsel(Xls::VALUE_NUMBER, numberOf(f[1]), parsed(f[0]))); }},
    {"textSection", [](const Fields& f) { return std::to_string(Xls::fmtsel(Xls::VALUE_TEXT, 0, parsed(f[0]))); }},
    {"condition", [](const Fields& f) { return Xls::iscond(numberOf(f[0]), integerOf(f[1]), 2) ? "met" : "not met"; }},
    {"time", [](const Fields& f) { return std::to_string(Xls::fmttime(numberOf(f[0]), f[1][0], integerOf(f[2]))); }},
    {"date", date},
    {"year", [](const Fields& f) { return std::to_string(Xls::DateOfYear(integerOf(f[0]))); }},
    {"digits", [](const Fields& f) { return Xls::convDblStr(numberOf(f[0])); }},
    {"expansion", [](const Fields& f) { return Xls::ConvertFltToStr(numberOf(f[0])); }},
    {"trim", [](const Fields& f) { return Xls::DblStrDel0(utf8(f[0])); }},
    {"times", [](const Fields& f) { return Xls::DblStrMul10(utf8(f[0]), integerOf(f[1])); }},
    {"over", [](const Fields& f) { return Xls::DblStrDiv10(utf8(f[0]), integerOf(f[1])); }},
    {"round", [](const Fields& f) { return Xls::DblStrRoff(utf8(f[0]), integerOf(f[1])); }},
    {"roundDouble",
     [](const Fields& f) {
         return Xls::DblStrDel0(Xls::DblStrRoff(Xls::ConvertFltToStr(numberOf(f[0])), integerOf(f[1])));
     }},
    {"round15", [](const Fields& f) { return Xls::Dbl15Roff(utf8(f[0])); }},
    {"exponent", [](const Fields& f) { return Xls::ConvertExponent(integerOf(f[0])); }},
    {"count",
     [](const Fields& f) {
         return std::to_string(Xls::countKetasu(utf8(f[0]))) + " " + std::to_string(Xls::intKeta(utf8(f[0])));
     }},
    {"mantissa", mantissa},
    {"fraction", [](const Fields& f) { return Xls::yeFraction(numberOf(f[0]), integerOf(f[1])); }},
    {"fractions", fractions},
    {"general", [](const Fields& f) { return Xls::ConvGeneral(numberOf(f[0]), integerOf(f[1])); }},
    {"column", column},
    {"long", longCode},
    {"exactly", [](const Fields& f) { return utf8(Xls::fmtnumD(utf8(f[1]), parsed(f[0]).sections[0])); }},
    {"bySection", [](const Fields& f) { return utf8(Xls::fmtnumN(numberOf(f[1]), parsed(f[0]).sections[0])); }},
    {"byCode", [](const Fields& f) { return utf8(Xls::FormatString(f[0], numberOf(f[1]))); }},
    {"wide", [](const Fields& f) { return utf8(Xls::sethanzenNumS(f[0], integerOf(f[1]))); }},
    {"numeral", [](const Fields& f) { return utf8(UnicodeString(Xls::setzenNum(integerOf(f[0]), integerOf(f[1])))); }},
    {"unit", [](const Fields& f) { return utf8(UnicodeString(Xls::setzenTani(integerOf(f[0]), integerOf(f[1])))); }},
};

TEST(XlsFormat, stepsGiveWhatTheFileSaysInEveryLocale) {
    const LumTest::CommaLocale locale;
    LumTest::checkRows("xlsformat/steps.txt", steps);
}

void checkPairs(const std::string& table, XlsFormat::Rules rules, int leastRows) {
    std::ifstream in(LUM_TEST_DATA "/xlsformat/" + table);
    int number = 1;
    std::string line;
    for (std::getline(in, line); std::getline(in, line);) {
        SCOPED_TRACE("line " + std::to_string(++number) + ": " + line);
        std::istringstream columns(line);
        std::string code, kind, value, system, suite, expected, color, reason;
        for (std::string* field : {&code, &kind, &value, &system, &suite, &expected, &color, &reason}) {
            std::getline(columns, *field, '\t');
        }
        const UnicodeString text = UnicodeString::fromUTF8(value);
        const XlsFormat format(UnicodeString::fromUTF8(code), system == "1904", rules);
        const XlsFormat::Result result = kind == "text" ? format.format(text) : format.format(numberOf(text));
        const bool isRefused = result.section < 0 && result.text.isEmpty() && kind != "text";
        EXPECT_EQ(isRefused ? "{refused}" : utf8(result.text), expected);
        const XlsFormat colored(UnicodeString::fromUTF8(color.empty() ? "0" : "[" + color + "]0"));
        EXPECT_EQ(result.color, colored.format(0.0).color);
        EXPECT_EQ(suite == expected, reason.empty() || reason == "unsure") << "a difference is not understood";
    }
    EXPECT_GT(number, leastRows);
}

TEST(XlsFormat, agreesWithTheTablesOfPairs) {
    checkPairs("pairs.tsv", XlsFormat::Rules::CONTRACT, 800);
    checkPairs("cells.tsv", XlsFormat::Rules::SPREADSHEET, 3000);
}

/// Every day of a system, one after the other.
void walkCalendar(int baseYear, int firstSerial, int lastSerial, int weekday) {
    int year = baseYear, month = 1, day = 1;
    int y = 0, m = 0, d = 0, w = 0, era = 0;
    for (int serial = firstSerial; serial <= lastSerial; ++serial) {
        y = baseYear;
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
    y = baseYear;
    for (const double serial : {lastSerial + 1.0, -1e-9, std::nan("")}) {
        EXPECT_FALSE(Xls::fmtdate(serial, y, m, d, w, era));
        EXPECT_EQ(y, baseYear);
    }
}

TEST(XlsFormat, knowsEveryDay) {
    walkCalendar(1900, 1, 2958465, 0);
    walkCalendar(1904, 0, 2957003, 5);
    int year = 1900, month = 0, day = -1, weekday = 0, era = -1;
    EXPECT_TRUE(Xls::fmtdate(0, year, month, day, weekday, era));
    EXPECT_TRUE(year == 1900 && month == 1 && day == 0 && weekday == 6 && era == 0);
    EXPECT_EQ(Xls::DateOfMonth(1900, 2), 29);
    EXPECT_EQ(Xls::DateOfMonth(2001, 13), 0);
    EXPECT_EQ(Xls::WeekOfNum(0, 1904), 5);
}

TEST(XlsFormat, takesCellsAndTypedValues) {
    EXPECT_EQ(utf8(XlsFormat(u"0.0").format(CELLV(u"x")).text), "x");
    EXPECT_EQ(utf8(XlsFormat(u"0.0").format(CELLV(LumValue(7))).text), "7.0");
    // The float next to 0.1 is 0.100000001490116...
    EXPECT_EQ(utf8(XlsFormat().format(CELLV(LumValue(0.1f, UNIT_PT))).text), "0.1");
    EXPECT_EQ(utf8(XlsFormat(u"<@>").format(CELLV(LumValue(UnicodeString(u"a")))).text), "<a>");
    UnicodeString text;
    int color = 0;
    EXPECT_EQ(Xls::fmtnum(CELLV(0, 1904), 0, u"[Red]yyyy", text, color), 0);
    EXPECT_EQ(utf8(text), "1904");
    EXPECT_EQ(color, 0xFF0000);
    EXPECT_EQ(Xls::fmtstr(CELLV(), u"t", u"0;[Blue]\"a\"@", text, color), 1);
    EXPECT_EQ(utf8(text), "at");
    EXPECT_EQ(color, 0x0000FF);
}

TEST(XlsFormat, describesSections) {
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

TEST(XlsFormat, keepsItsLimits) {
    const UnicodeString text(1 << 17, u'x', 1 << 17);
    constexpr int most = XlsFormat::MAX_REPEATED_UNITS / (1 << 17) + 1;  // the last one exceeds it
    for (const int more : {-1, 0, 1, 10'000}) {
        const UnicodeString code(most + more, u'@', most + more);
        EXPECT_EQ(XlsFormat(code).format(text).text.length(), text.length() * (most + std::min(more, 0))) << more;
    }
    for (const int more : {-1, 0, 1}) {
        const UnicodeString code(XlsFormat::MAX_CODE_UNITS + more, u'0', XlsFormat::MAX_CODE_UNITS + more);
        EXPECT_EQ(XlsFormat(code).format(1).text.length(), XlsFormat::MAX_CODE_UNITS + std::min(more, 0));
    }
    UnicodeString filled;
    int color = 0;
    const auto always = [](void*, const UnicodeString&, LumLength, int, int) { return true; };
    EXPECT_EQ(Xls::fmtnum(CELLV(), 7, u"0*-", filled, color, always), 0);
    EXPECT_EQ(filled.length(), 1025);
}

}  // namespace
