// Saves a document in several ways, and shows what is lost:  saving IN OUT
// [saving]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iostream>
#include <sstream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->load(std::filesystem::path(argv[1]));
    document->getSerializer()->setGenerator(UnicodeString());  // no comment that names the program
    std::cout << toUtf8(document->saveXml()) << '\n';          // into a string

    std::ostringstream out;  // into a stream, with what had been lost: a comment and the document type
    document->save(u" by hand ", u"a SYSTEM 'a.dtd'", out, nullptr, u"UTF-8");
    std::cout << out.str() << '\n';

    std::ostringstream japanese;
    document->save(japanese, document->getDocumentElement(), u"Shift_JIS");
    std::cout << japanese.str().size() << " bytes in Shift_JIS\n";

    document->appendChild(document->createElement(LumName(u"not a name")).get());
    try {
        document->saveReplacing(std::filesystem::path(argv[1]));  // the file stays as it is
    } catch (const LumError& error) {
        std::cout << error << '\n';
    }
    document->removeChild(document->getLastChild());
    document->save(std::filesystem::path(argv[2]), nullptr, u"UTF-8", u"order by='hand'");
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [saving]
