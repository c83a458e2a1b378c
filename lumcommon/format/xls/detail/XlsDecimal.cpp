#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/format/xls/detail/XlsDecimal.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace LumCommon::detail {

namespace {

/// A number with more zeros than this after its point is too small to matter to fractions and times.
constexpr std::int64_t farAfterPoint = 40;

/// "d.ddde+xx" without its point; the exponent of the first digit.
struct Scientific {
    char digits[48];
    int count = 0;
    int exponent = 0;

    Scientific(const char* text, const char* end) {
        for (; *text != 'e'; ++text) {
            if (isAsciiDigit(*text)) digits[count++] = *text;
        }
        ++text;
        if (*text == '+') ++text;  // from_chars takes no plus sign
        std::from_chars(text, end, exponent);
    }
};

/// The shortest decimal that reads back as the same double, at most 17 digits.
Scientific shortest(double magnitude) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific).ptr};
}

Scientific expansion(double magnitude, int digits) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific, digits - 1).ptr};
}

}  // namespace

XlsDecimal::XlsDecimal(double value) : negative_(std::signbit(value)) {
    const double magnitude = std::fabs(value);
    if (magnitude < 1e15 && magnitude == std::floor(magnitude)) {
        char text[24];
        const auto end = std::to_chars(text, text + sizeof text, static_cast<std::uint64_t>(magnitude)).ptr;
        count_ = static_cast<int>(end - text);
        point_ = count_;
        std::memcpy(digits_, text, static_cast<std::size_t>(count_));
        trim();
        return;
    }
    // A decimal of 15 digits survives the way to the nearest double and back, unless that double is denormal.
    if (magnitude >= std::numeric_limits<double>::min()) {
        const Scientific number = shortest(magnitude);
        if (number.count <= MAX_DIGITS) {
            fromScientific(number.digits, number.count, number.exponent, number.count);
            return;
        }
    }
    // Two more digits than are kept decide which way to round, unless they are 50: they may have been rounded up to
    // that. No double has an expansion whose digits 16 to 41 are a 4 and nines.
    Scientific number = expansion(magnitude, MAX_DIGITS + 2);
    if (number.digits[MAX_DIGITS] == '5' && number.digits[MAX_DIGITS + 1] == '0') {
        number = expansion(magnitude, MAX_DIGITS + 26);
    }
    fromScientific(number.digits, number.count, number.exponent, MAX_DIGITS);
}

XlsDecimal XlsDecimal::exact(double value) {
    XlsDecimal result;
    result.negative_ = std::signbit(value);
    const Scientific number = shortest(std::fabs(value));
    result.fromScientific(number.digits, number.count, number.exponent, number.count);
    return result;
}

XlsDecimal::XlsDecimal(std::string_view text) {
    std::size_t at = 0;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) negative_ = text[at++] == '-';
    bool isBehindPoint = false;
    bool up = false;
    bool isFull = false;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '.' && !isBehindPoint) {
            isBehindPoint = true;
            continue;
        }
        if (!isAsciiDigit(c)) break;
        if (count_ == 0 && c == '0') {
            if (isBehindPoint) --point_;
            continue;
        }
        if (!isBehindPoint) ++point_;
        if (count_ < MAX_DIGITS) {
            digits_[count_++] = c;
        } else if (!isFull) {
            isFull = true;
            up = c >= '5';
        }
    }
    keep(count_, up);
}

XlsDecimal XlsDecimal::abs() const noexcept {
    XlsDecimal result = *this;
    result.negative_ = false;
    return result;
}

void XlsDecimal::fromScientific(const char* digits, int count, std::int64_t exponent, int kept) noexcept {
    std::memcpy(digits_, digits, static_cast<std::size_t>(kept));
    point_ = exponent + 1;
    keep(kept, count > kept && digits[kept] >= '5');
}

void XlsDecimal::trim() noexcept {
    while (count_ > 0 && digits_[count_ - 1] == '0') --count_;
    if (count_ == 0) {
        point_ = 0;
        negative_ = false;
    }
}

void XlsDecimal::keep(int kept, bool up) noexcept {
    count_ = kept;
    if (up) {
        while (count_ > 0 && digits_[count_ - 1] == '9') --count_;
        if (count_ > 0) {
            ++digits_[count_ - 1];
        } else {
            digits_[0] = '1';
            count_ = 1;
            ++point_;
        }
    }
    trim();
}

std::string_view XlsDecimal::integerDigits() const noexcept {
    const std::int64_t before = std::clamp<std::int64_t>(point_, 0, count_);
    return {digits_, static_cast<std::size_t>(before)};
}

char XlsDecimal::decimal(std::int64_t number) const noexcept {
    const std::int64_t index = point_ + number - 1;
    return index >= 0 && index < count_ ? digits_[index] : '0';
}

void XlsDecimal::scale(std::int64_t powerOfTen) noexcept {
    if (count_ != 0) point_ += powerOfTen;
}

void XlsDecimal::round(std::int64_t decimals) noexcept {
    const std::int64_t kept = point_ + decimals;
    if (kept >= count_) return;
    if (kept < 0) {
        keep(0, false);
    } else {
        keep(static_cast<int>(kept), digits_[kept] >= '5');
    }
}

template <class Put>
std::uint64_t XlsDecimal::multiplyFraction(std::uint32_t factor, Put put) const noexcept {
    // Horner's scheme from the last digit: each step splits off one digit of the product's fraction.
    std::uint64_t product = 0;
    for (std::int64_t i = count_ - 1; i >= std::max<std::int64_t>(point_, 0); --i) {
        product += static_cast<std::uint64_t>(digits_[i] - '0') * factor;
        put(static_cast<char>('0' + product % 10));
        product /= 10;
    }
    // The zeros between the point and the first digit.
    for (std::int64_t i = point_; i < 0; ++i) {
        put(static_cast<char>('0' + product % 10));
        product /= 10;
    }
    return product;
}

std::uint64_t XlsDecimal::fractionTimes(std::uint32_t factor) const noexcept {
    if (point_ < -farAfterPoint) return 0;
    char firstDecimal = '0';  // the last one split off; rounding half up needs no other
    const std::uint64_t product = multiplyFraction(factor, [&](char digit) { firstDecimal = digit; });
    return product + (firstDecimal >= '5');
}

XlsDecimal XlsDecimal::fractionProduct(std::uint32_t factor) const noexcept {
    if (point_ < -farAfterPoint) return XlsDecimal();
    constexpr std::size_t most = EXACT_DIGITS + farAfterPoint;
    char text[24 + most];  // an integer, the point, decimals
    // The digits arrive last one first, so the text is filled from its end.
    char* first = text + sizeof text;
    const std::uint64_t product = multiplyFraction(factor, [&](char digit) { *--first = digit; });
    *--first = '.';
    char whole[24];
    const auto end = std::to_chars(whole, whole + sizeof whole, product).ptr;
    first -= end - whole;
    std::memcpy(first, whole, static_cast<std::size_t>(end - whole));
    return XlsDecimal(std::string_view(first, static_cast<std::size_t>(text + sizeof text - first)));
}

XlsDecimal::Part XlsDecimal::fraction() const noexcept {
    if (point_ < -farAfterPoint || point_ >= count_) return {};
    Part part{0, static_cast<int>(count_ - point_)};
    for (std::int64_t i = std::max<std::int64_t>(point_, 0); i < count_; ++i) {
        part.digits = part.digits * 10 + static_cast<std::uint64_t>(digits_[i] - '0');
    }
    return part;
}

std::int64_t XlsDecimal::whole() const noexcept {
    if (point_ > 18) return std::numeric_limits<std::int64_t>::max();
    std::int64_t result = 0;
    for (std::int64_t i = 0; i < point_; ++i) result = result * 10 + (i < count_ ? digits_[i] - '0' : 0);
    return result;
}

double XlsDecimal::toDouble() const noexcept {
    if (count_ == 0) return 0;
    char text[MAX_DIGITS + 32];  // a sign, EXACT_DIGITS, "e", an exponent
    char* end = text;
    if (negative_) *end++ = '-';
    end = std::copy_n(digits_, count_, end);
    *end++ = 'e';
    end = std::to_chars(end, text + sizeof text, point_ - count_).ptr;
    double result = 0;
    const auto error = std::from_chars(text, end, result).ec;
    if (error != std::errc::result_out_of_range) return result;
    // Too large or too small.
    return point_ > 0 ? std::copysign(std::numeric_limits<double>::infinity(), negative_ ? -1.0 : 1.0) : 0;
}

bool XlsDecimal::isBelow(std::string_view limitDigits, std::int64_t limitPoint) const noexcept {
    if (count_ == 0) return true;
    if (point_ != limitPoint) return point_ < limitPoint;
    return digits() < limitDigits;  // neither ends with zeros
}

std::string multiplyDigits(std::string_view digits, std::int64_t zeros, std::uint64_t factor, std::uint64_t addend) {
    std::string reversed;
    std::uint64_t carry = addend;
    const auto put = [&](unsigned digit) {
        carry += digit * factor;
        reversed.push_back(static_cast<char>('0' + carry % 10));
        carry /= 10;
    };
    for (std::int64_t i = 0; i < zeros; ++i) put(0);
    for (auto it = digits.rbegin(); it != digits.rend(); ++it) put(static_cast<unsigned>(*it - '0'));
    while (carry != 0) put(0);
    while (!reversed.empty() && reversed.back() == '0') reversed.pop_back();
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

}  // namespace LumCommon::detail
