// Strings in and out:  strings IN
// [strings]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

using namespace LumCommon;

int main(int, char* argv[]) try {
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->load(std::filesystem::path(argv[1]));
    LumElement* const root = document->getDocumentElement();

    root->setAttribute(LumName(u"city"), u"K\u00F6ln");  // literals: u"..."
    const std::string bytes = "\xF0\x9F\x90\x88 cat";    // UTF-8 in a string of the standard library
    root->appendChildText(toText(bytes));
    const std::u16string_view view = u", UTF-16";  // UTF-16 that is somewhere else
    root->appendChildText(toText(view));
    root->setAttribute(toName("sound"), toText("miaow"));  // a name from UTF-8

    const UnicodeString text = root->getInnerText();
    const std::string back = toUtf8(text);
    std::cout << back << ": " << text.length() << " units, " << text.countChar32() << " characters, " << back.size()
              << " bytes\n";
    std::cout << "city is " << root->getAttribute(LumName(u"city")) << '\n';

    const LumValue absent = root->getAttribute(LumName(u"country"));
    std::cout << "country is " << (absent.isNull() ? "absent" : toUtf8(absent)) << '\n';
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [strings]
