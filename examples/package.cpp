// Prints what kind of office document a package is and where its parts are:  package FILE
// [package]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    LumZipFile package(argv[1]);
    std::cout << "kind " << package.detectOOXDocument() << '\n';
    if (LumZipFileEntry* const part = package.getOfficeDocument()) {
        std::cout << toUtf8(part->getFileName()) << " is " << toUtf8(package.getContentType(part)) << '\n';
        const UnicodeString styles(u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles");
        std::cout << "styles in " << toUtf8(package.getRelationshipTargetFromType(styles, part)) << '\n';
    }
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [package]
