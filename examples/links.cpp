// Shows what a link into a document means.
// [links]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

static std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

int main() {
    const LumValue link = LumValue::parsePDFOpenParameters(u"manual.pdf#page=12&zoom=150,10,20");
    std::cout << utf8(link.getNamedItem(NAME_uri).toString()) << ", page "
              << link.getNamedItem(NAME_page).getIntegerValue() << ", "
              << link.getNamedItem(NAME_zoom).getRealValue(UNIT_NUMBER) << " %, from "
              << utf8(link.getNamedItem(NAME_left).toString()) << '\n';
}
// [links]
