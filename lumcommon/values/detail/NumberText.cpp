#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/HexText.h>
#include <lumcommon/values/detail/NumberText.h>

#include <algorithm>
#include <bit>
#include <charconv>

namespace LumCommon::detail {

namespace {

constexpr int significantDigits = 6;  // what "%g" prints

}  // namespace

void appendReal(UnicodeString& text, double number) {
    // The longest form has a sign, six digits, a point and an exponent such as "e-308".
    char digits[32];
    const char* const end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, significantDigits).ptr;
    for (const char* digit = digits; digit != end; ++digit) append(text, static_cast<char16_t>(*digit));
}

void appendHexColor(UnicodeString& text, std::uint32_t rgb) {
    append(text, u'#');
    const int shownDigits = std::max(6, (static_cast<int>(std::bit_width(rgb)) + 3) / 4);
    for (int shift = 4 * (shownDigits - 1); shift >= 0; shift -= 4) {
        append(text, hexDigit(rgb >> shift));
    }
}

}  // namespace LumCommon::detail
