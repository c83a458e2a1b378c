// Loads a document, changes it and saves it:  first IN OUT
// [first]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    LumPtr<LumDocument> document(new LumDocument);
    document->load(UnicodeString::fromUTF8(argv[1]));
    LumElement* root = document->getDocumentElement();
    root->setAttribute(NAME_xml_lang, LumValue(u"en"));
    root->appendChild(document->createElement(LumName(u"note")).get())->appendChildText(u"changed & saved");
    document->save(UnicodeString::fromUTF8(argv[2]));
} catch (const LumError& error) {
    std::string message;
    std::cerr << error.getMessage().toUTF8String(message) << '\n';
    return 1;
}
// [first]
