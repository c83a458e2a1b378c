// Tells what kind of office document a file is, and its title.   office FILE
#include <lumcommon/lumcommon.h>

#include <iostream>
#include <variant>

using namespace LumCommon;

namespace {

std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

void showPackage(const char* path) {
    // [package]
    LumZipFile package(path);
    std::cout << "kind " << package.detectOOXDocument() << '\n';
    if (LumZipFileEntry* const main = package.getOfficeDocument()) {
        std::cout << utf8(main->getFileName()) << " is " << utf8(package.getContentType(main)) << '\n';
        const UnicodeString styles(u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles");
        std::cout << "styles in " << utf8(package.getRelationshipTargetFromType(styles, main)) << '\n';
    }
    // [package]
}

void showProperties(OleCompFile& file) {
    // [properties]
    OleSummaryInformation information;
    information.initDocumentSummaryInformation(&file);
    for (const OleProperty& property : information.readProperties()) {
        if (property.name.isEmpty()) continue;  // one of those that every program numbers alike
        const OlePropertyValue::Content& content = property.value.content;
        std::cout << utf8(property.name) << " of type " << property.value.type;
        if (const auto* text = std::get_if<UnicodeString>(&content)) std::cout << ": " << utf8(*text);
        if (const auto* number = std::get_if<double>(&content)) std::cout << ": " << *number;
        if (const auto* flag = std::get_if<bool>(&content)) std::cout << ": " << (*flag ? "yes" : "no");
        std::cout << '\n';
    }
    // [properties]
}

void showCompoundFile(const char* path) {
    // [compound]
    OleCompFile file;
    if (!file.OLEopen(path)) return;
    OlePropertySet properties;
    properties.init(&file);
    std::cout << utf8(properties.getTitle()) << ", by " << utf8(properties.getAuthor()) << '\n';

    OleDirPath way{"WordDocument"};
    if (OleStream* const stream = file.OLEopenStream(&way)) {
        std::cout << stream->GetStreamSize() << " bytes of text and layout\n";
        file.OLEcloseStream(stream);
    }
    // [compound]
    showProperties(file);
}

}  // namespace

int main(int, char* argv[]) try {
    showPackage(argv[1]);
    showCompoundFile(argv[1]);
} catch (const LumError& error) {
    std::cerr << utf8(error.getMessage()) << '\n';
    return 1;
}
