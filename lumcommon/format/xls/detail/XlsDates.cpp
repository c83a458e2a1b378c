#include <lumcommon/format/xls/detail/XlsDates.h>
#include <lumcommon/format/xls/detail/XlsDecimal.h>
#include <lumcommon/format/xls/detail/XlsTables.h>

namespace LumCommon::detail {

namespace {

constexpr int monthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/// How much larger a day's number is in the 1900 system, in which 1900 is a leap year, than in the 1904 system.
constexpr int systemsApart = 1462;

/// Sets year, month and day of a day counted as in the 1900 system, from 1 March 1900 onwards, where that system agrees
/// with the Gregorian calendar.
void setGregorian(XlsDate& date, int serial) noexcept {
    // Years are counted from March, so that the leap day is the last of its year; cycles of 400 years from 1600-03-01,
    // which is this many days before 1900-03-01, serial 61.
    constexpr int cycleDays = 146097;
    const int day = serial - 61 + 109572;
    const int cycle = day / cycleDays;
    const int dayOfCycle = day % cycleDays;
    const int yearOfCycle = (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
    const int dayOfYear = dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
    const int monthFromMarch = (5 * dayOfYear + 2) / 153;  // five months have 153 days, twice
    date.day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
    date.month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    date.year = 1600 + 400 * cycle + yearOfCycle + (date.month <= 2 ? 1 : 0);
}

}  // namespace

bool xlsIsLeapYear(int year) noexcept {
    if (year < 2080) return year % 4 == 0;
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int xlsDaysOfMonth(int year, int month) noexcept {
    return monthDays[month - 1] + (month == 2 && xlsIsLeapYear(year) ? 1 : 0);
}

int xlsEraOfDay(std::int64_t day, bool is1904, int eras) noexcept {
    if (is1904) day += systemsApart;
    int era = 0;
    while (era + 1 < eras && day > xlsEra(era).lastDay) ++era;
    return era;
}

XlsDate xlsDate(std::int64_t day, bool is1904, int eras) noexcept {
    XlsDate date;
    date.weekday = static_cast<int>((day + (is1904 ? 5 : 6)) % 7);
    date.era = xlsEraOfDay(day, is1904, eras);
    const int serial = static_cast<int>(day) + (is1904 ? systemsApart : 0);
    if (serial > 60) {
        setGregorian(date, serial);
    } else {
        date.year = 1900;
        date.month = serial > 31 ? 2 : 1;
        date.day = serial > 31 ? serial - 31 : serial;
    }
    return date;
}

XlsTime::XlsTime(const XlsDecimal& serial, int decimals) noexcept {
    constexpr std::uint32_t ticksPerSecond[] = {1, 10, 100, 1000};
    const std::uint32_t perSecond = ticksPerSecond[decimals];
    const std::uint64_t perDay = std::uint64_t{86400} * perSecond;
    days = serial.whole();
    // A time that was meant as 12.345 seconds is exactly that again once the product is rounded to 15 digits.
    XlsDecimal product = serial.fractionProduct(static_cast<std::uint32_t>(perDay));
    product.round(0);
    auto ticks = static_cast<std::uint64_t>(product.whole());
    if (ticks >= perDay) {
        ticks -= perDay;
        ++days;
    }
    fraction = static_cast<int>(ticks % perSecond);
    const auto seconds = static_cast<int>(ticks / perSecond);
    second = seconds % 60;
    minute = seconds / 60 % 60;
    hour = seconds / 3600;
}

}  // namespace LumCommon::detail
