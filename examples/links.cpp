// Shows what a link into a document means.
// [links]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main() {
    const LumValue link = LumValue::parsePDFOpenParameters(u"manual.pdf#page=12&zoom=150,10,20");
    std::cout << link.getNamedItem(NAME_uri) << ", page " << link.getNamedItem(NAME_page).getIntegerValue() << ", "
              << link.getNamedItem(NAME_zoom).getRealValue(UNIT_NUMBER) << " %, from " << link.getNamedItem(NAME_left)
              << '\n';
}
// [links]
