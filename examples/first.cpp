// Loads a document, changes it and saves it:  first IN OUT
// [first]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->load(std::filesystem::path(argv[1]));
    LumElement* const root = document->getDocumentElement();
    root->setAttribute(NAME_xml_lang, u"en");
    root->appendChild(document->createElement(LumName(u"note")).get())->appendChildText(u"changed & saved");
    document->save(std::filesystem::path(argv[2]));
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [first]
