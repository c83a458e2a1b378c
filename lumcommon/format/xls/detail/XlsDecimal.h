#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace LumCommon::detail {

/// A decimal number of at most 15 significant digits, as spreadsheets see a double: 0.d1d2...dn times 10^point. All
/// digits that are shown come from here; none is computed in binary.
class XlsDecimal {
public:
    static constexpr int MAX_DIGITS = 15;
    /// Enough digits to tell any double from its neighbours.
    static constexpr int EXACT_DIGITS = 17;

    XlsDecimal() = default;
    /// Rounds the exact decimal expansion of `value` half up. `value` must be finite.
    explicit XlsDecimal(double value);
    /// The shortest decimal that reads back as `value`, with up to EXACT_DIGITS digits: for numbers that are
    /// multiplied before they are rounded.
    static XlsDecimal exact(double value);
    /// Reads a digit string; anything after it is ignored.
    explicit XlsDecimal(std::string_view digitString);

    bool isZero() const noexcept { return count_ == 0; }
    bool isNegative() const noexcept { return negative_; }
    XlsDecimal abs() const noexcept;
    /// The digits d1 to dn; the last one is not 0.
    std::string_view digits() const noexcept { return {digits_, static_cast<std::size_t>(count_)}; }
    /// How many digits stand before the decimal point; 0 or less for numbers below 1.
    std::int64_t point() const noexcept { return point_; }
    /// The significant digits before the point; zeros between the last of them and the point are left out.
    std::string_view integerDigits() const noexcept;
    /// A decimal by its number, from 1; '0' where there is no digit.
    char decimal(std::int64_t number) const noexcept;

    /// Multiplies by a power of ten.
    void scale(std::int64_t powerOfTen) noexcept;
    /// Rounds half up, away from zero.
    void round(std::int64_t decimals) noexcept;
    /// The part after the point, times `factor` (below 2^32), rounded half up.
    std::uint64_t fractionTimes(std::uint32_t factor) const noexcept;
    /// The same product, rounded half up to MAX_DIGITS digits instead of to an integer.
    XlsDecimal fractionProduct(std::uint32_t factor) const noexcept;
    /// The part after the point, as digits / 10^places; zero if it is below 10^-40.
    struct Part {
        std::uint64_t digits = 0;
        int places = 0;
    };
    Part fraction() const noexcept;
    /// The part before the point; the largest std::int64_t if it has more than 18 digits.
    std::int64_t whole() const noexcept;

    /// The nearest double; infinite beyond the largest one.
    double toDouble() const noexcept;

    /// Whether the magnitude is below 0.LIMITDIGITS times 10^limitPoint; `limitDigits` must not end with zeros.
    bool isBelow(std::string_view limitDigits, std::int64_t limitPoint) const noexcept;

private:
    void trim() noexcept;
    /// Keeps the first `kept` digits; with `up`, adds one to the last of them, with carry.
    void keep(int kept, bool up) noexcept;
    void fromScientific(const char* digits, int count, std::int64_t exponent, int kept) noexcept;
    /// Multiplies the part after the point by `factor`. Passes the digits after the point of the product to `put`, last
    /// one first, and returns the part before it.
    template <class Put>
    std::uint64_t multiplyFraction(std::uint32_t factor, Put put) const noexcept;

    char digits_[EXACT_DIGITS + 1] = {};
    int count_ = 0;
    bool negative_ = false;
    std::int64_t point_ = 0;
};

/// The natural number `digits` followed by `zeros` zeros, times `factor`, plus `addend`. `factor` and `addend` are at
/// most 10^18.
std::string multiplyDigits(std::string_view digits, std::int64_t zeros, std::uint64_t factor, std::uint64_t addend);

}  // namespace LumCommon::detail
