#include <lumcommon/format/Kansuji.h>
#include <lumcommon/format/LumUtil.h>

namespace LumCommon {

namespace {

Kansuji makeTable(LumName digits, const UnicodeString& unitChars) {
    Kansuji table;
    if (digits == NAME_latin)
        table.setDigitLatin();
    else if (digits != NAME_kanji)
        table.setDigits(digits.getString());
    table.setUnits(unitChars);
    return table;
}

Kansuji::Style getStyle(LumName style) {
    if (style == NAME_grouping) return Kansuji::STYLE_GROUPING;
    return style == NAME_readable ? Kansuji::STYLE_READABLE : Kansuji::STYLE_DIGITS;
}

}  // namespace

UnicodeString LumUtil::convertKansuji(const UnicodeString& text, LumName style, LumName digits,
                                      const UnicodeString& unitChars, const UnicodeString&) {
    return makeTable(digits, unitChars).convert(text, getStyle(style));
}

UnicodeString LumUtil::convertKansuji(int number, LumName style, LumName digits, const UnicodeString& unitChars,
                                      const UnicodeString& further) {
    return convertKansuji(toString(number), style, digits, unitChars, further);
}

}  // namespace LumCommon
