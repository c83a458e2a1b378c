#include <lumcommon/values/detail/NumberText.h>

#include <algorithm>
#include <bit>
#include <charconv>

namespace LumCommon::detail {

namespace {

constexpr int significantDigits = 6;  // what "%g" prints

void appendAscii(UnicodeString& text, const char* begin, const char* end) {
    for (; begin != end; ++begin) text.append(static_cast<char16_t>(*begin));
}

}  // namespace

void appendInteger(UnicodeString& text, std::int32_t number) {
    char digits[16];
    appendAscii(text, digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void appendInteger(UnicodeString& text, std::uint64_t number) {
    char digits[24];
    appendAscii(text, digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void appendReal(UnicodeString& text, double number) {
    // The longest form is sign, six digits, point and a four-character exponent such as "e-308".
    char digits[32];
    appendAscii(
        text, digits,
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, significantDigits).ptr);
}

void appendHexColor(UnicodeString& text, std::uint32_t rgb) {
    text.append(u'#');
    const int shownDigits = std::max(6, (static_cast<int>(std::bit_width(rgb)) + 3) / 4);
    for (int shift = 4 * (shownDigits - 1); shift >= 0; shift -= 4) {
        text.append(static_cast<char16_t>(u"0123456789ABCDEF"[(rgb >> shift) & 15u]));
    }
}

}  // namespace LumCommon::detail
