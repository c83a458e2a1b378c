// Prints what kind of office document a package is and where its parts are:  package FILE
// [package]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

static std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

int main(int, char* argv[]) try {
    LumZipFile package(argv[1]);
    std::cout << "kind " << package.detectOOXDocument() << '\n';
    if (LumZipFileEntry* const part = package.getOfficeDocument()) {
        std::cout << utf8(part->getFileName()) << " is " << utf8(package.getContentType(part)) << '\n';
        const UnicodeString styles(u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles");
        std::cout << "styles in " << utf8(package.getRelationshipTargetFromType(styles, part)) << '\n';
    }
} catch (const LumError& error) {
    std::cerr << utf8(error.getMessage()) << '\n';
    return 1;
}
// [package]
