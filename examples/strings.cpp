// Strings in and out:  strings IN
// [strings]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iostream>
#include <string>
#include <string_view>

using namespace LumCommon;

int main(int, char* argv[]) try {
    LumPtr<LumDocument> document(new LumDocument);
    document->load(UnicodeString::fromUTF8(argv[1]));  // a path: bytes of UTF-8
    LumElement* root = document->getDocumentElement();

    root->setAttribute(LumName(u"city"), LumValue(u"K\u00F6ln"));  // literals: u"..."
    const std::string bytes = "\xF0\x9F\x90\x88 cat";              // from UTF-8
    root->appendChildText(UnicodeString::fromUTF8(bytes));
    const std::u16string_view view = u", UTF-16";  // from UTF-16 that is somewhere else
    root->appendChildText(UnicodeString(view.data(), static_cast<int32_t>(view.size())));

    const UnicodeString text = root->getInnerText();
    std::cout << toUtf8(text) << ": " << text.length() << " units, " << text.countChar32() << " characters, "
              << toUtf8(text).size() << " bytes\n";
    std::cout << "city is " << toUtf8(root->getAttribute(LumName(u"city")).toString()) << '\n';

    const LumValue absent = root->getAttribute(LumName(u"country"));
    std::cout << "country is " << (absent.isNull() ? "absent" : toUtf8(absent.toString())) << '\n';
} catch (const LumError& error) {
    std::cerr << toUtf8(error.getMessage()) << '\n';
    return 1;
}
// [strings]
