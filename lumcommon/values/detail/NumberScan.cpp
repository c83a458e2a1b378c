#include <lumcommon/values/detail/NumberScan.h>

#include <charconv>
#include <limits>
#include <string>
#include <system_error>

namespace LumCommon::detail {

namespace {

/// The value of `[digits][.[digits]]`. Leading zeros of the integer part must be gone.
double convertDigits(const char* begin, const char* end) noexcept {
    double value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, std::chars_format::fixed);
    // Out of range is too large when there is an integer part. What is too small is a fraction of many zeros.
    if (error == std::errc::result_out_of_range) {
        return isDigit(static_cast<char16_t>(*begin)) ? std::numeric_limits<double>::infinity() : 0;
    }
    return value;
}

}  // namespace

ScannedNumber scanNumber(UnitCursor& cursor) {
    UnitCursor scan = cursor;
    scan.skipTokenSpace();
    if (!scan.isAtSignedNumber()) return {};
    const bool isNegative = scan.peek() == u'-';
    if (!scan.isAtNumber()) scan.advance();  // the sign

    while (scan.peek() == u'0') scan.advance();
    std::string digits;  // short numbers stay in its own buffer
    for (; isDigit(scan.peek()); scan.advance()) digits.push_back(static_cast<char>(scan.peek()));
    ScannedNumber number;
    if (scan.peek() == u'.') {
        number.hasFraction = true;
        digits.push_back('.');
        scan.advance();
        for (; isDigit(scan.peek()); scan.advance()) digits.push_back(static_cast<char>(scan.peek()));
    }
    if (!digits.empty()) number.value = convertDigits(digits.data(), digits.data() + digits.size());
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
    for (int left = maxDigits; left != 0 && getHexDigit(scan.peek()) >= 0; scan.advance()) {
        value = value * 16 + static_cast<std::uint64_t>(getHexDigit(scan.peek()));
        if (value > largest) value = largest;
        if (left > 0) --left;
    }
    if (scan.get() != start) cursor = scan;
    return static_cast<std::uint32_t>(value);
}

}  // namespace LumCommon::detail
