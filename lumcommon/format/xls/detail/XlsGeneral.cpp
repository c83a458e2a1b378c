#include <lumcommon/format/xls/detail/XlsGeneral.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

/// All digits of a rounded number; no point after an integer.
std::string fixedText(const XlsDecimal& number) {
    const std::string_view digits = number.digits();
    const auto count = static_cast<std::int64_t>(digits.size());
    const std::int64_t point = number.point();
    if (number.isZero()) return "0";
    if (point <= 0) return "0." + std::string(static_cast<std::size_t>(-point), '0') + std::string(digits);
    if (count <= point) return std::string(digits) + std::string(static_cast<std::size_t>(point - count), '0');
    return std::string(digits.substr(0, static_cast<std::size_t>(point))) + "." +
           std::string(digits.substr(static_cast<std::size_t>(point)));
}

std::string scientificText(XlsDecimal number, std::int64_t digits) {
    number.round(digits - number.point());
    const std::string exponent = xlsExponent(number.point() - 1);
    std::string text(number.digits());
    if (text.size() > 1) text.insert(1, 1, '.');
    return text + exponent;
}

}  // namespace

std::string xlsExponent(std::int64_t exponent, int digits) {
    const std::string text = std::to_string(exponent < 0 ? -exponent : exponent);
    const bool isShort = text.size() < static_cast<std::size_t>(digits);
    return std::string("E") + (exponent < 0 ? '-' : '+') + (isShort ? "0" : "") + text;
}

std::string xlsGeneral(const XlsDecimal& magnitude, int maxChars, const XlsRules& rules) {
    const std::int64_t width = std::clamp(maxChars, 1, 400);
    const auto count = static_cast<std::int64_t>(magnitude.digits().size());
    const std::int64_t point = magnitude.point();
    if (magnitude.isZero()) return "0";

    // The digits that scientific notation has room for, next to the point and the exponent.
    const std::int64_t exponentChars = static_cast<std::int64_t>(xlsExponent(point - 1).size());
    const std::int64_t scientificDigits = std::max<std::int64_t>(width - exponentChars - 1, 1);
    const bool scientificFits = exponentChars + 1 <= width;
    const bool isLarge = !magnitude.isBelow(rules.scientificDigits, rules.scientificPoint);
    const bool isTiny = magnitude.isBelow("1", -8);
    if (isLarge || (isTiny && scientificFits)) return scientificText(magnitude, scientificDigits);

    const std::int64_t integerChars = std::max<std::int64_t>(point, 1);
    XlsDecimal rounded = magnitude;
    rounded.round(std::max<std::int64_t>(width - integerChars - 1, 0));
    if (rounded.point() > width) return scientificText(magnitude, scientificDigits);
    const bool isSmall = magnitude.isBelow("1", -2);
    if (isSmall && scientificFits) {
        const std::int64_t fixedDigits = std::max<std::int64_t>(width - 2 + point, 0);
        if (std::min(fixedDigits, count) < std::min(scientificDigits, count)) {
            return scientificText(magnitude, scientificDigits);
        }
    }
    return fixedText(rounded);
}

}  // namespace LumCommon::detail
