#include <lumcommon/format/xls/detail/XlsFraction.h>

#include <algorithm>
#include <cmath>
#include <compare>
#include <cstdlib>
#include <limits>
#include <utility>

namespace LumCommon::detail {

namespace {

/// A natural number below 2^128; not every platform has a type for these.
struct Wide {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    friend auto operator<=>(const Wide&, const Wide&) = default;
};

Wide multiply(std::uint64_t a, std::uint64_t b) noexcept {
    constexpr std::uint64_t half = 0xFFFFFFFFu;
    const std::uint64_t low = (a & half) * (b & half);
    const std::uint64_t first = (a >> 32) * (b & half) + (low >> 32);  // at most 2^64 - 2^32: no carry is lost
    const std::uint64_t second = (a & half) * (b >> 32) + (first & half);
    return {(a >> 32) * (b >> 32) + (first >> 32) + (second >> 32), (second << 32) | (low & half)};
}

/// The product, or the largest number if the product is larger.
Wide multiply(const Wide& a, std::uint64_t b) noexcept {
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    const Wide upper = multiply(a.high, b);
    const Wide lower = multiply(a.low, b);
    if (upper.high != 0 || upper.low > most - lower.high) return {most, most};
    return {upper.low + lower.high, lower.low};
}

Wide subtract(const Wide& a, const Wide& b) noexcept { return {a.high - b.high - (a.low < b.low), a.low - b.low}; }

constexpr std::uint64_t powerOfTen(int exponent) noexcept {
    std::uint64_t power = 1;
    for (; exponent > 0; --exponent) power *= 10;
    return power;
}

/// Tries the numerators 1, 2, ... with the denominators nearest to numerator / part, and takes each fraction that is
/// better than all before it by 1e-8, relative to the denominator: of nearly equal fractions the first is kept, which
/// has the smallest terms.
///
/// The fractions that can be taken next lie in an interval around the part, and the one with the smallest terms in such
/// an interval lies on the path to the part in the tree of all fractions. So only the fractions on that path need to be
/// tried, the convergents of the part and those between two convergents, and not even all of these. All arithmetic is
/// in integers, so that no rounding can make a fraction look better than it is.
class FractionSearch {
public:
    FractionSearch(const XlsDecimal::Part& part, std::uint64_t limit) : unit_(part.digits), limit_(limit) {
        std::uint64_t quotient = 0;
        std::uint64_t rest = 1;
        for (int place = 0; place < part.places; ++place) {
            rest *= 10;
            quotient = quotient * 10 + rest / unit_;
            rest %= unit_;
        }
        first_ = {1, quotient, static_cast<std::int64_t>(rest)};
    }

    void run(XlsFraction& result) {
        take(nearest(first_), result);
        Trial outer{0, 1, -static_cast<std::int64_t>(unit_)};
        Trial inner = first_;
        while (isOpen_ && inner.offset != 0) {
            const auto length = static_cast<std::uint64_t>(std::abs(outer.offset) / std::abs(inner.offset));
            const std::uint64_t end = std::min(length, (limit_ - outer.denominator) / inner.denominator);
            for (std::uint64_t step = 1; isOpen_ && step <= end; ++step) {
                step = firstBetter(outer, inner, step, end);
                if (step <= end) takeNear(advanced(outer, inner, step), result);
            }
            if (end < length) return;
            outer = std::exchange(inner, advanced(outer, inner, length));
        }
    }

private:
    /// numerator / part = denominator + offset / unit_.
    struct Trial {
        std::uint64_t numerator = 0;
        std::uint64_t denominator = 0;
        std::int64_t offset = 0;
    };

    static Trial advanced(const Trial& from, const Trial& by, std::uint64_t steps) noexcept {
        return {from.numerator + steps * by.numerator, from.denominator + steps * by.denominator,
                from.offset + static_cast<std::int64_t>(steps) * by.offset};
    }
    static std::uint64_t distance(const Trial& trial) noexcept {
        return static_cast<std::uint64_t>(std::abs(trial.offset));
    }

    /// The trial with the nearest denominator; halves are rounded down.
    Trial nearest(Trial trial) const noexcept {
        const auto unit = static_cast<std::int64_t>(unit_);
        if (2 * trial.offset > unit) return {trial.numerator, trial.denominator + 1, trial.offset - unit};
        if (2 * trial.offset <= -unit) return {trial.numerator, trial.denominator - 1, trial.offset + unit};
        return trial;
    }

    bool isBetter(const Trial& trial) const noexcept {
        return multiply(distance(trial), scale_) <= multiply(bound_, trial.denominator);
    }

    /// The first step, up to `end`, at which from + step * by is better; `end` + 1 if there is none. Each of these
    /// fractions is better than the one before it.
    std::uint64_t firstBetter(const Trial& from, const Trial& by, std::uint64_t step, std::uint64_t end) const {
        const auto isBetterAt = [&](std::uint64_t at) { return isBetter(advanced(from, by, at)); };
        if (isBetterAt(step)) return step;
        if (!isBetterAt(end)) return end + 1;
        std::uint64_t worse = step;
        std::uint64_t stride = 1;
        for (; stride < end - worse && !isBetterAt(worse + stride); stride *= 2) worse += stride;
        std::uint64_t better = std::min(end, worse + stride);
        while (better - worse > 1) {
            const std::uint64_t middle = worse + (better - worse) / 2;
            (isBetterAt(middle) ? better : worse) = middle;
        }
        return better;
    }

    /// Takes the first numerator that has a fraction in the interval, given the one with the smallest terms. If another
    /// denominator is nearer and that fraction is not good enough, the next numerator always is: from this denominator
    /// onwards, half a unit is below the bound.
    void takeNear(const Trial& smallest, XlsFraction& result) {
        const Trial trial = nearest(smallest);
        take(isBetter(trial) ? trial : nearest(advanced(trial, first_, 1)), result);
    }

    void take(const Trial& trial, XlsFraction& result) {
        constexpr std::uint64_t perMargin = 100'000'000;  // 1 / 1e-8
        isOpen_ = trial.denominator < limit_;
        if (!isOpen_) return;
        result.numerator = trial.numerator;
        result.denominator = trial.denominator;
        const Wide error = multiply(distance(trial), perMargin);
        const Wide margin = multiply(trial.denominator, unit_);
        isOpen_ = error >= margin;
        if (!isOpen_) return;  // nothing can be better by that much
        bound_ = subtract(error, margin);
        // An error of at least the margin implies a denominator below 2^26, so this does not overflow.
        scale_ = trial.denominator * perMargin;
    }

    std::uint64_t unit_;
    std::uint64_t limit_;
    Trial first_;
    bool isOpen_ = true;
    Wide bound_;  ///< the next one taken has distance * scale_ <= bound_ * denominator
    std::uint64_t scale_ = 0;
};

/// Follows the continued fraction of a magnitude as long as the denominators of its convergents are below the limit.
/// Spreadsheet programs do it in doubles, whose errors show: 0.3 is 2/7 with one digit, and 1.3 is 1 1/3.
void searchConvergent(double magnitude, std::uint64_t limit, XlsFraction& result) {
    constexpr double leastPart = 5e-8;
    double part = magnitude - std::floor(magnitude);
    std::uint64_t beforeNumerator = 1, beforeDenominator = 0;
    while (part >= leastPart) {
        const double inverse = 1 / part;
        const double quotient = std::floor(inverse);
        const auto factor = static_cast<std::uint64_t>(quotient);
        const std::uint64_t denominator = factor * result.denominator + beforeDenominator;
        if (denominator >= limit) return;
        const std::uint64_t numerator = factor * result.numerator + beforeNumerator;
        beforeNumerator = std::exchange(result.numerator, numerator);
        beforeDenominator = std::exchange(result.denominator, denominator);
        part = inverse - quotient;
    }
}

/// Parts of at most 1e-6 count as zero.
bool isSearched(const XlsDecimal::Part& part) noexcept {
    constexpr int places = 6;
    if (part.digits == 0) return false;
    if (part.places <= places) return part.places < places || part.digits > 1;
    return part.places - places <= XlsDecimal::EXACT_DIGITS && part.digits > powerOfTen(part.places - places);
}

}  // namespace

XlsFraction::XlsFraction(const XlsDecimal& magnitude, int places, int fixedDenominator, XlsSearch search) {
    if (fixedDenominator > 0) {
        denominator = static_cast<std::uint64_t>(fixedDenominator);
        numerator = magnitude.fractionTimes(static_cast<std::uint32_t>(fixedDenominator));
        return;
    }
    if (search == XlsSearch::CONVERGENT) {
        constexpr int mostPlaces = 7;
        searchConvergent(magnitude.toDouble(), powerOfTen(std::clamp(places, 1, mostPlaces)), *this);
        return;
    }
    const XlsDecimal::Part part = magnitude.fraction();
    if (isSearched(part)) FractionSearch(part, powerOfTen(std::clamp(places, 1, MAX_PLACES))).run(*this);
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
