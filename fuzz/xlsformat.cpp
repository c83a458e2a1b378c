// Any text may be a number format code, and any bits a value. The first byte chooses the date system and how the text
// is read, the next eight are the value; the rest is the code. Laws by either rules: formatting names an existing
// section or a failure; repeating it gives the same, also in a reused result; the length of the text is bounded by the
// code and the value; sections in their normal form mean the same and are their own normal form. By the contract, the
// single steps agree with the whole, and a fitted text fits unless it cannot be made to.

#include <lumcommon/lumcommon.h>

#include <bit>
#include <cmath>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

bool isSame(const XlsFormat::Result& a, const XlsFormat::Result& b) {
    return a.text == b.text && a.color == b.color && a.section == b.section;
}

/// The longest possible text: every digit of the number, every placeholder and every "%" adds its share.
std::int64_t longest(const UnicodeString& code, const UnicodeString& text) {
    return 700 + 16 * std::int64_t{code.length()} + (std::int64_t{code.length()} + 1) * text.length();
}

void checkResult(const XlsFormat& format, const XlsFormat::Result& result, const UnicodeString& code,
                 const UnicodeString& text) {
    FUZZ_LAW(!result.text.isBogus());
    FUZZ_LAW(result.section < format.getSections().count && result.section >= XlsFormat::NOT_A_DATE);
    FUZZ_LAW(result.color >= XlsFormat::NO_COLOR && result.color <= 0xFFFFFF);
    FUZZ_LAW(result.text.length() <= longest(code, text));
}

UnicodeString normalForm(const FMT2& code) {
    UnicodeString text;
    for (int i = 0; i < code.count; ++i) {
        if (i != 0) text.append(u';');
        text.append(code.sections[static_cast<std::size_t>(i)].text);
    }
    return text;
}

void checkNormalForm(const XlsFormat& format, const XlsFormat::Result& number, const XlsFormat::Result& text,
                     double value, const UnicodeString& textValue) {
    const UnicodeString normal = normalForm(format.getSections());
    const XlsFormat again(normal, format.is1904(), format.getRules());
    FUZZ_LAW(again.getSections().count == format.getSections().count);
    FUZZ_LAW(normalForm(again.getSections()) == normal);
    FUZZ_LAW(isSame(again.format(value), number));
    FUZZ_LAW(isSame(again.format(textValue), text));
}

bool fitsColumn(void*, const UnicodeString& text, LumLength width, int, int) {
    return static_cast<float>(text.length()) <= width.getPoints();
}

void checkSteps(const XlsFormat& format, double value, const XlsFormat::Result& result, const UnicodeString& textValue,
                const XlsFormat::Result& textResult) {
    const FMT2& code = format.getSections();
    const CELLV cell(value, format.is1904() ? 1904 : 1900);
    UnicodeString text;
    int color = 0;
    FUZZ_LAW(XlsFormatString::fmtnum(cell, value, code, text, color) == result.section);
    FUZZ_LAW(text == result.text && color == result.color);
    FUZZ_LAW(XlsFormatString::fmtstr(cell, textValue, code, text, color) == textResult.section);
    FUZZ_LAW(text == textResult.text && color == textResult.color);
    const LumLength width(static_cast<float>(10), UNIT_PT);
    const int section = XlsFormatString::fmtnum(cell, value, code, text, color, fitsColumn, width);
    FUZZ_LAW(section == result.section);
    if (section < 0) return;
    const FMT& chosen = code.sections[static_cast<std::size_t>(section)];
    if (chosen.fills > 0 && result.text.length() <= 10 && chosen.kind == FMT::NUMBER) FUZZ_LAW(text.length() >= 9);
    if (chosen.kind == FMT::NUMBER && !std::signbit(value)) {
        FUZZ_LAW(XlsFormatString::fmtnumN(value, chosen) == result.text);
    }
}

void checkDigitStrings(double value) {
    const std::string digits = XlsFormatString::convDblStr(value);
    FUZZ_LAW(XlsFormatString::DblStrDel0(XlsFormatString::Dbl15Roff(digits)) == digits);
    for (const int decimals : {-2, 0, 2, 20}) {
        const std::string rounded = XlsFormatString::DblStrRoff(digits, decimals);
        FUZZ_LAW(XlsFormatString::DblStrRoff(rounded, decimals) == rounded);
    }
    const std::string moved = XlsFormatString::DblStrDiv10(XlsFormatString::DblStrMul10(digits, 7), 7);
    FUZZ_LAW(XlsFormatString::DblStrDel0(moved) == digits);
    for (const int width : {1, 5, 11, 30}) FUZZ_LAW(!XlsFormatString::ConvGeneral(value, width).empty());
    // The two ways of rounding must agree on two decimals.
    FMT2 twoDecimals;
    XlsFormatString::fmtget(u"0.00", twoDecimals);
    if (std::isfinite(value) && std::fabs(value) > 1e-15) {
        std::string expected = XlsFormatString::DblStrDel0(XlsFormatString::DblStrRoff(digits, 2));
        const std::size_t point = expected.find('.');
        if (point == expected.npos) {
            expected += ".00";
        } else {
            expected.resize(point + 3, '0');
        }
        std::string shown;
        XlsFormatString::fmtnumN(value, twoDecimals.sections[0]).toUTF8String(shown);
        FUZZ_LAW(shown == expected);
    }
    for (int places = 1; places <= 3; ++places) {
        std::int64_t numerator = 0;
        int denominator = 0;
        XlsFormatString::convFrac(value, places, 0, numerator, denominator);
        FUZZ_LAW(numerator >= 0 && denominator >= 1 && denominator < std::pow(10, places));
    }
}

void checkDates(double value, bool is1904) {
    int year = is1904 ? 1904 : 1900;
    int month = 0, day = 0, weekday = -1, era = -1;
    if (XlsFormatString::fmtdate(value, year, month, day, weekday, era)) {
        FUZZ_LAW(year >= 1900 && year <= 9999 && month >= 1 && month <= 12 && weekday >= 0 && weekday <= 6);
        FUZZ_LAW(day >= 0 && day <= XlsFormatString::DateOfMonth(year, month) && era >= 0 && era <= 3);
        FUZZ_LAW(day != 0 || (year == 1900 && month == 1));
    }
    const std::int64_t seconds = XlsFormatString::fmttime(value, XlsFormatString::TIME_ELAPSED_SECONDS, 3);
    FUZZ_LAW(seconds < 0 || seconds / 86400 == XlsFormatString::fmttime(value, XlsFormatString::TIME_DAYS, 3));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    const std::uint64_t bits = input.number(8);
    double value = std::bit_cast<double>(bits);
    if ((how & 4u) != 0) value = static_cast<double>(static_cast<std::int64_t>(bits) >> 32) / 1000;  // everyday numbers
    const UnicodeString code = LumFuzz::textOf(input.data(), input.size(), (how & 2u) != 0);
    const UnicodeString text(code, 0, 3);
    const bool is1904 = (how & 1u) != 0;
    for (const XlsFormat::Rules rules : {XlsFormat::Rules::CONTRACT, XlsFormat::Rules::SPREADSHEET}) {
        const XlsFormat format(code, is1904, rules);
        const XlsFormat::Result number = format.format(value);
        const XlsFormat::Result textResult = format.format(text);
        checkResult(format, number, code, UnicodeString());
        checkResult(format, textResult, code, text);
        XlsFormat::Result reused = textResult;
        format.format(value, reused);
        FUZZ_LAW(isSame(reused, number));
        checkNormalForm(format, number, textResult, value, text);
        if (rules == XlsFormat::Rules::CONTRACT) checkSteps(format, value, number, text, textResult);
    }
    checkDigitStrings(value);
    checkDates(value, is1904);
    return 0;
}
