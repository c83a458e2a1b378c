// Writes text in a charset and reads it back:  charsets
// [charsets]
#include <lumcommon/lumcommon.h>

#include <iostream>
#include <sstream>

using namespace LumCommon;

int main() {
    const UnicodeString text(u"\u4FA1\u683C 100 \u20AC");
    std::ostringstream mail;
    LumKobOStreamBuf writer(&mail, "Shift_JIS", false, LumKobOStreamBuf::LF_TO_CRLF, false);
    std::ostream units(&writer);  // takes the bytes of UTF-16 units, in the machine's order
    units.write(reinterpret_cast<const char*>(text.getBuffer()), text.length() * 2);
    writer.term();
    std::cout << mail.str().size() << " bytes\n";

    std::istringstream bytes(mail.str());
    LumKobStream in(&bytes, "Shift_JIS");  // gives the bytes of UTF-16 units, the low one first
    UnicodeString back;
    for (char unit[2]; in.read(unit, 2);)
        back.append(
            static_cast<char16_t>(static_cast<unsigned char>(unit[0]) | static_cast<unsigned char>(unit[1]) << 8));
    std::string utf8;
    std::cout << back.toUTF8String(utf8) << '\n';

    std::istringstream unknown("\xEF\xBB\xBFgr\xC3\xBC\xC3\x9F");
    UnicodeString name;
    bool hasMark = false;
    std::string detected;
    if (LumKobStream::detectEncoding(&unknown, name, hasMark))
        std::cout << name.toUTF8String(detected) << (hasMark ? ", with a mark\n" : "\n");
}
// [charsets]
