#include <lumcommon/format/xls/detail/XlsNumerals.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

namespace LumCommon::detail {

namespace {

constexpr std::u16string_view styles[] = {
#include <lumcommon/format/xls/XlsNumerals.inc>
};
constexpr std::size_t firstUnit = 10;
constexpr std::size_t firstLargeUnit = 13;
static_assert(styles[0].size() == firstLargeUnit + 4 && styles[1].size() == styles[0].size() &&
              styles[2].size() == styles[0].size());
constexpr int formalStyle = 2;

}  // namespace

char16_t xlsNumeral(int digit, int style) noexcept {
    return styles[static_cast<std::size_t>(style) - 1][static_cast<std::size_t>(digit)];
}

char16_t xlsNumeralUnit(int power, int style) noexcept {
    const std::u16string_view row = styles[static_cast<std::size_t>(style) - 1];
    if (power >= 1 && power <= 3) return row[firstUnit + static_cast<std::size_t>(power) - 1];
    if (power >= 4 && power <= 16 && power % 4 == 0)
        return row[firstLargeUnit + static_cast<std::size_t>(power) / 4 - 1];
    return 0;
}

void xlsWriteReadable(XlsWriter& out, std::string_view digits, int style) {
    while (!digits.empty() && digits.front() == '0') digits.remove_prefix(1);
    if (digits.empty()) return out.digit('0');
    bool isGroupWritten = false;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const auto power = static_cast<int>(digits.size() - 1 - i);
        const char digit = digits[i];
        const int place = power % 4;
        if (digit != '0') {
            isGroupWritten = true;
            if (digit != '1' || place == 0 || style == formalStyle) out.digit(digit);
            if (place != 0) out.put(xlsNumeralUnit(place, style));
        }
        if (place == 0) {
            if (power != 0 && isGroupWritten) out.put(xlsNumeralUnit(power, style));
            isGroupWritten = false;
        }
    }
}

}  // namespace LumCommon::detail
