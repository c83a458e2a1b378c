// Shows what the texts of properties mean.
// [values]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main() {
    const LumValue width = LumValue::parse(u"2.5cm");  // a real number of centimetres
    const LumValue sum = width + LumValue::parse(u"10mm");
    std::cout << width << " + 10mm = " << LumLength(sum).getPoints() << " points\n";

    const LumColor ink(LumValue::parseColor(u"rgb-icc(#CMYK, 0, 0.2, 1, 0)", false));
    std::cout << toUtf8(ink.toString(true)) << '\n';

    LumTokenizer tokens(u"translate(10pt, -4) scale(2)");
    for (LumValue value = tokens.nextTokenValueSigned(); tokens.getKind() != LumTokenizer::TOKEN_END;
         value = tokens.nextTokenValueSigned()) {
        std::cout << ' ' << value;
    }
    std::cout << '\n';

    LumValue border;  // several named values make a compound
    border.setNamedItem(NAME_width, width);
    border.setNamedItem(NAME_color, ink);
    for (const LumNamedValue& item : items(border)) std::cout << item.getName() << " = " << item << '\n';
}
// [values]
