#include <lumcommon/core/detail/HexText.h>
#include <lumcommon/values/detail/NumberScan.h>

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <limits>
#include <string>
#include <system_error>

namespace LumCommon::detail {

namespace {

/// The value of `[digits][.[digits]]`. The caller has skipped the leading zeros of the integer part.
double convertDigits(const char16_t* begin, const char16_t* end) {
    const auto count = static_cast<std::size_t>(end - begin);
    char buffer[128];
    std::string large;
    char* digits = buffer;
    if (count > sizeof buffer) {
        large.resize(count);
        digits = large.data();
    }
    std::transform(begin, end, digits, [](char16_t digit) { return static_cast<char>(digit); });
    double value = 0;
    const auto [stop, error] = std::from_chars(digits, digits + count, value, std::chars_format::fixed);
    // Out of range means too large if there is an integer part, otherwise too small: a fraction with many zeros.
    if (error == std::errc::result_out_of_range)
        return isAsciiDigit(*begin) ? std::numeric_limits<double>::infinity() : 0;
    return value;
}

/// The digits of a number as an integer over a power of ten. As long as both are exact doubles, which they are for all
/// numbers of up to 15 digits, their quotient is the double nearest to the number.
class Mantissa {
public:
    void addDigit(char16_t digit) noexcept {
        if (digits_ > largestExact / 10) {
            isOver_ = true;
        } else {
            digits_ = digits_ * 10 + static_cast<std::uint64_t>(digit - u'0');
        }
    }
    void addFractionDigit(char16_t digit) noexcept {
        addDigit(digit);
        if (fractionDigits_ < std::size(powers)) ++fractionDigits_;
    }
    bool isExact() const noexcept {
        // With wider registers the quotient would be rounded twice.
        return FLT_EVAL_METHOD == 0 && !isOver_ && digits_ <= largestExact && fractionDigits_ < std::size(powers);
    }
    double getValue() const noexcept { return static_cast<double>(digits_) / powers[fractionDigits_]; }

private:
    static constexpr std::uint64_t largestExact = std::uint64_t{1} << std::numeric_limits<double>::digits;
    static constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

    std::uint64_t digits_ = 0;
    std::size_t fractionDigits_ = 0;
    bool isOver_ = false;
};

}  // namespace

ScannedNumber scanNumber(UnitCursor& cursor) {
    UnitCursor scan = cursor;
    scan.skipTokenSpace();
    if (!scan.isAtSignedNumber()) return {};
    const bool isNegative = scan.peek() == u'-';
    if (!scan.isAtNumber()) scan.advance();  // the sign

    while (scan.peek() == u'0') scan.advance();
    const char16_t* const digits = scan.get();
    ScannedNumber number;
    Mantissa mantissa;
    for (; isAsciiDigit(scan.peek()); scan.advance()) mantissa.addDigit(scan.peek());
    if (scan.peek() == u'.') {
        number.hasFraction = true;
        scan.advance();
        for (; isAsciiDigit(scan.peek()); scan.advance()) mantissa.addFractionDigit(scan.peek());
    }
    number.value = mantissa.isExact() ? mantissa.getValue() : convertDigits(digits, scan.get());
    if (isNegative) number.value = -number.value;
    cursor = scan;
    return number;
}

std::uint32_t scanHexNumber(UnitCursor& cursor, int maxDigits) {
    UnitCursor scan = cursor;
    scan.skipTokenSpace();
    const char16_t* const start = scan.get();
    std::uint64_t value = 0;
    constexpr std::uint64_t largest = std::numeric_limits<std::uint32_t>::max();
    for (int left = maxDigits; left != 0 && hexDigitValue(scan.peek()) >= 0; scan.advance()) {
        value = value * 16 + static_cast<std::uint64_t>(hexDigitValue(scan.peek()));
        if (value > largest) value = largest;
        if (left > 0) --left;
    }
    if (scan.get() != start) cursor = scan;
    return static_cast<std::uint32_t>(value);
}

}  // namespace LumCommon::detail
