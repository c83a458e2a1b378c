#pragma once

#include <string_view>

namespace LumCommon::detail {

class XlsWriter;

/// The digit 0 to 9 of a style of Japanese numerals, 1 to 3.
char16_t xlsNumeral(int digit, int style) noexcept;
/// The unit for 10^power, 1, 2, 3, 4, 8, 12 or 16; 0 for others.
char16_t xlsNumeralUnit(int power, int style) noexcept;

/// The most digits that xlsWriteReadable() takes.
constexpr std::size_t XLS_READABLE_DIGITS = 20;
/// Writes a natural number with units in a style, 1 to 3. A one before ten, hundred and thousand is omitted except in
/// the formal style; a group of four zeros writes nothing.
void xlsWriteReadable(XlsWriter& out, std::string_view digits, int style);

}  // namespace LumCommon::detail
