// What texts of properties mean, and numbers as texts.
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

namespace {

std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

void showValues() {
    // [values]
    const LumValue width = LumValue::parse(u"2.5cm");  // a real number of centimetres
    const LumValue sum = width + LumValue::parse(u"10mm");
    std::cout << utf8(width.toString()) << " + 10mm = " << LumLength(sum).getPoints() << " points\n";

    const LumColor ink(LumValue::parseColor(u"rgb-icc(#CMYK, 0, 0.2, 1, 0)", false));
    std::cout << utf8(ink.toString(true)) << '\n';

    LumTokenizer tokens(u"translate(10pt, -4) scale(2)");
    for (LumValue value = tokens.nextTokenValueSigned(); tokens.getKind() != LumTokenizer::TOKEN_END;
         value = tokens.nextTokenValueSigned()) {
        std::cout << utf8(value.toString()) << ' ';
    }
    std::cout << '\n';
    // [values]
}

void showLinks() {
    // [links]
    const LumValue link = LumValue::parsePDFOpenParameters(u"manual.pdf#page=12&zoom=150,10,20");
    std::cout << utf8(link.getNamedItem(NAME_uri).toString()) << ", page "
              << link.getNamedItem(NAME_page).getIntegerValue() << ", "
              << link.getNamedItem(NAME_zoom).getRealValue(UNIT_NUMBER) << " %, from "
              << utf8(link.getNamedItem(NAME_left).toString()) << '\n';
    // [links]
}

void showNumbers() {
    // [numbers]
    const LumLang swedish(u"sv-SE");
    std::cout << utf8(LumUtil::formatNumber(1994, u"(i)")) << ' '
              << utf8(LumUtil::formatNumber(27, u"a", u"", 0, swedish)) << ' '
              << utf8(LumUtil::formatNumber(1234567, u"1", u",", 3)) << ' '
              << utf8(LumUtil::convertKansuji(12345, NAME_readable, NAME_kanji)) << '\n';
    // [numbers]
}

void showCells() {
    // [cells]
    const XlsFormat format(u"#,##0.00;[Red](#,##0.00)");  // parsed once, for any number of cells
    for (const double value : {1234.565, -1234.5}) {
        const XlsFormat::Result cell = format.format(value);
        std::cout << utf8(cell.text) << (cell.color == 0xFF0000 ? " in red\n" : "\n");
    }
    std::cout << utf8(XlsFormat(u"yyyy-mm-dd h:mm AM/PM").format(45000.75).text) << '\n';
    // [cells]
}

}  // namespace

int main() {
    showValues();
    showLinks();
    showNumbers();
    showCells();
}
