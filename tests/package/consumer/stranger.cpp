// Prints what a first user would: the version, and a small document after a change.
#include <lumcommon/lumcommon.h>

#include <iostream>
#include <string>

using namespace LumCommon;

int main() {
    {
        LumPtr<LumDocument> document(new LumDocument);
        document->loadXml(u"<book xml:lang='en'><title>A &amp; B</title></book>");
        document->getDocumentElement()->setAttribute(LumName(u"id"), LumValue(u"b1"));
        std::string text;
        document->saveXml(document->getDocumentElement()).toUTF8String(text);
        std::cout << getLibVersion() << '\n' << text << '\n';
        try {
            document->loadXml(u"<open>");
        } catch (const LumError& error) {  // thrown in the library, caught in the program
            std::cout << std::hex << error.code << '\n';
        }
    }
    cleanup();
}
