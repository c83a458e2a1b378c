// Shows what the texts of properties mean.
// [values]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main() {
    const LumValue width = LumValue::parse(u"2.5cm");  // a real number of centimetres
    const LumValue sum = width + LumValue::parse(u"10mm");
    std::cout << toUtf8(width.toString()) << " + 10mm = " << LumLength(sum).getPoints() << " points\n";

    const LumColor ink(LumValue::parseColor(u"rgb-icc(#CMYK, 0, 0.2, 1, 0)", false));
    std::cout << toUtf8(ink.toString(true)) << '\n';

    LumTokenizer tokens(u"translate(10pt, -4) scale(2)");
    for (LumValue value = tokens.nextTokenValueSigned(); tokens.getKind() != LumTokenizer::TOKEN_END;
         value = tokens.nextTokenValueSigned()) {
        std::cout << ' ' << toUtf8(value.toString());
    }
    std::cout << '\n';

    LumValue border;  // several named values make a compound
    border.setNamedItem(NAME_width, width);
    border.setNamedItem(NAME_color, ink);
    for (LumNamedValueMapIterator items(border.getNamedValueMap()); items.hasNext();) {
        const LumNamedValue item = items.next();
        std::cout << toUtf8(item.getName().getString()) << " = " << toUtf8(item.toString()) << '\n';
    }
}
// [values]
