#pragma once

#include <cstdint>

namespace LumCommon::detail {

class XlsDecimal;

struct XlsDate {
    int year = 0;
    int month = 0;
    int day = 0;  ///< 0 for the day before the first of the 1900 system
    int weekday = 0;
    int era = 0;
};

constexpr std::int64_t xlsLastDay(bool is1904) noexcept { return is1904 ? 2957003 : 2958465; }
constexpr bool xlsIsDay(std::int64_t day, bool is1904) noexcept { return day >= 0 && day <= xlsLastDay(is1904); }
/// The date of a day for which xlsIsDay() holds.
/// @param eras  how many of the eras are known; the last of them has no end.
XlsDate xlsDate(std::int64_t day, bool is1904, int eras) noexcept;
int xlsEraOfDay(std::int64_t day, bool is1904, int eras) noexcept;
bool xlsIsLeapYear(int year) noexcept;
int xlsDaysOfMonth(int year, int month) noexcept;

/// A time rounded half up to a number of decimals of the second.
struct XlsTime {
    /// @param serial    XlsDecimal::exact(), not negative, below 10^10.
    /// @param decimals  0 to 3.
    XlsTime(const XlsDecimal& serial, int decimals) noexcept;

    std::int64_t days = 0;
    int hour = 0, minute = 0, second = 0;
    int fraction = 0;  ///< in units of the last decimal

    std::int64_t elapsedHours() const noexcept { return days * 24 + hour; }
    std::int64_t elapsedMinutes() const noexcept { return elapsedHours() * 60 + minute; }
    std::int64_t elapsedSeconds() const noexcept { return elapsedMinutes() * 60 + second; }
};

}  // namespace LumCommon::detail
