// Shows the cells of a spreadsheet as texts.
// [cells]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main() {
    const XlsFormat format(u"#,##0.00;[Red](#,##0.00)");  // parsed once, for any number of cells
    for (const double value : {1234.565, -1234.5}) {
        const XlsFormat::Result cell = format.format(value);
        std::cout << toUtf8(cell.text) << (cell.color == 0xFF0000 ? " in red\n" : "\n");
    }
    std::cout << toUtf8(XlsFormat(u"[$-407]dddd, d. mmmm yyyy h:mm").format(45000.75).text) << '\n';
    const XlsFormat texts(u"0;-0;0;\"name: \"@");
    std::cout << toUtf8(texts.format(u"Ann").text) << '\n';

    const UnicodeString fraction(u"# #/##");
    const XlsFormat simple(fraction, false, XlsFormat::Rules::CONTRACT);
    std::cout << toUtf8(XlsFormat(fraction).format(123.456).text) << ", simply " << toUtf8(simple.format(123.456).text)
              << '\n';

    const XlsFormat::Result late = XlsFormat(u"yyyy-mm-dd").format(3e6);
    std::cout << toUtf8(late.text) << (late.section == XlsFormat::NOT_A_DATE ? " is no date\n" : "\n");
}
// [cells]
