#include <lumcommon/format/detail/XlsFraction.h>

#include <algorithm>
#include <cmath>

namespace LumCommon::detail {

XlsFraction::XlsFraction(const XlsDecimal& magnitude, int places, int fixedDenominator) {
    if (fixedDenominator > 0) {
        denominator = static_cast<std::uint32_t>(fixedDenominator);
        numerator = static_cast<std::uint32_t>(magnitude.fractionTimes(denominator));
        return;
    }
    constexpr std::uint32_t limits[MAX_PLACES] = {10, 100, 1000, 10'000, 100'000};
    constexpr double smallest = 1e-6;
    const double fraction = magnitude.fraction();
    if (fraction > smallest) search(fraction, limits[std::clamp(places, 1, MAX_PLACES) - 1]);
}

void XlsFraction::search(double fraction, std::uint32_t limit) {
    // A later fraction must be better by so much: of nearly equal ones the first, which has the smallest terms, is
    // taken. Once the error is below it the search is over.
    constexpr double better = 1e-8;
    double error = 1;
    for (std::uint32_t k = 1; k < limit && error >= better; ++k) {
        const double exact = k / fraction;
        const double rounded = std::ceil(exact - 0.5);  // halves go down
        if (rounded >= limit) break;
        const double candidate = std::fabs(exact - rounded) / rounded;
        if (candidate + better > error) continue;
        error = candidate;
        numerator = k;
        denominator = static_cast<std::uint32_t>(rounded);
    }
}

std::string XlsFraction::improperNumerator(const XlsDecimal& magnitude) const {
    const std::string_view digits = magnitude.integerDigits();
    const std::int64_t zeros = std::max<std::int64_t>(magnitude.point() - static_cast<std::int64_t>(digits.size()), 0);
    return multiplyDigits(digits, zeros, denominator, numerator);
}

std::string XlsFraction::whole(const XlsDecimal& magnitude) const {
    const std::string_view digits = magnitude.integerDigits();
    const std::int64_t zeros = std::max<std::int64_t>(magnitude.point() - static_cast<std::int64_t>(digits.size()), 0);
    return multiplyDigits(digits, zeros, 1, numerator == denominator ? 1 : 0);
}

}  // namespace LumCommon::detail
