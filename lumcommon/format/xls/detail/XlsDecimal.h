#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace LumCommon::detail {

/// A decimal number of at most 15 significant digits, as spreadsheets see a double: 0.d1d2...dn times 10^point. All
/// digits that anybody sees come from here; nothing is computed in binary.
class XlsDecimal {
public:
    static constexpr int MAX_DIGITS = 15;
    /// So many tell any double from its neighbours.
    static constexpr int EXACT_DIGITS = 17;

    XlsDecimal() = default;
    /// `value` is finite. Rounds half up on the exact decimal expansion.
    explicit XlsDecimal(double value);
    /// The shortest decimal that reads back as `value`, with up to EXACT_DIGITS digits: for numbers that a product is
    /// made of before they are rounded.
    static XlsDecimal exact(double value);
    /// Of a digit string; what is behind it does not count.
    explicit XlsDecimal(std::string_view digitString);

    bool isZero() const noexcept { return count_ == 0; }
    bool isNegative() const noexcept { return negative_; }
    XlsDecimal abs() const noexcept;
    /// The digits d1 to dn; the last one is not 0.
    std::string_view digits() const noexcept { return {digits_, static_cast<std::size_t>(count_)}; }
    /// How many digits stand before the decimal point; 0 or less for numbers below 1.
    std::int64_t point() const noexcept { return point_; }
    /// The digits before the point that are not zeros at its end.
    std::string_view integerDigits() const noexcept;
    /// The decimal with that number, from 1; zeros go on for ever.
    char decimal(std::int64_t number) const noexcept;

    /// Moves the point.
    void scale(std::int64_t powerOfTen) noexcept;
    /// Rounds half up, away from zero.
    void round(std::int64_t decimals) noexcept;
    /// The part behind the point, times `factor` (below 2^32), rounded half up.
    std::uint64_t fractionTimes(std::uint32_t factor) const noexcept;
    /// The same product itself, rounded half up to MAX_DIGITS digits.
    XlsDecimal fractionProduct(std::uint32_t factor) const noexcept;
    /// The part after the point, as digits / 10^places; nothing for one below 10^-40.
    struct Part {
        std::uint64_t digits = 0;
        int places = 0;
    };
    Part fraction() const noexcept;
    /// The part before the point; the largest number when it is larger.
    std::int64_t whole() const noexcept;

    /// Whether the magnitude is below 0.LIMITDIGITS times 10^limitPoint; the digits do not end with zeros.
    bool isBelow(std::string_view limitDigits, std::int64_t limitPoint) const noexcept;

private:
    void trim() noexcept;
    /// Keeps the first `kept` digits; up: one more in the last of them, carried as far as it goes.
    void keep(int kept, bool up) noexcept;
    void fromScientific(const char* digits, int count, std::int64_t exponent, int kept) noexcept;
    /// Takes the digits behind the point off its product with `factor`, from the last one on; each goes to `put`. What
    /// is left is the part of the product before its point.
    template <class Put>
    std::uint64_t multiplyFraction(std::uint32_t factor, Put put) const noexcept;

    char digits_[EXACT_DIGITS + 1] = {};
    int count_ = 0;
    bool negative_ = false;
    std::int64_t point_ = 0;
};

/// Multiplies the natural number `digits` followed by `zeros` zeros with `factor` and adds `addend`, which are at most
/// 10^18.
std::string multiplyDigits(std::string_view digits, std::int64_t zeros, std::uint64_t factor, std::uint64_t addend);

}  // namespace LumCommon::detail
