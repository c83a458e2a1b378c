// The operations of XlsFormatString on digit strings.

#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/format/xls/XlsFormatString.h>
#include <lumcommon/format/xls/detail/XlsDecimal.h>
#include <lumcommon/format/xls/detail/XlsFraction.h>
#include <lumcommon/format/xls/detail/XlsGeneral.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace LumCommon {

namespace {

constexpr std::int64_t significantDigits = 15;

/// A digit string taken apart; its integer part has no leading zeros and may be empty.
struct Parts {
    explicit Parts(std::string_view text) {
        std::size_t at = 0;
        if (!text.empty() && (text[0] == '-' || text[0] == '+')) isNegative = text[at++] == '-';
        const auto isDigit = [&](std::size_t i) { return i < text.size() && detail::isAsciiDigit(text[i]); };
        for (; isDigit(at); ++at) integer.push_back(text[at]);
        if (at < text.size() && text[at] == '.') {
            hasPoint = true;
            for (++at; isDigit(at); ++at) fraction.push_back(text[at]);
        }
        integer.erase(0, std::min(integer.find_first_not_of('0'), integer.size()));
    }

    std::string text() const {
        std::string result = isNegative ? "-" : "";
        result += integer.empty() ? "0" : integer;
        if (hasPoint) result += "." + fraction;
        return result;
    }

    /// Rounds half up to `kept` digits, counted over both parts.
    void round(std::int64_t kept) {
        const std::size_t before = integer.size();
        std::string all = integer + fraction;
        if (kept >= static_cast<std::int64_t>(all.size())) return;
        if (kept < 0) {
            std::fill(all.begin(), all.end(), '0');
        } else {
            auto cut = static_cast<std::size_t>(kept);
            const bool up = all[cut] >= '5';
            std::fill(all.begin() + static_cast<std::ptrdiff_t>(kept), all.end(), '0');
            while (up && cut > 0 && all[cut - 1] == '9') all[--cut] = '0';
            if (up && cut > 0) ++all[cut - 1];
            if (up && cut == 0) {
                all.insert(0, 1, '1');
                integer = all.substr(0, before + 1);
                fraction = all.substr(before + 1);
                return;
            }
        }
        integer = all.substr(0, before);
        fraction = all.substr(before);
        integer.erase(0, std::min(integer.find_first_not_of('0'), integer.size()));
    }

    /// The number of digits, counted over both parts, up to the 15th significant one.
    std::int64_t upToSignificant() const {
        if (!integer.empty()) return significantDigits;
        const std::size_t zeros = std::min(fraction.find_first_not_of('0'), fraction.size());
        return static_cast<std::int64_t>(zeros) + significantDigits;
    }

    bool isNegative = false;
    bool hasPoint = false;
    std::string integer;
    std::string fraction;
};

std::string movePoint(std::string_view digits, std::int64_t places) {
    constexpr std::int64_t most = 1'000'000;
    places = std::clamp(places, -most, most);
    Parts parts(digits);
    std::string all = parts.integer + parts.fraction;
    std::int64_t point = static_cast<std::int64_t>(parts.integer.size()) + places;
    if (point < 0) {
        all.insert(0, static_cast<std::size_t>(-point), '0');
        point = 0;
    }
    if (point > static_cast<std::int64_t>(all.size())) all.resize(static_cast<std::size_t>(point), '0');
    parts.integer = all.substr(0, static_cast<std::size_t>(point));
    parts.integer.erase(0, std::min(parts.integer.find_first_not_of('0'), parts.integer.size()));
    parts.fraction = all.substr(static_cast<std::size_t>(point));
    parts.hasPoint = !parts.fraction.empty();
    return parts.text();
}

/// A magnitude as a fraction whose numerator includes the whole part.
struct ImproperFraction {
    ImproperFraction(double value, int places, int fixedDenominator) {
        const detail::XlsDecimal magnitude = detail::XlsDecimal(std::isfinite(value) ? value : 0).abs();
        const detail::XlsFraction fraction(magnitude, places, fixedDenominator, detail::XLS_CONTRACT_RULES.search);
        denominator = fraction.denominator;
        const std::string digits = fraction.improperNumerator(magnitude);
        if (digits.empty()) return;
        const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), numerator).ec;
        if (error != std::errc()) numerator = std::numeric_limits<std::int64_t>::max();
    }

    std::int64_t numerator = 0;
    std::uint64_t denominator = 1;
};

}  // namespace

std::string XlsFormatString::ConvertFltToStr(double value) {
    if (!std::isfinite(value)) return "0";
    char text[400];  // sign, 309 digits, point, 32 decimals
    return std::string(text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 32).ptr);
}

std::string XlsFormatString::convDblStr(double value) { return DblStrDel0(Dbl15Roff(ConvertFltToStr(value))); }

std::string XlsFormatString::DblStrDel0(std::string_view digits) {
    Parts parts(digits);
    parts.fraction.erase(parts.fraction.find_last_not_of('0') + 1);
    parts.hasPoint = !parts.fraction.empty();
    return parts.text();
}

std::string XlsFormatString::DblStrMul10(std::string_view digits, int places) { return movePoint(digits, places); }

std::string XlsFormatString::DblStrDiv10(std::string_view digits, int places) {
    return movePoint(digits, -std::int64_t{places});
}

std::string XlsFormatString::DblStrRoff(std::string_view digits, int decimals) {
    Parts parts(digits);
    parts.round(parts.upToSignificant());
    parts.round(static_cast<std::int64_t>(parts.integer.size()) + decimals);
    return parts.text();
}

std::string XlsFormatString::Dbl15Roff(std::string_view digits) {
    Parts parts(digits);
    parts.round(parts.upToSignificant());
    return parts.text();
}

int XlsFormatString::countKetasu(std::string_view digits) {
    return static_cast<int>(std::ranges::count_if(digits, detail::isAsciiDigit<char>));
}

int XlsFormatString::intKeta(std::string_view digits) { return countKetasu(digits.substr(0, digits.find('.'))); }

std::string XlsFormatString::MYfrexp(double value, int& exponent) {
    exponent = 0;
    if (!std::isfinite(value)) return "0";
    const detail::XlsDecimal decimal(value);
    if (decimal.isZero()) return "0";
    exponent = static_cast<int>(decimal.point() - 1);
    std::string text(decimal.digits());
    if (text.size() > 1) text.insert(1, 1, '.');
    return (decimal.isNegative() ? "-" : "") + text;
}

std::string XlsFormatString::ConvertExponent(int exponent) { return detail::xlsExponent(exponent); }

std::string XlsFormatString::ConvGeneral(double value, int maxChars) {
    if (!std::isfinite(value)) return "0";
    const detail::XlsDecimal decimal(value);
    return (decimal.isNegative() ? "-" : "") + detail::xlsGeneral(decimal.abs(), maxChars, detail::XLS_CONTRACT_RULES);
}

void XlsFormatString::convFrac(double value, int places, int fixedDenominator, std::int64_t& numerator,
                               int& denominator) {
    constexpr std::uint64_t most = std::numeric_limits<int>::max();
    const ImproperFraction fraction(value, places, fixedDenominator);
    numerator = fraction.numerator;
    denominator = static_cast<int>(std::min(fraction.denominator, most));
}

std::string XlsFormatString::yeFraction(double value, int places, int fixedDenominator) {
    const ImproperFraction fraction(value, places, fixedDenominator);
    return std::to_string(fraction.numerator) + "/" + std::to_string(fraction.denominator);
}

}  // namespace LumCommon
