// Shows the cells of a spreadsheet as texts.
// [cells]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

static std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

int main() {
    const XlsFormat format(u"#,##0.00;[Red](#,##0.00)");  // parsed once, for any number of cells
    for (const double value : {1234.565, -1234.5}) {
        const XlsFormat::Result cell = format.format(value);
        std::cout << utf8(cell.text) << (cell.color == 0xFF0000 ? " in red\n" : "\n");
    }
    std::cout << utf8(XlsFormat(u"[$-407]dddd, d. mmmm yyyy h:mm").format(45000.75).text) << '\n';
    std::cout << utf8(XlsFormat(u"# #/##").format(123.456).text) << '\n';
}
// [cells]
